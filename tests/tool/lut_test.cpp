// Look-up tables: from the files of other programs to those of the library, back, and onto pictures.

#include "tests/support/lut_file.h"
#include "tests/tool/program.h"
#include "tool/chart/chart.h"
#include "tool/info/gl_info.h"
#include "tool/lut/cube_file.h"
#include "tool/lut/lut_bake.h"
#include "tool/lut/lut_file.h"
#include "tool/lut/lut_picture.h"
#include "tool/number_text.h"

#include <functional>

using namespace ze::tool;
using namespace std::string_literals;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

using Grade = std::function<Color(Color)>;

Color strange(Color in) {
    return {0.75f * in[1] + 0.1f, in[2] * in[2], 1 - in[0]};
}

Color squared(Color in) {
    return {in[0] * in[0], in[1] * in[1], in[2] * in[2]};
}

/// Formulas as lines of three numbers each, on `levels`; with the indices before them for .spi3d.
std::string lines(const Grade& grade, const std::vector<float>& levels, bool redFastest, int scale = 1,
                  bool indices = false) {
    const size_t n = levels.size();
    std::string text;
    for (size_t i = 0; i < n * n * n; ++i) {
        const size_t first = i / n / n, second = i / n % n, third = i % n;
        const size_t r = redFastest ? third : first, b = redFastest ? first : third;
        if (indices)
            text += std::to_string(r) + " " + std::to_string(second) + " " + std::to_string(b) + " ";
        for (const float value : grade({levels[r], levels[second], levels[b]}))
            text +=
                (scale > 1 ? std::to_string(std::lround(value * float(scale))) : numberText(value, 7)) + " ";
        text.back() = '\n';
    }
    return text;
}

std::string cube(const Grade& grade, size_t n, const std::string& before = "") {
    return before + "LUT_3D_SIZE " + std::to_string(n) + "\n" + lines(grade, ::evenLevels(n), true);
}

ColorTable tableOf(const Grade& grade, const std::vector<float>& levels) {
    std::vector<Color> colors = latticeOf(levels);
    for (Color& color : colors)
        color = grade(color);
    Clamping none;
    return quantized(levels, colors, none);
}

/// A picture of the table with root² levels.
Picture pictureOf(const Grade& grade, int root, PictureLayout layout) {
    const int n = root * root;
    const ColorTable table = tableOf(grade, ::evenLevels(size_t(n)));
    Picture picture(n * root, n * root);
    for (int i = 0; i < n * n * n; ++i) {
        const int r = i % n, g = i / n % n, b = i / n / n;
        const uint8_t* c = table.entry(size_t(r), size_t(g), size_t(b));
        if (layout == PictureLayout::hald)
            picture.set(i % picture.width, i / picture.width, {c[0], c[1], c[2]});
        else
            picture.set(b % root * n + r, b / root * n + g, {c[0], c[1], c[2]});
    }
    return picture;
}

class Lut : public Program {
protected:
    ColorTable baked(const std::string& name, const std::vector<float>& levels) {
        return bakeLut(m_directory / name, levels, PictureLayout::automatic, m_clamping);
    }

    void expectNear(const std::vector<uint8_t>& actual, const std::vector<uint8_t>& expected, int most) {
        ASSERT_EQ(actual.size(), expected.size());
        int largest = 0;
        for (size_t i = 0; i < actual.size(); ++i)
            largest = std::max(largest, std::abs(actual[i] - expected[i]));
        EXPECT_LE(largest, most);
    }

    std::string bytesOf(const std::string& name) const { return contentOf(m_directory / name); }

    Clamping m_clamping;
};

} // namespace

