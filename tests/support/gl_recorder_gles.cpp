// The doubles of OpenGL ES 2.0, one line each where it fits.

#include "tests/support/gl_recorder.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

using Call = RecordedCall;

constexpr char kShaderEnd = '\f'; // in a program's source

std::string programLabel(const std::string& source) {
    const std::pair<const char*, const char*> labels[] = {
        {"matYuvToRgb", "yuvToRgb"},    {"sPerHalfTexel", "rgbToYuv"},
        {"mixFactor", "mix"},           {"distanceNormalizationFactor", "blur"},
        {"texCoordLut1D", "lutMapped"}, {"rgbToTexCoordRatio", "lutRatio"}};
    for (const auto& [uniform, label] : labels)
        if (source.find(uniform) != std::string::npos)
            return label;
    return "program";
}

size_t mixed(size_t number, std::string_view bytes) {
    return 31 * number + std::hash<std::string_view>()(bytes);
}

template <class Value>
size_t mixed(size_t number, const Value* values, size_t count) {
    return mixed(number, {reinterpret_cast<const char*>(values), count * sizeof *values});
}

/// A number for what a draw makes.
size_t drawn(const GlRecorder& gl, const GlRecorder::Object& program) {
    size_t number = mixed(mixed(1, program.source), gl.bound.viewport.data(), gl.bound.viewport.size());
    for (const auto& [name, values] : program.uniforms)
        if (std::ranges::count(values, 0.0f) != std::ssize(values)) // as they are at first
            number = mixed(mixed(number, name), values.data(), values.size());
    for (const GLuint texture : gl.bound.units) {
        if (texture == 0)
            continue;
        number = mixed(number, &gl.find(texture).content, 1);
        for (const auto& parameter : gl.find(texture).parameters)
            number = mixed(number, &parameter.second, 1);
    }
    return number;
}

GLint locate(const char* function, GLuint program, const char* name) {
    const Call call(function, Name{program}, name);
    auto& locations = call.gl.locations;
    if (call.isRefused || !call.needs(call.gl.find(program).isUsable))
        return -1;
    locations.push_back({program, name});
    return static_cast<GLint>(locations.size()) - 1;
}

void setUniform(const Call& call, GLint location, const GLfloat* values, int count) {
    const auto& locations = call.gl.locations;
    const auto at = static_cast<size_t>(location);
    if (location >= 0 && call.needs(at < locations.size() && locations[at].first == call.gl.bound.program))
        call.gl.objects[locations[at].first].uniforms[locations[at].second].assign(values, values + count);
}

void setUniforms(const char* function, GLint location, int count, const GLfloat* values, int size) {
    setUniform(Call(function, Variable{location}, count), location, values, size * count);
}

void copyLog(const char* function, GLuint name, GLsizei size, char* text) {
    std::snprintf(text, static_cast<size_t>(size), "%s", Call(function, Name{name}, size).gl.infoLog.c_str());
}

} // namespace

void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    const Call call(__func__, Enum{mode}, first, count);
    if (!call.hasTarget())
        return;
    GlRecorder& gl = call.gl;
    const GlRecorder::Object& program = gl.find(gl.bound.program);
    std::string sources;
    for (const GLint unit : program.samplers)
        sources +=
            (sources.empty() ? "" : ", ") + gl.find(gl.bound.units.at(static_cast<size_t>(unit))).label;
    gl.draws.push_back(program.label + '(' + sources + ") -> " + gl.target().label);
    gl.objects[gl.find(gl.bound.framebuffer).target].content = drawn(gl, program);
}

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    const Call call(__func__, x, y, width, height, Enum{format}, Enum{type});
    if (!call.hasTarget() || call.isRefused)
        return;
    for (size_t i = 0; i < static_cast<size_t>(width * height * 4); ++i)
        static_cast<uint8_t*>(pixels)[i] =
            static_cast<uint8_t>(mixed(i, &call.gl.target().content, 1) >> 9 | 0x80);
}

void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* pixels) {
    const Call call(__func__, Enum{target}, level, Enum{internalFormat}, width, height, border, Enum{format},
                    Enum{type}, pixels ? "pixels" : "null");
    GlRecorder::Object& texture = call.gl.boundTexture();
    texture.size = std::to_string(width) + 'x' + std::to_string(height);
    if (texture.label == "texture")
        texture.label = texture.size;
}

void glGenTextures(GLsizei count, GLuint* names) {
    const Call call(__func__, count);
    auto& labels = call.gl.textureLabels;
    names[0] = call.create("texture", labels.empty() ? "texture" : labels.front());
    if (names[0] && !labels.empty())
        labels.pop_front();
}

void glAttachShader(GLuint program, GLuint shader) {
    const Call call(__func__, Name{program}, Name{shader});
    auto& object = call.gl.objects[program];
    if (call.gl.objects[shader].isUsable)
        object.source += call.gl.objects[shader].source + kShaderEnd;
    object.label = programLabel(object.source);
}

// clang-format off

