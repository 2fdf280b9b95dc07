#include "tool/video/side_by_side.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace ze::tool {
namespace {

constexpr int kVideoBlack = 16;

int evenUp(int size) {
    return (size + 1) / 2 * 2;
}

void copyPlane(const AVFrame& from, AVFrame& to, int plane, int column, int row, int bytes, int rows) {
    for (int y = 0; y < rows; ++y)
        std::memcpy(to.data[plane] + ptrdiff_t{row + y} * to.linesize[plane] + column,
                    from.data[plane] + ptrdiff_t{y} * from.linesize[plane], static_cast<size_t>(bytes));
}

} // namespace

SideBySide::SideBySide(const VideoFormat& half, const int32_t* matrix) : m_format(half) {
    // How far a step along a row and one along a column go to the right on a screen.
    const int64_t alongRow = matrix ? matrix[0] : 1, alongColumn = matrix ? matrix[3] : 0;
    const bool isInRow = std::abs(alongRow) >= std::abs(alongColumn);
    if (isInRow) {
        m_after.column = evenUp(half.width);
        m_format.width += m_after.column;
    } else {
        m_after.row = evenUp(half.height);
        m_format.height += m_after.row;
    }
    if ((isInRow ? alongRow : alongColumn) < 0)
        std::swap(m_before, m_after);
}

FfmpegPtr<AVFrame> SideBySide::withBefore(const AVFrame& before) const {
    FfmpegPtr<AVFrame> both = makeFrame(m_format.layout, m_format.width, m_format.height);
    if (av_frame_copy_props(both.get(), &before) < 0)
        throw std::bad_alloc();
    if (before.width % 2 != 0 || before.height % 2 != 0)
        std::memset(both->data[0], rangeOf(m_format.tags) == ColorRange::full ? 0 : kVideoBlack,
                    static_cast<size_t>(both->linesize[0]) * static_cast<size_t>(both->height));
    copyAt(before, *both, m_before);
    return both;
}

void SideBySide::addAfter(AVFrame& both, const AVFrame& after) const {
    copyAt(after, both, m_after);
}

void SideBySide::copyAt(const AVFrame& from, AVFrame& to, Place place) {
    copyPlane(from, to, 0, place.column, place.row, from.width, from.height);
    copyPlane(from, to, 1, place.column, place.row / 2, evenUp(from.width), evenUp(from.height) / 2);
}

} // namespace ze::tool
