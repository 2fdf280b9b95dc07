// A line on the terminal that is written over again and again.

#pragma once

#include <string>

namespace ze::tool {

/// Shows `text` in the place of what was shown before, without an end of line, on standard error.
void showStatus(const std::string& text);

/// Takes the line away, so that something else can be printed. Does nothing when none is shown.
void clearStatus();

} // namespace ze::tool
