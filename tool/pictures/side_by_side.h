// Two pictures next to each other.

#pragma once

#include "tool/pictures/picture.h"

namespace ze::tool {

/// `left` and `right`, which are of one size, as one picture of twice the width.
Picture sideBySide(const Picture& left, const Picture& right);

} // namespace ze::tool
