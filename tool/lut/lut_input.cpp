#include "tool/lut/lut_input.h"

#include "tool/errors.h"
#include "tool/files/input_file.h"

#include <string_view>

namespace ze::tool {
namespace {

constexpr size_t kMaxBytes = 256 << 20;
constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
constexpr std::string_view kUtf16Marks[] = {"\xff\xfe", "\xfe\xff"};

std::string withLineFeeds(std::string_view text) {
    std::string lines;
    lines.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\r')
            lines += text[i];
        else if (text.substr(i, 2) != "\r\n")
            lines += '\n';
    return lines;
}

} // namespace

LutInput readLutInput(const std::string& path) {
    LutInput input{path, readWholeInput(path, kMaxBytes)};
    if (input.bytes.empty())
        throw Failure(ExitCode::badInput, path, "is empty");
    return input;
}

std::string plainText(const LutInput& input) {
    std::string_view text = input.bytes;
    for (const std::string_view mark : kUtf16Marks)
        if (text.substr(0, mark.size()) == mark)
            throw Failure(ExitCode::badInput, input.name, "is text in UTF-16; save it as UTF-8");
    if (text.find('\0') != text.npos)
        return input.bytes;
    if (text.substr(0, kUtf8Mark.size()) == kUtf8Mark)
        text.remove_prefix(kUtf8Mark.size());
    return withLineFeeds(text);
}

} // namespace ze::tool
