#include "tool/lut/number_check.h"

#include "tool/lut/text_blanking.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>

namespace ze::tool {
namespace {

const char* afterSign(const std::string& word) {
    return word.data() + (word[0] == '+' || word[0] == '-' ? 1 : 0);
}

bool isNumber(const std::string& word) {
    double value = 0;
    const auto result = std::from_chars(afterSign(word), word.data() + word.size(), value);
    return result.ec == std::errc() && result.ptr == word.data() + word.size() &&
           std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()); // false for NaN
}

// "1D" and "3D" of .csp and Houdini files, "3DMESH" of Lustre's .3dl.
bool isKeyword(const std::string& word) {
    const auto isLetter = [](char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; };
    return word.size() >= 2 && (word[0] == '1' || word[0] == '3') && (word[1] == 'D' || word[1] == 'd') &&
           std::all_of(word.begin() + 2, word.end(), isLetter);
}

// Also true for malformed numbers.
bool isMeantAsNumber(const std::string& word) {
    if (isKeyword(word))
        return false;
    double ignored = 0;
    const char c = *afterSign(word);
    return (c >= '0' && c <= '9') || c == '.' ||
           std::from_chars(afterSign(word), word.data() + word.size(), ignored).ec == std::errc();
}

// The first word on a line of numbers that is not one; empty when all are, or when the line has other words.
std::string badNumberIn(const std::string& line) {
    std::istringstream words(line);
    std::string bad;
    for (std::string word; words >> word && word[0] != '#';) { // "1.#QNAN" is no comment
        if (!isMeantAsNumber(word))
            return "";
        if (bad.empty() && !isNumber(word))
            bad = word;
    }
    return bad;
}

// In XML, tables are the content of elements named Array.
void blankOutAllButArrays(std::string& text) {
    for (size_t at = 0; at < text.size();) {
        const size_t inside = text.find('>', text.find("<Array", at));
        blankOut(text, at, inside == text.npos ? inside : inside + 1);
        at = std::min(text.find('<', inside), text.size());
    }
}

void blankOutMetadata(std::string& text) {
    const size_t begin = text.find("BEGIN METADATA");
    if (begin != text.npos)
        blankOut(text, begin, text.find("END METADATA", begin));
}

bool isXml(const std::string& text) {
    const size_t first = text.find_first_of("<0123456789#\n");
    return first != text.npos && text[first] == '<';
}

} // namespace

std::string findBadNumber(std::string text) {
    if (isXml(text))
        blankOutAllButArrays(text);
    else
        blankOutMetadata(text);
    std::istringstream lines(text);
    std::string line;
    for (size_t number = 1; std::getline(lines, line); ++number) {
        const std::string bad = badNumberIn(line);
        if (!bad.empty())
            return "line " + std::to_string(number) + ": '" + bad + "' is no finite number";
    }
    return "";
}

} // namespace ze::tool
