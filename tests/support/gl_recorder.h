// A double of EGL and OpenGL ES 2.0 for link time. It records calls, keeps the state that they make and fails
// on demand. What a driver would forgive, or answer with a wrong picture, fails the running test: names that
// are unknown or deleted, GL without a current context, clearing or drawing without a target, a viewport that
// is not the whole target, sampling from the target or from an incomplete texture.

#pragma once

#include <EGL/egl.h>
#include <GLES2/gl2.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct GlDriver;

/// While it lives, calls go into it; recorders may be nested, and the innermost gets them. Threads may take
/// turns but not call at once.
class GlRecorder {
public:
    struct Texture {
        std::string label;
        GLenum format = 0;
        int width = 0;
        int height = 0;
        std::map<GLenum, GLint> parameters;
        std::vector<uint8_t> texels; ///< of the last upload, row after row without padding

        std::string size() const { return std::to_string(width) + "x" + std::to_string(height); }
    };

    struct Draw {
        std::string program;
        std::vector<Texture> sources; ///< in the order of texture units
        Texture target;
        std::map<std::string, std::vector<GLfloat>> attributes; ///< by name, corner after corner

        /// As in "mix(input, intermediate) -> output".
        std::string text() const;
        /// As in "mix(5x3, 5x3) -> 5x3".
        std::string sizes() const;
    };

    GlRecorder();
    ~GlRecorder();
    GlRecorder(const GlRecorder&) = delete;
    GlRecorder& operator=(const GlRecorder&) = delete;

    // What the driver answers.
    GLint maxTextureSize = 4096;
    EGLint configCount = 1;
    std::string infoLog = "why it failed";
    static uint8_t readBackByte(size_t index) { return uint8_t(index * 2654435761u >> 13); }

    /// The `nth` call of `function` from now on, or of any GL function but glGetError for "", works and
    /// leaves `error` behind.
    void raise(const std::string& function, int nth, EGLint error);

    /// The `nth` call of `function` from now on gives 0, none or EGL_FALSE, and leaves `error` behind.
    void refuse(const std::string& function, int nth, EGLint error = 0);

    /// Labels of the textures to come, in the order of their creation. Others are called "texture1" and so
    /// on.
    void labelTextures(std::initializer_list<std::string> labels);

    /// Makes "hostContext" current on this thread, drawing to "hostDraw" and reading from "hostRead". Not
    /// recorded.
    void makeHostContextCurrent();

    /// Recorded calls, one a line; all of them or those of `functions`. Locations are printed by name,
    /// programs as "yuvToRgb", "rgbToYuv", "blur", "mix", "lutRatio" and "lutMapped", after their uniforms.
    std::string calls(std::initializer_list<std::string_view> functions = {}) const;
    /// From the first call that is written so on.
    std::string callsFrom(const std::string& first) const;
    int glCallCount() const; ///< calls that `raise` counts for ""
    const std::vector<Draw>& draws() const;
    std::vector<std::string> drawTexts(std::string (Draw::*form)() const = &Draw::text) const;
    /// Forgets calls, draws and what was to fail. The state stays.
    void clear();

    /// What is bound and set in this thread's context.
    std::string state() const;
    /// The texture that is bound to the active unit.
    const Texture& boundTexture() const;
    /// This thread's context and surfaces: "hostContext hostDraw hostRead", or "none".
    std::string currentContext() const;
    /// What was created and not deleted: "hostContext, texture luma, program mix".
    std::string liveObjects() const;
    /// The values last set; empty when there are none.
    std::vector<GLfloat> uniform(const std::string& program, const std::string& name) const;

    /// Whether this thread is inside a recorded call, so that what is allocated is the recorder's.
    static bool isRecording();

private:
    friend class RecordedCall;
    std::unique_ptr<GlDriver> m_driver;
    GlRecorder* m_outer;
};

/// The calls that a recipe stands for, one a line, to be compared with `GlRecorder::calls`. Steps are
/// separated by semicolons and line ends: calls, or "check" (a look at glGetError), "unit 1", "bind luma",
/// "nearest", "linear" (MIN, then MAG filter), "clamp", "attach output" ("attach 0" detaches), "clear",
/// "point posAttr 16" (by stride), "enable posAttr", "disable posAttr", "draw".
std::string recipe(std::string_view text);
