#include "convert/yuv_to_rgb.h"

#include "convert/color_constants.h"
#include "convert/plane_upload.h"
#include "gl/error.h"
#include "gl/program.h"
#include "gl/quad.h"
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

void loadColor(YuvToRgbProgram& program, ColorDescription color, bool isNV21) {
    const GLfloat offset[] = {lumaOffset(color), kChromaOffset, kChromaOffset};
    const auto matrix = yuvToRgbMatrix(yuvToRgbFactors(color), isNV21);
    glUniform3fv(program.yuvOffset, 1, offset);
    glUniformMatrix3fv(program.matYuvToRgb, 1, GL_FALSE, matrix.data());
    program.loadedColor = color;
}

/// How much of ⌈n/2⌉ texels a quad over n pixels shows: texel k belongs to pixels 2k and 2k + 1, and the quad
/// ends half a texel early when the last one has no second pixel.
GLfloat shownPart(int32_t n) {
    if (n % 2 == 0 || n == 1)
        return 1.0f;
    const auto pixels = static_cast<uint32_t>(n);
    const auto texels = static_cast<uint32_t>(halfUp(n));
    return static_cast<GLfloat>((texels - 1) * pixels) / static_cast<GLfloat>(texels * (pixels - 1));
}

/// The quad of the frame. It shows the chroma of an odd size from the left end and from the last row on.
TwoTextureQuadCorners frameCorners(FrameSize size) {
    return twoTextureQuadCorners(shownPart(size.width), 1.0f - shownPart(size.height));
}

} // namespace

bool yuvToRgb(ColorConverter& c, const ZecImage& input, ColorDescription color, GLuint targetTexture,
              FrameSize size, bool isNV21) {
    if (!ensurePlaneTextures(c, size))
        return false;
    YuvToRgbProgram& program = c.yuvToRgb;
    if (program.name == 0 && !buildProgram(program))
        return false;

    attachAndClear(targetTexture);
    glViewport(0, 0, size.width, size.height);
    checkGlError();

    glActiveTexture(GL_TEXTURE1);
    uploadPlane(input.planes[1], input.pitches[1], GL_LUMINANCE_ALPHA,
                {halfUp(size.width), halfUp(size.height)}, c.chromaTexture);
    glActiveTexture(GL_TEXTURE0);
    uploadPlane(input.planes[0], input.pitches[0], GL_LUMINANCE, size, c.lumaTexture);

    glUseProgram(program.name);
    // Keyed on the color description alone: a new pixel format keeps the matrix that is loaded.
    if (program.loadedColor != color)
        loadColor(program, color, isNV21);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);

    const auto corners = frameCorners(size);
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
