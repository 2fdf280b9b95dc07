// The vertex shader of passes that read one texture at one place.

#pragma once

namespace ze {

inline constexpr char kPlainVertexShader[] = R"glsl(
attribute highp vec2 posAttr;
attribute highp vec2 texCoordAttr;

varying highp vec2 texCoord;

void main()
{
    texCoord = texCoordAttr;
    gl_Position = vec4(posAttr, 0.0, 1.0);
}
)glsl";

} // namespace ze
