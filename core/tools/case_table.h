// The simple case mappings of Unicode: one code point to one.

#pragma once

#include <cstdint>
#include <span>

namespace ze {

/// Code points from `first` to `last`, every one or every second, that lie `distance` before their
/// counterparts.
struct CaseRun {
    char32_t first, last;
    int32_t step; ///< 1 or 2.
    int32_t distance;
};

/// In ascending order. A counterpart takes as many units of UTF-16 as the code point itself.
extern const std::span<const CaseRun> toLowerRuns;
extern const std::span<const CaseRun> toUpperRuns;

} // namespace ze
