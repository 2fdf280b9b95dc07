// Conversions between units and Latin-1 characters, sixteen at a step.

#pragma once

#include "core/tools/ze_char.h"

namespace ze {

/// Writes `count` characters from as many units; units above 0xFF become '?'. `latin1` may be `units` itself
/// but must not overlap it otherwise.
void narrowToLatin1(const CZeChar* units, int count, char* latin1);

/// Writes `count` units from as many Latin-1 characters. They must not overlap.
void widenLatin1(const char* latin1, int count, CZeChar* units);

} // namespace ze
