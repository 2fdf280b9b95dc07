#include "core/io/resource_file_engine.h"

#include "core/io/open_mode.h"
#include "core/io/resource_info.h"
#include "core/tools/error_text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

CZeResourceFileEngine::CZeResourceFileEngine(const CZeString& fileName) : m_fileName(fileName) {}

CZeResourceFileEngine::~CZeResourceFileEngine() = default;

bool CZeResourceFileEngine::open(int mode) {
    if ((mode & ~Ze::Text) != Ze::ReadOnly)
        return refuseWriting(Ze::FileErrOpen);
    const CZeResourceInfo node = CZeResourceInfo::find(m_fileName);
    if (!node.exists())
        return fail(Ze::FileErrOpen, ze::errorText(ENOENT));
    if (node.isDirectory())
        return fail(Ze::FileErrOpen, ze::errorText("file to open is a directory"));
    if (!node.read(m_bytes))
        return fail(Ze::FileErrOpen, ze::errorText("Resource is corrupted"));
    m_pos = 0;
    m_isOpen = true;
    return true;
}

bool CZeResourceFileEngine::close() {
    m_bytes = CZeByteArray();
    m_isOpen = false;
    return true;
}

int64_t CZeResourceFileEngine::read(char* data, int64_t maxSize) {
    const int64_t count = std::clamp<int64_t>(m_bytes.size() - m_pos, 0, maxSize);
    if (count > 0)
        std::memcpy(data, m_bytes.constData() + m_pos, static_cast<size_t>(count));
    m_pos += count;
    return count;
}

int64_t CZeResourceFileEngine::write(const char*, int64_t) {
    refuseWriting(Ze::FileErrWrite);
    return -1;
}

bool CZeResourceFileEngine::seek(int64_t pos) {
    if (pos < 0)
        return fail(Ze::FileErrPosition, ze::errorText(EINVAL));
    m_pos = pos;
    return true;
}

int64_t CZeResourceFileEngine::size() const {
    if (m_isOpen)
        return m_bytes.size();
    CZeByteArray bytes;
    CZeResourceInfo::find(m_fileName).read(bytes);
    return bytes.size();
}

bool CZeResourceFileEngine::isSequential() const {
    return false;
}

bool CZeResourceFileEngine::exists() const {
    return CZeResourceInfo::find(m_fileName).exists();
}

bool CZeResourceFileEngine::isDirectory() const {
    return CZeResourceInfo::find(m_fileName).isDirectory();
}

bool CZeResourceFileEngine::remove() {
    return refuseWriting(Ze::FileErrRemove);
}

bool CZeResourceFileEngine::rename(const CZeString&) {
    return refuseWriting(Ze::FileErrRename);
}

bool CZeResourceFileEngine::refuseWriting(int error) {
    return fail(error, ze::errorText(EROFS));
}
