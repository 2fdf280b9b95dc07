#include "tool/errors.h"

#include "core/tools/ze_string.h"
#include "tool/status_line.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <system_error>

namespace ze::tool {
namespace {

constexpr char16_t kReplacement = 0xfffd; // what the library decodes broken UTF-8 to

// A UTF-16 unit as a terminal may have it.
char16_t shown(char16_t unit) {
    if (unit == '\n' || unit == '\r' || unit == '\t')
        return ' ';
    const bool isControl = unit < ' ' || (unit >= 0x7f && unit < 0xa0) || unit == 0x2028 || unit == 0x2029;
    return isControl || unit == kReplacement ? u'?' : unit;
}

} // namespace

std::string printable(std::string_view text) {
    CZeString line = CZeString::fromUtf8(text.data(), static_cast<int>(text.size()));
    for (int i = 0; i < line.size(); ++i)
        line[i] = shown(line.at(i).unicode());
    return line.toUtf8().constData();
}

std::string shortened(std::string text, size_t longest) {
    if (text.size() <= longest)
        return text;
    while (longest > 0 && (static_cast<uint8_t>(text[longest]) & 0xC0) == 0x80)
        --longest;
    return text.substr(0, longest) + "...";
}

void printError(std::string_view text) {
    const std::string line = "zebeauty: " + printable(text) + "\n";
    clearStatus();
    std::fputs(line.c_str(), stderr);
}

std::string systemReason() {
    return std::generic_category().message(errno);
}

} // namespace ze::tool
