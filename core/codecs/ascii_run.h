// Runs of ASCII between bytes and units, many at a step.

#pragma once

#include "core/tools/ze_char.h"

namespace ze {

/// Writes a unit for each of the `count` bytes that stands before the first one that is not ASCII, and
/// returns how many these are. `units` has room for `count`; what lies behind the returned ones means
/// nothing.
int widenAsciiRun(const char* bytes, int count, CZeChar* units);

/// The other way.
int narrowAsciiRun(const CZeChar* units, int count, char* bytes);

/// A call pays only where a run is likely to go on: after so many ASCII characters one by one.
constexpr int kRunBeforeCall = 16;

} // namespace ze
