// Photos as the bytes of files.

#pragma once

#include "tool/pictures/photo.h"

#include <optional>
#include <string>

namespace ze::tool {

/// A kind of picture file that can be written.
struct PhotoFormat {
    const char* extension; ///< ".png"
    const char* suffix;    ///< By which libvips knows the saver.
    bool hasQuality;       ///< `SaveOptions::quality` means something.
    bool canBeLossless;    ///< `SaveOptions::lossless` means something, or there is nothing else.
    bool keepsProfile;     ///< Elsewhere colors are converted to sRGB.
};

struct SaveOptions {
    std::optional<int> quality; ///< 1 to 100; libvips' default where it is not set.
    bool lossless = false;
    bool strip = false; ///< Writes pixels alone: no profile, no metadata.
};

/// The format that `extension` (".jpg", in lower case) stands for; null for other extensions.
const PhotoFormat* photoFormatOf(const std::string& extension);

/// The extensions of the formats that libvips can write here, as ".png, .jpg …".
std::string writableExtensions();

/// Throws `Failure` (`usage`) when `format` has no quality, cannot be lossless or cannot be written here, and
/// `options` or its use ask for that.
void checkSaveOptions(const PhotoFormat& format, const SaveOptions& options);

/// The bytes of a file that holds `photo`, with its profile and metadata as far as the format and libvips can
/// hold them. Throws `Failure` (`failed`).
std::string encodePhoto(const Photo& photo, const PhotoFormat& format, const SaveOptions& options = {});

} // namespace ze::tool
