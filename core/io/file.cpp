#include "core/io/file.h"

#include "core/warning.h"

#include <utility>

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
    if (!engine->open(mode))
        return fail(*engine);
    return openEngine(std::move(engine), mode);
}

bool CZeFile::exists() const {
    return CZeFileEngine::create(m_fileName)->exists();
}

int64_t CZeFile::size() const {
    return isOpen() ? CZeFileDevice::size() : CZeFileEngine::create(m_fileName)->size();
}

bool CZeFile::isSequential() const {
    return isOpen() ? CZeFileDevice::isSequential() : CZeFileEngine::create(m_fileName)->isSequential();
}

bool CZeFile::remove() {
    if (m_fileName.isEmpty()) {
        ze::coreWarning("CZeFile::remove: Empty or null file name");
        return false;
    }
    unsetError();
    close(); // what cannot be written any more was to be removed anyway
    const std::unique_ptr<CZeFileEngine> engine = CZeFileEngine::create(m_fileName);
    if (!engine->remove())
        return fail(*engine);
    unsetError();
    return true;
}
