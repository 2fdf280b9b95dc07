// The least amount that makes an effect take part in a frame.

#pragma once

namespace ze {

/// A double, to which the amounts are widened: the float nearest to 0.001 is a little larger.
inline constexpr double kActiveThreshold = 0.001;

} // namespace ze
