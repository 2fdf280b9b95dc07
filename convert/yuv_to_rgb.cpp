#include "convert/yuv_to_rgb.h"

#include "convert/color_constants.h"
#include "convert/plane_upload.h"
#include "gl/error.h"
#include "gl/program.h"
#include "gl/target.h"

namespace ze {
namespace {

constexpr char kVertexShader[] = R"glsl(
attribute highp vec2 posAttr;
attribute highp vec2 texCoordYAttr;
attribute highp vec2 texCoordUVAttr;

varying highp vec2 texCoordY;
varying highp vec2 texCoordUV;

void main()
{
    texCoordY = texCoordYAttr;
    texCoordUV = texCoordUVAttr;
    gl_Position = vec4(posAttr, 0.0, 1.0);
}
)glsl";

constexpr char kFragmentShader[] = R"glsl(
varying highp vec2 texCoordY;
varying highp vec2 texCoordUV;

uniform sampler2D samplerY;
uniform sampler2D samplerUV;
uniform lowp vec3 yuvOffset;   // luma offset, then the offset of both chroma components
uniform lowp mat3 matYuvToRgb; // columns: luma, first and second byte of the chroma pair

void main()
{
    lowp float y = texture2D(samplerY, texCoordY).r;
    lowp vec2 uv = texture2D(samplerUV, texCoordUV).ra; // luminance and alpha: the pair as it lies in memory
    lowp vec3 rgb = matYuvToRgb * (vec3(y, uv) - yuvOffset);
    gl_FragColor = vec4(rgb, 1.0);
}
)glsl";

bool buildProgram(YuvToRgbProgram& program) {
    program.name = createProgram(kVertexShader, kFragmentShader);
    if (program.name == 0)
        return false;
    program.posAttr = glGetAttribLocation(program.name, "posAttr");
    program.texCoordYAttr = glGetAttribLocation(program.name, "texCoordYAttr");
    program.texCoordUVAttr = glGetAttribLocation(program.name, "texCoordUVAttr");
    program.yuvOffset = glGetUniformLocation(program.name, "yuvOffset");
    program.matYuvToRgb = glGetUniformLocation(program.name, "matYuvToRgb");

    glUseProgram(program.name);
    glUniform1i(glGetUniformLocation(program.name, "samplerY"), 0);
    glUniform1i(glGetUniformLocation(program.name, "samplerUV"), 1);
    checkGlError();
    glUseProgram(0);
    return true;
}

void loadColors(ColorConverter& c, int32_t colorStandard, int32_t colorRange, bool isNV21) {
    const GLfloat offset[] = {lumaOffset(colorRange), kChromaOffset, kChromaOffset};
    const auto matrix = yuvToRgbMatrix(yuvToRgbFactors(colorStandard, colorRange), isNV21);
    glUniform3fv(c.yuvToRgb.yuvOffset, 1, offset);
    glUniformMatrix3fv(c.yuvToRgb.matYuvToRgb, 1, GL_FALSE, matrix.data());
    c.yuvToRgbStandard = colorStandard;
    c.yuvToRgbRange = colorRange;
}

/// How much of ⌈n/2⌉ texels a quad over n pixels shows: texel k belongs to pixels 2k and 2k + 1, and the quad
/// ends half a texel early when the last one has no second pixel.
GLfloat shownPart(uint32_t n) {
    if (n % 2 == 0 || n == 1)
        return 1.0f;
    const uint32_t half = halfUp(n);
    return GLfloat((half - 1) * n) / GLfloat(half * (n - 1));
}

} // namespace

TextureSpan chromaSpan(uint32_t width, uint32_t height) {
    return {shownPart(width), 1.0f - shownPart(height)};
}

bool yuvToRgb(ColorConverter& c, const ZecImage& input, int32_t colorStandard, int32_t colorRange,
              GLuint targetTexture, uint32_t width, uint32_t height, bool isNV21) {
    if (!ensurePlaneTextures(c, width, height))
        return false;
    YuvToRgbProgram& program = c.yuvToRgb;
    const bool isFirstUse = program.name == 0;
    if (isFirstUse && !buildProgram(program))
        return false;

    attachAndClear(targetTexture);
    glViewport(0, 0, GLsizei(width), GLsizei(height));
    checkGlError();

    glActiveTexture(GL_TEXTURE1);
    uploadPlane(input.planes[1], input.pitches[1], GL_LUMINANCE_ALPHA, int32_t(halfUp(width)),
                int32_t(halfUp(height)), c.chromaTexture);
    glActiveTexture(GL_TEXTURE0);
    uploadPlane(input.planes[0], input.pitches[0], GL_LUMINANCE, int32_t(width), int32_t(height),
                c.lumaTexture);

    glUseProgram(program.name);
    // Keyed on standard and range alone: a new pixel format keeps the matrix that is loaded.
    if (isFirstUse || c.yuvToRgbStandard != colorStandard || c.yuvToRgbRange != colorRange)
        loadColors(c, colorStandard, colorRange, isNV21);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);

    const auto corners = twoTextureQuadCorners(chromaSpan(width, height));
    const QuadAttribute attributes[] = {
        {program.posAttr, 0}, {program.texCoordYAttr, 2}, {program.texCoordUVAttr, 4}};
    pointAttributes(attributes, corners);
    enableAttributes(attributes);
    drawStrip();
    checkGlError();
    disableAttributes(attributes);
    detachTarget();
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, 0);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, 0);
    return true;
}

} // namespace ze