TEST_F(Lut, EveryFamilyOfFilesGivesItsTable) {
    const std::vector<float> even = ::evenLevels(4);
    const Grade upsideDown = [](Color in) { return strange({1 - in[0], 1 - in[1], 1 - in[2]}); };
    const Grade doubled = [](Color in) { return strange({2 * in[0], 2 * in[1], 2 * in[2]}); };
    const std::string ramp[] = {"0.0 ", "0.1111111 ", "0.4444444 ", "1.0 "}, range = "2\n0.0 1.0\n0.0 1.0\n";
    std::string gray;
    for (const std::string& value : ramp)
        gray += value + value + value + "\n";
    // clang-format off
    const struct {
        const char* name;
        std::string bytes;
        Grade grade;
    } cases[] = {
        {"3.cube", cube(strange, 4, "TITLE \"0,5\"\n# 0,5\n"), strange},
        {"$HOME %d.CUBE", cube(strange, 4), strange},
        {"domain.cube", cube(doubled, 7, "DOMAIN_MAX 2 2 2\n"), strange},
        {"1.cube", "LUT_1D_SIZE 4\n" + gray, squared},
        {"both.cube", "LUT_1D_SIZE 2\nLUT_1D_INPUT_RANGE 0.0 1.0\nLUT_3D_SIZE 4\nLUT_3D_INPUT_RANGE 0.0 1.0\n"
                      "1 1 1\n0 0 0\n" + lines(strange, even, true), upsideDown},
        {"a.3dl", "0 341 682 1023\n" + lines(strange, even, false, 4095), strange},
        {"a.csp", "CSPLUTV100\n3D\n\nBEGIN METADATA\n1,5\nEND METADATA\n\n" + range + range + range + "\n4 4 4\n" +
                  lines(strange, even, true), strange},
        {"a.spi1d", "Version 1\nFrom 0.0 1.0\nLength 4\nComponents 1\n{\n" + ramp[0] + "\n" + ramp[1] + "\n" +
                    ramp[2] + "\n" + ramp[3] + "\n}\n", squared},
        {"a.spi3d", "SPILUT 1.0\n3 3\n4 4 4\n" + lines(strange, even, false, 1, true), strange},
        {"a.clf", "<?xml version=\"1.0\"?>\n<ProcessList compCLFversion=\"3\" id=\"x\">\n<Description>\n0,5\n"
                  "</Description>\n<LUT3D inBitDepth=\"32f\" outBitDepth=\"32f\">\n<Array dim=\"4 4 4 3\">\n" +
                  lines(strange, even, false) + "</Array>\n</LUT3D>\n</ProcessList>\n", strange},
        {"a.lut", LutFile{even, true, 5, tableOf(strange, even).colors}.bytes(), strange},
        {"1.lut", LutFile{even, false, 0, {0, 0, 0, 28, 28, 28, 113, 113, 113, 255, 255, 255}}.bytes(), squared},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        write(c.name, c.bytes);
        expectNear(baked(c.name, even).colors, tableOf(c.grade, even).colors, c.name[2] == '3' ? 1 : 0);
    }
    EXPECT_EQ(m_clamping.count, 0u);
}

TEST_F(Lut, WritesFilesByteForByte) {
    write("in.cube", cube(strange, 3));
    const LutFile three{{0, 0.5f, 1}, true, 0, tableOf(strange, ::evenLevels(3)).colors};
    ASSERT_EQ(run("lut bake in.cube out.lut --levels 3"), 0) << errorText();
    EXPECT_EQ(bytesOf("out.lut"), three.bytes());
    ASSERT_EQ(run("lut bake -y in.cube out.lut --levels-at 0,0.125,1"), 0) << errorText();
    EXPECT_EQ(bytesOf("out.lut").substr(48, 12), std::string("\0\0\0\0\0\0\0\x3e\0\0\x80\x3f", 12));
    ASSERT_EQ(run("lut identity 2 two.lut"), 0) << errorText();
    EXPECT_EQ(bytesOf("two.lut"), (LutFile{{0, 1}}.fill([](size_t i) { return 255 * i; }).bytes()));
    EXPECT_EQ(outputText() + errorText(), "");
}

