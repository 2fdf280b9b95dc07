// Tests that draw on the driver.

#pragma once

#include "gl/egl_context.h"
#include "tests/support/reference_picture.h"

#include <GLES2/gl2.h>

#include <cstdint>

#include <gmock/gmock.h>

/// How far levels of 0 to 255 may lie from what was worked out.
struct Tolerance {
    double levels;
    double share = 0; ///< of all levels may lie further off
};

/// Has an OpenGL ES 2.0 context and a frame buffer of its own current. Skips where no driver gives one. What
/// a test makes in the context goes with it.
class GlTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override { releaseContext(); }

    /// Software rendering (llvmpipe) holds `precise` when GALLIUM_OVERRIDE_CPU_CAPS=sse4.1 makes it compute
    /// lowp and mediump in full floats and GALLIVM_PERF=no_aos_sampling interpolate texels in floats. Without
    /// them it takes half floats, and interpolates in steps of 1/256 with a result of 8 bits; this and what
    /// other drivers do has to hold `loose`, but ANGLE, which computes in full floats, `precise`.
    Tolerance tolerance(Tolerance precise, Tolerance loose) const { return m_isPrecise ? precise : loose; }

    /// Outside Android ANGLE forgets a destroyed surface at once although it is current: its context cannot
    /// be made current any more.
    bool forgetsDestroyedSurfaces() const { return m_isAngle; }

    /// Leaves this thread without a context.
    void releaseContext();

    /// A texture that holds `picture`, rounded to 8 bits.
    static GLuint textureOf(const reference::Picture& picture);
    /// A texture to draw into, every byte of it 0x66.
    static GLuint targetTexture(int width, int height);
    /// The R, G, B and A of each texel, row by row. Leaves the frame buffer without a target.
    static std::vector<uint8_t> contentOf(GLuint texture, int width, int height);

private:
    ze::EglContextRecord m_context;
    bool m_isAngle = false;
    bool m_isPrecise = false;
};

/// Whether all levels agree, `expected` clamped to 0 to 255.
testing::AssertionResult agree(const std::vector<uint8_t>& actual, const std::vector<double>& expected,
                               Tolerance tolerance);
