// Where the time of a frame goes: into the driver, step by step, or not.
//
// The program is linked so that the calls which the library makes to EGL and OpenGL ES for a frame pass the
// probe. Calls that only a first frame makes, and any that nobody told the probe of, count as the library's.

#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>

/// The steps of a frame with effects: the driver's work for each, and what is not the driver's.
enum class Step {
    upload,    ///< glTexSubImage2D.
    yuvToRgb,  ///< A pass with all of its other calls, up to its draw. The first one also has the EGL calls.
    blur,      ///< Likewise.
    mix,       ///< Likewise.
    lut,       ///< Likewise, for uniform levels.
    mappedLut, ///< Likewise, for others.
    rgbToYuv,  ///< Likewise.
    readBack,  ///< What follows the last draw, which is mostly glReadPixels.
    unpacking, ///< From the last call on. The driver has nothing left to do then.
    remainder, ///< The library's own instructions before and between the calls.
};
inline constexpr size_t kStepCount = 10;

enum class Splits {
    asDriverLikes, ///< The driver may do the work of a call during a later one.
    finished,      ///< glFinish, counted to the step that ends, wherever a step gives way to another.
};

/// Seconds.
struct FrameTimes {
    std::array<double, kStepCount> steps{};
    double whole = 0; ///< The sum of the steps.
    size_t draws = 0; ///< As many as passes, or the steps are not what their names say.

    double& operator[](Step step) { return steps[size_t(step)]; }
    double operator[](Step step) const { return steps[size_t(step)]; }

    /// What is not the driver's.
    double outsideDriver() const { return (*this)[Step::unpacking] + (*this)[Step::remainder]; }
};

/// Runs `frame`, one call of ZecRender that draws `passes`, on this thread. One frame at a time in the whole
/// program.
FrameTimes timeFrame(Splits splits, std::span<const Step> passes, const std::function<void()>& frame);
