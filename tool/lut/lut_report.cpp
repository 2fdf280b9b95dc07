#include "tool/lut/lut_report.h"

#include "effects/lut/lut_format.h"
#include "effects/lut/lut_tables.h"
#include "tool/errors.h"
#include "tool/lut/lut_bake.h"
#include "tool/number_text.h"

#include <cmath>

#include <nlohmann/json.hpp>

namespace ze::tool {
namespace {

using Json = nlohmann::ordered_json;
using lut_format::kVersion; // The only one that the library reads.

constexpr int kDecimals = 3;

template <class Values>
std::string joined(const Values& values, const char* separator) {
    std::string text;
    for (const float value : values)
        text += (text.empty() ? "" : separator) + (std::isfinite(value) ? numberText(value) : "null");
    return text;
}

std::string listText(const std::vector<std::string>& values) {
    std::string text;
    for (const std::string& value : values)
        text += (text.empty() ? "" : ", ") + printable(value);
    return text;
}

ColorTable measuredTable(const ColorTransform& transform) {
    Clamping ignored;
    return transform.isLutFile() ? *transform.table
                                 : bakeLut({transform}, evenLevels(kDefaultLevels), ignored);
}

std::string tableText(const ColorTable& table) {
    const bool isUniform = hasUniformLevels(table.levels);
    std::string text = "version: " + std::to_string(kVersion);
    text += "\nlevels: " + std::to_string(table.levelCount()) + (isUniform ? ", uniform" : ", not uniform");
    if (!isUniform)
        text += "\nlevel values: " + joined(table.levels, " ");
    return text + "\ndimension: " + (table.isThreeDimensional ? "3" : "1") + "\n";
}

// The steps of a grading file, the entries of a picture.
std::vector<std::string> stepsOf(const ColorTransform& transform) {
    if (!transform.table)
        return transform.steps;
    return {"3D table of " + std::to_string(transform.table->levelCount()) + " levels"};
}

std::string contentText(const ColorTransform& transform) {
    std::string text = "content: " + listText(stepsOf(transform)) + "\n";
    if (!transform.corrections.empty())
        text += "color corrections: " + listText(transform.corrections) + "\n";
    if (!transform.id.empty())
        text += "id: " + printable(transform.id) + "\n";
    if (!transform.description.empty())
        text += "description: " + printable(transform.description) + "\n";
    return text;
}

// As in the text: the nearest double to a float has more digits.
double shortest(float value) {
    return std::isfinite(value) ? Json::parse(numberText(value)).get<double>() : value;
}

double rounded(double value) {
    return Json::parse(numberText(value, kDecimals)).get<double>();
}

// Numbers that are not finite become null.
template <class Values>
Json numbersJson(const Values& values) {
    Json list = Json::array();
    for (const float value : values)
        list.push_back(shortest(value));
    return list;
}

Json tableJson(const ColorTable& table) {
    return {{"version", kVersion},
            {"levels", table.levelCount()},
            {"uniform", hasUniformLevels(table.levels)},
            {"levelValues", numbersJson(table.levels)},
            {"dimension", table.isThreeDimensional ? 3 : 1}};
}

Json contentJson(const ColorTransform& transform) {
    return {{"content", stepsOf(transform)},
            {"corrections", transform.corrections},
            {"id", transform.id},
            {"description", transform.description}};
}

} // namespace

std::string reportText(const ColorTransform& transform) {
    const ColorTable table = measuredTable(transform);
    const Difference difference = differenceFromIdentity(table);
    std::string text = "format: " + transform.format + "\n";
    text += transform.isLutFile() ? tableText(table) : contentText(transform);
    text += "largest difference from identity: " + std::to_string(difference.largest) + " of 255";
    if (difference.largest > 0)
        text += ", at input " + joined(difference.largestAt, " ");
    return text + "\nmean difference from identity: " + numberText(difference.mean, kDecimals) + " of 255\n";
}

std::string reportJson(const ColorTransform& transform) {
    const ColorTable table = measuredTable(transform);
    const Difference difference = differenceFromIdentity(table);
    Json object = {{"format", transform.format}};
    object.update(transform.isLutFile() ? tableJson(table) : contentJson(transform));
    object["largestDifference"] = difference.largest;
    object["largestDifferenceAt"] = numbersJson(difference.largestAt);
    object["meanDifference"] = rounded(difference.mean);
    constexpr int kOneLine = -1;
    constexpr bool kEscapesAllButAscii = true; // control characters of a description above all
    return object.dump(kOneLine, ' ', kEscapesAllButAscii, Json::error_handler_t::replace) + '\n';
}

} // namespace ze::tool
