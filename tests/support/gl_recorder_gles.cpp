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

GLint lookUp(const RecordedCall& call, GLuint program, const GLchar* name, bool isUniform) {
    if (!declares(call.gl->programs[program].source, isUniform ? "uniform" : "attribute", name))
        call.fail(std::string(name) + " is not declared in the shaders");
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

/// Four corners of each enabled attribute, as they are in memory now.
std::map<std::string, std::vector<GLfloat>> corners(const RecordedCall& call, GLint first, GLsizei count) {
    std::map<std::string, std::vector<GLfloat>> attributes;
    for (const GLuint location : call.gl->enabled) {
        const auto [size, stride, data] = call.gl->pointers[location];
        if (!data) {
            call.fail("an enabled attribute points nowhere");
            continue;
        }
        auto& values = attributes[call.driver.variables[location].name];
        for (int corner = first; corner < first + count; ++corner) {
            const auto* floats =
                reinterpret_cast<const GLfloat*>(static_cast<const char*>(data) + corner * stride);
            values.insert(values.end(), floats, floats + size);
        }
    }
    return attributes;
}

} // namespace

void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    const RecordedCall call("glDrawArrays", Enum{mode}, first, count);
    GlContext& gl = *call.gl;
    const GlProgram& program = gl.programs[gl.program];
    const GLuint target = call.target();
    GlRecorder::Draw draw = {program.label, {}, gl.textures[target], corners(call, first, count)};
    if (gl.viewport != std::array<GLint, 4>{0, 0, draw.target.width, draw.target.height})
        call.fail("the viewport is not the whole target");
    std::map<size_t, GLuint> sources; // by unit
    for (const auto& [name, values] : program.uniforms)
        if (declares(program.source, "uniform sampler2D", name))
            sources[size_t(values[0])] = gl.units[size_t(values[0])];
    for (const auto& [unit, name] : sources) {
        draw.sources.push_back(gl.textures[name]);
        checkSource(call, draw.sources.back());
        if (name == target)
            call.fail("samples its own target");
    }
    call.driver.draws.push_back(draw);
}

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    const RecordedCall call("glReadPixels", x, y, width, height, Enum{format}, Enum{type});
    call.target();
    const size_t pitch = rowPitch(width, format, call.gl->pixelStore[GL_PACK_ALIGNMENT]);
    for (size_t row = 0; row < size_t(height); ++row)
        for (size_t i = 0; i < size_t(width * bytesPerTexel(format)); ++i)
            static_cast<uint8_t*>(pixels)[row * pitch + i] = GlRecorder::readBackByte(row * pitch + i);
}

void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height,
                     GLenum format, GLenum type, const void* pixels) {
    const RecordedCall call("glTexSubImage2D", Enum{target}, level, x, y, width, height, Enum{format},
                            Enum{type});
    auto& texture = call.boundTexture();
    if (format != texture.format || x + width > texture.width || y + height > texture.height)
        return call.fail("does not fit " + texture.label + ' ' + texture.size());
    const size_t pitch = rowPitch(width, format, call.gl->pixelStore[GL_UNPACK_ALIGNMENT]);
    texture.texels.clear();
    for (int row = 0; row < height; ++row) {
        const auto* bytes = static_cast<const uint8_t*>(pixels) + size_t(row) * pitch;
        texture.texels.insert(texture.texels.end(), bytes, bytes + width * bytesPerTexel(format));
    }
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

void glAttachShader(GLuint program, GLuint shader) {
    const RecordedCall call("glAttachShader", ProgramName{program}, ShaderName{shader});
    auto& record = call.gl->programs[program];
    record.source += call.gl->shaders[shader].source;
    record.label = programLabel(record.source);
}

GLuint glCreateShader(GLenum type) {
    const RecordedCall call("glCreateShader", Enum{type});
    return call.create(call.gl->shaders, type == GL_VERTEX_SHADER ? "vertexShader" : "fragmentShader");
}

void glGenTextures(GLsizei count, GLuint* names) {
    const RecordedCall call("glGenTextures", count);
    auto& labels = call.driver.labels;
    const std::string next = "texture" + std::to_string(call.driver.lastName + 1);
    names[0] = call.create(call.gl->textures, labels.empty() ? next : labels.front());
    if (names[0] && !labels.empty())
        labels.pop_front();
}

void glDeleteTextures(GLsizei count, const GLuint* names) {
    const RecordedCall call("glDeleteTextures", count, TextureName{names[0]});
    call.gl->textures.erase(names[0]);
    std::ranges::replace(call.gl->units, names[0], 0u);
    for (auto& [name, framebuffer] : call.gl->framebuffers)
        if (framebuffer.texture == names[0])
            framebuffer.texture = 0;
}

void glDeleteFramebuffers(GLsizei count, const GLuint* names) {
    const RecordedCall call("glDeleteFramebuffers", count, FramebufferName{names[0]});
    call.gl->framebuffers.erase(names[0]);
    if (call.gl->framebuffer == names[0])
        call.gl->framebuffer = 0;
}

void glFramebufferTexture2D(GLenum target, GLenum attachment, GLenum textureTarget, GLuint texture,
                            GLint level) {
    const RecordedCall call("glFramebufferTexture2D", Enum{target}, Enum{attachment}, Enum{textureTarget},
                            TextureName{texture}, level);
    if (call.gl->framebuffer == 0)
        return call.fail("there is no frame buffer");
    call.gl->framebuffers[call.gl->framebuffer].texture = texture;
}

void glDisableVertexAttribArray(GLuint location) {
    const RecordedCall call("glDisableVertexAttribArray", Attribute{location});
    if (call.gl->enabled.erase(location) == 0)
        call.fail("is not enabled");
}

void glVertexAttribPointer(GLuint location, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
                           const void* pointer) {
    RecordedCall("glVertexAttribPointer", Attribute{location}, size, Enum{type}, Enum{normalized}, stride)
        .gl->pointers[location] = {size, stride, pointer};
}

// The others, one line each where it fits.
// clang-format off

void glActiveTexture(GLenum unit) {
    RecordedCall("glActiveTexture", Enum{unit}).gl->activeUnit = unit - GL_TEXTURE0;
}
void glBindFramebuffer(GLenum target, GLuint name) {
    RecordedCall("glBindFramebuffer", Enum{target}, FramebufferName{name}).gl->framebuffer = name;
}
void glBindTexture(GLenum target, GLuint name) {
    const RecordedCall call("glBindTexture", Enum{target}, TextureName{name});
    call.gl->units[call.gl->activeUnit] = name;
}
void glClear(GLbitfield mask) { RecordedCall("glClear", Enum{mask}).target(); }
void glCompileShader(GLuint name) { RecordedCall("glCompileShader", ShaderName{name}); }
void glDeleteProgram(GLuint name) {
    RecordedCall("glDeleteProgram", ProgramName{name}).gl->programs.erase(name);
}
void glDeleteShader(GLuint name) { RecordedCall("glDeleteShader", ShaderName{name}).gl->shaders.erase(name); }
void glDisable(GLenum capability) { RecordedCall("glDisable", Enum{capability}); }
void glEnableVertexAttribArray(GLuint location) {
    RecordedCall("glEnableVertexAttribArray", Attribute{location}).gl->enabled.insert(location);
}
void glLinkProgram(GLuint name) { RecordedCall("glLinkProgram", ProgramName{name}); }
void glPixelStorei(GLenum name, GLint value) {
    RecordedCall("glPixelStorei", Enum{name}, value).gl->pixelStore[name] = value;
}
void glShaderSource(GLuint name, GLsizei count, const GLchar* const* sources, const GLint* lengths) {
    RecordedCall("glShaderSource", ShaderName{name}, count, lengths ? "lengths" : "null")
        .gl->shaders[name].source = sources[0];
}
void glTexParameteri(GLenum target, GLenum name, GLint value) {
    const RecordedCall call("glTexParameteri", Enum{target}, Enum{name}, Enum{GLenum(value)});
    call.boundTexture().parameters[name] = value;
}
void glUseProgram(GLuint name) { RecordedCall("glUseProgram", ProgramName{name}).gl->program = name; }
void glViewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    RecordedCall("glViewport", x, y, width, height).gl->viewport = {x, y, width, height};
}

