// Look-up tables drawn as pictures.

#pragma once

#include "tool/lut/color_table.h"
#include "tool/pictures/picture.h"

#include <string>

namespace ze::tool {

/// How a picture holds a table. Pictures are squares with sides of t³ pixels, t from 2 to 16, for t² even
/// levels of each channel.
enum class PictureLayout {
    automatic, ///< Whichever of the two makes the smoother table.
    lookup,    ///< t × t tiles: blue chooses the tile, row by row, red the column in it, green the row.
    hald,      ///< Pixels row by row: red changes fastest, blue slowest.
};

/// Whether the file `path` begins like a picture: PNG, JPEG, TIFF or WebP. Throws `Failure` (`badInput`) when
/// it cannot be read.
bool isPictureFile(const std::string& path);

/// Returns the table in `picture`, ignoring transparency. Throws `Failure` (`badInput`) when the size fits no
/// table, and for `automatic` when the table would be rough either way, as it is of a photo.
ColorTable tableFromPicture(const Picture& picture, PictureLayout layout);

} // namespace ze::tool
