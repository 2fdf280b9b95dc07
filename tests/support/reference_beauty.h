// The beauty effect, worked out in double precision.

#pragma once

#include "tests/support/reference_picture.h"

namespace reference {

/// The picture with the effect, before an 8-bit target clamps and rounds it. The horizontally filtered
/// picture is kept in 8 bits between the passes.
Picture beautify(const Picture& source, double mixFactor, double whitenFactor);

} // namespace reference
