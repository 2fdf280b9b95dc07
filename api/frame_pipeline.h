// The way of a frame: which effects run, in which resources, from the input planes to the output planes.

#pragma once

#include "api/frame_description.h"
#include "api/ze_beauty_effect.h"

namespace ze {

/// The body of ZecRender for a non-empty `effects` and a positive size; its contract stands there.
bool renderFrame(ZecRenderCore& core, const std::vector<ZecEffect*>& effects, const ZecImage* input,
                 ZecImage* output, const FrameDescription& frame);

} // namespace ze
