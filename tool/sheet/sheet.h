// Many versions of one photo in one picture, to choose from.

#pragma once

#include "tool/pictures/photo.h"

#include <string>
#include <vector>

namespace ze::tool {

/// Collects tiles of one size row by row, each with a label below it, on white.
class Sheet {
public:
    /// `columns` tiles side by side, each at most `tileWidth` pixels wide.
    Sheet(int columns, int tileWidth);

    /// Adds `photo`, scaled down to the width of a tile. All photos have one size.
    void add(const Photo& photo, const std::string& label);

    /// Leaves the rest of the row empty.
    void endRow();

    /// The tiles that were added, at least one, in the color profile of the first.
    Photo picture() const;

private:
    struct Tile {
        vips::VImage photo; // null where the tile is empty
        vips::VImage label; // as high as its lines need
    };

    Photo m_first;
    int m_columns;
    int m_tileWidth;
    std::vector<Tile> m_tiles;
};

} // namespace ze::tool
