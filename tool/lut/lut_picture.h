// Look-up tables drawn as pictures.

#pragma once

#include "tool/lut/color_table.h"
#include "tool/pictures/picture.h"

#include <cstddef>

namespace ze::tool {

/// How a picture holds a table. Pictures are squares with sides of t³ pixels, t from 2 to 16, for t² even
/// levels of each channel.
enum class PictureLayout {
    automatic, ///< Whichever of the two makes the smoother table.
    lookup,    ///< t × t tiles: blue chooses the tile, row by row, red the column in it, green the row.
    hald,      ///< Pixels row by row: red changes fastest, blue slowest.
};

/// Which of the two kinds the square `picture` is: `layout` itself unless that is `automatic`. Throws
/// `Failure`
/// (`badInput`) when the size fits no table, and for `automatic` when the table would be rough either way, as
/// it is of a photo.
PictureLayout layoutOf(const Picture& picture, PictureLayout layout);

/// The table in `picture`, whose size fits one, read as `lookup` or `hald`.
ColorTable tableFromPicture(const Picture& picture, PictureLayout layout);

/// The picture of a three-dimensional table with t² even levels, t from 2 to 16, as `lookup` or `hald`.
Picture pictureOf(const ColorTable& table, PictureLayout layout);

/// t for t² levels that a picture can have; 0 for other numbers.
size_t pictureRoot(size_t levelCount);

} // namespace ze::tool
