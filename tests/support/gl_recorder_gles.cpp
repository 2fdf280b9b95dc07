// The doubles of OpenGL ES 2.0, one line each where it fits.

#include "tests/support/gl_recorder.h"

#include <cstdio>
#include <cstring>
#include <utility>

namespace {

using Call = RecordedCall;

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

GLint locate(const char* function, GLuint program, const char* name) {
    auto& locations = Call(function, Name{program}, name).gl.locations;
    locations.push_back({program, name});
    return static_cast<GLint>(locations.size()) - 1;
}

void setUniform(const Call& call, GLint location, const GLfloat* values, int count) {
    const auto& [program, name] = call.gl.locations.at(static_cast<size_t>(location));
    call.gl.objects[program].uniforms[name].assign(values, values + count);
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
    call.expectTarget();
    GlRecorder& gl = call.gl;
    const GlRecorder::Object& program = gl.find(gl.program);
    const auto show = [&](std::string GlRecorder::Object::*property) {
        std::string text;
        for (const GLint unit : program.samplers)
            text += (text.empty() ? "" : ", ") + gl.find(gl.units.at(static_cast<size_t>(unit))).*property;
        return program.label + '(' + text + ") -> " + gl.target().*property;
    };
    gl.draws.push_back(show(&GlRecorder::Object::label));
    gl.drawSizes.push_back(show(&GlRecorder::Object::size));
}

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    const Call call(__func__, x, y, width, height, Enum{format}, Enum{type});
    call.expectTarget();
    std::memset(pixels, 0, static_cast<size_t>(width * height * 4));
}

void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* pixels) {
    const Call call(__func__, Enum{target}, level, Enum{internalFormat}, width, height, border, Enum{format},
                    Enum{type}, pixels ? "pixels" : "null");
    call.gl.objects[call.gl.units[call.gl.activeUnit]].size =
        std::to_string(width) + 'x' + std::to_string(height);
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
    object.source += call.gl.objects[shader].source;
    object.label = programLabel(object.source);
}

// clang-format off

void glActiveTexture(GLenum unit) { Call(__func__, Enum{unit}).gl.activeUnit = unit - GL_TEXTURE0; }
void glBindFramebuffer(GLenum target, GLuint name) {
    Call(__func__, Enum{target}, Name{name}).gl.framebuffer = name;
}
void glBindTexture(GLenum target, GLuint name) {
    const Call call(__func__, Enum{target}, Name{name});
    call.gl.units.at(call.gl.activeUnit) = name;
}
void glClear(GLbitfield mask) { Call(__func__, Enum{mask}).expectTarget(); }
void glCompileShader(GLuint name) { Call(__func__, Name{name}); }
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
    call.gl.objects[call.gl.framebuffer].target = texture;
}
void glGenFramebuffers(GLsizei n, GLuint* names) {
    names[0] = Call(__func__, n).create("framebuffer", "framebuffer");
}
GLint glGetAttribLocation(GLuint program, const GLchar* name) { return locate(__func__, program, name); }
GLenum glGetError() { return static_cast<GLenum>(std::exchange(Call(__func__).gl.glError, GL_NO_ERROR)); }
void glGetIntegerv(GLenum name, GLint* value) {
    const Call call(__func__, Enum{name});
    *value = name == GL_MAX_TEXTURE_SIZE ? call.gl.maxTextureSize : static_cast<GLint>(call.gl.framebuffer);
}
void glGetProgramInfoLog(GLuint name, GLsizei n, GLsizei*, GLchar* text) { copyLog(__func__, name, n, text); }
void glGetShaderInfoLog(GLuint name, GLsizei n, GLsizei*, GLchar* text) { copyLog(__func__, name, n, text); }
GLint glGetUniformLocation(GLuint program, const GLchar* name) { return locate(__func__, program, name); }
void glLinkProgram(GLuint name) { Call(__func__, Name{name}); }
void glPixelStorei(GLenum name, GLint value) { Call(__func__, Enum{name}, value); }
void glShaderSource(GLuint name, GLsizei count, const GLchar* const* sources, const GLint* lengths) {
    Call(__func__, Name{name}, count, lengths ? "lengths" : "null").gl.objects[name].source = sources[0];
}
void glTexParameteri(GLenum target, GLenum name, GLint value) {
    Call(__func__, Enum{target}, Enum{name}, Enum{value});
}
void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void*) {
    Call(__func__, Enum{target}, level, x, y, width, height, Enum{format}, Enum{type});
}
void glUniform1f(GLint at, GLfloat value) { setUniform(Call(__func__, Variable{at}, value), at, &value, 1); }
void glUniform1fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 1); }
void glUniform1i(GLint at, GLint value) {
    const Call call(__func__, Variable{at}, value);
    call.gl.objects[call.gl.program].samplers.insert(value);
}
void glUniform2fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 2); }
void glUniform3fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 3); }
void glUniform4fv(GLint at, GLsizei n, const GLfloat* v) { setUniforms(__func__, at, n, v, 4); }
void glUniformMatrix3fv(GLint at, GLsizei count, GLboolean transpose, const GLfloat* values) {
    setUniform(Call(__func__, Variable{at}, count, Enum{transpose}), at, values, 9 * count);
}
void glUseProgram(GLuint name) { Call(__func__, Name{name}).gl.program = name; }
void glVertexAttribPointer(GLuint at, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
                           const void*) {
    Call(__func__, Variable{at}, size, Enum{type}, Enum{normalized}, stride);
}
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) { Call(__func__, x, y, width, height); }
