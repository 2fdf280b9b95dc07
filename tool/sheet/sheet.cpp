#include "tool/sheet/sheet.h"

#include "tool/errors.h"

#include <algorithm>

namespace ze::tool {
namespace {

using vips::VImage;

constexpr double kWhite = 255;
constexpr int kGap = 16;
constexpr int kLabelMargin = 6;
constexpr int kCharactersAcross = 36; // of a label on a tile
constexpr int kPointsPerInch = 72;

// Black letters on white, in lines that fit `width`.
VImage drawnLabel(const std::string& label, int width) {
    const int fontSize = std::max(10, 2 * width / kCharactersAcross);
    gchar* const escaped = g_markup_escape_text(printable(label).c_str(), -1);
    const std::string markup = escaped;
    g_free(escaped);
    const VImage letters =
        VImage::text(markup.c_str(), VImage::option()
                                         ->set("font", ("sans " + std::to_string(fontSize)).c_str())
                                         ->set("dpi", kPointsPerInch)
                                         ->set("width", width)
                                         ->set("wrap", VIPS_TEXT_WRAP_WORD_CHAR));
    return letters.invert()
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_B_W))
        .colourspace(VIPS_INTERPRETATION_sRGB);
}

VImage white(int width, int height) {
    return (VImage::black(width, height, VImage::option()->set("bands", 3)) + kWhite)
        .cast(VIPS_FORMAT_UCHAR)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage onWhite(const VImage& image, int width, int height, int top) {
    return image.embed(0, top, width, height, VImage::option()->set("extend", VIPS_EXTEND_WHITE));
}

VImage scaledDown(const Photo& photo, int width) {
    VImage pixels = photo.thumbnail_image(
        width, VImage::option()->set("height", VIPS_MAX_COORD)->set("size", VIPS_SIZE_DOWN));
    if (pixels.has_alpha())
        pixels = pixels.flatten(VImage::option()->set("background", whiteOf(pixels)));
    return photoOf(pixelsOf(pixels));
}

} // namespace

Sheet::Sheet(int columns, int tileWidth) : m_columns(columns), m_tileWidth(tileWidth) {}

void Sheet::add(const Photo& photo, const std::string& label) {
    if (m_tiles.empty())
        m_first = photo;
    const VImage pixels = scaledDown(photo, m_tileWidth);
    m_tiles.push_back({pixels, drawnLabel(label, pixels.width())});
}

void Sheet::endRow() {
    while (m_tiles.size() % static_cast<size_t>(m_columns) != 0)
        m_tiles.push_back({});
}

Photo Sheet::picture() const {
    const VImage& first = m_tiles.front().photo;
    int labelHeight = 0;
    for (const Tile& tile : m_tiles)
        if (!tile.label.is_null())
            labelHeight = std::max(labelHeight, tile.label.height() + 2 * kLabelMargin);
    const int height = first.height() + labelHeight;
    std::vector<VImage> tiles;
    for (const Tile& tile : m_tiles) {
        if (tile.photo.is_null()) {
            tiles.push_back(white(first.width(), height));
            continue;
        }
        const VImage label = onWhite(tile.label, first.width(), labelHeight, kLabelMargin);
        tiles.push_back(tile.photo.join(label, VIPS_DIRECTION_VERTICAL));
    }
    const VImage all = VImage::arrayjoin(
        tiles, VImage::option()->set("across", m_columns)->set("shim", kGap)->set("background", kWhite));
    const VImage framed = all.embed(kGap, kGap, all.width() + 2 * kGap, all.height() + 2 * kGap,
                                    VImage::option()->set("extend", VIPS_EXTEND_WHITE));
    return withProfileOf(m_first, framed.copy_memory());
}

} // namespace ze::tool
