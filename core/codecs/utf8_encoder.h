// The UTF-8 encoder of the core library.

#pragma once

#include "core/tools/ze_char.h"

namespace ze {

/// Writes `count` units as UTF-8; an unpaired surrogate as '?'. `bytes` has room for three times as many,
/// or for `utf8Length` of them. Returns the end of what was written.
char* encodeUtf8(const CZeChar* units, int count, char* bytes);

/// The bytes that `encodeUtf8` writes.
long long utf8Length(const CZeChar* units, int count);

} // namespace ze
