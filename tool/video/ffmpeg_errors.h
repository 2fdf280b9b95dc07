// What FFmpeg says when something fails.

#pragma once

#include "tool/errors.h"

namespace ze::tool {

/// Keeps FFmpeg's messages off standard error, for the whole process; `ffmpegReason` knows them.
void catchFfmpegMessages();

/// The reason of a failed call that returned `error`: the last error that FFmpeg logged on this thread since
/// the last call of this function, or else the meaning of the number. One line.
std::string ffmpegReason(int error);

} // namespace ze::tool
