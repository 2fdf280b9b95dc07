// Pictures as PNG and JPEG files.

#pragma once

#include "tool/pictures/picture.h"

#include <optional>
#include <string>

namespace ze::tool {

enum class PictureFormat { png, jpeg };

/// The format that the extension of `path` asks for, in small or capital letters; none for other extensions.
std::optional<PictureFormat> pictureFormatOf(const std::string& path);

/// The bytes of a file that holds `picture`. PNG is exact and keeps transparency. JPEG is 4:4:4 of high
/// quality; transparent pixels are laid over white. Throws `Failure` and `std::bad_alloc`.
std::vector<uint8_t> encodePicture(const Picture& picture, PictureFormat format);

} // namespace ze::tool
