// Whether frames come at one rate.

#pragma once

#include <cstdint>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace ze::tool {

/// Counts frames. One thread at a time.
class SteadyRate {
public:
    /// `rate` is in frames a second, or 0/1 for one in each unit of time; those are `timeBase` seconds.
    SteadyRate(AVRational rate, AVRational timeBase)
        : m_length(rate.num > 0 ? av_inv_q(rate) : timeBase), m_timeBase(timeBase) {}

    /// Whether the next frame, which begins at `time`, is within half a frame of where it would be if all of
    /// them since the first came at the rate.
    bool fits(int64_t time) {
        if (m_count == 0)
            m_first = time;
        return av_rescale_q(time - m_first, m_timeBase, m_length) == m_count++;
    }

private:
    AVRational m_length; ///< Of a frame, in seconds.
    AVRational m_timeBase;
    int64_t m_first = 0;
    int64_t m_count = 0;
};

} // namespace ze::tool
