// Strings whose contents the caller writes.

#pragma once

#include "core/tools/ze_string.h"

namespace ze {

/// A string of `size` units, at least 0, for the caller to fill. Null, and only then, when no string can be
/// so long or there is no memory.
inline CZeString uninitialized(int64_t size) {
    return size > INT32_MAX ? CZeString() : CZeString(static_cast<int>(size), Ze::Uninitialized);
}

} // namespace ze
