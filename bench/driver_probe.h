// Tells how the time of a frame is divided between the steps of the driver's work and the library.
//
// The program is linked so that calls from the library to EGL and OpenGL ES go through the probe. Those that
// only a first frame makes are not listed there and count as the library's own time.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>

/// The steps of a frame with effects: the driver's work for each pass, and what the library does itself.
enum class Step {
    upload,    ///< glTexSubImage2D.
    yuvToRgb,  ///< The calls of a pass up to and with its draw. The first one also has the EGL calls.
    blur,      ///< Likewise.
    mix,       ///< Likewise.
    lut,       ///< Likewise, for uniform levels.
    mappedLut, ///< Likewise, for others.
    rgbToYuv,  ///< Likewise.
    readBack,  ///< What follows the last draw, which is mostly glReadPixels.
    unpacking, ///< From the last call on, when the driver has nothing left to do.
    remainder, ///< The library's own instructions before and between the calls.
};
inline constexpr size_t kStepCount = 10;

enum class Splits {
    asDriverLikes, ///< The driver may put off the work of a call until a later one.
    finished,      ///< glFinish at the end of each step, counted as part of it.
};

/// Seconds.
struct FrameTimes {
    std::array<double, kStepCount> steps{};
    double whole = 0; ///< The sum of the steps.
    size_t draws = 0; ///< Must be the number of passes; otherwise the steps are not what their names say.

    double& operator[](Step step) { return steps[static_cast<size_t>(step)]; }
    double operator[](Step step) const { return steps[static_cast<size_t>(step)]; }

    /// What the library does itself.
    double outsideDriver() const { return (*this)[Step::unpacking] + (*this)[Step::remainder]; }
};

/// Times `frame`, one call of ZecRender that draws `passes`. One frame at a time in the whole program.
FrameTimes timeFrame(Splits splits, std::span<const Step> passes, const std::function<void()>& frame);
