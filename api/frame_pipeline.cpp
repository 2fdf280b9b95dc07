#include "api/frame_pipeline.h"

#include "api/effect_handle.h"
#include "api/plane_copy.h"
#include "api/plane_geometry.h"
#include "api/render_core.h"
#include "api/unpack.h"
#include "convert/color_converter.h"
#include "convert/read_back.h"
#include "convert/yuv_to_rgb.h"
#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "gl/egl_context.h"
#include "log/log_stream.h"

namespace ze {
namespace {

constexpr int kNV21 = 1;

bool isActive(const ZecEffect& handle) {
    if (handle.type == kBeautyType)
        return !static_cast<const BeautyEffect*>(handle.effect)->isInactive();
    if (handle.type == kLutType)
        return !static_cast<const CLutEffect*>(handle.effect)->isBypass();
    return false;
}

std::vector<ZecEffect*> activeEffects(const std::vector<ZecEffect*>& effects) {
    std::vector<ZecEffect*> active;
    active.reserve(effects.size());
    for (ZecEffect* effect : effects)
        if (effect && isActive(*effect))
            active.push_back(effect);
    return active;
}

/// Makes the core's context current, creating it on the first frame. A context whose creation failed stays in
/// the core, and every later frame fails here without a message.
bool enterContext(ZecRenderCore& core) {
    if (core.context)
        return makeContextCurrent(*core.context);
    core.context = new EglContextRecord;
    if (createContext(*core.context))
        return true;
    ZeLogError() << "init opengl context failed";
    return false;
}

/// Hands the thread back to the context it had. A snapshot of the core's own context is left allocated.
void leaveContext(const ZecRenderCore& core, EglContextRecord* callerContext) {
    if (!callerContext)
        return;
    const EglContextRecord* own = core.context;
    const bool isOwn = own && callerContext->context == own->context &&
                       callerContext->display == own->display && callerContext->surface == own->surface;
    if (isOwn)
        return;
    makeContextCurrent(*callerContext);
    releaseContext(*callerContext);
    delete callerContext;
}

bool ensureFrameResources(ZecRenderCore& core, int pixelFormat, int width, int height) {
    if (isConfiguredFor(core, pixelFormat, width, height))
        return true;
    GLint maxTextureSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTextureSize);
    if (maxTextureSize < width || maxTextureSize < height) {
        ZeLogError() << "Device has no capability to solve the buffer. The max texture size is :"
                     << maxTextureSize;
        return false;
    }
    if (!rebuildFrameResources(core, width, height))
        return false;
    core.configured = true;
    return true;
}

/// Binds the core's frame buffer and returns what was bound before.
GLuint enterFramebuffer(const ZecRenderCore& core) {
    GLint previous = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &previous);
    if (GLuint(previous) != core.framebuffer)
        glBindFramebuffer(GL_FRAMEBUFFER, core.framebuffer);
    return GLuint(previous);
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

/// Nobody asks whether an effect could draw: it has said so in the log.
void draw(const ZecRenderCore& core, const ZecEffect& handle, GLuint source, GLuint target) {
    const auto width = uint32_t(core.width), height = uint32_t(core.height);
    if (handle.type == kLutType)
        static_cast<CLutEffect*>(handle.effect)->draw(source, width, height, target);
    else
        static_cast<BeautyEffect*>(handle.effect)->render(source, width, height, target);
}

void runEffects(const ZecRenderCore& core, const std::vector<ZecEffect*>& active, size_t entryCount) {
    GLuint previousSource = 0;
    GLuint source = core.inputTexture;
    for (size_t position = 0; position < active.size(); ++position) {
        const GLuint target = chooseTarget(core, position, entryCount, previousSource);
        draw(core, *active[position], source, target);
        previousSource = source;
        source = target;
    }
}

} // namespace

bool renderFrame(ZecRenderCore& core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
                 ZecImage* output, int pixelFormat, int colorStandard, int colorRange, int width, int height,
                 int extra) {
    const std::vector<ZecEffect*> active = activeEffects(effects);
    if (active.empty()) {
        if (input && output)
            copyFrame(*input, *output, pixelFormat, width, height);
        return true;
    }
    if (!isValidPixelFormat(pixelFormat)) {
        ZeLogError() << "We only support NV12 and NV21 pixel formats right now!";
        return false;
    }

    // A frame that fails from here on leaves the core's context current and the snapshot allocated.
    EglContextRecord* callerContext = snapshotCurrentContext();
    if (!enterContext(core))
        return false;
    if (!core.converter)
        core.converter = new ColorConverter;
    if (!ensureFrameResources(core, pixelFormat, width, height))
        return false;
    core.pixelFormat = pixelFormat;
    core.colorStandard = colorStandard;
    core.colorRange = colorRange;
    core.width = width;
    core.height = height;
    core.extra = extra;

    const GLuint previousFramebuffer = enterFramebuffer(core);
    if (!yuvToRgb(*core.converter, *input, colorStandard, colorRange, core.inputTexture, uint32_t(width),
                  uint32_t(height), pixelFormat == kNV21))
        return false;
    runEffects(core, active, effects.size());
    readBack(*core.converter, core.outputTexture, *core.staging, colorStandard, colorRange, uint32_t(width),
             uint32_t(height));
    unpackFrame(*core.staging, *output, pixelFormat == kNV21, width, height);
    leaveFramebuffer(core, previousFramebuffer);
    leaveContext(core, callerContext);
    return true;
}

} // namespace ze
