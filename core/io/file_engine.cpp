#include "core/io/file_engine.h"

#include "core/io/generic_file_engine.h"

CZeFileEngine::CZeFileEngine() = default;

CZeFileEngine::~CZeFileEngine() = default;

std::unique_ptr<CZeFileEngine> CZeFileEngine::create(const CZeString& fileName) {
    return std::make_unique<CZeGenericFileEngine>(fileName);
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
