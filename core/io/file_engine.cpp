#include "core/io/file_engine.h"

#include "core/io/generic_file_engine.h"
#include "core/io/resource_file_engine.h"
#include "core/io/resource_info.h"

#include <new>

CZeFileEngine::CZeFileEngine() = default;

CZeFileEngine::~CZeFileEngine() = default;

std::unique_ptr<CZeFileEngine> CZeFileEngine::create(const CZeString& fileName) {
    if (CZeResourceInfo::isResourcePath(fileName))
        return std::unique_ptr<CZeFileEngine>(new (std::nothrow) CZeResourceFileEngine(fileName));
    return std::unique_ptr<CZeFileEngine>(new (std::nothrow) CZeGenericFileEngine(fileName));
}

bool CZeFileEngine::supportsMap() const {
    return false;
}

unsigned char* CZeFileEngine::map(int64_t, int64_t) {
    return nullptr;
}

bool CZeFileEngine::unmap(unsigned char*) {
    return false;
}

bool CZeFileEngine::fail(int error, const CZeString& text) {
    m_error = error;
    m_errorString = text;
    return false;
}
