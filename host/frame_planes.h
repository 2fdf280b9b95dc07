// The planes of a frame: checks, copies, and which rows OpenGL ES can read as they lie.

#pragma once

#include "host/beautifier.h"

#include "convert/ze_image.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zebeauty {

/// Why `frame` cannot be processed to `output`; nothing when it can. The rest of this header takes frames
/// that have nothing wrong.
std::optional<std::string> whatIsWrong(const Frame& frame, const Planes& output);

/// The record that the library takes.
ZecImage toImage(const Planes& planes);

/// Whether OpenGL ES 2.0 reads the rows of `frame` as they are: it knows no pitch, only rows that start at
/// multiples of 1, 2, 4 or 8 bytes. Rows with more padding would come out sheared.
bool isReadableByGl(const Frame& frame);

/// Makes room in `buffer` for the planes of `frame` without padding; their content is undefined.
Planes packedPlanes(const Frame& frame, std::vector<uint8_t>& buffer);

/// Copies the pixels of `frame` to `output`, which may overlap it or be the same.
void copyFrame(const Frame& frame, const Planes& output);

} // namespace zebeauty