void glActiveTexture(GLenum unit) { Call(__func__, Enum{unit}).gl.bound.activeUnit = unit - GL_TEXTURE0; }
void glBindFramebuffer(GLenum target, GLuint name) {
    Call(__func__, Enum{target}, Name{name}).gl.bound.framebuffer = name;
}
void glBindTexture(GLenum target, GLuint name) {
    const Call call(__func__, Enum{target}, Name{name});
    call.gl.bound.units.at(call.gl.bound.activeUnit) = name;
}
void glClear(GLbitfield mask) {
    const Call call(__func__, Enum{mask});
    if (call.hasTarget())
        call.gl.objects[call.gl.find(call.gl.bound.framebuffer).target].content = 0;
}
void glCompileShader(GLuint name) { Call(__func__, Name{name}).gl.objects[name].isUsable = true; }
GLuint glCreateProgram() { return Call(__func__).create("program", "program"); }
GLuint glCreateShader(GLenum type) {
    const char* label = type == GL_VERTEX_SHADER ? "vertexShader" : "fragmentShader";
    return Call(__func__, Enum{type}).create("shader", label);
}
void glDeleteFramebuffers(GLsizei n, const GLuint* names) {
    Call(__func__, n, Name{*names}).destroy(*names);
}
void glDeleteProgram(GLuint name) { Call(__func__, Name{name}).destroy(name); }
void glDeleteShader(GLuint name) { Call(__func__, Name{name}).destroy(name); }
void glDeleteTextures(GLsizei n, const GLuint* names) { Call(__func__, n, Name{*names}).destroy(*names); }
void glDisable(GLenum capability) { Call(__func__, Enum{capability}); }
void glDisableVertexAttribArray(GLuint at) { Call(__func__, Variable{at}); }
void glEnableVertexAttribArray(GLuint at) { Call(__func__, Variable{at}); }
void glFramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture,
                            GLint level) {
    const Call call(__func__, Enum{target}, Enum{attachment}, Enum{textureTarget}, Name{texture}, level);
    if (call.needs(call.gl.bound.framebuffer != 0))
        call.gl.objects[call.gl.bound.framebuffer].target = texture;
}
void glGenFramebuffers(GLsizei n, GLuint* names) {
    names[0] = Call(__func__, n).create("framebuffer", "framebuffer");
}
GLint glGetAttribLocation(GLuint program, const GLchar* name) { return locate(__func__, program, name); }
GLenum glGetError() { return static_cast<GLenum>(std::exchange(Call(__func__).gl.glError, GL_NO_ERROR)); }
void glGetIntegerv(GLenum name, GLint* value) {
    const Call call(__func__, Enum{name});
    const auto framebuffer = static_cast<GLint>(call.gl.bound.framebuffer);
    if (!call.isRefused)
        *value = name == GL_MAX_TEXTURE_SIZE ? call.gl.maxTextureSize : framebuffer;
}
void glGetProgramInfoLog(GLuint name, GLsizei n, GLsizei*, GLchar* text) { copyLog(__func__, name, n, text); }
void glGetShaderInfoLog(GLuint name, GLsizei n, GLsizei*, GLchar* text) { copyLog(__func__, name, n, text); }
GLint glGetUniformLocation(GLuint program, const GLchar* name) { return locate(__func__, program, name); }
void glLinkProgram(GLuint name) {
    const Call call(__func__, Name{name});
    call.gl.objects[name].isUsable = std::ranges::count(call.gl.objects[name].source, kShaderEnd) == 2;
}
void glPixelStorei(GLenum name, GLint value) { Call(__func__, Enum{name}, value); }
void glShaderSource(GLuint name, GLsizei count, const GLchar* const* sources, const GLint* lengths) {
    Call(__func__, Name{name}, count, lengths ? "lengths" : "null").gl.objects[name].source = sources[0];
}
void glTexParameteri(GLenum target, GLenum name, GLint value) {
    const Call call(__func__, Enum{target}, Enum{name}, Enum{value});
    call.gl.boundTexture().parameters[name] = value;
}
void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void* pixels) {
    const Call call(__func__, Enum{target}, level, x, y, width, height, Enum{format}, Enum{type});
    if (call.needs(!call.gl.boundTexture().size.empty()) && pixels) // of which the first bytes will do
        call.gl.boundTexture().content = mixed(1, static_cast<const char*>(pixels), static_cast<size_t>(width));
}
void glUniform1f(GLint at, GLfloat value) { setUniform(Call(__func__, Variable{at}, value), at, &value, 1); }
void glUniform1fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 1); }
void glUniform1i(GLint at, GLint value) {
    const Call call(__func__, Variable{at}, value);
    const auto unit = static_cast<GLfloat>(value);
    setUniform(call, at, &unit, 1);
    call.gl.objects[call.gl.bound.program].samplers.insert(value);
}
void glUniform2fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 2); }
void glUniform3fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 3); }
void glUniform4fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 4); }
void glUniformMatrix3fv(GLint at, GLsizei count, GLboolean transpose, const GLfloat* values) {
    setUniform(Call(__func__, Variable{at}, count, Enum{transpose}), at, values, 9 * count);
}
void glUseProgram(GLuint name) {
    const Call call(__func__, Name{name});
    if (call.needs(name == 0 || call.gl.find(name).isUsable))
        call.gl.bound.program = name;
}
void glVertexAttribPointer(GLuint at, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
                           const void*) {
    const Call call(__func__, Variable{at}, size, Enum{type}, Enum{normalized}, stride);
    call.needs(at < call.gl.locations.size());
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    Call(__func__, x, y, width, height).gl.bound.viewport = {x, y, width, height};
}
