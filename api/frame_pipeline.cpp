#include "api/frame_pipeline.h"

#include "api/effect_handle.h"
#include "api/plane_copy.h"
#include "api/render_core.h"
#include "api/unpack.h"
#include "convert/read_back.h"
#include "convert/yuv_to_rgb.h"
#include "log/log_stream.h"

#include <utility>

namespace ze {
namespace {

std::vector<ZecEffect*> activeEffects(const std::vector<ZecEffect*>& effects) {
    std::vector<ZecEffect*> active;
    active.reserve(effects.size());
    for (ZecEffect* effect : effects)
        if (effect && isActive(*effect))
            active.push_back(effect);
    return active;
}

/// Makes the core's context current, creating it on the first frame. A context that could not be created
/// stays in the core, and every later frame fails here without a message.
bool enterContext(ZecRenderCore& core) {
    if (core.context)
        return makeContextCurrent(*core.context);
    core.context.reset(new EglContextRecord);
    if (createContext(*core.context))
        return true;
    ZeLogError() << "init opengl context failed";
    return false;
}

/// Hands the thread back to the context it had, unless that is the core's own.
void leaveContext(ZecRenderCore& core, OwnedContext callerContext) {
    if (!callerContext)
        return;
    const EglContextRecord& own = *core.context;
    const bool isOwn = callerContext->context == own.context && callerContext->display == own.display &&
                       callerContext->surface == own.surface;
    if (isOwn) {
        keepSnapshot(core, std::move(callerContext));
        return;
    }
    makeContextCurrent(*callerContext); // and released at the end of this function
}

bool ensureFrameResources(ZecRenderCore& core, const FrameDescription& frame) {
    if (isConfiguredFor(core, frame))
        return true;
    GLint maxTextureSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTextureSize);
    if (maxTextureSize < frame.size.width || maxTextureSize < frame.size.height) {
        ZeLogError() << "Device has no capability to solve the buffer. The max texture size is :"
                     << maxTextureSize;
        return false;
    }
    if (!rebuildFrameResources(core, frame.size))
        return false;
    core.configured = true;
    return true;
}

/// Binds the core's frame buffer and returns what was bound before.
GLuint enterFramebuffer(const ZecRenderCore& core) {
    GLint binding = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &binding);
    const auto previous = static_cast<GLuint>(binding);
    if (previous != core.framebuffer)
        glBindFramebuffer(GL_FRAMEBUFFER, core.framebuffer);
    return previous;
}

void leaveFramebuffer(const ZecRenderCore& core, GLuint previous) {
    if (previous != 0 && previous != core.framebuffer)
        glBindFramebuffer(GL_FRAMEBUFFER, previous);
}

/// Where the effect at `position` among the active ones draws. The last place is counted among all entries of
/// the caller's list: when some are inactive, no effect reaches the output texture.
GLuint chooseTarget(const ZecRenderCore& core, size_t position, size_t entryCount, GLuint previousSource) {
    if (position + 1 == entryCount)
        return core.outputTexture;
    return position == 0 ? core.scratchTexture : previousSource;
}

void runEffects(const ZecRenderCore& core, const std::vector<ZecEffect*>& active, size_t entryCount) {
    GLuint previousSource = 0;
    GLuint source = core.inputTexture;
    for (size_t position = 0; position < active.size(); ++position) {
        const GLuint target = chooseTarget(core, position, entryCount, previousSource);
        renderEffect(*active[position], source, core.frame.size, target);
        previousSource = source;
        source = target;
    }
}

/// All that a frame does in the core's context, which is current.
bool drawFrame(ZecRenderCore& core, const std::vector<ZecEffect*>& active, size_t entryCount,
               const ZecImage& input, const ZecImage& output, const FrameDescription& frame) {
    if (!core.converter)
        core.converter = std::make_unique<ColorConverter>();
    if (!ensureFrameResources(core, frame))
        return false;
    core.frame = frame;

    const GLuint previousFramebuffer = enterFramebuffer(core);
    if (!yuvToRgb(*core.converter, input, frame.color, core.inputTexture, frame.size, frame.isNV21()))
        return false;
    runEffects(core, active, entryCount);
    // What a failed read-back leaves in the staging buffer is written out all the same.
    convertAndReadBack(*core.converter, core.outputTexture, *core.staging, frame.color, frame.size);
    unpackFrame(*core.staging, output, frame.isNV21(), frame.size);
    leaveFramebuffer(core, previousFramebuffer);
    return true;
}

} // namespace

bool renderFrame(ZecRenderCore& core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
                 ZecImage* output, const FrameDescription& frame) {
    const std::vector<ZecEffect*> active = activeEffects(effects);
    if (active.empty()) {
        if (input && output)
            copyFrame(*input, *output, frame.pixelFormat, frame.size);
        return true;
    }
    if (!isValidPixelFormat(frame.pixelFormat)) {
        ZeLogError() << "We only support NV12 and NV21 pixel formats right now!";
        return false;
    }

    OwnedContext callerContext = snapshotCurrentContext(std::move(core.keptSnapshot));
    if (!enterContext(core) || !drawFrame(core, active, effects.size(), *input, *output, frame)) {
        keepSnapshot(core, std::move(callerContext)); // the caller's context is not made current again
        return false;
    }
    leaveContext(core, std::move(callerContext));
    return true;
}

} // namespace ze
