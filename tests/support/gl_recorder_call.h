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

/// A number with what it stands for, to be printed as that.
template <int kind>
struct Shown {
    GLuint value;
};
using Enum = Shown<0>;
using TextureName = Shown<1>;
using FramebufferName = Shown<2>;
using ProgramName = Shown<3>;
using ShaderName = Shown<4>;
using Location = Shown<5>;

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
        if (function[0] == 'g')
            findContext(function);
        std::string text;
        ((text += (text.empty() ? "" : ", ") + show(args)), ...);
        record(function, text);
    }
    ~RecordedCall();
    RecordedCall(const RecordedCall&) = delete;
    RecordedCall& operator=(const RecordedCall&) = delete;

    /// Fails the test on account of this call.
    void fail(const std::string& why) const { ADD_FAILURE() << m_text << ": " << why; }

    /// Leaves an error for glGetError or eglGetError, whichever it is.
    void leaveError(EGLint error) const;

    /// The object of that name, which has to exist.
    template <class Object>
    Object& object(std::map<GLuint, Object>& objects, GLuint name) const {
        const auto found = objects.find(name);
        if (found != objects.end())
            return found->second;
        fail("unknown or deleted name " + std::to_string(name));
        static Object none;
        return none = {};
    }
    /// Likewise, unless it is 0.
    template <class Object>
    void checkUnlessZero(std::map<GLuint, Object>& objects, GLuint name) const {
        if (name)
            object(objects, name);
    }
    GlRecorder::Texture& boundTexture() const { return object(gl->textures, gl->units[gl->activeUnit]); }
    /// The texture attached to the bound frame buffer.
    GlRecorder::Texture& target() const;
    /// The attribute or uniform at `location`, which has to belong to the current program.
    const GlVariable& variable(GLuint location, bool isUniform) const;

    GlRecorder& recorder;
    GlDriver& driver;
    EglCurrent& current;     ///< this thread's
    GlContext* gl = nullptr; ///< the current one; set in GL calls
    bool isRefused = false;

private:
    RecordedCall();
    void findContext(const char* function);
    void record(const char* function, const std::string& arguments);

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
    std::string show(Location location) const { return driver.variables[location.value].name; }

    template <class Object>
    static std::string label(const std::map<GLuint, Object>& objects, GLuint name) {
        const auto found = objects.find(name);
        return found == objects.end() ? std::to_string(name) : found->second.label;
    }

    std::string m_text;
};
