// How far a clip is.

#pragma once

#include "tool/video/clip_job.h"

#include <chrono>

namespace ze::tool {

/// Tells it about once a second on standard error: in a line on a terminal, or as an object of JSON in a line
/// of its own. One thread at a time.
class ClipProgress {
public:
    explicit ClipProgress(ProgressKind kind);
    ~ClipProgress();
    ClipProgress(const ClipProgress&) = delete;
    ClipProgress& operator=(const ClipProgress&) = delete;

    /// `frame` is done, whose time and length are in units of `timeBase` seconds. `duration` is that of the
    /// whole in microseconds, as far as is known by now; 0 where it is not.
    void advance(const AVFrame& frame, AVRational timeBase, int64_t duration);

    /// All frames are done.
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void show(bool isDone);
    void showLine(double speed, double left) const;
    void printJson(double speed, double left, bool isDone) const;

    ProgressKind m_kind;
    bool m_isShown;
    double m_duration = 0; ///< In seconds, like the next.
    double m_time = 0;     ///< From the first frame to the end of the last.
    int64_t m_first = 0;   ///< When the first one begins, in units of the frames.
    int64_t m_frames = 0;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_shown = m_start;
};

} // namespace ze::tool
