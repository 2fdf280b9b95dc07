// The doubles of OpenGL ES 2.0.

#include "tests/support/gl_recorder_call.h"

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <utility>

namespace {

/// Whether a line of `source` declares `name`, alone or as an array.
bool declares(const std::string& source, const std::string& qualifier, const std::string& name) {
    std::istringstream lines(source);
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with(qualifier) && (line.find(' ' + name + ';') != std::string::npos ||
                                            line.find(' ' + name + '[') != std::string::npos))
            return true;
    return false;
}

std::string programLabel(const std::string& source) {
    const std::pair<const char*, const char*> labels[] = {
        {"matYuvToRgb", "yuvToRgb"},    {"sPerHalfTexel", "rgbToYuv"},
        {"mixFactor", "mix"},           {"distanceNormalizationFactor", "blur"},
        {"texCoordLut1D", "lutMapped"}, {"rgbToTexCoordRatio", "lutRatio"}};
    for (const auto& [uniform, label] : labels)
        if (declares(source, "uniform", uniform))
            return label;
    return "program";
}

int bytesPerTexel(GLenum format) {
    return format == GL_LUMINANCE ? 1 : format == GL_LUMINANCE_ALPHA ? 2 : format == GL_RGB ? 3 : 4;
}

/// Bytes from row to row as GL reads and writes host memory.
size_t rowPitch(int width, GLenum format, GLint alignment) {
    return size_t((width * bytesPerTexel(format) + alignment - 1) / alignment * alignment);
}

void setUniform(const RecordedCall& call, GLint location, const GLfloat* values, int count) {
    const GlVariable& variable = call.variable(GLuint(location), true);
    call.gl->programs[variable.program].uniforms[variable.name].assign(values, values + count);
}

void setUniforms(const char* function, GLint location, const GLfloat* values, GLsizei count, int components) {
    setUniform(RecordedCall(function, Location{GLuint(location)}, count), location, values,
               count * components);
}

GLint lookUp(const RecordedCall& call, GLuint program, const GLchar* name, bool isUniform) {
    const std::string& source = call.object(call.gl->programs, program).source;
    if (!declares(source, isUniform ? "uniform" : "attribute", name))
        call.fail("not declared in the shaders");
    const auto location = GLint(call.driver.variables.size()) + 1;
    call.driver.variables[GLuint(location)] = {program, isUniform, name};
    return location;
}

/// What GL answers with a black texel, or not at all.
void checkSource(const RecordedCall& call, const GlRecorder::Texture& source) {
    const auto is = [&](GLenum parameter, GLint value) {
        const auto found = source.parameters.find(parameter);
        return found != source.parameters.end() && found->second == value;
    };
    if (!is(GL_TEXTURE_MIN_FILTER, GL_NEAREST) && !is(GL_TEXTURE_MIN_FILTER, GL_LINEAR))
        call.fail("samples " + source.label + ", which has no levels to filter between");
    if (!is(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE) || !is(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE))
        call.fail("samples " + source.label + ", which is not clamped at its edges");
}

} // namespace

void glActiveTexture(GLenum unit) {
    const RecordedCall call("glActiveTexture", Enum{unit});
    call.gl->activeUnit = unit - GL_TEXTURE0;
}

void glAttachShader(GLuint program, GLuint shader) {
    const RecordedCall call("glAttachShader", ProgramName{program}, ShaderName{shader});
    auto& record = call.object(call.gl->programs, program);
    record.source += call.object(call.gl->shaders, shader).source;
    record.label = programLabel(record.source);
}

void glBindFramebuffer(GLenum target, GLuint name) {
    const RecordedCall call("glBindFramebuffer", Enum{target}, FramebufferName{name});
    call.checkUnlessZero(call.gl->framebuffers, name);
    call.gl->framebuffer = name;
}

void glBindTexture(GLenum target, GLuint name) {
    const RecordedCall call("glBindTexture", Enum{target}, TextureName{name});
    call.checkUnlessZero(call.gl->textures, name);
    call.gl->units[call.gl->activeUnit] = name;
}

void glClear(GLbitfield mask) {
    const RecordedCall call("glClear", Enum{mask});
    call.target();
}

void glCompileShader(GLuint name) {
    const RecordedCall call("glCompileShader", ShaderName{name});
    call.object(call.gl->shaders, name);
}

GLuint glCreateProgram() {
    const RecordedCall call("glCreateProgram");
    if (call.isRefused)
        return 0;
    call.gl->programs[++call.driver.lastName];
    return call.driver.lastName;
}

GLuint glCreateShader(GLenum type) {
    const RecordedCall call("glCreateShader", Enum{type});
    if (call.isRefused)
        return 0;
    const char* label = type == GL_VERTEX_SHADER ? "vertexShader" : "fragmentShader";
    call.gl->shaders[++call.driver.lastName].label = label;
    return call.driver.lastName;
}

