// How the frames of a clip are turned for display.

#pragma once

#include "tool/video/clip_container.h"

#include <cstdint>
#include <string>

struct AVFrame;
struct AVStream;

namespace ze::tool {

/// The nine numbers of libavutil/display.h that turn or mirror the frames of `video`; null where they are
/// shown as they are. They live as long as `video`.
const int32_t* displayMatrixOf(const AVStream& video);

/// Gives `video` the display matrix of `first`, its first frame, where that alone has one: H.264 and H.265
/// can say it among the frames, too. Throws `std::bad_alloc`.
void adoptDisplayMatrix(AVStream& video, const AVFrame& first);

/// Whether files of this kind say how frames are turned.
bool holdsRotation(const ClipContainer& container);

/// Throws `Failure` (`usage`) where `video` is turned and `container` is for more than frames but cannot say
/// so; the message names those that can. Where it is for frames alone, a line on standard error says that the
/// rotation is left out. Both begin with `name`.
void checkRotation(const std::string& name, const ClipContainer& container, const AVStream& video);

} // namespace ze::tool
