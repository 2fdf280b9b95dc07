// The GL error check that follows most GL calls.

#pragma once

namespace ze {

/// Reads glGetError once and logs an error as "GL error: 0x" and the code. The code is written in decimal
/// digits, so GL_INVALID_ENUM reads "GL error: 0x1280". Never stops what the caller is doing.
/// Call on the thread that has the context current.
void checkGlError();

} // namespace ze
