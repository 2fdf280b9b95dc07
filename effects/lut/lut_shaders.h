// The two programs of the LUT effect, as GLSL ES 1.00. Both draw with the plain vertex shader.
//
// The table's texture has a row for each red index. Within a row the green index selects a run of N texels,
// and blue the texel within the run:
//
//     u   g0 b0 … bN-1 | g1 b0 … bN-1 | … | gN-1 b0 … bN-1      texelSize1D = 1/N wide each, N texels
//     v   r
//
// The sampler interpolates between rows (red) and within a run (blue); green takes two neighboring runs and
// mixes them. A color is therefore looked up as three coordinates on an axis of N texels, each between the
// centers of the first and the last: the runs of a row do not mix.

#pragma once

namespace ze {

// Levels 0, 1/(N-1), …, 1: rgbToTexCoordRatio = (N-1)/N and half a texel lead from a color to its
// coordinates.
inline constexpr char kLutRatioFragmentShader[] = R"glsl(
varying highp vec2 texCoord;

uniform sampler2D sampler;
uniform sampler2D lutSampler;
uniform highp float texelSize1D;
uniform highp float rgbToTexCoordRatio;
uniform lowp float intensity;

void main()
{
    lowp vec4 color = texture2D(sampler, texCoord);
    mediump vec3 rgb = color.rgb;
    highp float halfTexel = texelSize1D / 2.0;
    highp vec3 t = rgb * rgbToTexCoordRatio + halfTexel;

    highp float v = t.r;
    highp float gT = t.g - halfTexel;
    highp float g0 = floor(gT / texelSize1D) * texelSize1D;
    highp float gFraction = (gT - g0) / texelSize1D;
    highp float u0 = g0 + t.b * texelSize1D;
    highp float u1 = u0 + texelSize1D;

    mediump vec3 rgbLut = mix(texture2D(lutSampler, vec2(u0, v)).rgb, texture2D(lutSampler, vec2(u1, v)).rgb, gFraction);
    gl_FragColor = vec4(mix(color.rgb, rgbLut, intensity * color.a), color.a);
}
)glsl";

// Any levels: texCoordLut1D has the coordinate of each of the 256 values of a channel. Indexing it by a
// color and its size go beyond what every OpenGL ES 2.0 device has to offer a fragment shader.
inline constexpr char kLutMappedFragmentShader[] = R"glsl(
varying highp vec2 texCoord;

uniform sampler2D sampler;
uniform sampler2D lutSampler;
uniform highp float texelSize1D;
uniform highp float texCoordLut1D[256];
uniform lowp float intensity;

void main()
{
    lowp vec4 color = texture2D(sampler, texCoord);
    mediump vec3 rgb = color.rgb; // lowp may end at 2
    ivec3 index = ivec3(rgb * 255.0 + 0.5);

    highp float v = texCoordLut1D[index.r];
    highp float gT = texCoordLut1D[index.g] - texelSize1D / 2.0;
    highp float g0 = floor(gT / texelSize1D) * texelSize1D;
    highp float gFraction = (gT - g0) / texelSize1D;
    highp float u0 = g0 + texCoordLut1D[index.b] * texelSize1D;
    highp float u1 = u0 + texelSize1D;

    mediump vec3 rgbLut = mix(texture2D(lutSampler, vec2(u0, v)).rgb, texture2D(lutSampler, vec2(u1, v)).rgb, gFraction);
    gl_FragColor = vec4(mix(color.rgb, rgbLut, intensity * color.a), color.a);
}
)glsl";

} // namespace ze
