// Pictures and moving pictures told apart.

#pragma once

#include <string>

namespace ze::tool {

/// Whether what lies in `path` begins like a moving picture that FFmpeg reads and like no picture that
/// libvips reads; animations in picture formats (GIF, WebP, AVIF) are pictures. A pipe loses nothing by it,
/// see `peekInput`, which also says what this throws.
bool holdsClip(const std::string& path);

} // namespace ze::tool
