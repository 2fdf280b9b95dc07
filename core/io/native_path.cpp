#include "core/io/native_path.h"

#include "core/codecs/utf8_encoder.h"

#include <algorithm>
#include <cstring>

namespace ze {

NativePath::NativePath(const CZeString& name) {
    // So many units give at least as many bytes: what is left out here was too long anyway.
    const int count = std::min(name.size(), PATH_MAX);
    char* const end = encodeUtf8(name.unicode(), count, m_bytes);
    *end = '\0';
    if (count < name.size())
        end[-1] = '?'; // A cut between slashes would name a directory once they are taken off.
    if (std::memchr(m_bytes, 0, static_cast<size_t>(end - m_bytes)))
        m_bytes[0] = '\0';
}

} // namespace ze
