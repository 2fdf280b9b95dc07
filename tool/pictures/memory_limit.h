// How much memory this process may use.

#pragma once

#include <cstdint>

namespace ze::tool {

/// In bytes: the main memory of this machine, or what its control group (version 2 or 1) allows where that
/// is less.
int64_t memoryLimit();

} // namespace ze::tool
