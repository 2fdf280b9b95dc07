// What the doubles of GL and EGL share: the state of the driver that they stand for, and their calls.

#pragma once

#include "tests/support/gl_recorder.h"

#include <array>
#include <list>
#include <set>
#include <thread>

#include <gtest/gtest.h>

struct GlProgram {
    std::string label = "program";
    std::string source;
    std::map<std::string, std::vector<GLfloat>> uniforms; ///< those that were set
};

struct GlShader {
    std::string label;
    std::string source;
};

struct GlFramebuffer {
    std::string label = "framebuffer";
    GLuint texture = 0;
};

/// What a location stands for. No location is handed out twice, and none is 0: nobody may count them himself.
struct GlVariable {
    GLuint program = 0;
    bool isUniform = false;
    std::string name = "unknown";
};

struct GlPointer {
    GLint size;
    GLsizei stride;
    const void* data;
};

struct GlContext {
    std::string label;
    bool destroyed = false;
    std::map<GLuint, GlRecorder::Texture> textures;
    std::map<GLuint, GlFramebuffer> framebuffers;
    std::map<GLuint, GlProgram> programs;
    std::map<GLuint, GlShader> shaders;
    std::array<GLuint, 8> units{};
    size_t activeUnit = 0;
    GLuint framebuffer = 0;
    GLuint program = 0;
    std::array<GLint, 4> viewport{};
    std::map<GLenum, GLint> pixelStore = {{GL_PACK_ALIGNMENT, 4}, {GL_UNPACK_ALIGNMENT, 4}};
    std::map<GLuint, GlPointer> pointers;
    std::set<GLuint> enabled; ///< locations of attributes
    GLenum error = GL_NO_ERROR;
};

struct EglSurface {
    std::string label;
    bool destroyed = false;
};

struct EglCurrent {
    GlContext* context = nullptr;
    EglSurface* draw = nullptr;
    EglSurface* read = nullptr;
};

struct ScriptedFailure {
    std::string function;
    int countdown;
    EGLint error;
    bool refuses;
};

struct CallText {
    std::string function;
    std::string text;
};

struct GlDriver {
    GLuint lastName = 0;
    std::map<GLuint, GlVariable> variables; ///< by location
    std::list<GlContext> contexts;
    std::list<EglSurface> surfaces;
    std::map<std::thread::id, EglCurrent> current;
    EGLint eglError = EGL_SUCCESS;
    std::vector<ScriptedFailure> failures;
    std::list<std::string> labels;
    std::vector<CallText> calls;
    std::vector<GlRecorder::Draw> draws;
    int glCallCount = 0;
};

/// A number with what it stands for. It is printed as that, and an object or variable that does not exist, or
/// is not the current program's, fails the test.
template <int kind>
struct Shown {
    GLuint value;
};
using Enum = Shown<0>;
using TextureName = Shown<1>;
using FramebufferName = Shown<2>;
using ProgramName = Shown<3>;
using ShaderName = Shown<4>;
using Attribute = Shown<5>;
using Uniform = Shown<6>;

/// An attribute list of EGL, and an EGL object, to be printed.
struct EglAttributes {
    const EGLint* list;
};
struct EglHandle {
    const void* value;
};

/// A call of a double, recorded when it is made, scripted failures applied, and alive while it lasts.
class RecordedCall {
public:
    template <class... Args>
    explicit RecordedCall(const char* function, Args... args) : RecordedCall() {
        m_function = function;
        if (function[0] == 'g')
            findContext();
        std::string text;
        ((text += (text.empty() ? "" : ", ") + show(args)), ...);
        record(text);
    }
    ~RecordedCall();
    RecordedCall(const RecordedCall&) = delete;
    RecordedCall& operator=(const RecordedCall&) = delete;

    /// Fails the test on account of this call.
    void fail(const std::string& why) const;
    /// Leaves an error for glGetError or eglGetError, whichever it is.
    void leaveError(EGLint error) const;

    /// A name for a new object in `objects`, or 0 when the call is refused.
    template <class Object>
    GLuint create(std::map<GLuint, Object>& objects, const std::string& label) const {
        if (isRefused)
            return 0;
        objects[++driver.lastName].label = label;
        return driver.lastName;
    }
    /// The texture bound to the active unit, which has to be there.
    GlRecorder::Texture& boundTexture() const;
    /// The name of the texture attached to the bound frame buffer, which has to be there.
    GLuint target() const;
    void setUniform(GLint location, const GLfloat* values, int count) const;

    GlRecorder& recorder;
    GlDriver& driver;
    EglCurrent& current;     ///< this thread's
    GlContext* gl = nullptr; ///< the current one; set in GL calls
    bool isRefused = false;

private:
    RecordedCall();
    void findContext();
    void record(const std::string& arguments);

    static std::string show(int value) { return std::to_string(value); }
    static std::string show(GLfloat value) { return testing::PrintToString(value); }
    static std::string show(const char* text) { return text; }
    static std::string show(Enum value);
    static std::string show(EglAttributes attributes);
    std::string show(EglHandle handle) const;
    std::string show(TextureName name) const { return label(gl->textures, name.value); }
    std::string show(FramebufferName name) const { return label(gl->framebuffers, name.value); }
    std::string show(ProgramName name) const { return label(gl->programs, name.value); }
    std::string show(ShaderName name) const { return label(gl->shaders, name.value); }
    std::string show(Attribute attribute) const { return variable(attribute.value, false); }
    std::string show(Uniform uniform) const { return variable(uniform.value, true); }
    std::string variable(GLuint location, bool isUniform) const;

    template <class Object>
    std::string label(const std::map<GLuint, Object>& objects, GLuint name) const {
        const auto found = objects.find(name);
        if (found != objects.end())
            return found->second.label;
        if (name)
            fail("unknown or deleted name");
        return std::to_string(name);
    }

    std::string m_function;
};
