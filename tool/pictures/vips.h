// The picture library libvips, set up once, and its errors.

#pragma once

#include "tool/errors.h"

#include <vips/vips8>

namespace ze::tool {

/// Starts libvips, once; any thread may call. Its warnings stay off standard error and nothing is cached.
/// Loaders and savers that libvips calls untrusted are blocked until `allowUntrustedFormats`.
void startVips();

/// Lifts the block, for the whole process.
void allowUntrustedFormats();

/// The names of all that the header of `image` holds.
std::vector<std::string> fieldsOf(const vips::VImage& image);

/// Whether the loader or saver of this name, which libvips has, is blocked.
bool isBlocked(const char* operation);

/// What libvips says about its last failure on this thread, as one line.
std::string vipsReason(const vips::VError& error);

} // namespace ze::tool
