// The part of a clip that is rendered.

#pragma once

#include <cstdint>
#include <limits>

extern "C" {
#include <libavutil/avutil.h>
}

namespace ze::tool {

/// The time base of times here and of those that FFmpeg has for whole files.
inline constexpr AVRational kMicrosecond = {1, AV_TIME_BASE};

/// From `from` up to and without `to`, in microseconds after the beginning of the clip.
struct TimeRange {
    int64_t from = 0;
    int64_t to = std::numeric_limits<int64_t>::max();

    bool isWhole() const { return from == 0 && to == std::numeric_limits<int64_t>::max(); }
};

} // namespace ze::tool
