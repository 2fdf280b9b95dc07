// Skin smoothing and whitening.

#pragma once

#include "gl/frame_size.h"

#include <GLES2/gl2.h>

#include <array>

namespace ze {

/// A separable, edge-preserving blur that is blended over the frame where a color model finds skin or lips
/// at mid-range brightness, and a whitening that lifts the whole frame. Two draws per frame. Construction
/// makes no GL call. Render and destroy it on the thread that has the core's context current.
class BeautyEffect {
public:
    BeautyEffect() = default;
    BeautyEffect(const BeautyEffect&) = delete;
    BeautyEffect& operator=(const BeautyEffect&) = delete;

    /// Deletes the intermediate texture and one of the programs; the other one goes with the GL context.
    ~BeautyEffect();

    /// Stores the amounts of smoothing and whitening for the next render, as they are: meant for 0 to 1, not
    /// clamped, NaN included.
    void setParams(float mixFactor, float whitenFactor);

    /// False when `mixFactor` <= 0.001 and `whitenFactor` < 0.001, both compared as doubles. NaN is active.
    bool isActive() const;

    /// Draws `sourceTexture` with the effect into `targetTexture`; two different RGBA textures of `size`.
    /// Needs the core's frame buffer bound; leaves it without a color target, unit 0 active and the
    /// intermediate texture bound to unit 1. False when a program or the intermediate texture cannot be made;
    /// nothing is drawn then and the next call tries again. GL errors are logged and do not stop it.
    bool render(GLuint sourceTexture, FrameSize size, GLuint targetTexture);

private:
    struct BlurProgram {
        GLuint name = 0;
        GLint posAttr = -1;
        GLint texCoordAttr = -1;
        GLint blurTexelSampleStep = -1;
        GLint distanceNormalizationFactor = -1;
    };

    struct MixProgram {
        GLuint name = 0;
        GLint posAttr = -1;
        GLint texCoordAttr = -1;
        GLint blurTexCoordAttr = -1;
        GLint blurTexelSampleStep = -1;
        GLint distanceNormalizationFactor = -1;
        GLint mixFactor = -1;
        GLint whitenFactor = -1;
    };

    bool buildBlurProgram();
    bool buildMixProgram();
    bool ensureIntermediateTexture(FrameSize size);
    void drawBlur(GLuint sourceTexture, GLfloat sampleStep) const;
    void drawMix(GLuint sourceTexture, GLfloat sampleStep, GLuint targetTexture) const;

    BlurProgram m_blur;
    MixProgram m_mix;
    GLuint m_intermediateTexture = 0; ///< RGBA, receives the horizontal pass.
    FrameSize m_intermediateSize;
    float m_mixFactor = 0.0f;
    float m_whitenFactor = 0.0f;
    /// A normalized Gaussian of sigma 1.5 over the taps -3 to +3.
    std::array<GLfloat, 7> m_gaussianWeights = {
        0.03663284704089165f, 0.11128076165914536f, 0.21674533188343048f, 0.270682156085968f,
        0.21674533188343048f, 0.11128076165914536f, 0.03663284704089165f};
};

} // namespace ze
