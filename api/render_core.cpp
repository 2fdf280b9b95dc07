#include "api/render_core.h"

#include "gl/framebuffer.h"
#include "gl/texture.h"
#include "log/log_stream.h"

#include <utility>

#include <stdlib.h> // posix_memalign

namespace ze {
namespace {

constexpr size_t kStagingAlignment = 64;

/// A group Y, U, Y, V in each row for every two pixels begun.
bool allocateStagingBuffer(ZecImage& staging, FrameSize size) {
    const size_t pitch = static_cast<size_t>(halfUp(size.width)) * 4;
    void* buffer = nullptr;
    if (posix_memalign(&buffer, kStagingAlignment, pitch * static_cast<size_t>(size.height)) != 0) {
        ZeLogError() << "buffer is null";
        return false;
    }
    staging.planes[0] = static_cast<uint8_t*>(buffer);
    staging.pitches[0] = static_cast<int32_t>(pitch);
    return true;
}

void freeStagingBuffer(ZecImage& staging) {
    free(staging.planes[0]);
    staging.planes[0] = nullptr;
}

bool createFrameTexture(GLuint& texture, FrameSize size) {
    texture = createTexture(size, GL_RGBA);
    return texture != 0;
}

void discardFrameTextures(ZecRenderCore& core) {
    discardTexture(core.inputTexture);
    discardTexture(core.scratchTexture);
    discardTexture(core.outputTexture);
}

} // namespace

void StagingDeleter::operator()(ZecImage* staging) const {
    freeStagingBuffer(*staging);
    delete staging;
}

bool isConfiguredFor(const ZecRenderCore& core, const FrameDescription& frame) {
    const bool isComplete = core.configured && core.staging->planes[0] && core.inputTexture &&
                            core.scratchTexture && core.outputTexture;
    return isComplete && core.frame.size == frame.size && core.frame.pixelFormat == frame.pixelFormat;
}

bool rebuildFrameResources(ZecRenderCore& core, FrameSize size) {
    freeStagingBuffer(*core.staging);
    discardFrameTextures(core);

    if (!allocateStagingBuffer(*core.staging, size))
        return false;
    if (core.framebuffer == 0)
        core.framebuffer = createFramebuffer();
    return createFrameTexture(core.inputTexture, size) && createFrameTexture(core.scratchTexture, size) &&
           createFrameTexture(core.outputTexture, size);
}

void keepSnapshot(ZecRenderCore& core, OwnedContext snapshot) {
    core.keptSnapshot.reset(snapshot.release());
}

bool releaseRenderCore(ZecRenderCore& core) {
    OwnedContext callerContext = snapshotCurrentContext(std::move(core.keptSnapshot));
    if (!core.context || !makeContextCurrent(*core.context)) {
        ZeLogError() << "There is no opengl context";
        keepSnapshot(core, std::move(callerContext));
        return false;
    }

    core.converter.reset();
    deleteFramebuffer(&core.framebuffer);
    core.staging.reset();
    discardFrameTextures(core);
    core.context.reset();

    if (callerContext)
        makeContextCurrent(*callerContext); // and released at the end of this function
    return true;
}

} // namespace ze