TEST_F(Lut, NumbersHaveAPointWhereTheUserHasAComma) {
    if (std::system(("localedef -i de_DE -f UTF-8 '" + (m_streams / "de_DE.UTF-8") + "' 2>&-").c_str()) != 0)
        GTEST_SKIP() << "localedef or its sources are not installed";
    write("in.cube", cube(strange, 4));
    write("in.png", Picture(2, 2));
    const auto bakeAndExport = [&](const std::string& environment) {
        EXPECT_EQ(run("lut bake -y in.cube a.lut --levels-at 0,0.5,1 && '" ZEBEAUTY
                      "' lut export -y a.lut a.cube && '" ZEBEAUTY
                      "' render -y in.png out.png --smooth 0.0 --whiten 0.0",
                      environment),
                  0)
            << errorText();
        return bytesOf("a.lut") + bytesOf("a.cube");
    };
    // glibc never frees what it makes of LOCPATH: AddressSanitizer would end this run as a leak.
    EXPECT_EQ(bakeAndExport("export LC_ALL=de_DE.UTF-8 ASAN_OPTIONS=detect_leaks=0 LOCPATH='" +
                            m_streams.path() + "';"),
              bakeAndExport(""));
}

TEST_F(Lut, LevelsLieWhereTheyAreAskedFor) {
    write("in.cube", cube([](Color in) { return Color{in[2], in[0], 1 - in[1]}; }, 2));
    const struct {
        const char* options;
        std::vector<float> levels;
    } cases[] = {{"", ::evenLevels(33)},
                 {"--levels 65", ::evenLevels(65)},
                 {"--levels 3 --gamma 2", {0, 0.25f, 1}},
                 {"--levels-at 0,0.02,0.1,0.5,1", {0, 0.02f, 0.1f, 0.5f, 1}}};
    for (const auto& c : cases) {
        ASSERT_EQ(run("lut bake -y in.cube out.lut "s + c.options), 0) << errorText();
        const ColorTable table = readLutFile(m_directory / "out.lut");
        EXPECT_EQ(table.levels, c.levels);
        expectNear(table.colors,
                   tableOf(
                       [](Color in) {
                           return Color{in[2], in[0], 1 - in[1]};
                       },
                       c.levels)
                       .colors,
                   1);
    }
}

TEST_F(Lut, CutsAndCountsWhatLiesOutside) {
    write("in.cube", "LUT_3D_SIZE 2\n-0.5 0 1.5\n0 1.000001 1\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n");
    ASSERT_EQ(run("lut bake in.cube out.lut --levels 2"), 0);
    EXPECT_EQ(errorText(),
              "zebeauty: warning: in.cube: 2 of 24 values lie outside 0 to 1 (-0.5 to 1.5) and were "
              "clamped\n");
    const std::vector<uint8_t> colors = readLutFile(m_directory / "out.lut").colors;
    EXPECT_EQ(std::vector<uint8_t>(colors.begin(), colors.begin() + 3), (std::vector<uint8_t>{0, 0, 255}));
}

