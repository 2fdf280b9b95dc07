// Names that nobody can guess.

#pragma once

#include "core/tools/ze_string.h"

namespace ze {

/// `prefix` with `count` random letters and digits behind it. Any thread may call it.
CZeString randomName(const CZeString& prefix, int count);

} // namespace ze
