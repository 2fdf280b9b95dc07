// The library tells its reasons to the Android log only; here they are caught for the program's error line.

#pragma once

#include <string>

namespace ze::tool {

/// From here on the messages of the library do not go to standard error; the last error among them is
/// remembered, and forgotten again by the next call.
void startLibraryLog();

/// The remembered error; empty when the library has named none.
std::string libraryReason();

} // namespace ze::tool