TEST_F(Lut, RefusesWhatIsDamagedWithItsReasonAndWithoutAFile) {
    const std::string whole = cube(strange, 3),
                      clf = "<ProcessList compCLFversion=\"3\" id=\"x\">\n"
                            "<LUT1D inBitDepth=\"32f\" outBitDepth=\"32f\"><Array dim=\"2 1\">\n0\n";
    const LutFile own{::evenLevels(3), true, 0, tableOf(strange, ::evenLevels(3)).colors};
    std::string version = own.bytes();
    version[8] = 2;
    // clang-format off
    const struct {
        const char* name;
        std::string bytes, reason;
    } cases[] = {
        {"short.cube", whole.substr(0, whole.rfind('\n', whole.size() - 2) + 1), ".*Found 26, expected 27.*"},
        {"long.cube", whole + "0 0 0\n", ".*Found 28, expected 27.*"},
        {"word.cube", "LUT_3D_SIZE 2\n0 0 oops\n", ".*At line \\(2\\): '0 0 oops'.*"},
        {"comma.cube", "LUT_3D_SIZE 2\n0 0 0\n0,5 0 0\n", ".*line 3: '0,5' is no finite number.*"},
        {"nan.cube", "LUT_3D_SIZE 2\nnan 0 0\n", ".*line 2: 'nan' is no.*"},
        {"qnan.cube", "LUT_3D_SIZE 2\n1 0 0 # 1,5\n0 1.#QNAN 0\n", ".*line 3: '1.#QNAN' is no.*"},
        {"huge.cube", "LUT_3D_SIZE 2\n0 1e39 0\n", ".*line 2: '1e39' is no.*"},
        {"empty.cube", "", ".*unspecified.*"},
        {"short.spi3d", "SPILUT 1.0\n3 3\n2 2 2\n0 0 0 0 0 0\n", ".*Not enough entries.*"},
        {"short.3dl", "0 341 682 1023\n0 0 0\n4095 9 9\n", ".*2 element.*"},
        {"inf.clf", clf + "inf\n</Array></LUT1D></ProcessList>", ".*line 4: 'inf' is no.*"},
        {"open.clf", clf + "1\n", ".*At line.*"},
        {"text.txt", "no table\n", ".*neither a look-up table.*nor a picture.*"},
        {"version.lut", version, ".*valid LUT file: wrong version.*"},
        {"short.lut", own.bytes().substr(0, 100), ".*valid LUT file: Failed to read lut data!"},
        {"falling.lut", LutFile{{0, 1, 0.5f}, true, 0, own.colors}.bytes(), ".*levels do not rise.*"},
        {"missing.cube", "", "cannot be read: No such file.*"},
    };
    // clang-format on
    write("chart.png", drawChart(512, 512, ChartNoise::speckled));
    write("wide.png", Picture(512, 511));
    write("small.png", Picture(2, 2));
    for (const auto& c : cases)
        write(c.name, c.bytes);
    std::filesystem::remove(m_directory / "missing.cube");
    std::filesystem::create_directory(m_directory / "folder.cube");
    const auto before = fileNames();
    const auto expectRefusal = [&](const std::string& name, const std::string& reason) {
        for (const std::string& arguments :
             {"lut bake " + name + " out.lut", "render small.png out.png --lut " + name}) {
            if (name == "falling.lut" && arguments[0] == 'r')
                continue; // the library draws with it
            EXPECT_EQ(run(arguments), 3) << arguments;
            EXPECT_THAT(errorText(), MatchesRegex("zebeauty: " + name + ": " + reason + "\n")) << arguments;
            EXPECT_EQ(fileNames(), before) << arguments;
        }
    };
    for (const auto& c : cases)
        expectRefusal(c.name, c.reason);
    expectRefusal("chart.png", "does not look like a look-up table.*--layout.*");
    expectRefusal("wide.png", "has 512x511 pixels; .*");
    expectRefusal("folder.cube", "is a directory");
    write("one.lut", LutFile{{0, 1}, false, 0, {0, 0, 0, 1, 1, 1}}.bytes());
    EXPECT_EQ(run("render chart.png out.png --lut one.lut"), 3);
    EXPECT_THAT(errorText(), StartsWith("zebeauty: one.lut: is one-dimensional"));
    for (const char* options :
         {"out.cube", "out.lut --levels 1", "out.lut --levels 66", "out.lut --gamma 0",
          "out.lut --levels-at 0,1,1", "out.lut --levels-at 0,x,1", "out.lut --levels-at 0,0.5",
          "out.lut --levels 3 --levels-at 0,1", "one.lut", "out.lut --layout tiles"})
        EXPECT_EQ(run("lut bake short.cube "s + options), 2) << options;
}

