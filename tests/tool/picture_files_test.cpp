#include "tests/support/temp_directory.h"
#include "tool/errors.h"
#include "tool/pictures/picture_reader.h"
#include "tool/pictures/picture_writer.h"

#include <gtest/gtest.h>

#include <map>

#include <zlib.h>

using namespace ze::tool;
using namespace std::string_literals;

namespace {

std::string bigEndian(size_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>(value >> shift & 0xff);
    return bytes;
}

std::string pngChunk(const std::string& typeAndData) {
    const auto* bytes = reinterpret_cast<const Bytef*>(typeAndData.data());
    return bigEndian(typeAndData.size() - 4) + typeAndData + bigEndian(crc32_z(0, bytes, typeAndData.size()));
}

/// A PNG of `width` × 1 pixels: `row` with its filter byte, and `extra` chunks before it.
std::string pngBytes(int depth, int colorType, const std::string& row, const std::string& extra,
                     size_t width = 2) {
    uLongf size = compressBound(row.size());
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(row.data()),
             row.size());
    const std::string kind = {static_cast<char>(depth), static_cast<char>(colorType), 0, 0, 0};
    return "\x89PNG\r\n\x1a\n" + pngChunk("IHDR" + bigEndian(width) + bigEndian(1) + kind) + extra +
           pngChunk("IDAT" + packed.substr(0, size)) + pngChunk("IEND");
}

class PictureFiles : public testing::Test {
protected:
    Picture readBytes(const std::string& bytes, int64_t memory = machineMemory()) const {
        std::ofstream(m_directory / "in", std::ios::binary) << bytes;
        return readPicture(m_directory / "in", memory);
    }

    static std::string bytesOf(const Picture& picture, PictureFormat format) {
        const std::vector<uint8_t> bytes = encodePicture(picture, format);
        return {bytes.begin(), bytes.end()};
    }

    TempDirectory m_directory;
};

} // namespace

TEST_F(PictureFiles, EveryKindOfPngIsRead) {
    const std::string palette = pngChunk("PLTE\x0a\x14\x1e\xc8\x64\x32"s);
    const std::string transparency = pngChunk("tRNS\x07\xff"s);
    // clang-format off
    const struct {
        int depth, type; // 0 gray, 2 RGB, 3 palette, 4 gray and alpha, 6 RGBA
        std::string row, extra;
        std::vector<uint8_t> rgb, alpha;
    } cases[] = {
        {1, 0, "\0\x40"s, "", {0, 0, 0, 255, 255, 255}, {}},
        {16, 0, "\0\x80\xff\xfe\x90"s, "", {128, 128, 128, 254, 254, 254}, {}},
        {8, 4, "\0\x05\x80\xf0\xff"s, "", {5, 5, 5, 240, 240, 240}, {128, 255}},
        {16, 2, "\0\x12\x34\x80\x00\x80\xff\xff\xff\0\0\x01\x02"s, "", {18, 128, 128, 255, 0, 1}, {}},
        {8, 3, "\0\1\0"s, palette + transparency, {200, 100, 50, 10, 20, 30}, {255, 7}},
        {8, 6, "\0\x01\x02\x03\x04\xfc\xfd\xfe\xff"s, "", {1, 2, 3, 252, 253, 254}, {4, 255}},
        {8, 6, "\0\x01\x02\x03\xff\xfc\xfd\xfe\xff"s, "", {1, 2, 3, 252, 253, 254}, {}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "type " << c.type << ", " << c.depth << " bits");
        const Picture picture = readBytes(pngBytes(c.depth, c.type, c.row, c.extra));
        EXPECT_EQ(picture.width, 2);
        EXPECT_EQ(picture.rgb, c.rgb);
        EXPECT_EQ(picture.alpha, c.alpha);
    }
}

TEST_F(PictureFiles, PhotosAreTurnedUpright) {
    Picture stored(32, 16);
    const std::map<char, Rgb> colors = {
        {'R', {255, 0, 0}}, {'G', {0, 255, 0}}, {'B', {0, 0, 255}}, {'W', {255, 255, 255}}};
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            stored.set(x, y, colors.at("RGBW"[x / 16 + y / 8 * 2]));
    const std::string jpeg = bytesOf(stored, PictureFormat::jpeg);
    const char* const shown[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    for (int i = 0; i < 8; ++i) {
        // A segment that says how the camera was held.
        const std::string segment = "\xff\xe1\0\x22"s + "Exif\0\0II*\0\x08\0\0\0\x01\0"s +
                                    "\x12\x01\x03\0\x01\0\0\0"s + char(i + 1) + std::string(7, '\0');
        const Picture picture = readBytes(jpeg.substr(0, 2) + segment + jpeg.substr(2));
        EXPECT_EQ(picture.width, i < 4 ? 32 : 16) << i + 1;
        for (int corner = 0; corner < 4; ++corner) {
            const int x = corner % 2 ? picture.width - 3 : 2, y = corner / 2 ? picture.height - 3 : 2;
            const Rgb color = picture.at(x, y), expected = colors.at(shown[i][corner]);
            EXPECT_NEAR(color.red, expected.red, 60) << i + 1;
            EXPECT_NEAR(color.blue, expected.blue, 60) << i + 1;
        }
    }
}

TEST_F(PictureFiles, JpegKeepsSingleColumnsOfColor) {
    Picture columns(33, 17);
    for (int y = 0; y < 17; ++y)
        for (int x = 0; x < 33; ++x)
            columns.set(x, y, x % 2 == 0 ? Rgb{200, 40, 40} : Rgb{40, 40, 200});
    columns.alpha.assign(33 * 17, 255);
    columns.alpha.back() = 0;
    const Picture back = readBytes(bytesOf(columns, PictureFormat::jpeg));
    EXPECT_TRUE(back.alpha.empty());
    for (int x = 0; x < 30; ++x)
        EXPECT_NEAR(back.at(x, 5).red, columns.at(x, 5).red, 25) << x;
    EXPECT_GT(back.at(32, 16).green, 200) << "transparent pixels lie over white";
}

TEST_F(PictureFiles, WhatIsTooLargeIsNotCalledInvalid) {
    const std::string picture = bytesOf(Picture(40, 30), PictureFormat::png);
    EXPECT_EQ(readBytes(picture, 40 * 30 * 40).width, 40);
    for (const auto& [bytes, memory] :
         {std::pair{picture, int64_t{40 * 30 * 40 - 1}}, {pngBytes(8, 0, "\0"s, "", 1000000000), INT64_MAX}})
        try {
            readBytes(bytes, memory);
            ADD_FAILURE() << memory;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.code(), ExitCode::failed) << memory;
        }
}
