// File names as system calls take them.

#pragma once

#include "core/tools/ze_string.h"

namespace ze {

/// `name` in the local encoding. Empty, which names no file, when a zero character in it would make the
/// system see another, shorter name.
CZeByteArray nativePath(const CZeString& name);

} // namespace ze
