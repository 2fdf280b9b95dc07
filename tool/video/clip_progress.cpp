#include "tool/video/clip_progress.h"

#include "tool/clock_text.h"
#include "tool/number_text.h"
#include "tool/status_line.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <nlohmann/json.hpp>
#include <unistd.h>

extern "C" {
#include <libavutil/avutil.h>
}

namespace ze::tool {
namespace {

constexpr std::chrono::milliseconds kPause(500);

double secondsOf(std::chrono::steady_clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

double rounded(double value) {
    return std::round(value * 100) / 100;
}

std::chrono::seconds whole(double seconds) {
    return std::chrono::seconds(static_cast<int64_t>(seconds));
}

} // namespace

ClipProgress::ClipProgress(ProgressKind kind)
    : m_kind(kind), m_isShown(kind == ProgressKind::json || isatty(STDERR_FILENO) == 1) {}

ClipProgress::~ClipProgress() {
    clearStatus();
}

void ClipProgress::advance(const AVFrame& frame, AVRational timeBase, int64_t duration) {
    m_duration = static_cast<double>(duration) / AV_TIME_BASE;
    if (m_frames++ == 0)
        m_first = frame.pts;
    m_time = static_cast<double>(frame.pts - m_first + frame.pkt_duration) * av_q2d(timeBase);
    if (m_isShown && Clock::now() - m_shown >= kPause)
        show(false);
}

void ClipProgress::finish() {
    if (m_kind == ProgressKind::json)
        show(true);
}

void ClipProgress::show(bool isDone) {
    m_shown = Clock::now();
    const double elapsed = secondsOf(m_shown - m_start);
    const double speed = elapsed > 0 ? static_cast<double>(m_frames) / elapsed : 0;
    const bool isKnown = m_time > 0 && m_duration > 0;
    const double left = isKnown ? std::max(0.0, elapsed / m_time * (m_duration - m_time)) : -1;
    if (m_kind == ProgressKind::json)
        printJson(speed, left, isDone);
    else
        showLine(speed, left);
}

void ClipProgress::showLine(double speed, double left) const {
    std::string text = clockText(whole(m_time));
    if (m_duration > 0)
        text += " of " + clockText(whole(m_duration)) + "  " +
                numberText(std::min(100.0, 100 * m_time / m_duration), 0) + " %";
    text += "  " + numberText(speed, 1) + " frames/s";
    if (left >= 0)
        text += "  " + clockText(whole(left + 1)) + " left";
    showStatus(text);
}

// What is not known is null.
void ClipProgress::printJson(double speed, double left, bool isDone) const {
    const auto known = [](double value) {
        return value > 0 ? nlohmann::json(rounded(value)) : nlohmann::json();
    };
    nlohmann::ordered_json object;
    object["time"] = rounded(m_time);
    object["duration"] = known(m_duration);
    object["frames"] = m_frames;
    object["frames_per_second"] = rounded(speed);
    object["seconds_left"] = isDone ? nlohmann::json(0) : known(left);
    object["done"] = isDone;
    std::fputs((object.dump() + "\n").c_str(), stderr);
}

} // namespace ze::tool