void glDeleteFramebuffers(GLsizei count, const GLuint* names) {
    const RecordedCall call("glDeleteFramebuffers", count, FramebufferName{names[0]});
    call.object(call.gl->framebuffers, names[0]);
    call.gl->framebuffers.erase(names[0]);
    if (call.gl->framebuffer == names[0])
        call.gl->framebuffer = 0;
}

void glDeleteProgram(GLuint name) {
    const RecordedCall call("glDeleteProgram", ProgramName{name});
    call.object(call.gl->programs, name);
    call.gl->programs.erase(name);
}

void glDeleteShader(GLuint name) {
    const RecordedCall call("glDeleteShader", ShaderName{name});
    call.object(call.gl->shaders, name);
    call.gl->shaders.erase(name);
}

void glDeleteTextures(GLsizei count, const GLuint* names) {
    const RecordedCall call("glDeleteTextures", count, TextureName{names[0]});
    call.object(call.gl->textures, names[0]);
    call.gl->textures.erase(names[0]);
    std::ranges::replace(call.gl->units, names[0], 0u);
    for (auto& [name, framebuffer] : call.gl->framebuffers)
        if (framebuffer.texture == names[0])
            framebuffer.texture = 0;
}

void glDisable(GLenum capability) {
    const RecordedCall call("glDisable", Enum{capability});
}

void glDisableVertexAttribArray(GLuint location) {
    const RecordedCall call("glDisableVertexAttribArray", Location{location});
    if (call.gl->enabled.erase(location) == 0)
        call.fail("is not enabled");
}

void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    const RecordedCall call("glDrawArrays", Enum{mode}, first, count);
    const GlContext& gl = *call.gl;
    const GlProgram& program = call.object(call.gl->programs, gl.program);
    GlRecorder::Draw draw{program.label, {}, call.target(), {}};
    if (gl.viewport != std::array<GLint, 4>{0, 0, draw.target.width, draw.target.height})
        call.fail("the viewport is not the whole target");

    std::map<size_t, GLuint> sources; // by unit
    for (const auto& [name, values] : program.uniforms)
        if (declares(program.source, "uniform sampler2D", name))
            sources[size_t(values[0])] = gl.units[size_t(values[0])];
    for (const auto& [unit, name] : sources) {
        draw.sources.push_back(call.object(call.gl->textures, name));
        checkSource(call, draw.sources.back());
        if (&call.object(call.gl->textures, name) == &call.target())
            call.fail("samples its own target");
    }

    for (const GLuint location : gl.enabled) {
        if (!gl.pointers.contains(location)) {
            call.fail("an enabled attribute points nowhere");
            continue;
        }
        const auto& [size, stride, data] = gl.pointers.at(location);
        auto& values = draw.attributes[call.variable(location, false).name];
        for (int corner = first; corner < first + count; ++corner) {
            const auto* floats =
                reinterpret_cast<const GLfloat*>(static_cast<const char*>(data) + corner * stride);
            values.insert(values.end(), floats, floats + size);
        }
    }
    call.driver.draws.push_back(draw);
}

void glEnableVertexAttribArray(GLuint location) {
    const RecordedCall call("glEnableVertexAttribArray", Location{location});
    call.variable(location, false);
    call.gl->enabled.insert(location);
}

void glFramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture,
                            GLint level) {
    const RecordedCall call("glFramebufferTexture2D", Enum{target}, Enum{attachment}, Enum{textureTarget},
                            TextureName{texture}, level);
    call.checkUnlessZero(call.gl->textures, texture);
    call.object(call.gl->framebuffers, call.gl->framebuffer).texture = texture;
}

void glGenFramebuffers(GLsizei count, GLuint* names) {
    const RecordedCall call("glGenFramebuffers", count);
    names[0] = call.isRefused ? 0 : ++call.driver.lastName;
    if (names[0])
        call.gl->framebuffers[names[0]];
}

void glGenTextures(GLsizei count, GLuint* names) {
    const RecordedCall call("glGenTextures", count);
    names[0] = call.isRefused ? 0 : ++call.driver.lastName;
    if (names[0] == 0)
        return;
    auto& labels = call.driver.labels;
    call.gl->textures[names[0]].label =
        labels.empty() ? "texture" + std::to_string(names[0]) : labels.front();
    if (!labels.empty())
        labels.pop_front();
}

GLint glGetAttribLocation(GLuint program, const GLchar* name) {
    const RecordedCall call("glGetAttribLocation", ProgramName{program}, name);
    return lookUp(call, program, name, false);
}

GLenum glGetError() {
    const RecordedCall call("glGetError");
    return std::exchange(call.gl->error, GLenum(GL_NO_ERROR));
}

void glGetIntegerv(GLenum name, GLint* value) {
    const RecordedCall call("glGetIntegerv", Enum{name});
    *value = name == GL_MAX_TEXTURE_SIZE ? call.recorder.maxTextureSize : GLint(call.gl->framebuffer);
}

void glGetProgramInfoLog(GLuint name, GLsizei size, GLsizei* /*length*/, GLchar* text) {
    const RecordedCall call("glGetProgramInfoLog", ProgramName{name}, size);
    call.object(call.gl->programs, name);
    std::snprintf(text, size_t(size), "%s", call.recorder.infoLog.c_str());
}

