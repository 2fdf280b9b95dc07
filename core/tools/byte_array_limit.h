// The longest byte array.

#pragma once

#include "core/tools/array_data.h"

namespace ze {

/// Bytes: what the header of a block and the terminator leave of a signed 32-bit size.
constexpr int64_t kMaxByteArraySize = INT32_MAX - static_cast<int64_t>(sizeof(SZeArrayData)) - 1;
static_assert(kMaxByteArraySize == 0x7FFFFFE6);

} // namespace ze
