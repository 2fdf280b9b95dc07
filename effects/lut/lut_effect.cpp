#include "effects/lut/lut_effect.h"

#include "effects/active_threshold.h"
#include "effects/lut/lut_file_reader.h"
#include "effects/lut/lut_shaders.h"
#include "gl/error.h"
#include "gl/plain_vertex_shader.h"
#include "gl/program.h"
#include "gl/quad.h"
#include "gl/target.h"
#include "gl/texture.h"
#include "log/log_stream.h"

namespace ze {
namespace {

/// The source comes from unit 0, the table from unit 1.
void pointSamplers(GLuint program) {
    glUseProgram(program);
    glUniform1i(glGetUniformLocation(program, "sampler"), 0);
    glUniform1i(glGetUniformLocation(program, "lutSampler"), 1);
    checkGlError();
    glUseProgram(0);
}

} // namespace

CLutEffect::~CLutEffect() {
    deleteTexture(&m_lutTexture);
    if (m_ratio.name != 0)
        glDeleteProgram(m_ratio.name);
    if (m_mapped.name != 0)
        glDeleteProgram(m_mapped.name);
}

void CLutEffect::setParams(const CZeString& path, float intensity) {
    m_intensity = intensity;
    if (!m_path.isEmpty()) {
        ZeLogError() << "Lut path is already setted.";
        return;
    }
    m_path = path;
}

bool CLutEffect::isActive() const {
    return m_intensity >= kActiveThreshold;
}

bool CLutEffect::render(GLuint sourceTexture, FrameSize size, GLuint targetTexture) {
    if (m_lutTexture == 0 && !loadTable())
        return false;
    const bool isUniform = m_tables.uniformLevels;
    const bool isPrepared = isUniform ? prepareRatioProgram() : prepareMappedProgram();
    if (!isPrepared) {
        ZeLogError() << "Failed to prepare 3d lut program";
        return false;
    }
    if (isUniform)
        useRatioProgram();
    else
        useMappedProgram();

    attachAndClear(targetTexture);
    glViewport(0, 0, size.width, size.height);
    checkGlError();
    glActiveTexture(GL_TEXTURE1);
    bindWithFilter(m_lutTexture, GL_LINEAR);
    glActiveTexture(GL_TEXTURE0);
    bindWithFilter(sourceTexture, GL_NEAREST);

    const auto corners = quadCorners();
    const QuadAttribute attributes[] = {{isUniform ? m_ratio.posAttr : m_mapped.posAttr, 0},
                                        {isUniform ? m_ratio.texCoordAttr : m_mapped.texCoordAttr, 2}};
    pointAttributes(attributes, corners);
    enableAttributes(attributes);
    drawStrip();
    checkGlError();
    disableAttributes(attributes);
    detachTarget();
    return true;
}

bool CLutEffect::loadTable() {
    if (m_path.isEmpty()) {
        ZeLogError() << "lut path is empty";
        return false;
    }
    const CLutFileReader file(m_path);
    if (!file.isValid()) {
        ZeLogError() << "failed to read lut file";
        return false;
    }
    if (!file.isThreeDimensional()) {
        ZeLogError() << "we only support 3D lut now";
        return false;
    }

    const uint32_t levelCount = file.levelCount();
    const auto height = static_cast<int32_t>(levelCount);
    const FrameSize size = {height * height, height};
    discardTexture(m_lutTexture);
    m_lutTexture = createTexture(size, GL_RGB);
    if (m_lutTexture == 0) {
        ZeLogError() << "failed to allocate texture";
        return false;
    }
    const std::vector<uint8_t> texels = lutTexels(file.colorData(), levelCount);
    glBindTexture(GL_TEXTURE_2D, m_lutTexture);
    clampBoundTexture();
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width, size.height, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);

    const std::span<const float> levels(file.levelValues(), levelCount);
    fillCoordinateMap(levels, m_tables.coordinateMap);
    m_tables.uniformLevels = hasUniformLevels(levels);
    m_tables.levelCount = levelCount;
    m_tables.textureWidth = levelCount * levelCount;
    m_tables.textureHeight = levelCount;
    return true;
}

bool CLutEffect::prepareRatioProgram() {
    if (m_ratio.name != 0)
        return true;
    m_ratio.name = createProgram(kPlainVertexShader, kLutRatioFragmentShader);
    if (m_ratio.name == 0)
        return false;
    m_ratio.posAttr = glGetAttribLocation(m_ratio.name, "posAttr");
    m_ratio.texCoordAttr = glGetAttribLocation(m_ratio.name, "texCoordAttr");
    m_ratio.texelSize1D = glGetUniformLocation(m_ratio.name, "texelSize1D");
    m_ratio.rgbToTexCoordRatio = glGetUniformLocation(m_ratio.name, "rgbToTexCoordRatio");
    m_ratio.intensity = glGetUniformLocation(m_ratio.name, "intensity");
    pointSamplers(m_ratio.name);
    return true;
}

bool CLutEffect::prepareMappedProgram() {
    if (m_mapped.name != 0)
        return true;
    m_mapped.name = createProgram(kPlainVertexShader, kLutMappedFragmentShader);
    if (m_mapped.name == 0)
        return false;
    m_mapped.posAttr = glGetAttribLocation(m_mapped.name, "posAttr");
    m_mapped.texCoordAttr = glGetAttribLocation(m_mapped.name, "texCoordAttr");
    m_mapped.texelSize1D = glGetUniformLocation(m_mapped.name, "texelSize1D");
    m_mapped.texCoordLut1D = glGetUniformLocation(m_mapped.name, "texCoordLut1D");
    m_mapped.intensity = glGetUniformLocation(m_mapped.name, "intensity");
    pointSamplers(m_mapped.name);
    return true;
}

void CLutEffect::useRatioProgram() const {
    const auto levelCount = static_cast<GLfloat>(m_tables.levelCount);
    glUseProgram(m_ratio.name);
    checkGlError();
    glUniform1f(m_ratio.texelSize1D, 1.0f / levelCount);
    glUniform1f(m_ratio.rgbToTexCoordRatio, (levelCount - 1.0f) / levelCount);
    glUniform1f(m_ratio.intensity, m_intensity);
}

void CLutEffect::useMappedProgram() const {
    const auto levelCount = static_cast<GLfloat>(m_tables.levelCount);
    glUseProgram(m_mapped.name);
    checkGlError();
    glUniform1f(m_mapped.texelSize1D, 1.0f / levelCount);
    glUniform1fv(m_mapped.texCoordLut1D, static_cast<GLsizei>(m_tables.coordinateMap.size()),
                 m_tables.coordinateMap.data());
    glUniform1f(m_mapped.intensity, m_intensity);
}

} // namespace ze
