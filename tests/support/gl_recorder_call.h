// A call of one of the doubles: `RecordedCall(__func__, arguments...)` records it.

#pragma once

#include "tests/support/gl_recorder.h"

#include <string>

#include <gtest/gtest.h>

/// Numbers that are printed as what they stand for.
struct Enum {
    GLenum value;
};
struct Name {
    GLuint value;
};
struct Variable {
    int64_t location; ///< GLint or GLuint
};

/// Alive while the call lasts. EGL handles are printed by label, attribute lists as "EGL_WIDTH=1
/// EGL_HEIGHT=1".
class RecordedCall {
public:
    template <class... Args>
    explicit RecordedCall(const char* function, Args... args) : RecordedCall() {
        std::string text;
        ((text += (text.empty() ? "" : ", ") + show(args)), ...);
        record(function, text);
    }
    ~RecordedCall() { --GlRecorder::depth; }
    RecordedCall(const RecordedCall&) = delete;
    RecordedCall& operator=(const RecordedCall&) = delete;

    /// A name for a new object, or 0 when the call is refused.
    GLuint create(const std::string& kind, const std::string& label) const;
    void destroy(GLuint name) const;
    void setUniform(GLint location, const GLfloat* values, int count) const;
    /// Fails the test where nothing is attached to be drawn to.
    void expectTarget() const;

    GlRecorder& recorder;
    GlRecorder::Driver& driver;
    bool isRefused = false;

private:
    RecordedCall() : recorder(*GlRecorder::current), driver(recorder.driver) { ++GlRecorder::depth; }
    void record(const std::string& function, const std::string& arguments);

    static std::string show(int value) { return std::to_string(value); }
    static std::string show(GLfloat value) { return testing::PrintToString(value); }
    static std::string show(const char* text) { return text; }
    static std::string show(const EGLint* attributes);
    static std::string show(void* handle);
    static std::string show(Enum value);
    std::string show(Name name) const;
    std::string show(Variable variable) const;
};
