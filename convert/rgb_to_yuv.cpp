#include "convert/rgb_to_yuv.h"

#include "convert/color_constants.h"
#include "gl/error.h"
#include "gl/plain_vertex_shader.h"
#include "gl/program.h"
#include "gl/quad.h"
#include "gl/target.h"

namespace ze {
namespace {

// Texel centers of the source around the center of one packed texel:
//
//         left          right
//     +----------+----------+
//     |    2k    o  2k + 1  |      o = texCoord; each pixel center lies half a texel beside it
//     +----------+----------+
constexpr char kFragmentShader[] = R"glsl(
varying highp vec2 texCoord;

uniform sampler2D sampler;
uniform mediump vec4 coefY; // weights of R, G, B and the offset
uniform mediump vec4 coefU;
uniform mediump vec4 coefV;
uniform highp float sPerHalfTexel;

void main()
{
    highp vec2 texelOffset = vec2(sPerHalfTexel, 0.0);
    lowp vec4 leftRGBA = texture2D(sampler, texCoord - texelOffset);
    lowp vec4 rightRGBA = texture2D(sampler, texCoord + texelOffset);
    lowp vec4 left = vec4(leftRGBA.rgb, 1.0);
    mediump float y0 = dot(left, coefY);
    mediump float y1 = dot(vec4(rightRGBA.rgb, 1.0), coefY);
    mediump float u = dot(left, coefU);
    mediump float v = dot(left, coefV);
    gl_FragColor = vec4(y0, u, y1, v);
}
)glsl";

bool buildProgram(RgbToYuvProgram& program) {
    program.name = createProgram(kPlainVertexShader, kFragmentShader);
    if (program.name == 0)
        return false;
    program.posAttr = glGetAttribLocation(program.name, "posAttr");
    program.texCoordAttr = glGetAttribLocation(program.name, "texCoordAttr");
    program.coefY = glGetUniformLocation(program.name, "coefY");
    program.coefU = glGetUniformLocation(program.name, "coefU");
    program.coefV = glGetUniformLocation(program.name, "coefV");
    program.sPerHalfTexel = glGetUniformLocation(program.name, "sPerHalfTexel");

    glUseProgram(program.name);
    glUniform1i(glGetUniformLocation(program.name, "sampler"), 0);
    checkGlError();
    glUseProgram(0);
    return true;
}

void loadCoefficients(RgbToYuvProgram& program, ColorDescription color) {
    const RgbToYuvFactors& f = rgbToYuvFactors(color);
    const GLfloat y[] = {f.yR, f.yG, f.yB, lumaOffset(color)};
    const GLfloat u[] = {-f.uR, -f.uG, f.chromaMax, kChromaOffset};
    const GLfloat v[] = {f.chromaMax, -f.vG, -f.vB, kChromaOffset};
    glUniform4fv(program.coefY, 1, y);
    glUniform4fv(program.coefU, 1, u);
    glUniform4fv(program.coefV, 1, v);
    program.loadedColor = color;
}

/// Where the source's texture coordinates end for a frame of `width` pixels, chosen so that the center of
/// packed texel k lies on the border between pixels 2k and 2k + 1. Beyond 1 for odd widths.
GLfloat packedEnd(int32_t width) {
    if (width % 2 == 0)
        return 1.0f;
    if (width == 1)
        return 2.0f;
    const auto pixels = static_cast<uint32_t>(width);
    const auto texels = static_cast<uint32_t>(halfUp(width));
    return static_cast<GLfloat>((pixels - 1) * texels) / static_cast<GLfloat>(pixels * (texels - 1));
}

} // namespace

bool rgbToYuv(ColorConverter& c, GLuint sourceTexture, ColorDescription color) {
    RgbToYuvProgram& program = c.rgbToYuv;
    if (program.name == 0 && !buildProgram(program))
        return false;

    glViewport(0, 0, halfUp(c.planeSize.width), c.planeSize.height);
    checkGlError();
    glActiveTexture(GL_TEXTURE0);
    checkGlError();
    attachAndClear(c.packedTexture);
    bindWithFilter(sourceTexture, GL_NEAREST); // exact pixels

    glUseProgram(program.name);
    glUniform1f(program.sPerHalfTexel, static_cast<GLfloat>(0.5 / c.planeSize.width));
    checkGlError();
    if (program.loadedColor != color)
        loadCoefficients(program, color);
    glDisable(GL_BLEND);

    const auto corners = quadCorners(packedEnd(c.planeSize.width));
    const QuadAttribute attributes[] = {{program.posAttr, 0}, {program.texCoordAttr, 2}};
    pointAttributes(attributes, corners);
    checkGlError();
    enableAttributes(attributes);
    drawStrip();
    checkGlError();
    disableAttributes(attributes);
    detachTarget();
    return true;
}

} // namespace ze
