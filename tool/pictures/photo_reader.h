// Photos from files in whatever format libvips reads.

#pragma once

#include "tool/pictures/memory_limit.h"
#include "tool/pictures/photo.h"

#include <optional>
#include <string>

namespace ze::tool {

/// Color profiles: kept beside the numbers, or applied.
enum class ColorProfiles { kept, convertedToSrgb };

/// Returns the photo in `bytes`; of several frames or pages, the first, and a line on standard error says so.
/// The result stands upright. Gray, palettes, CMYK, Lab, and floats, which are clipped to what a screen
/// shows, become RGB: CMYK, Lab and gray with a profile are converted to sRGB through it. RGB keeps its
/// numbers and its profile unless `profiles` asks for sRGB. 16 bits stay 16 bits.
///
/// `name` is for messages. Throws `Failure`: `badInput` when there is no whole picture in the bytes, or one
/// in a format that is blocked; `failed` when beautifying it would take more than `memory` bytes.
Photo decodePhoto(const std::string& name, const std::string& bytes,
                  ColorProfiles profiles = ColorProfiles::kept, int64_t memory = memoryLimit());

/// The same for the bytes of the file `path`, or of standard input for "-".
Photo readPhoto(const std::string& path, ColorProfiles profiles = ColorProfiles::kept);

/// The name of libvips' loader for a picture whose file begins with the bytes `start`; empty when there is
/// none. Those of ImageMagick (with "Magick" in their names) also claim moving pictures.
std::string photoLoaderOf(const std::string& start);

} // namespace ze::tool
