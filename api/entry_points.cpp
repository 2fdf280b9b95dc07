#include "api/effect_handle.h"
#include "api/frame_pipeline.h"
#include "api/render_core.h"
#include "api/ze_beauty_effect.h"
#include "effects/beauty/beauty_effect.h"
#include "effects/lut/lut_effect.h"
#include "gl/egl_context.h"
#include "log/log_stream.h"

using namespace ze;

ZecRenderCore* ZecCreateRenderCore() noexcept {
    return new ZecRenderCore;
}

bool ZecDestroyRenderCore(ZecRenderCore* core) noexcept {
    if (!releaseRenderCore(*core))
        return false;
    delete core;
    return true;
}

ZecEffect* ZecCreateEffect(int type) noexcept {
    return new ZecEffect{type, makeEffect(type)};
}

bool ZecDestoryEffect(ZecEffect* handle) noexcept {
    OwnedContext callerContext = snapshotCurrentContext();
    if (!callerContext) {
        ZeLogError() << "There is no opengl context";
        return false;
    }
    destroyEffect(*handle);
    callerContext.reset();
    delete handle;
    return true;
}

bool ZecSetBeautyParams(ZecEffect* handle, float mixFactor, float whitenFactor) noexcept {
    BeautyEffect* effect = beautyEffectOf(handle);
    if (!effect)
        return false;
    effect->setParams(mixFactor, whitenFactor);
    return true;
}

bool ZecSetLutParams(ZecEffect* handle, const std::string& lutPath, float intensity) noexcept {
    CLutEffect* effect = lutEffectOf(handle);
    if (!effect)
        return false;
    effect->setParams(CZeString::fromUtf8(lutPath.data(), static_cast<int>(lutPath.size())), intensity);
    return true;
}

bool ZecRender(ZecRenderCore* core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
               ZecImage* output, int pixelFormat, int colorStandard, int colorRange, int width, int height,
               int extra) noexcept {
    if (effects.empty()) {
        ZeLogError() << "effect array is empty.";
        return false;
    }
    if (width <= 0 || height <= 0)
        return false;
    const FrameDescription frame = {pixelFormat, {colorStandard, colorRange}, {width, height}, extra};
    return renderFrame(*core, effects, input, output, frame);
}
