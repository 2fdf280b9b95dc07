// Shader programs.

#pragma once

#include <GLES2/gl2.h>

namespace ze {

/// Compiles and links a program from two NUL-terminated GLSL ES 1.00 sources and returns its name, or 0.
///
/// Failures are seen through glGetError after compiling and linking, not through the compile and link status:
/// sources that fail without a GL error give a name, and the failure shows when the program is used. Seen
/// failures are logged with the info log, and what was made so far is deleted. No attribute location is
/// bound. Call on the thread that has the context current.
GLuint createProgram(const char* vertexSource, const char* fragmentSource);

} // namespace ze
