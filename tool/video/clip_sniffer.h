// Pictures and moving pictures told apart.

#pragma once

#include <string>

namespace ze::tool {

/// Whether `start`, the first bytes of a file, are those of a moving picture that FFmpeg reads and of no
/// picture that libvips reads by itself; animations in picture formats (GIF, WebP, AVIF) are pictures.
bool beginsLikeClip(const std::string& start);

/// The same for what lies in `path`. A pipe loses nothing by it, see `peekInput`. Throws what that throws,
/// and `Failure` (`badInput`) when there is nothing in it.
bool holdsClip(const std::string& path);

} // namespace ze::tool
