// The library behind the frames of the tool.

#pragma once

#include "host/beautifier.h"
#include "tool/render/yuv_frame.h"

namespace ze::tool {

/// Beautifies frames; the library's log goes into the program's error line.
class RenderSession {
public:
    RenderSession();

    /// Changes `frame` in place; with settings that change nothing it keeps every byte. Throws `Failure`
    /// (`failed`) with the library's reason, also when the library has logged an error and gone on.
    void render(YuvFrame& frame, const zebeauty::Settings& settings);
    void render(const zebeauty::Frame& frame, const zebeauty::Settings& settings);

private:
    zebeauty::Beautifier m_beautifier;
};

} // namespace ze::tool
