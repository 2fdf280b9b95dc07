#include "gl/error.h"

#include "log/log_stream.h"

#include <GLES2/gl2.h>

namespace ze {

void checkGlError() {
    const GLenum error = glGetError();
    if (error != GL_NO_ERROR)
        ZeLogError() << "GL error: 0x" << error;
}

} // namespace ze
