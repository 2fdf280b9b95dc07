#include "tool/chart/chart.h"
#include "tool/commands.h"
#include "tool/errors.h"
#include "tool/files/output_file.h"
#include "tool/pictures/photo_options.h"

#include <charconv>
#include <memory>

namespace ze::tool {
namespace {

constexpr int kLargestSide = 16384;

struct ChartOptions {
    std::string output;
    std::string size = "640x480";
    PhotoOptions photo;
};

struct Size {
    int width = 0;
    int height = 0;
};

// From "640x480"; both numbers are 0 when `text` is anything else.
Size parseSize(const std::string& text) {
    Size size;
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    if (width.ec != std::errc() || width.ptr == end || *width.ptr != 'x')
        return {};
    const auto height = std::from_chars(width.ptr + 1, end, size.height);
    return height.ec == std::errc() && height.ptr == end ? size : Size{};
}

std::string checkSize(const std::string& text) {
    const Size size = parseSize(text);
    const bool valid =
        size.width >= 1 && size.width <= kLargestSide && size.height >= 1 && size.height <= kLargestSide;
    return valid ? "" : "'" + text + "' is no size from 1x1 to 16384x16384";
}

void writeChart(const ChartOptions& options) {
    options.photo.checkWritable(options.output);
    const Size size = parseSize(options.size);
    const Photo chart = withFileInError(
        options.output, [&] { return photoOf(drawChart(size.width, size.height, ChartNoise::speckled)); });
    const std::string bytes = options.photo.encoded(options.output, chart);
    OutputFile(options.output, bytes).commit();
}

} // namespace

void addChartCommand(CLI::App& program) {
    CLI::App* command = program.add_subcommand("chart", "Draw a test chart of skin tones and other colors");
    const auto options = std::make_shared<ChartOptions>();
    command->add_option("OUTPUT", options->output, "Picture to write")->required();
    command->add_option("--size", options->size, "Width and height in pixels")
        ->type_name("WIDTHxHEIGHT")
        ->check(checkSize)
        ->capture_default_str();
    options->photo.addOutputOptions(*command);
    command->callback([options] { writeChart(*options); });
}

} // namespace ze::tool
