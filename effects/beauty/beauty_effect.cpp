#include "effects/beauty/beauty_effect.h"

#include "effects/active_threshold.h"
#include "effects/beauty/beauty_shaders.h"
#include "gl/error.h"
#include "gl/program.h"
#include "gl/quad.h"
#include "gl/target.h"
#include "gl/texture.h"

namespace ze {
namespace {

constexpr GLfloat kDistanceNormalization = 4.0f;

/// The distance between two taps in texture coordinates. A single step serves both axes: a vertical tap lies
/// step × height texels away, which grows with the width.
GLfloat blurSampleStep(FrameSize size) {
    return static_cast<GLfloat>((size.width * (1.0 / 45.0)) / 3.0 * (1.0 / size.height));
}

} // namespace

BeautyEffect::~BeautyEffect() {
    // Only the first program goes by name; a mix program built after it goes with the GL context.
    if (m_blur.name != 0) {
        glDeleteProgram(m_blur.name);
        m_mix.name = 0;
    } else if (m_mix.name != 0) {
        glDeleteProgram(m_mix.name);
        m_mix.name = 0;
    }
    deleteTexture(&m_intermediateTexture);
}

void BeautyEffect::setParams(float mixFactor, float whitenFactor) {
    m_mixFactor = mixFactor;
    m_whitenFactor = whitenFactor;
}

bool BeautyEffect::isActive() const {
    // Smoothing has to exceed the threshold and whitening to reach it. Negated, so that NaN is active.
    return !(m_mixFactor <= kActiveThreshold) || !(m_whitenFactor < kActiveThreshold);
}

bool BeautyEffect::render(GLuint sourceTexture, FrameSize size, GLuint targetTexture) {
    if (m_blur.name == 0 && !buildBlurProgram())
        return false;
    if (m_mix.name == 0 && !buildMixProgram())
        return false;
    if (!ensureIntermediateTexture(size))
        return false;

    glViewport(0, 0, size.width, size.height);
    checkGlError();
    glDisable(GL_BLEND);
    const GLfloat sampleStep = blurSampleStep(size);
    drawBlur(sourceTexture, sampleStep);
    drawMix(sourceTexture, sampleStep, targetTexture);
    return true;
}

bool BeautyEffect::buildBlurProgram() {
    m_blur.name = createProgram(kBlurVertexShader, kBlurFragmentShader);
    if (m_blur.name == 0)
        return false;
    m_blur.posAttr = glGetAttribLocation(m_blur.name, "posAttr");
    m_blur.texCoordAttr = glGetAttribLocation(m_blur.name, "texCoordAttr");
    m_blur.blurTexelSampleStep = glGetUniformLocation(m_blur.name, "blurTexelSampleStep");
    m_blur.distanceNormalizationFactor = glGetUniformLocation(m_blur.name, "distanceNormalizationFactor");

    glUseProgram(m_blur.name);
    glUniform1i(glGetUniformLocation(m_blur.name, "sampler"), 0);
    glUniform1fv(glGetUniformLocation(m_blur.name, "gaussianWeight"),
                 static_cast<GLsizei>(m_gaussianWeights.size()), m_gaussianWeights.data());
    checkGlError();
    glUseProgram(0);
    return true;
}

bool BeautyEffect::buildMixProgram() {
    m_mix.name = createProgram(kMixVertexShader, kMixFragmentShader);
    if (m_mix.name == 0)
        return false;
    m_mix.posAttr = glGetAttribLocation(m_mix.name, "posAttr");
    m_mix.texCoordAttr = glGetAttribLocation(m_mix.name, "texCoordAttr");
    m_mix.blurTexCoordAttr = glGetAttribLocation(m_mix.name, "blurTexCoordAttr");
    m_mix.blurTexelSampleStep = glGetUniformLocation(m_mix.name, "blurTexelSampleStep");
    m_mix.distanceNormalizationFactor = glGetUniformLocation(m_mix.name, "distanceNormalizationFactor");
    m_mix.mixFactor = glGetUniformLocation(m_mix.name, "mixFactor");
    m_mix.whitenFactor = glGetUniformLocation(m_mix.name, "whitenFactor");

    glUseProgram(m_mix.name);
    glUniform1i(glGetUniformLocation(m_mix.name, "originalSampler"), 0);
    glUniform1i(glGetUniformLocation(m_mix.name, "blurSampler"), 1);
    glUniform1fv(glGetUniformLocation(m_mix.name, "gaussianWeight"),
                 static_cast<GLsizei>(m_gaussianWeights.size()), m_gaussianWeights.data());
    checkGlError();
    glUseProgram(0);
    return true;
}

bool BeautyEffect::ensureIntermediateTexture(FrameSize size) {
    if (size != m_intermediateSize && m_intermediateTexture != 0) {
        deleteTexture(&m_intermediateTexture);
        m_intermediateTexture = createTexture(size, GL_RGBA);
    }
    // The first frame, or a second try after a failed re-creation.
    if (m_intermediateTexture == 0)
        m_intermediateTexture = createTexture(size, GL_RGBA);
    if (m_intermediateTexture == 0)
        return false;
    m_intermediateSize = size;
    return true;
}

void BeautyEffect::drawBlur(GLuint sourceTexture, GLfloat sampleStep) const {
    glActiveTexture(GL_TEXTURE0);
    attachAndClear(m_intermediateTexture);
    bindWithFilter(sourceTexture, GL_LINEAR);
    clampBoundTexture();

    glUseProgram(m_blur.name);
    checkGlError();
    const GLfloat horizontalStep[] = {sampleStep, 0.0f};
    glUniform2fv(m_blur.blurTexelSampleStep, 1, horizontalStep);
    glUniform1f(m_blur.distanceNormalizationFactor, kDistanceNormalization);
    checkGlError();

    const auto corners = quadCorners();
    const QuadAttribute attributes[] = {{m_blur.posAttr, 0}, {m_blur.texCoordAttr, 2}};
    pointAttributes(attributes, corners);
    enableAttributes(attributes);
    drawStrip();
    checkGlError();
    disableAttributes(attributes);
    detachTarget();
}

void BeautyEffect::drawMix(GLuint sourceTexture, GLfloat sampleStep, GLuint targetTexture) const {
    attachAndClear(targetTexture);
    glActiveTexture(GL_TEXTURE1);
    bindWithFilter(m_intermediateTexture, GL_LINEAR);
    clampBoundTexture();
    checkGlError();
    glActiveTexture(GL_TEXTURE0);
    bindWithFilter(sourceTexture, GL_LINEAR);
    clampBoundTexture();
    checkGlError();

    glUseProgram(m_mix.name);
    checkGlError();
    const GLfloat verticalStep[] = {0.0f, sampleStep};
    glUniform2fv(m_mix.blurTexelSampleStep, 1, verticalStep);
    glUniform1f(m_mix.distanceNormalizationFactor, kDistanceNormalization);
    glUniform1f(m_mix.mixFactor, m_mixFactor);
    glUniform1f(m_mix.whitenFactor, m_whitenFactor);
    checkGlError();

    const auto corners = twoTextureQuadCorners();
    const QuadAttribute attributes[] = {
        {m_mix.posAttr, 0}, {m_mix.texCoordAttr, 2}, {m_mix.blurTexCoordAttr, 4}};
    pointAttributes(attributes, corners);
    checkGlError();
    enableAttributes(attributes);
    checkGlError();
    drawStrip();
    checkGlError();
    disableAttributes(attributes);
    detachTarget();
}

} // namespace ze
