#include "host/frame_planes.h"

#include <cstddef>
#include <cstring>
#include <functional>

namespace zebeauty {
namespace {

ptrdiff_t evenUp(ptrdiff_t size) {
    return (size + 1) / 2 * 2;
}

/// Plane 0 is luma, 1 chroma.
struct Plane {
    Plane(const Frame& frame, const Planes& planes, int index)
        : bytes(index == 0 ? planes.luma : planes.chroma),
          pitch(index == 0 ? planes.lumaPitch : planes.chromaPitch),
          rowBytes(index == 0 ? frame.width : evenUp(frame.width)),
          rows(index == 0 ? frame.height : evenUp(frame.height) / 2) {}

    uint8_t* row(ptrdiff_t index) const { return bytes + index * pitch; }
    uint8_t* end() const { return row(rows - 1) + rowBytes; }

    uint8_t* bytes;
    ptrdiff_t pitch;
    ptrdiff_t rowBytes;
    ptrdiff_t rows;
};

std::optional<std::string> whatIsWrong(const Plane& plane, const std::string& name) {
    if (!plane.bytes)
        return "there is no " + name + " plane";
    if (plane.pitch < plane.rowBytes)
        return "the " + name + " pitch is " + std::to_string(plane.pitch) + ", but a row has " +
               std::to_string(plane.rowBytes) + " bytes";
    return std::nullopt;
}

bool overlap(const Frame& frame, const Planes& output) {
    const std::less<> isBefore; // Orders pointers into different blocks too.
    for (int i : {0, 1})
        for (int j : {0, 1}) {
            const Plane from(frame, frame.planes, i), to(frame, output, j);
            if (isBefore(from.bytes, to.end()) && isBefore(to.bytes, from.end()))
                return true;
        }
    return false;
}

bool isReadableByGl(const Plane& plane) {
    for (ptrdiff_t alignment : {1, 2, 4, 8})
        if (plane.pitch == (plane.rowBytes + alignment - 1) / alignment * alignment)
            return true;
    return false;
}

bool isSame(const Planes& first, const Planes& second) {
    return first.luma == second.luma && first.chroma == second.chroma &&
           first.lumaPitch == second.lumaPitch && first.chromaPitch == second.chromaPitch;
}

void copyRows(const Frame& frame, const Planes& output) {
    for (int i : {0, 1}) {
        const Plane from(frame, frame.planes, i), to(frame, output, i);
        for (ptrdiff_t row = 0; row < from.rows; ++row)
            std::memcpy(to.row(row), from.row(row), static_cast<size_t>(from.rowBytes));
    }
}

} // namespace

std::optional<std::string> whatIsWrong(const Frame& frame, const Planes& output) {
    if (frame.width < 1 || frame.height < 1)
        return "the frame has " + std::to_string(frame.width) + "x" + std::to_string(frame.height) +
               " pixels; both must be at least 1";
    if (frame.format != PixelFormat::nv12 && frame.format != PixelFormat::nv21)
        return "the pixel format is neither NV12 nor NV21";
    for (int i : {0, 1}) {
        const std::string name = i == 0 ? "luma" : "chroma";
        if (auto reason = whatIsWrong(Plane(frame, frame.planes, i), name))
            return reason;
        if (auto reason = whatIsWrong(Plane(frame, output, i), "output " + name))
            return reason;
    }
    return std::nullopt;
}

ZecImage toImage(const Planes& planes) {
    return {{planes.luma, planes.chroma, nullptr}, {planes.lumaPitch, planes.chromaPitch, 0}};
}

bool isReadableByGl(const Frame& frame) {
    return isReadableByGl(Plane(frame, frame.planes, 0)) && isReadableByGl(Plane(frame, frame.planes, 1));
}

Planes packedPlanes(const Frame& frame, std::vector<uint8_t>& buffer) {
    const Plane luma(frame, {}, 0), chroma(frame, {}, 1);
    const ptrdiff_t lumaSize = luma.rows * luma.rowBytes;
    buffer.resize(static_cast<size_t>(lumaSize + chroma.rows * chroma.rowBytes));
    return {buffer.data(), buffer.data() + lumaSize, static_cast<int>(luma.rowBytes),
            static_cast<int>(chroma.rowBytes)};
}

void copyFrame(const Frame& frame, const Planes& output) {
    if (isSame(frame.planes, output))
        return;
    if (!overlap(frame, output)) {
        copyRows(frame, output);
        return;
    }
    std::vector<uint8_t> buffer;
    Frame copy = frame;
    copy.planes = packedPlanes(frame, buffer);
    copyRows(frame, copy.planes);
    copyRows(copy, output);
}

} // namespace zebeauty
