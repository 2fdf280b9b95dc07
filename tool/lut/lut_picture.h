// Look-up tables drawn as pictures.

#pragma once

#include "tool/lut/lut_table.h"
#include "tool/pictures/picture.h"

#include <string>

namespace ze::tool {

/// Both kinds are squares with a side of t³ pixels, t from 2 to 16, for the t² even levels of a channel.
enum class PictureLayout {
    automatic, ///< The kind in which neighbors on the lattice differ less.
    lookup,    ///< t × t tiles: blue chooses the tile, row by row, red the column in it, green the row.
    hald,      ///< Pixels row by row: red changes fastest, blue slowest.
};

/// Whether the file `path` begins like a picture: PNG, JPEG, TIFF or WebP. Throws `Failure` (`badInput`) when
/// it cannot be read.
bool isPictureFile(const std::string& path);

/// The table in `picture`; transparency is ignored. Throws `Failure` (`badInput`) when the size fits none,
/// and for `automatic` when in neither kind neighbors are alike, as in a photo.
LutTable tableFromPicture(const Picture& picture, PictureLayout layout);

} // namespace ze::tool