void glGetShaderInfoLog(GLuint name, GLsizei size, GLsizei* /*length*/, GLchar* text) {
    const RecordedCall call("glGetShaderInfoLog", ShaderName{name}, size);
    call.object(call.gl->shaders, name);
    std::snprintf(text, size_t(size), "%s", call.recorder.infoLog.c_str());
}

GLint glGetUniformLocation(GLuint program, const GLchar* name) {
    const RecordedCall call("glGetUniformLocation", ProgramName{program}, name);
    return lookUp(call, program, name, true);
}

void glLinkProgram(GLuint name) {
    const RecordedCall call("glLinkProgram", ProgramName{name});
    call.object(call.gl->programs, name);
}

void glPixelStorei(GLenum name, GLint value) {
    const RecordedCall call("glPixelStorei", Enum{name}, value);
    call.gl->pixelStore.at(name) = value;
}

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    const RecordedCall call("glReadPixels", x, y, width, height, Enum{format}, Enum{type});
    call.target();
    const size_t pitch = rowPitch(width, format, call.gl->pixelStore.at(GL_PACK_ALIGNMENT));
    for (size_t row = 0; row < size_t(height); ++row)
        for (size_t i = 0; i < size_t(width * bytesPerTexel(format)); ++i)
            static_cast<uint8_t*>(pixels)[row * pitch + i] = GlRecorder::readBackByte(row * pitch + i);
}

void glShaderSource(GLuint name, GLsizei count, const GLchar* const* sources, const GLint* lengths) {
    const RecordedCall call("glShaderSource", ShaderName{name}, count, lengths ? "lengths" : "null");
    call.object(call.gl->shaders, name).source = sources[0];
}

void glTexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height,
                  GLint border, GLenum format, GLenum type, const void* pixels) {
    const RecordedCall call("glTexImage2D", Enum{target}, level, Enum{GLenum(internalFormat)}, width, height,
                            border, Enum{format}, Enum{type}, pixels ? "pixels" : "null");
    auto& texture = call.boundTexture();
    texture.format = format;
    texture.width = width;
    texture.height = height;
}

void glTexParameteri(GLenum target, GLenum name, GLint value) {
    const RecordedCall call("glTexParameteri", Enum{target}, Enum{name}, Enum{GLenum(value)});
    call.boundTexture().parameters[name] = value;
}

void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void* pixels) {
    const RecordedCall call("glTexSubImage2D", Enum{target}, level, x, y, width, height, Enum{format},
                            Enum{type});
    auto& texture = call.boundTexture();
    if (format != texture.format || x + width > texture.width || y + height > texture.height)
        return call.fail("does not fit " + texture.label + ' ' + texture.size());
    const size_t pitch = rowPitch(width, format, call.gl->pixelStore.at(GL_UNPACK_ALIGNMENT));
    texture.texels.clear();
    for (int row = 0; row < height; ++row) {
        const auto* bytes = static_cast<const uint8_t*>(pixels) + size_t(row) * pitch;
        texture.texels.insert(texture.texels.end(), bytes, bytes + width * bytesPerTexel(format));
    }
}

void glUniform1f(GLint location, GLfloat value) {
    const RecordedCall call("glUniform1f", Location{GLuint(location)}, value);
    setUniform(call, location, &value, 1);
}

void glUniform1i(GLint location, GLint value) {
    const RecordedCall call("glUniform1i", Location{GLuint(location)}, value);
    const auto number = GLfloat(value);
    setUniform(call, location, &number, 1);
}

void glUniform1fv(GLint location, GLsizei count, const GLfloat* values) {
    setUniforms("glUniform1fv", location, values, count, 1);
}

void glUniform2fv(GLint location, GLsizei count, const GLfloat* values) {
    setUniforms("glUniform2fv", location, values, count, 2);
}

void glUniform3fv(GLint location, GLsizei count, const GLfloat* values) {
    setUniforms("glUniform3fv", location, values, count, 3);
}

void glUniform4fv(GLint location, GLsizei count, const GLfloat* values) {
    setUniforms("glUniform4fv", location, values, count, 4);
}

void glUniformMatrix3fv(GLint location, GLsizei count, GLboolean transpose, const GLfloat* values) {
    const RecordedCall call("glUniformMatrix3fv", Location{GLuint(location)}, count, Enum{transpose});
    setUniform(call, location, values, 9 * count);
}

void glUseProgram(GLuint name) {
    const RecordedCall call("glUseProgram", ProgramName{name});
    call.checkUnlessZero(call.gl->programs, name);
    call.gl->program = name;
}

void glVertexAttribPointer(GLuint location, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
                           const void* pointer) {
    const RecordedCall call("glVertexAttribPointer", Location{location}, size, Enum{type}, Enum{normalized},
                            stride);
    call.gl->pointers[location] = {size, stride, pointer};
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    const RecordedCall call("glViewport", x, y, width, height);
    call.gl->viewport = {x, y, width, height};
}
