#include "tool/lut/grading_reason.h"

#include "tool/errors.h"

#include <OpenColorIO/OpenColorIO.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace ze::tool {
namespace {

namespace ocio = OCIO_NAMESPACE;

constexpr size_t kLongestReason = 200;
constexpr std::string_view kFailed = "Failed alt format ";

struct Reason {
    std::string reader;
    std::string text;
    int line = INT_MAX; // A reason that names none is about the whole file and counts as the furthest.
};

bool isFor(const std::string& reader, const std::string& extension) {
    using Formats = ocio::FileTransform;
    for (int i = 0; i < Formats::GetNumFormats(); ++i)
        if ("." + std::string(Formats::GetFormatExtensionByIndex(i)) == extension &&
            Formats::GetFormatNameByIndex(i) == reader)
            return true;
    return false;
}

// The reason proper: without the names of the format and the file before it.
std::string tidied(std::string reason, const std::string& path) {
    const size_t name = reason.find(path + ")");
    if (name != reason.npos)
        reason.erase(0, name + path.size() + 1);
    std::string text;
    for (const char c : reason)
        if (std::isspace(static_cast<unsigned char>(c)) == 0)
            text += c;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    text.erase(0, text.find_first_not_of(" ."));
    text.erase(text.find_last_not_of(" .") + 1);
    return shortened(text, kLongestReason);
}

int lineIn(const std::string& reason) {
    const size_t at = reason.find("line (");
    return at == reason.npos ? INT_MAX : std::atoi(reason.c_str() + at + 6);
}

// From "Failed alt format READER:  REASON".
std::vector<Reason> allReasonsIn(const std::string& log, const std::string& path) {
    std::vector<Reason> reasons;
    for (size_t at = log.find(kFailed); at != log.npos;) {
        const size_t next = log.find(kFailed, at + 1);
        const std::string entry = log.substr(at + kFailed.size(), next - at - kFailed.size());
        const size_t colon = std::min(entry.find(':'), entry.size() - 1);
        const std::string text = tidied(entry.substr(colon + 1), path);
        reasons.push_back({entry.substr(0, colon), text, lineIn(text)});
        at = next;
    }
    return reasons;
}

} // namespace

std::string reasonsIn(const std::string& log, const std::string& extension, const std::string& path) {
    std::vector<Reason> reasons = allReasonsIn(log, path);
    std::erase_if(reasons, [&](const Reason& reason) { return !isFor(reason.reader, extension); });
    int furthest = 0;
    for (const Reason& reason : reasons)
        furthest = std::max(furthest, reason.line);
    std::string text;
    std::string last;
    for (const Reason& reason : reasons) {
        if (reason.line == furthest && reason.text != last)
            text += (text.empty() ? "" : "; ") + reason.reader + ": " + reason.text;
        last = reason.text;
    }
    return text;
}

} // namespace ze::tool