GLuint glCreateProgram() {
    const RecordedCall call("glCreateProgram");
    return call.create(call.gl->programs, "program");
}
void glGenFramebuffers(GLsizei count, GLuint* names) {
    const RecordedCall call("glGenFramebuffers", count);
    names[0] = call.create(call.gl->framebuffers, "framebuffer");
}
GLint glGetAttribLocation(GLuint program, const GLchar* name) {
    return lookUp(RecordedCall("glGetAttribLocation", ProgramName{program}, name), program, name, false);
}
GLint glGetUniformLocation(GLuint program, const GLchar* name) {
    return lookUp(RecordedCall("glGetUniformLocation", ProgramName{program}, name), program, name, true);
}
GLenum glGetError() { return std::exchange(RecordedCall("glGetError").gl->error, GLenum(GL_NO_ERROR)); }
void glGetIntegerv(GLenum name, GLint* value) {
    const RecordedCall call("glGetIntegerv", Enum{name});
    *value = name == GL_MAX_TEXTURE_SIZE ? call.recorder.maxTextureSize : GLint(call.gl->framebuffer);
}
void glGetProgramInfoLog(GLuint name, GLsizei size, GLsizei* /*length*/, GLchar* text) {
    const RecordedCall call("glGetProgramInfoLog", ProgramName{name}, size);
    std::snprintf(text, size_t(size), "%s", call.recorder.infoLog.c_str());
}
void glGetShaderInfoLog(GLuint name, GLsizei size, GLsizei* /*length*/, GLchar* text) {
    const RecordedCall call("glGetShaderInfoLog", ShaderName{name}, size);
    std::snprintf(text, size_t(size), "%s", call.recorder.infoLog.c_str());
}

void glUniform1f(GLint location, GLfloat value) {
    RecordedCall("glUniform1f", Uniform{GLuint(location)}, value).setUniform(location, &value, 1);
}
void glUniform1i(GLint location, GLint value) {
    const auto number = GLfloat(value);
    RecordedCall("glUniform1i", Uniform{GLuint(location)}, value).setUniform(location, &number, 1);
}
void glUniform1fv(GLint location, GLsizei count, const GLfloat* values) {
    RecordedCall("glUniform1fv", Uniform{GLuint(location)}, count).setUniform(location, values, count);
}
void glUniform2fv(GLint location, GLsizei count, const GLfloat* values) {
    RecordedCall("glUniform2fv", Uniform{GLuint(location)}, count).setUniform(location, values, 2 * count);
}
void glUniform3fv(GLint location, GLsizei count, const GLfloat* values) {
    RecordedCall("glUniform3fv", Uniform{GLuint(location)}, count).setUniform(location, values, 3 * count);
}
void glUniform4fv(GLint location, GLsizei count, const GLfloat* values) {
    RecordedCall("glUniform4fv", Uniform{GLuint(location)}, count).setUniform(location, values, 4 * count);
}
void glUniformMatrix3fv(GLint location, GLsizei count, GLboolean transpose, const GLfloat* values) {
    RecordedCall("glUniformMatrix3fv", Uniform{GLuint(location)}, count, Enum{transpose})
        .setUniform(location, values, 9 * count);
}
