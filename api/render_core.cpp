#include "api/render_core.h"

#include "api/plane_geometry.h"
#include "convert/color_converter.h"
#include "gl/egl_context.h"
#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "log/log_stream.h"

#include <stdlib.h> // posix_memalign

namespace ze {
namespace {

constexpr size_t kStagingAlignment = 64;

void freeStagingBuffer(ZecRenderCore& core) {
    free(core.staging->planes[0]);
    core.staging->planes[0] = nullptr;
}

bool allocateStagingBuffer(ZecRenderCore& core, int width, int height) {
    void* buffer = nullptr;
    if (posix_memalign(&buffer, kStagingAlignment, stagingSize(width, height)) != 0) {
        ZeLogError() << "buffer is null";
        return false;
    }
    core.staging->planes[0] = static_cast<uint8_t*>(buffer);
    core.staging->pitches[0] = int32_t(stagingPitch(width));
    return true;
}

bool createFrameTexture(GLuint& texture, int width, int height) {
    texture = createTexture(width, height, GL_RGBA);
    return texture != 0;
}

} // namespace

bool isConfiguredFor(const ZecRenderCore& core, int pixelFormat, int width, int height) {
    const bool complete = core.configured && core.staging->planes[0] && core.inputTexture &&
                          core.scratchTexture && core.outputTexture && core.framebuffer;
    return complete && core.width == width && core.height == height && core.pixelFormat == pixelFormat;
}

bool rebuildFrameResources(ZecRenderCore& core, int width, int height) {
    freeStagingBuffer(core);
    discardTexture(core.inputTexture);
    discardTexture(core.scratchTexture);
    discardTexture(core.outputTexture);

    if (!allocateStagingBuffer(core, width, height))
        return false;
    if (core.framebuffer == 0)
        core.framebuffer = createFramebuffer();
    return createFrameTexture(core.inputTexture, width, height) &&
           createFrameTexture(core.scratchTexture, width, height) &&
           createFrameTexture(core.outputTexture, width, height);
}

bool releaseRenderCore(ZecRenderCore& core) {
    EglContextRecord* callerContext = snapshotCurrentContext();
    if (!core.context || !makeContextCurrent(*core.context)) {
        ZeLogError() << "There is no opengl context";
        delete callerContext;
        return false;
    }

    if (core.converter) {
        releaseColorConverter(*core.converter);
        delete core.converter;
        core.converter = nullptr;
    }
    deleteFramebuffer(&core.framebuffer);
    if (core.staging)
        freeStagingBuffer(core);
    discardTexture(core.inputTexture);
    discardTexture(core.scratchTexture);
    discardTexture(core.outputTexture);
    delete core.staging;
    core.staging = nullptr;
    releaseContext(*core.context);
    delete core.context;
    core.context = nullptr;

    if (callerContext) {
        makeContextCurrent(*callerContext);
        releaseContext(*callerContext);
        delete callerContext;
    }
    return true;
}

} // namespace ze
