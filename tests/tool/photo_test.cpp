// Photos as other programs write them: what is read, what is kept, and what effects add to it.

#include "tests/tool/program.h"
#include "tool/chart/chart.h"
#include "tool/errors.h"

#include <algorithm>
#include <cmath>
#include <map>

using namespace ze::tool;
using namespace std::string_literals;

namespace {

/// Red and green over blue and white.
Picture quarters() {
    Picture picture(32, 16);
    const Rgb colors[] = {{255, 0, 0}, {0, 255, 0}, {0, 0, 255}, {255, 255, 255}};
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 32; ++x)
            picture.set(x, y, colors[x / 16 + y / 8 * 2]);
    return picture;
}

/// The letters of the colors in the corners, row by row.
std::string cornersOf(const Picture& picture) {
    std::string letters;
    for (const int y : {2, picture.height - 3})
        for (const int x : {2, picture.width - 3}) {
            const Rgb color = picture.at(x, y);
            letters += "KBGCRMYW"[color.red / 128 * 4 + color.green / 128 * 2 + color.blue / 128];
        }
    return letters;
}

class PhotoFiles : public Program {
protected:
    void SetUp() override {
        if (!make("convert -version && exiftool -ver"))
            GTEST_SKIP() << "ImageMagick or exiftool is not installed";
        write("in.png", quarters());
    }

    // Runs a command of another program in the directory.
    bool make(const std::string& command) {
        return std::system(("cd '" + m_directory.path() + "' && { " + command + "; } >'" +
                            (m_streams / "made") + "' 2>&1")
                               .c_str()) == 0;
    }

    std::string told(const std::string& command) {
        EXPECT_TRUE(make(command)) << command;
        return contentOf(m_streams / "made");
    }
};

} // namespace

TEST_F(PhotoFiles, AreReadInEveryKindAndStandUpright) {
    const char* const shown[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(make("convert in.png a.jpg && exiftool -overwrite_original -Orientation#=" +
                         std::to_string(i + 1) + " a.jpg"));
        EXPECT_EQ(cornersOf(read("a.jpg")), shown[i]) << i + 1;
    }

    // clang-format off
    const struct {
        const char* name;
        const char* options; // of ImageMagick
        int bands = 3;
        bool isDeep = false;
        const char* corners = "RGBW";
    } kinds[] = {
        {"8.png", ""}, {"palette.png", "-type Palette"}, {"16.png", "-depth 16 -define png:bit-depth=16", 3, true},
        {"alpha.png", "-alpha set -channel A -evaluate set 50%", 4},
        {"gray.png", "-channel B -separate", 3, false, "KKWW"},
        {"bits.png", "-channel B -separate -type Bilevel", 3, false, "KKWW"},
        {"progressive.jpg", "-interlace Plane"}, {"cmyk.jpg", "-colorspace CMYK", 3, false, "RGKW"}, {"lossy.webp", ""},
        {"alpha.webp", "-alpha set -channel A -evaluate set 50%", 4},
        {"plain.tif", ""}, {"lzw.tif", "-compress lzw"}, {"zip16.tif", "-compress zip -depth 16", 3, true},
        {"32.tif", "-depth 32", 3, true},
        {"float.tif", "-define quantum:format=floating-point -depth 32"},
        {"gray-float.tif", "-channel B -separate -define quantum:format=floating-point -depth 32", 3, false, "KKWW"},
        {"jpeg.tif", "-compress jpeg"}, {"cmyk.tif", "-colorspace CMYK", 3, false, "RGKW"}, {"lab.tif", "-colorspace Lab"},
        {"fax.tif", "-channel B -separate -monochrome -compress group4", 3, false, "KKWW"},
        {"a.gif", ""}, {"a.bmp", ""}, {"a.tga", ""}, {"a.ppm", ""}, {"a.pam", ""}, {"a.psd", ""}, {"a.exr", "", 4},
        {"a.jp2", ""},
    };
    // clang-format on
    const std::string canBeTurned[] = {".png", ".jpg", ".webp", ".tif"};
    const std::string isTrusted = ".png .jpg .webp .tif .gif";
    for (const auto& kind : kinds) {
        SCOPED_TRACE(kind.name);
        const std::string name = kind.name, extension = extensionOf(name);
        std::string turn, corners = kind.corners;
        if (std::count(std::begin(canBeTurned), std::end(canBeTurned), extension) > 0) {
            turn = " && exiftool -overwrite_original -Orientation#=6 " + name;
            corners = {corners[2], corners[0], corners[3], corners[1]};
        }
        ASSERT_TRUE(make("convert in.png "s + kind.options + " " + name + turn));
        const std::string render = "render -y --smooth 0 --whiten 0 " + name + " out.png";
        int code = run(render);
        if (isTrusted.find(extension) == std::string::npos) {
            EXPECT_EQ(code, 3) << errorText();
            code = run(render + " --untrusted");
        }
        ASSERT_EQ(code, 0) << errorText();
        const Photo photo = readPhoto(m_directory / "out.png");
        EXPECT_EQ(cornersOf(pixelsOf(photo)), corners);
        EXPECT_EQ(photo.bands(), kind.bands);
        EXPECT_EQ(isDeep(photo), kind.isDeep);
    }
}

