// A double of EGL and OpenGL ES 2.0 for link time. It records calls, keeps what tests ask for and fails on
// demand. What a driver may forgive fails the running test: names that are unknown or deleted, GL without a
// current context, clearing or drawing without a target.
//
// In place of pixels textures have a number, made of what was uploaded, or of what a draw takes its pixels
// from: textures, their parameters, uniforms, the viewport. Where the same is read back, the same was drawn.

#pragma once

#include "tests/support/failing_memory.h"

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <array>
#include <initializer_list>
#include <list>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

/// What GL knows. One set of objects serves all contexts.
struct GlState {
    /// A texture, frame buffer, program or shader.
    struct Object {
        std::string kind, label = "-";
        std::string size;                                     ///< of a texture, as in "5x3"
        size_t content = 0;                                   ///< of a texture
        std::map<GLenum, GLint> parameters;                   ///< of a texture
        GLuint target = 0;                                    ///< attached to a frame buffer
        std::string source;                                   ///< of a shader; of both in a program
        bool isUsable = false;                                ///< a shader is compiled, a program linked
        std::set<GLint> samplers;                             ///< units that a program reads from
        std::map<std::string, std::vector<GLfloat>> uniforms; ///< those that were set
    };
    struct Bound {
        std::array<GLuint, 2> units{};
        size_t activeUnit = 0;
        GLuint framebuffer = 0, program = 0;
        std::array<GLint, 4> viewport{};
    };

    std::map<GLuint, Object> objects;
    std::vector<std::pair<GLuint, std::string>> locations{{}}; ///< program and name; 0 is not handed out
    Bound bound;                                               ///< in the current context
    /// The textures that a program read, in the order of units, and the one that it drew into:
    /// "mix(input, intermediate) -> output".
    std::vector<std::string> draws;
};

/// While it lives, calls go into it. One at a time, for one thread.
struct GlRecorder : GlState {
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

    /// The `nth` call of `function` from now on works and leaves `error` behind.
    void raise(const std::string& function, int nth, EGLint error) {
        failures.push_back({function, nth, error, false});
    }
    /// The `nth` call of `function` from now on, or of any that does not tell of errors for "*", does
    /// nothing, gives 0, -1, none or EGL_FALSE, and leaves `error` behind.
    void refuse(const std::string& function, int nth, EGLint error = 0) {
        failures.push_back({function, nth, error, true});
    }
    /// Labels of the textures to come, in the order of their creation. Others are called by their size.
    void labelTextures(std::initializer_list<std::string> labels) { textureLabels.assign(labels); }
    /// Makes "hostContext" current, drawing to "hostDraw" and reading from "hostRead". Not recorded.
    void makeHostContextCurrent();

    /// Recorded calls, one a line; all of them or those of `functions`. Locations are printed by name,
    /// programs as "yuvToRgb", "rgbToYuv", "blur", "mix", "lutRatio" and "lutMapped", after their uniforms.
    std::string calls(std::initializer_list<std::string_view> functions = {}) const;
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
    Object& boundTexture() { return objects[bound.units.at(bound.activeUnit)]; }
    const Object& target() const { return find(find(bound.framebuffer).target); }

    static inline GlRecorder* current = nullptr;

    // What the driver answers.
    GLint maxTextureSize = 4096;
    EGLint configCount = 1;
    std::string infoLog = "why it failed";

    // What has happened.
    std::vector<std::string> lines;
    std::vector<Failure> failures;
    std::string failed; ///< the last call of theirs
    std::list<std::string> textureLabels;
    std::list<EglObject> eglObjects;
    EglObject *context = nullptr, *drawSurface = nullptr, *readSurface = nullptr;
    EGLint eglError = EGL_SUCCESS, glError = GL_NO_ERROR;
    GLuint lastName = 0; ///< none is handed out twice
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
        ++t_memory.exempt;
        std::string text;
        ((text += (text.empty() ? "" : ", ") + show(args)), ...);
        record(function, text);
    }
    ~RecordedCall() {
        if (before)
            static_cast<GlState&>(gl) = std::move(*before);
        --t_memory.exempt;
    }
    RecordedCall(const RecordedCall&) = delete;

    /// A name for a new object, or 0 when the call is refused.
    GLuint create(const std::string& kind, const std::string& label) const;
    void destroy(GLuint name) const;
    /// Whether there is something to draw to. Where nothing has failed before, it fails the test if not.
    bool hasTarget() const;
    /// Whether `condition` holds; an error of GL's if not.
    bool needs(bool condition) const;

    GlRecorder& gl = *GlRecorder::current;
    bool isRefused = false;
    std::optional<GlState> before; ///< to which a refused call returns

private:
    void record(const std::string& function, const std::string& arguments);
    std::string show(int value) const { return std::to_string(value); }
    std::string show(GLfloat value) const { return testing::PrintToString(value); }
    std::string show(const char* text) const { return text; }
    std::string show(const EGLint* attributes) const;
    std::string show(void* handle) const {
        return handle ? static_cast<GlRecorder::EglObject*>(handle)->label : "none";
    }
    std::string show(Enum value) const;
    std::string show(Name name) const;
    std::string show(Variable variable) const;
};
