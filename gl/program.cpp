#include "gl/program.h"

#include "gl/error.h"
#include "log/log_stream.h"

namespace ze {
namespace {

constexpr GLsizei kInfoLogSize = 4096;

/// False, with `failureMessage` and the shader's info log in the log, when compiling raises a GL error.
bool compileShader(GLuint shader, const char* source, const char* failureMessage) {
    glShaderSource(shader, 1, &source, nullptr);
    checkGlError();
    glCompileShader(shader);
    if (glGetError() == GL_NO_ERROR)
        return true;
    char infoLog[kInfoLogSize] = "";
    glGetShaderInfoLog(shader, kInfoLogSize, nullptr, infoLog);
    ZeLogError() << failureMessage << infoLog;
    return false;
}

/// False, with the program's info log in the log, when linking raises a GL error.
bool linkProgram(GLuint program) {
    glLinkProgram(program);
    if (glGetError() == GL_NO_ERROR)
        return true;
    char infoLog[kInfoLogSize] = "";
    glGetProgramInfoLog(program, kInfoLogSize, nullptr, infoLog);
    ZeLogError() << "Failed to link shader program:\n " << infoLog;
    return false;
}

void deleteShaders(GLuint vertexShader, GLuint fragmentShader) {
    glDeleteShader(vertexShader);
    glDeleteShader(fragmentShader);
}

} // namespace

GLuint createProgram(const char* vertexSource, const char* fragmentSource) {
    const GLuint vertexShader = glCreateShader(GL_VERTEX_SHADER);
    if (vertexShader == 0)
        return 0;
    const GLuint fragmentShader = glCreateShader(GL_FRAGMENT_SHADER);
    if (fragmentShader == 0) {
        glDeleteShader(vertexShader);
        return 0;
    }

    if (!compileShader(vertexShader, vertexSource, "Failed to compile vertex shader:\n ") ||
        !compileShader(fragmentShader, fragmentSource, "Failed to compile fragment shader:\n ")) {
        deleteShaders(vertexShader, fragmentShader);
        return 0;
    }

    const GLuint program = glCreateProgram();
    if (program == 0) {
        deleteShaders(vertexShader, fragmentShader);
        return 0;
    }
    glAttachShader(program, vertexShader);
    checkGlError();
    glAttachShader(program, fragmentShader);
    checkGlError();

    const bool linked = linkProgram(program);
    deleteShaders(vertexShader, fragmentShader); // they live on while attached
    if (!linked) {
        glDeleteProgram(program);
        return 0;
    }
    return program;
}

} // namespace ze
