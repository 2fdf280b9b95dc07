#include "core/io/file.h"

#include "core/io/generic_file_engine.h"
#include "core/io/resource_file_engine.h"
#include "core/io/resource_info.h"
#include "core/tools/error_text.h"
#include "core/warning.h"

#include <cerrno>
#include <utility>

namespace {

/// Calls `work` with an engine for the closed file. The engine lives on the stack: asking needs no memory.
template <class Work>
auto withEngine(const CZeString& fileName, const Work& work) {
    if (CZeResourceInfo::isResourcePath(fileName)) {
        CZeResourceFileEngine engine(fileName);
        return work(engine);
    }
    CZeGenericFileEngine engine(fileName);
    return work(engine);
}

} // namespace

CZeFile::CZeFile() = default;

CZeFile::CZeFile(const CZeString& fileName) : m_fileName(fileName) {}

CZeFile::~CZeFile() {
    if (!close())
        ze::coreWarning("CZeFile::~CZeFile: File (%s) is incomplete: %s",
                        m_fileName.toLocal8Bit().constData(), errorString().toLocal8Bit().constData());
}

void CZeFile::setFileName(const CZeString& fileName) {
    if (isOpen()) {
        ze::coreWarning("CZeFile::setFileName: File (%s) is already opened",
                        m_fileName.toLocal8Bit().constData());
        return;
    }
    m_fileName = fileName;
}

bool CZeFile::open(int mode) {
    if (isOpen()) {
        ze::coreWarning("CZeFile::open: File (%s) already open", m_fileName.toLocal8Bit().constData());
        return false;
    }
    if (!(mode & Ze::ReadWrite))
        return CZeIODevice::open(mode); // which refuses it
    std::unique_ptr<CZeFileEngine> engine = CZeFileEngine::create(m_fileName);
    if (!engine)
        return fail(Ze::FileErrOpen, ze::errorText(ENOMEM));
    if (!engine->open(mode))
        return fail(*engine);
    return openEngine(std::move(engine), mode);
}

bool CZeFile::exists() const {
    return withEngine(m_fileName, [](const CZeFileEngine& engine) { return engine.exists(); });
}

int64_t CZeFile::size() const {
    if (isOpen())
        return CZeFileDevice::size();
    return withEngine(m_fileName, [](const CZeFileEngine& engine) { return engine.size(); });
}

bool CZeFile::isSequential() const {
    if (isOpen())
        return CZeFileDevice::isSequential();
    return withEngine(m_fileName, [](const CZeFileEngine& engine) { return engine.isSequential(); });
}

bool CZeFile::remove() {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeFile::remove: Empty or null file name");
        return false;
    }
    unsetError();
    close(); // what cannot be written any more was to be removed anyway
    return withEngine(m_fileName, [&](CZeFileEngine& engine) {
        if (!engine.remove())
            return fail(engine);
        unsetError();
        return true;
    });
}
