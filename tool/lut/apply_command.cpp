#include "tool/lut/lut_options.h"
#include "tool/number_text.h"

#include <charconv>
#include <iostream>
#include <optional>

namespace ze::tool {
namespace {

constexpr int kDecimals = 6;

struct ApplyOptions {
    std::string color;
    std::vector<std::string> files;
    ReadOptions reading;
};

std::optional<Color> fromHex(const std::string& text) {
    unsigned rgb = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data() + 1, end, rgb, 16);
    if (text.size() != 7 || result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    const auto channel = [rgb](int shift) { return static_cast<float>(rgb >> shift & 255) / 255; };
    return Color{channel(16), channel(8), channel(0)};
}

// From "0.5,0.25,1" or "#8040ff".
std::optional<Color> parsedColor(const std::string& text) {
    if (text.rfind('#', 0) == 0)
        return fromHex(text);
    const std::vector<float> numbers = parsedNumbers(text);
    if (numbers.size() != 3)
        return std::nullopt;
    for (const float number : numbers)
        if (!(number >= 0 && number <= 1))
            return std::nullopt;
    return Color{numbers[0], numbers[1], numbers[2]};
}

std::string checkColor(const std::string& text) {
    return parsedColor(text) ? ""
                             : "'" + text +
                                   "' is neither three numbers from 0 to 1, as in 0.5,0.25,1, "
                                   "nor a color such as #8040ff";
}

std::string hexText(const Color& color) {
    constexpr char kDigits[] = "0123456789abcdef";
    Clamping ignored;
    std::string text = "#";
    for (const uint8_t value : quantized({0}, {color}, ignored).colors)
        text += {kDigits[value / 16], kDigits[value % 16]};
    return text;
}

void showColor(const ApplyOptions& options) {
    std::vector<Color> colors = {parsedColor(options.color).value()};
    applyChain(readChain(options.files, options.reading), colors);
    for (const float value : colors[0])
        std::cout << numberText(double{value}, kDecimals) << ' ';
    std::cout << hexText(colors[0]) << '\n';
}

} // namespace

void addApplyCommand(CLI::App& lut) {
    CLI::App* command = lut.add_subcommand("apply", "Print what a color becomes");
    const auto options = std::make_shared<ApplyOptions>();
    command
        ->add_option("COLOR", options->color,
                     "Red, green and blue from 0 to 1, as in 0.5,0.25,1, or '#8040ff' in quotes")
        ->check(checkColor)
        ->required();
    command
        ->add_option("FILE", options->files,
                     "What to apply, one file after the other: " + std::string(kReadableFiles))
        ->required();
    addReadOptions(*command, options->reading);
    command->callback([options] { showColor(*options); });
}

} // namespace ze::tool