TEST_F(Lut, TellsTheTwoKindsOfPicturesApart) {
    const Grade soft = [](Color in) { return Color{0.5f * in[1] + 0.5f * in[0], in[1], in[2] * in[2]}; };
    using enum PictureLayout;
    for (const int root : {2, 3, 4, 8})
        for (const PictureLayout layout : {lookup, hald})
            for (const Grade& grade : {soft, Grade(squared)}) {
                const Picture picture = pictureOf(grade, root, layout);
                const ColorTable expected = tableOf(grade, ::evenLevels(size_t(root * root)));
                EXPECT_EQ(tableFromPicture(picture, automatic).colors, expected.colors) << root;
                EXPECT_EQ(tableFromPicture(picture, layout).colors, expected.colors) << root;
                EXPECT_NE(tableFromPicture(picture, layout == hald ? lookup : hald).colors, expected.colors);
            }
    write("in.png", pictureOf(soft, 8, hald));
    ASSERT_EQ(run("lut bake in.png auto.lut --levels 64 && '" ZEBEAUTY
                  "' lut bake in.png hald.lut --levels 64 --layout hald"),
              0);
    EXPECT_EQ(bytesOf("auto.lut"),
              (LutFile{::evenLevels(64), true, 0, tableOf(soft, ::evenLevels(64)).colors}.bytes()));
    EXPECT_EQ(bytesOf("auto.lut"), bytesOf("hald.lut"));
}

TEST_F(Lut, InfoMeasuresTheDistanceFromIdentity) {
    LutFile file{{0, 1}};
    file.fill([](size_t i) { return 255 * i; });
    file.colors[3 * 5 + 1] = 12; // red and blue on, green off
    file.colors[0] = 6;
    write("a.lut", file.bytes());
    ASSERT_EQ(run("lut info a.lut"), 0) << errorText();
    EXPECT_EQ(outputText(), "version: 1\nlevels: 2, uniform\ndimension: 3\n"
                            "largest difference from identity: 12 of 255, at input 1 0 1\n"
                            "mean difference from identity: 0.750 of 255\n");
    ASSERT_EQ(run("lut info --json a.lut"), 0) << errorText();
    EXPECT_EQ(outputText(),
              "{\"version\": 1, \"levels\": 2, \"uniform\": true, \"levelValues\": [0, 1], "
              "\"dimension\": 3, \"largestDifference\": 12, \"largestDifferenceAt\": [1, 0, 1], "
              "\"meanDifference\": 0.750}\n");
    write("b.lut",
          LutFile{{std::nanf(""), 0.5f, 0.25f}, false, 0, {0, 0, 0, 128, 128, 128, 64, 64, 67}}.bytes());
    ASSERT_EQ(run("lut info --json b.lut"), 0) << errorText();
    EXPECT_EQ(outputText(),
              "{\"version\": 1, \"levels\": 3, \"uniform\": false, \"levelValues\": [null, 0.5, 0.25], "
              "\"dimension\": 1, \"largestDifference\": 3, \"largestDifferenceAt\": [0.25, 0.25, 0.25], "
              "\"meanDifference\": 0.333}\n");
    EXPECT_THAT(errorText(), StartsWith("zebeauty: warning: b.lut: its levels do not rise"));
}

TEST_F(Lut, ExportComesBackTheSame) {
    for (const size_t n : {2u, 17u, 65u})
        for (const bool isThreeDimensional : {true, false}) {
            LutFile file{::evenLevels(n), isThreeDimensional};
            write("a.lut", file.fillWithNoise().bytes());
            ASSERT_EQ(run("lut export -y a.lut a.cube"), 0) << errorText();
            EXPECT_EQ(errorText(), "");
            expectNear(baked("a.cube", file.levels).colors, baked("a.lut", file.levels).colors, 0);
        }
    write("a.lut", LutFile{{0, 0.25f, 1}, true, 0, tableOf(strange, {0, 0.25f, 1}).colors}.bytes());
    ASSERT_EQ(run("lut export -y a.lut a.cube"), 0);
    EXPECT_EQ(errorText(),
              "zebeauty: warning: a.lut: its levels are not uniform; resampled to 65 uniform ones\n");
    expectNear(baked("a.cube", ::evenLevels(33)).colors, baked("a.lut", ::evenLevels(33)).colors, 1);
}