TEST_F(PhotoFiles, KeepWhatBelongsToThem) {
    photoOf(quarters())
        .icc_transform("p3", vips::VImage::option()->set("input_profile", "srgb"))
        .write_to_file((m_directory / "in.jpg").c_str());
    ASSERT_TRUE(make("convert in.png small.jpg; exiftool -overwrite_original -Orientation#=6 -Artist=Ann "
                     "-GPSLatitude=48.5 -GPSLatitudeRef=N -XMP:Title=Quarters -XResolution=300 "
                     "-YResolution=300 -ResolutionUnit=inches '-ThumbnailImage<=small.jpg' in.jpg"));
    const std::string tags = "exiftool -s3 -f -Orientation# -ThumbnailLength -ProfileDescription -XMP:Title "
                             "-EXIF:XResolution -Artist -GPSLatitude# ";
    for (const char* name : {"a.jpg", "a.png", "a.webp", "a.avif"})
        for (const char* detail : {"photo", "frame"}) {
            ASSERT_EQ(run("render -y in.jpg "s + name + " --detail " + detail), 0) << errorText();
            EXPECT_EQ(told(tags + name), "1\n-\nsP3C\nQuarters\n300\nAnn\n48.5\n") << name << ", " << detail;
        }
    ASSERT_EQ(run("render a.avif b.jpg"), 0) << errorText();
    EXPECT_EQ(told("exiftool -s3 -validate -Artist -ProfileDescription b.jpg"), "OK\nAnn\nsP3C\n");
    EXPECT_EQ(contentOf(m_directory / "a.png").find("eXIf"), contentOf(m_directory / "a.png").rfind("eXIf"));
    ASSERT_EQ(run("render in.jpg srgb.png --to-srgb"), 0) << errorText();
    EXPECT_EQ(told("exiftool -s3 -ProfileDescription srgb.png"), "sRGB\n");
    for (const char* name : {"bare.jpg", "bare.png", "bare.webp", "bare.avif", "bare.tif"}) {
        ASSERT_EQ(run("render in.jpg --strip "s + name), 0) << errorText();
        EXPECT_EQ(told("exiftool -q -q -s3 -f -Artist -GPSLatitude -XMP:Title -ProfileDescription "s + name),
                  "-\n-\n-\n-\n")
            << name;
    }
}

TEST_F(PhotoFiles, LieOnWhiteWhereAFormatHasNoTransparency) {
    for (const char* depth : {"8", "16"}) {
        ASSERT_TRUE(make("convert -size 20x20 xc:none -define png:color-type=6 -define png:bit-depth="s +
                         depth + " clear.png"));
        for (const char* name : {"clear.jpg", "clear.ppm"}) {
            ASSERT_EQ(run("render -y clear.png "s + name), 0) << errorText();
            EXPECT_EQ(told("convert "s + name + " -format '%[mean] %[max]' info:"), "65535 65535")
                << name << depth;
        }
    }
}

TEST_F(PhotoFiles, KeepWhatTheEffectLeavesAlone) {
    write("chart.png", drawChart(96, 64, ChartNoise::speckled));
    ASSERT_TRUE(make("convert chart.png -alpha set -channel A -evaluate set 40% in8.png && "
                     "convert chart.png -depth 16 -evaluate add 100 in16.png"));
    for (const std::string in : {"in8.png", "in16.png"}) {
        ASSERT_EQ(run("render -y --smooth 0 --whiten 0 " + in + " out.png"), 0) << errorText();
        EXPECT_EQ(told("compare -metric AE " + in + " out.png null: 2>&1"), "0");
        ASSERT_EQ(run("render -y --smooth 1 --whiten 0 " + in + " out.png"), 0) << errorText();
        ASSERT_EQ(run("render -y --smooth 1 --whiten 0 --detail frame " + in + " after.png"), 0);
        ASSERT_EQ(run("render -y --smooth 0.001 --whiten 0 --detail frame " + in + " neutral.png"), 0);
        const Photo before = readPhoto(m_directory / in), out = readPhoto(m_directory / "out.png");
        const Picture after = read("after.png"), neutral = read("neutral.png");
        ASSERT_EQ(isDeep(out), isDeep(before));
        const double step = isDeep(out) ? 257 : 1, white = 255 * step;
        int changed = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 96; ++x) {
                const std::vector<double> old = before.getpoint(x, y), now = out.getpoint(x, y);
                const size_t first = 3 * after.index(x, y);
                for (size_t c = 0; c < 3; ++c) {
                    const int change = after.rgb[first + c] - neutral.rgb[first + c];
                    changed += change != 0;
                    ASSERT_EQ(now[c], std::clamp(old[c] + step * change, 0.0, white)) << x << ", " << y;
                }
                ASSERT_EQ(now.back(), old.size() > 3 ? old.back() : now.back());
            }
        EXPECT_GT(changed, 1000);
    }
}

TEST_F(PhotoFiles, ThatAreTooLargeAreNotCalledInvalid) {
    const std::string bytes = contentOf(m_directory / "in.png");
    EXPECT_EQ(decodePhoto("in.png", bytes, ColorProfiles::kept, 32 * 16 * 60).width(), 32);
    try {
        decodePhoto("in.png", bytes, ColorProfiles::kept, 32 * 16 * 60 - 1);
        ADD_FAILURE() << "was read";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code(), ExitCode::failed);
    }
}
