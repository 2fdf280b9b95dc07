// Runs of ASCII between bytes and units, many at a step.

#pragma once

#include "core/tools/ze_char.h"

namespace ze {

/// Writes a unit for each of the `count` bytes up to the first that is not ASCII, and returns how many these
/// are. `units` has room for `count`; what is behind the returned ones is undefined.
int widenAsciiRun(const char* bytes, int count, CZeChar* units);

/// The same in the other direction.
int narrowAsciiRun(const CZeChar* units, int count, char* bytes);

/// The number of ASCII characters in a row after which such a call pays, as the run will likely go on.
constexpr int kRunBeforeCall = 16;

} // namespace ze
