#include "core/io/native_path.h"

#include <cstring>

namespace ze {

CZeByteArray nativePath(const CZeString& name) {
    const CZeByteArray path = name.toLocal8Bit();
    return std::memchr(path.constData(), 0, size_t(path.size())) ? CZeByteArray("") : path;
}

} // namespace ze
