// A double of EGL and OpenGL ES 2.0 for link time. It records calls, keeps what tests ask for and fails on
// demand. What a driver may forgive fails the running test: names that are unknown or deleted, GL without a
// current context, clearing or drawing without a target.

#pragma once

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <array>
#include <initializer_list>
#include <list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// While it lives, calls go into it. One at a time, for one thread.
struct GlRecorder {
    /// A texture, frame buffer, program or shader.
    struct Object {
        std::string kind, label = "-";
        std::string size;                                     ///< of a texture, as in "5x3"
        GLuint target = 0;                                    ///< attached to a frame buffer
        std::string source;                                   ///< of a shader; of both in a program
        std::set<GLint> samplers;                             ///< units that a program reads from
        std::map<std::string, std::vector<GLfloat>> uniforms; ///< those that were set
    };
    /// A display, config, context or surface. Destroyed while current it stays current, but is refused from
    /// then on.
    struct EglObject {
        std::string label;
        bool isDestroyed = false;
    };
    struct Failure {
        std::string function;
        int countdown;
        EGLint error;
        bool refuses;
    };

    GlRecorder() { current = this; }
    ~GlRecorder() { current = nullptr; }
    GlRecorder(const GlRecorder&) = delete;

    /// The `nth` call of `function` from now on, or of any GL function but glGetError for "", works and
    /// leaves `error` behind.
    void raise(const std::string& function, int nth, EGLint error) {
        failures.push_back({function, nth, error, false});
    }
    /// The `nth` call of `function` from now on gives 0, none or EGL_FALSE, and leaves `error` behind.
    void refuse(const std::string& function, int nth, EGLint error = 0) {
        failures.push_back({function, nth, error, true});
    }
    /// Labels of the textures to come, in the order of their creation. Others are called "texture".
    void labelTextures(std::initializer_list<std::string> labels) { textureLabels.assign(labels); }
    /// Makes "hostContext" current, drawing to "hostDraw" and reading from "hostRead". Not recorded.
    void makeHostContextCurrent();

    /// Recorded calls, one a line; all of them or those of `functions`. Locations are printed by name,
    /// programs as "yuvToRgb", "rgbToYuv", "blur", "mix", "lutRatio" and "lutMapped", after their uniforms.
    std::string calls(std::initializer_list<std::string_view> functions = {}) const;
    int glCallCount() const; ///< calls that `raise` counts for ""
    /// Forgets calls, draws and what was to fail. The state stays.
    void clear();
    /// The current context and surfaces: "hostContext hostDraw hostRead".
    std::string currentContext() const;
    /// What was created and not deleted: "texture luma, program mix, coreContext".
    std::string liveObjects() const;
    /// The values last set; empty when there are none.
    std::vector<GLfloat> uniform(const std::string& label, const std::string& name) const;
    /// The object of that name, or one labelled "-".
    const Object& find(GLuint name) const;
    const Object& target() const { return find(find(framebuffer).target); }

    static inline GlRecorder* current = nullptr;
    static inline int depth = 0; ///< more than 0 while a call is being recorded

    // What the driver answers.
    GLint maxTextureSize = 4096;
    EGLint configCount = 1;
    std::string infoLog = "why it failed";

    // What has happened. One set of GL objects serves all contexts.
    std::vector<std::string> lines;
    /// The textures that a program read, in the order of units, and the one that it drew into:
    /// "mix(input, intermediate) -> output", and with their sizes "mix(5x3, 5x3) -> 5x3".
    std::vector<std::string> draws, drawSizes;
    std::vector<Failure> failures;
    std::list<std::string> textureLabels;
    std::list<EglObject> eglObjects;
    EglObject *context = nullptr, *drawSurface = nullptr, *readSurface = nullptr;
    EGLint eglError = EGL_SUCCESS, glError = GL_NO_ERROR;
    std::map<GLuint, Object> objects;
    GLuint lastName = 0;                                       ///< none is handed out twice
    std::vector<std::pair<GLuint, std::string>> locations{{}}; ///< program and name; 0 is not handed out
    std::array<GLuint, 2> units{};
    size_t activeUnit = 0;
    GLuint framebuffer = 0, program = 0;
};

/// Recorded calls in short: steps, apart by line breaks or semicolons, such as "bind luma", "unit 1", "check"
/// (for glGetError), "nearest", "smooth" (linear, set the other way round), "attach 0", "point posAttr 16" or
/// "draw". Other steps are taken as they are.
std::string recipe(std::string_view text);

/// Numbers that are printed as what they stand for.
struct Enum {
    int64_t value;
};
struct Name {
    GLuint value;
};
struct Variable {
    int64_t location; ///< GLint or GLuint
};

/// A call of one of the doubles, while it lasts: `RecordedCall(__func__, arguments...)` records it. EGL
/// handles are printed by label, attribute lists as "EGL_WIDTH=1 EGL_HEIGHT=1".
struct RecordedCall {
    template <class... Args>
    explicit RecordedCall(const char* function, Args... args) {
        ++GlRecorder::depth;
        std::string text;
        ((text += (text.empty() ? "" : ", ") + show(args)), ...);
        record(function, text);
    }
    ~RecordedCall() { --GlRecorder::depth; }
    RecordedCall(const RecordedCall&) = delete;

    /// A name for a new object, or 0 when the call is refused.
    GLuint create(const std::string& kind, const std::string& label) const;
    void destroy(GLuint name) const;
    /// Fails the test where nothing is attached to be drawn to.
    void expectTarget() const;

    GlRecorder& gl = *GlRecorder::current;
    bool isRefused = false;

private:
    void record(const std::string& function, const std::string& arguments);
    std::string show(int value) const { return std::to_string(value); }
    std::string show(GLfloat value) const;
    std::string show(const char* text) const { return text; }
    std::string show(const EGLint* attributes) const;
    std::string show(void* handle) const;
    std::string show(Enum value) const;
    std::string show(Name name) const;
    std::string show(Variable variable) const;
};
