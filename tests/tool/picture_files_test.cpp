#include "tests/support/temp_directory.h"
#include "tests/tool/png_bytes.h"
#include "tool/chart.h"
#include "tool/errors.h"
#include "tool/picture_reader.h"
#include "tool/picture_writer.h"

#include <gtest/gtest.h>

using namespace ze::tool;
using namespace std::string_literals;

namespace {

std::string writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

std::string writePicture(const std::string& path, const Picture& picture) {
    const std::vector<uint8_t> bytes = encodePicture(picture, pictureFormatOf(path).value());
    return writeFile(path, std::string(bytes.begin(), bytes.end()));
}

// A segment that says how the camera was held.
std::string exifOrientation(int orientation) {
    return "\xff\xe1\0\x22"s + "Exif\0\0"s + "II*\0\x08\0\0\0"s + "\x01\0"s + "\x12\x01\x03\0\x01\0\0\0"s +
           static_cast<char>(orientation) + "\0\0\0"s + "\0\0\0\0"s;
}

// The letters R, G, B, W of the colours in the four corners, row by row.
std::string cornersOf(const Picture& picture) {
    std::string letters;
    for (const int y : {2, picture.height - 3})
        for (const int x : {2, picture.width - 3}) {
            const Rgb colour = picture.at(x, y);
            const int bits = (colour.red > 127) + 2 * (colour.green > 127) + 4 * (colour.blue > 127);
            letters += "-RG-B--W"[bits];
        }
    return letters;
}

} // namespace

TEST(PictureReader, ReadsEveryKindOfPng) {
    const std::string palette = pngChunk("PLTE\x0a\x14\x1e\xc8\x64\x32"s);
    const struct {
        const char* name;
        int depth, type;
        std::string row, extra;
        Rgb first, second;
        std::vector<uint8_t> alpha;
    } cases[] = {
        {"grey, 1 bit", 1, 0, "\0\x40"s, "", {0, 0, 0}, {255, 255, 255}, {}},
        {"grey, 2 bits", 2, 0, "\0\x60"s, "", {85, 85, 85}, {170, 170, 170}, {}},
        {"grey", 8, 0, "\0\x05\xf0"s, "", {5, 5, 5}, {240, 240, 240}, {}},
        {"grey, 16 bits", 16, 0, "\0\x80\xff\xfe\x90"s, "", {128, 128, 128}, {254, 254, 254}, {}},
        {"grey and alpha", 8, 4, "\0\x05\x80\xf0\xff"s, "", {5, 5, 5}, {240, 240, 240}, {128, 255}},
        {"RGB", 8, 2, "\0\x01\x02\x03\xfd\xfe\xff"s, "", {1, 2, 3}, {253, 254, 255}, {}},
        {"RGB, 16 bits",
         16,
         2,
         "\0\x12\x34\x80\x00\x80\xff\xff\xff\0\0\x01\x02"s,
         "",
         {18, 128, 128},
         {255, 0, 1},
         {}},
        {"palette", 8, 3, "\0\1\0"s, palette, {200, 100, 50}, {10, 20, 30}, {}},
        {"palette, 1 bit", 1, 3, "\0\x80"s, palette, {200, 100, 50}, {10, 20, 30}, {}},
        {"palette with alpha",
         8,
         3,
         "\0\1\0"s,
         palette + pngChunk("tRNS\x07\xff"s),
         {200, 100, 50},
         {10, 20, 30},
         {255, 7}},
        {"RGBA", 8, 6, "\0\x01\x02\x03\x04\xfc\xfd\xfe\xff"s, "", {1, 2, 3}, {252, 253, 254}, {4, 255}},
        {"RGBA, opaque", 8, 6, "\0\x01\x02\x03\xff\xfc\xfd\xfe\xff"s, "", {1, 2, 3}, {252, 253, 254}, {}},
    };
    const TempDirectory directory;
    for (const auto& c : cases) {
        const Picture picture =
            readPicture(writeFile(directory / "in.png", pngBytes(2, 1, c.depth, c.type, c.row, c.extra)));
        EXPECT_EQ(picture.width, 2) << c.name;
        EXPECT_EQ(picture.height, 1) << c.name;
        EXPECT_EQ(picture.at(0, 0), c.first) << c.name;
        EXPECT_EQ(picture.at(1, 0), c.second) << c.name;
        EXPECT_EQ(picture.alpha, c.alpha) << c.name;
    }
}

TEST(PictureReader, TurnsPhotosUpright) {
    Picture stored(32, 16);
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            stored.set(x, y,
                       y < 8 ? (x < 16 ? Rgb{255, 0, 0} : Rgb{0, 255, 0})
                             : (x < 16 ? Rgb{0, 0, 255} : Rgb{255, 255, 255}));
    const TempDirectory directory;
    std::string jpeg = contentOf(writePicture(directory / "plain.jpg", stored));
    const char* const shown[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    for (int i = 0; i < 8; ++i) {
        const std::string marked = jpeg.substr(0, 2) + exifOrientation(i + 1) + jpeg.substr(2);
        const Picture picture = readPicture(writeFile(directory / "marked.jpg", marked));
        EXPECT_EQ(picture.width, i < 4 ? 32 : 16) << i + 1;
        EXPECT_EQ(cornersOf(picture), shown[i]) << i + 1;
    }
}

TEST(PictureReader, TakesNamesLiterallyAndRefusesWhatDoesNotFitInMemory) {
    const TempDirectory directory;
    const Picture chart = drawChart(40, 30, ChartNoise::speckled);
    for (const char* name : {"100%.png", "a%03d.png", "http:.png", "pipe:1.png", "-.png"})
        EXPECT_EQ(readPicture(writePicture(directory / name, chart)).rgb, chart.rgb) << name;
    try {
        readPicture(directory / "-.png", 40 * 30 * 40 - 1);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::failed);
        EXPECT_NE(std::string(failure.what()).find("40x30"), std::string::npos);
    }
    EXPECT_NO_THROW(readPicture(directory / "-.png", 40 * 30 * 40));
}

TEST(PictureWriter, PngIsExactAndJpegKeepsSingleColumnsOfColour) {
    const TempDirectory directory;
    for (const auto& [width, height] : {std::pair{1, 1}, {5, 3}, {33, 17}, {320, 240}}) {
        Picture picture = drawChart(width, height, ChartNoise::speckled);
        EXPECT_EQ(readPicture(writePicture(directory / "out.png", picture)).rgb, picture.rgb);
        for (size_t i = 0; i < picture.rgb.size() / 3; ++i)
            picture.alpha.push_back(static_cast<uint8_t>(i * 7));
        const Picture back = readPicture(writePicture(directory / "out.PNG", picture));
        EXPECT_EQ(back.rgb, picture.rgb);
        EXPECT_EQ(back.alpha, picture.alpha);
    }
    Picture columns(33, 17);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 33; ++x)
            columns.set(x, y, x % 2 == 0 ? Rgb{200, 40, 40} : Rgb{40, 40, 200});
    columns.alpha.assign(33 * 17, 255);
    columns.alpha.back() = 0;
    const Picture back = readPicture(writePicture(directory / "out.jpeg", columns));
    EXPECT_TRUE(back.alpha.empty());
    for (int x = 0; x < 30; ++x)
        EXPECT_NEAR(back.at(x, 5).red, columns.at(x, 5).red, 25) << x;
    EXPECT_GT(back.at(32, 16).green, 200) << "transparent pixels lie over white";
    EXPECT_FALSE(pictureFormatOf("x.gif"));
    EXPECT_FALSE(pictureFormatOf("png"));
}
