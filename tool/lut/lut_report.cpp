#include "tool/lut/lut_report.h"

#include "effects/lut/lut_format.h"
#include "effects/lut/lut_tables.h"
#include "tool/number_text.h"

#include <cmath>

namespace ze::tool {
namespace {

using lut_format::kVersion; // The only one that the library reads.

constexpr int kDecimals = 3;

template <class Values>
std::string joined(const Values& values, const char* separator) {
    std::string text;
    for (const float value : values)
        text += (text.empty() ? "" : separator) + (std::isfinite(value) ? numberText(value) : "null");
    return text;
}

} // namespace

std::string reportText(const ColorTable& table) {
    const Difference difference = differenceFromIdentity(table);
    const bool isUniform = hasUniformLevels(table.levels);
    std::string text = "version: " + std::to_string(kVersion);
    text += "\nlevels: " + std::to_string(table.levelCount()) + (isUniform ? ", uniform" : ", not uniform");
    if (!isUniform)
        text += "\nlevel values: " + joined(table.levels, " ");
    text += std::string("\ndimension: ") + (table.isThreeDimensional ? "3" : "1");
    text += "\nlargest difference from identity: " + std::to_string(difference.largest) + " of 255";
    if (difference.largest > 0)
        text += ", at input " + joined(difference.largestAt, " ");
    return text + "\nmean difference from identity: " + numberText(difference.mean, kDecimals) + " of 255\n";
}

std::string reportJson(const ColorTable& table) {
    const Difference difference = differenceFromIdentity(table);
    return "{\"version\": " + std::to_string(kVersion) +
           ", \"levels\": " + std::to_string(table.levelCount()) +
           ", \"uniform\": " + (hasUniformLevels(table.levels) ? "true" : "false") + ", \"levelValues\": [" +
           joined(table.levels, ", ") + "], \"dimension\": " + (table.isThreeDimensional ? "3" : "1") +
           ", \"largestDifference\": " + std::to_string(difference.largest) + ", \"largestDifferenceAt\": [" +
           joined(difference.largestAt, ", ") +
           "], \"meanDifference\": " + numberText(difference.mean, kDecimals) + "}\n";
}

} // namespace ze::tool
