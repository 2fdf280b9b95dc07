#include "tool/errors.h"

#include "tool/status_line.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace ze::tool {

void printError(std::string_view text) {
    std::string line = "zebeauty: " + std::string(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, ' ');
    line += '\n';
    clearStatus();
    std::fputs(line.c_str(), stderr);
}

std::string systemReason() {
    return std::generic_category().message(errno);
}

} // namespace ze::tool
