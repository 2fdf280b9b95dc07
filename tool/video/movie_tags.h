// What MP4 and QuickTime files want to have said about them.

#pragma once

#include <string>

struct AVFormatContext;

namespace ze::tool {

/// Whether `file`, which is to be written, is one of these.
bool isMovie(const AVFormatContext& file);

/// The first of the file's metadata that its format, MP4 or QuickTime, has no place of its own for; empty
/// where there is none, and for other formats.
std::string keyWithoutPlace(const AVFormatContext& file);

/// Gives the streams of such a file their titles as names where they have none, because these are what is
/// read again.
void nameStreams(AVFormatContext& file);

} // namespace ze::tool
