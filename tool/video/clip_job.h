// One clip to be rendered.

#pragma once

#include "tool/video/clip_container.h"
#include "tool/video/clip_reader.h"
#include "tool/video/video_encoder.h"

namespace ze::tool {

/// How a run says how far it is.
enum class ProgressKind {
    line, ///< On a terminal.
    json, ///< An object a line, wherever standard error goes.
};

struct ClipJob {
    std::string input;
    std::string output;
    std::string compare; ///< Empty for no clip of before and after.
    const ClipContainer* container = nullptr;
    const ClipContainer* compareContainer = nullptr;
    ReaderSettings reader;
    EncoderSettings encoder;
    ColorOverride colors;
    ProgressKind progress = ProgressKind::line;
};

} // namespace ze::tool