class Graded : public Lut {
protected:
    void SetUp() override {
        if (run("info") == 4)
            GTEST_SKIP() << "there is no OpenGL ES here";
        Picture slow(192, 128); // halving the chroma of gentle slopes does no harm
        for (int y = 0; y < 128; ++y)
            for (int x = 0; x < 192; ++x)
                slow.set(x, y, {uint8_t(30 + x), uint8_t(30 + y * 3 / 2), uint8_t(220 - x / 2 - y / 2)});
        write("raw.png", slow);
        ASSERT_EQ(run("render raw.png in.png --smooth 0 --whiten 0"), 0) << errorText();
        write("a.cube", cube(softened, 17));
    }

    static Color softened(Color in) {
        return {0.8f * in[0] + 0.2f * in[1], in[1] * in[1], 0.9f - 0.8f * in[2]};
    }

    double meanDifference(const std::string& first, const std::string& second) const {
        const Picture a = read(first), b = read(second);
        double sum = 0;
        for (size_t i = 0; i < a.rgb.size(); ++i)
            sum += std::abs(a.rgb[i] - b.rgb.at(i));
        return sum / double(a.rgb.size());
    }

    void render(const std::string& arguments) {
        ASSERT_EQ(run("render -y in.png " + arguments), 0) << errorText();
    }
};

TEST_F(Graded, AsFfmpegGrades) {
    if (std::system("ffmpeg -version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "there is no ffmpeg";
    const std::string filter = "cd '" + m_directory.path() +
                               "' && ffmpeg -v error -i in.png -vf "
                               "lut3d=a.cube:interp=trilinear -pix_fmt rgb24 graded.png";
    ASSERT_EQ(std::system(filter.c_str()), 0);
    // The same way through a frame as the tool's own grading.
    ASSERT_EQ(run("render graded.png expected.png --smooth 0 --whiten 0"), 0) << errorText();
    ASSERT_EQ(run("lut bake a.cube even.lut --levels 17 && '" ZEBEAUTY
                  "' lut bake a.cube dense.lut --levels 65 --gamma 1.5"),
              0);
    for (const char* lut : {"a.cube", "even.lut", "dense.lut"}) {
        render("out.png --lut "s + lut);
        EXPECT_LT(meanDifference("out.png", "expected.png"), 1) << lut;
    }
    EXPECT_GT(meanDifference("in.png", "expected.png"), 20);
}

TEST_F(Graded, EffectsRunInTheOrderOfTheCommandLine) {
    render("none.png --smooth 0 --whiten 0");
    render("lut.png --lut a.cube");
    render("white.png --whiten 1 --smooth 0");
    const auto expectSame = [&](const std::string& options, const std::string& expected) {
        render("out.png " + options);
        EXPECT_LT(meanDifference("out.png", expected), 1.5) << options;
    };
    ASSERT_EQ(run("render lut.png lutwhite.png --smooth 0 --whiten 1 && '" ZEBEAUTY
                  "' render white.png whitelut.png --lut a.cube"),
              0);
    EXPECT_GT(meanDifference("lutwhite.png", "whitelut.png"), 10);
    expectSame("--lut a.cube --smooth 0 --whiten 1", "lutwhite.png");
    expectSame("--smooth 0 --whiten 1 --lut a.cube", "whitelut.png");
    expectSame("--whiten 1 --lut a.cube --smooth 0", "whitelut.png");
    expectSame("--lut a.cube --whiten 0 --smooth 0", "lut.png");
    expectSame("--lut a.cube --intensity 0", "none.png");
    render("half.png --lut a.cube --intensity 0.5");
    EXPECT_NEAR(meanDifference("half.png", "none.png"), meanDifference("lut.png", "none.png") / 2, 1);
}
