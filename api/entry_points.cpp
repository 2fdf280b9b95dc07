#include "api/effect_handle.h"
#include "api/frame_pipeline.h"
#include "api/render_core.h"
#include "api/ze_beauty_effect.h"
#include "effects/beauty/beauty_effect.h"
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
    return new ZecEffect{type, type == kBeautyType ? new BeautyEffect : nullptr};
}

bool ZecDestoryEffect(ZecEffect* handle) noexcept {
    EglContextRecord* callerContext = snapshotCurrentContext();
    if (!callerContext) {
        ZeLogError() << "There is no opengl context";
        return false;
    }
    if (handle->type == kBeautyType)
        delete static_cast<BeautyEffect*>(handle->effect);
    handle->effect = nullptr;
    releaseContext(*callerContext);
    delete callerContext;
    delete handle;
    return true;
}

bool ZecSetBeautyParams(ZecEffect* handle, float mixFactor, float whitenFactor) noexcept {
    if (!handle || !handle->effect || handle->type != kBeautyType)
        return false;
    static_cast<BeautyEffect*>(handle->effect)->setParams(mixFactor, whitenFactor);
    return true;
}

bool ZecSetLutParams(ZecEffect* /*handle*/, const std::string& /*lutPath*/, float /*intensity*/) noexcept {
    return false; // handles of this type hold no effect yet
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
    return renderFrame(*core, effects, input, output, pixelFormat, colorStandard, colorRange, width, height,
                       extra);
}
