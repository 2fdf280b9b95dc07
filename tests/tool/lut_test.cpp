// Look-up tables: from the files of other programs to those of the library, back, and onto pictures.

#include "tests/support/lut_file.h"
#include "tests/tool/program.h"
#include "tool/chart/chart.h"
#include "tool/info/gl_info.h"
#include "tool/lut/lut_bake.h"
#include "tool/number_text.h"

#include <functional>

using namespace ze::tool;
using namespace std::string_literals;
using testing::HasSubstr;
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
            text += numberText(value * static_cast<float>(scale), scale > 1 ? 0 : 7) + " ";
        text.back() = '\n';
    }
    return text;
}

std::string withLineEnds(const std::string& end, const std::string& text) {
    std::string result;
    for (const char c : text)
        result += c == '\n' ? end : std::string(1, c);
    return result;
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
    const ColorTable table = tableOf(grade, ::evenLevels(static_cast<size_t>(n)));
    Picture picture(n * root, n * root);
    for (int i = 0; i < n * n * n; ++i) {
        const int r = i % n, g = i / n % n, b = i / n / n;
        const uint8_t* c = table.colors.data() + 3 * ((r * n + g) * n + b);
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
        return bakeLut(readChain({m_directory / name}), levels, m_clamping);
    }

    ColorTable lutFile(const std::string& name) { return readTransform(m_directory / name).table.value(); }

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
    const std::string range = "2\n0.0 1.0\n0.0 1.0\n";
    // clang-format off
    const struct {
        const char* name;
        std::string bytes;
        Grade grade;
    } cases[] = {
        {"3.cube", cube(strange, 4, "TITLE \"0,5\"\n# 0,5\n"), strange},
        {"$HOME %d.CUBE", cube(strange, 4), strange},
        {"1.cube", "LUT_1D_SIZE 4\n0 0 0\n0.1111111 0.1111111 0.1111111\n0.4444444 0.4444444 0.4444444\n1 1 1\n", squared},
        {"a.3dl", "0 341 682 1023\n" + lines(strange, even, false, 4095), strange},
        {"l.3dl", "3DMESH\nMesh 2 12\n0 341 682 1023\n" + lines(strange, even, false, 4095) + "\nLUT8\ngamma 1.0\n", strange},
        {"crlf.spi3d", withLineEnds("\r\n", "SPILUT 1.0\n3 3\n4 4 4\n" + lines(strange, even, false, 1, true)), strange},
        {"mark.cube", "\xef\xbb\xbf" + withLineEnds("\r", cube(strange, 4)), strange},
        {"a.csp", "CSPLUTV100\n3D\n\nBEGIN METADATA\n1,5\nEND METADATA\n\n" + range + range + range + "\n4 4 4\n" +
                  lines(strange, even, true), strange},
        {"a.spi1d", "Version 1\nFrom 0.0 1.0\nLength 4\nComponents 1\n{\n0.0\n0.1111111\n0.4444444\n1.0\n}\n", squared},
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
    ASSERT_EQ(run("lut bake - piped.lut --levels 4 <3.cube"), 0) << errorText();
    expectNear(lutFile("piped.lut").colors, tableOf(strange, even).colors, 0);
}

TEST_F(Lut, TakesTheColorCorrectionThatIsNamed) {
    const auto correction = [](const std::string& id, const std::string& slope) {
        return "<ColorCorrection" + id + "><SOPNode><Slope>" + slope +
               "</Slope><Offset>0 0 0</Offset><Power>1 1 1</Power></SOPNode></ColorCorrection>\n";
    };
    // OpenColorIO takes "0" for an index as well, here of another correction.
    const std::string three = correction(" id='a&amp;b'", "0.5 1 1") + "<!-- <ColorCorrection id=\"x\"> -->" +
                              correction(" id=\"0\"", "1 0.5 1") + correction("", "1 1 0.5");
    write("in.ccc",
          "<?xml version=\"1.0\"?>\n<ColorCorrectionCollection>" + three + "</ColorCorrectionCollection>");
    write("in.cdl", "<ColorDecisionList><ColorDecision>" + three + "</ColorDecision></ColorDecisionList>");
    write("one.cc", correction(" id='c'", "1 1 0.5"));
    const std::string first = "zebeauty: in.c..: took the color correction 'a&b', the first of 3; .*\n";
    const struct {
        std::string arguments, output, error;
    } cases[] = {
        {"in.ccc", "0.500000 1.000000 1.000000 #80ffff\n", first},
        {"in.ccc --id 'a&b'", "0.500000 1.000000 1.000000 #80ffff\n", ""},
        {"in.ccc --id 0", "1.000000 0.500000 1.000000 #ff80ff\n", ""},
        {"one.cc in.cdl --id 0", "1.000000 0.500000 0.500000 #ff8080\n", ""},
        {"- --id '#3' <in.cdl", "1.000000 1.000000 0.500000 #ffff80\n", ""},
        {"in.ccc --id 1", "", "zebeauty: in.ccc: has no color correction '1'; it has 'a&b', '0', '#3'\n"},
        {"one.cc --id 0", "", "zebeauty: one.cc: has no color correction '0'; it has 'c'\n"},
    };
    for (const auto& c : cases)
        for (const char* color : {"1,1,1 ", "'#FFffff' "}) {
            EXPECT_EQ(run("lut apply "s + color + c.arguments), c.output.empty() ? 3 : 0) << c.arguments;
            EXPECT_EQ(outputText(), c.output) << c.arguments;
            EXPECT_THAT(errorText(), MatchesRegex(c.error)) << c.arguments;
        }
    for (const char* color : {"1,1", "1,1,1.5", "'#fffff'", "'#fffffg'"})
        EXPECT_EQ(run("lut apply "s + color + " one.cc"), 2) << color;
}

TEST_F(Lut, ChainsInFloat) {
    write("dark.cube", cube([](Color in) { return Color{in[1] / 512, in[0] / 512, in[2] / 512}; }, 2));
    write("bright.cube", cube([](Color in) { return Color{in[0] * 512, in[1] * 512, in[2] * 511}; }, 2));
    ASSERT_EQ(run("lut bake dark.cube bright.cube out.lut --levels 5"), 0);
    EXPECT_EQ(errorText(), "");
    const Grade swapped = [](Color in) { return Color{in[1], in[0], in[2] * 511 / 512}; };
    expectNear(lutFile("out.lut").colors, tableOf(swapped, ::evenLevels(5)).colors, 1);
}

TEST_F(Lut, NumbersHaveAPointWhereTheUserHasAComma) {
    if (std::system(("localedef -i de_DE -f UTF-8 '" + (m_streams / "de_DE.UTF-8") + "' 2>&-").c_str()) != 0)
        GTEST_SKIP() << "localedef or its sources are not installed";
    // glibc never frees what it makes of LOCPATH: AddressSanitizer would end this run as a leak.
    const std::string german =
        "export LC_ALL=de_DE.UTF-8 ASAN_OPTIONS=detect_leaks=0 LOCPATH='" + m_streams.path() + "';";
    write("in.cube", cube(strange, 3));
    write("in.png", Picture(2, 2));
    ASSERT_EQ(run("lut bake in.cube a.lut --levels-at 0,0.5,1", german), 0) << errorText();
    EXPECT_EQ(bytesOf("a.lut"),
              (LutFile{{0, 0.5f, 1}, true, 0, tableOf(strange, {0, 0.5f, 1}).colors}.bytes()));
    EXPECT_EQ(run("render in.png out.png --smooth 0.0 --whiten 0.0", german), 0) << errorText();
}

TEST_F(Lut, LevelsLieWhereTheyAreAskedFor) {
    const Grade turned = [](Color in) { return Color{in[2], in[0], 1 - in[1]}; };
    write("in.cube", cube(turned, 2));
    const std::pair<const char*, std::vector<float>> cases[] = {
        {"", ::evenLevels(33)},
        {"--levels 65", ::evenLevels(65)},
        {"--levels 3 --gamma 2", {0, 0.25f, 1}},
        {"--levels-at 0,0.02,0.1,0.5,1", {0, 0.02f, 0.1f, 0.5f, 1}}};
    for (const auto& [options, levels] : cases) {
        ASSERT_EQ(run("lut bake -y in.cube out.lut "s + options), 0) << errorText();
        const ColorTable table = lutFile("out.lut");
        EXPECT_EQ(table.levels, levels);
        expectNear(table.colors, tableOf(turned, levels).colors, 1);
    }
    ASSERT_EQ(run("lut identity 2 two.lut"), 0) << errorText();
    EXPECT_EQ(bytesOf("two.lut"), (LutFile{{0, 1}}.fill([](size_t i) { return 255 * i; }).bytes()));
}

TEST_F(Lut, CutsAndCountsWhatLiesOutside) {
    write("in.cube", "LUT_3D_SIZE 2\n-0.5 0 1.5\n0 1.000001 1\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n0 0 0\n");
    ASSERT_EQ(run("lut bake in.cube out.lut --levels 2"), 0);
    EXPECT_EQ(errorText(),
              "zebeauty: warning: in.cube: 2 of 24 values lie outside 0 to 1 (-0.5 to 1.5) and were "
              "clamped\n");
    EXPECT_EQ(bytesOf("out.lut").substr(48 + 8, 3), "\0\0\xff"s);
}

TEST_F(Lut, RefusesWhatIsDamagedWithItsReasonAndWithoutAFile) {
    const std::string inXml =
        "<ProcessList compCLFversion=\"3\" id=\"x\">\n<LUT1D inBitDepth=\"32f\" "
        "outBitDepth=\"32f\"><Array dim=\"2 1\">\n0\ninf\n</Array></LUT1D></ProcessList>";
    const LutFile own{::evenLevels(3), true, 0, tableOf(strange, ::evenLevels(3)).colors};
    std::string version = own.bytes();
    version[8] = 2;
    const std::string noTable = "is no valid look-up table \\(";
    const struct {
        const char* name;
        std::string bytes, reason;
    } cases[] = {
        {"short.cube", "LUT_3D_SIZE 2\n0 0 0\n", noTable + ".+\\)"},
        {"comma.cube", "LUT_3D_SIZE 2\n0 0 0\n0,5 0 0\n", noTable + "line 3: '0,5' is no finite number\\)"},
        {"nan.cube", "LUT_3D_SIZE 2\nnan 0 0\n", noTable + "line 2: 'nan' .*"},
        {"qnan.cube", "LUT_3D_SIZE 2\n1 0 0 # 1,5\n0 1.#QNAN 0\n", noTable + "line 3: '1.#QNAN' .*"},
        {"huge.cube", "LUT_3D_SIZE 2\n0 1e39 0\n", noTable + "line 2: '1e39' .*"},
        {"inf.clf", inXml, noTable + "line 4: 'inf' .*"},
        {"controls.cube", "LUT_3D_SIZE 2\n0,\x1b\xc2\x9b\xff\xc3\xa4 0 0\n",
         noTable + "line 2: '0,\\?\\?\\?\xc3\xa4' .*"},
        {"wide.cube", "\xff\xfeL\0U\0"s, "is text in UTF-16; .*"},
        {"empty.cube", "", "is empty"},
        {"single.3dl", "3DMESH\nMesh 1 12\n0 512 1023\n", noTable + "it has a single entry\\)"},
        {"text.txt", "no table\n", "is neither a look-up table.*nor a picture.*"},
        {"version.lut", version, "is no valid LUT file: wrong version.*"},
        {"short.lut", own.bytes().substr(0, 100), "is no valid LUT file: Failed to read lut data!"},
    };
    write("chart.png", drawChart(512, 512, ChartNoise::speckled));
    write("wide.png", Picture(512, 511));
    write("small.png", Picture(2, 2));
    write("falling.lut", LutFile{{0, 1, 0.5f}, true, 0, own.colors}.bytes());
    write("one.lut", LutFile{{0, 1}, false, 0, {0, 0, 0, 1, 1, 1}}.bytes());
    for (const auto& c : cases)
        write(c.name, c.bytes);
    std::filesystem::create_directory(m_directory / "folder.cube");
    const auto before = fileNames();
    const auto expectRefusal = [&](const std::string& arguments, const std::string& name,
                                   const std::string& reason) {
        EXPECT_EQ(run(arguments), 3) << arguments;
        EXPECT_THAT(errorText(), MatchesRegex("zebeauty: " + name + ": " + reason + "\n")) << arguments;
        EXPECT_EQ(fileNames(), before) << arguments;
    };
    const auto expectRefusals = [&](const std::string& name, const std::string& reason) {
        expectRefusal("lut bake " + name + " out.lut", name, reason);
        expectRefusal("render small.png out.png --lut " + name, name, reason);
    };
    for (const auto& c : cases)
        expectRefusals(c.name, c.reason);
    expectRefusals("chart.png", "does not look like a look-up table.*--layout.*");
    expectRefusals("wide.png", "has 512x511 pixels; .*");
    expectRefusals("folder.cube", "cannot be read: Is a directory");
    expectRefusals("missing.cube", "cannot be read: No such file.*");
    expectRefusal("lut bake falling.lut out.lut", "falling.lut", "its levels do not rise");
    expectRefusal("render small.png out.png --lut one.lut", "one.lut", "is one-dimensional.*");
    for (const char* options :
         {"out.cube", "out.lut --levels 66", "out.lut --gamma 0", "out.lut --levels-at 0,1,1",
          "out.lut --levels-at 0,x,1", "out.lut --levels-at 0,0.5", "one.lut"})
        EXPECT_EQ(run("lut bake text.txt "s + options), 2) << options;
}

TEST_F(Lut, TellsTheTwoKindsOfPicturesApart) {
    const Grade soft = [](Color in) { return Color{0.5f * in[1] + 0.5f * in[0], in[1], in[2] * in[2]}; };
    using enum PictureLayout;
    for (const int root : {2, 3, 8})
        for (const PictureLayout layout : {lookup, hald}) {
            const Picture picture = pictureOf(soft, root, layout);
            const ColorTable expected = tableOf(soft, ::evenLevels(static_cast<size_t>(root * root)));
            EXPECT_EQ(layoutOf(picture, automatic), layout) << root;
            EXPECT_EQ(tableFromPicture(picture, layout).colors, expected.colors) << root;
            EXPECT_NE(tableFromPicture(picture, layout == hald ? lookup : hald).colors, expected.colors);
        }
    write("in.png", pictureOf(soft, 8, hald));
    ASSERT_EQ(run("lut bake in.png out.lut --levels 64 --layout hald"), 0) << errorText();
    EXPECT_EQ(lutFile("out.lut").colors, tableOf(soft, ::evenLevels(64)).colors);
}

TEST_F(Lut, InfoMeasuresTheDistanceFromIdentity) {
    LutFile file{{0, 1}};
    file.fill([](size_t i) { return 255 * i; });
    file.colors[3 * 5 + 1] = 12; // red and blue on, green off
    file.colors[0] = 6;
    write("a.lut", file.bytes());
    ASSERT_EQ(run("lut info a.lut"), 0) << errorText();
    EXPECT_EQ(outputText(), "format: LUT file\nversion: 1\nlevels: 2, uniform\ndimension: 3\n"
                            "largest difference from identity: 12 of 255, at input 1 0 1\n"
                            "mean difference from identity: 0.750 of 255\n");
    write("b.lut",
          LutFile{{std::nanf(""), 0.5f, 0.25f}, false, 0, {0, 0, 0, 128, 128, 128, 64, 64, 67}}.bytes());
    ASSERT_EQ(run("lut info --json b.lut"), 0) << errorText();
    EXPECT_EQ(outputText(),
              R"({"format":"LUT file","version":1,"levels":3,"uniform":false,"levelValues":[null,0.5,0.25],)"
              R"("dimension":1,"largestDifference":3,"largestDifferenceAt":[0.25,0.25,0.25],)"
              R"("meanDifference":0.333})"
              "\n");
    EXPECT_THAT(errorText(), StartsWith("zebeauty: warning: b.lut: its levels do not rise"));
    write("a.clf", "<ProcessList compCLFversion=\"3\" id=\"x\"><Description>\"A\" &#x9b;\\</Description>"
                   "<Matrix inBitDepth=\"32f\" outBitDepth=\"32f\"><Array dim=\"3 3\">1 0 0 0 1 0 0 0 0.5"
                   "</Array></Matrix></ProcessList>");
    ASSERT_EQ(run("lut info --json a.clf"), 0) << errorText();
    EXPECT_EQ(outputText(),
              R"({"format":"Academy/ASC Common LUT Format","content":["matrix"],"corrections":[],"id":"x",)"
              R"("description":"\"A\" \u009b\\","largestDifference":127,"largestDifferenceAt":[0.0,0.0,1.0],)"
              R"("meanDifference":21.172})"
              "\n");
}

TEST_F(Lut, ExportComesBackTheSame) {
    const auto expectSame = [&](const LutFile& file, const std::string& name,
                                const std::string& options = "") {
        write("a.lut", file.bytes());
        ASSERT_EQ(run("lut export -y a.lut " + name + options), 0) << errorText();
        EXPECT_EQ(errorText(), "") << name;
        expectNear(baked(name, file.levels).colors, baked("a.lut", file.levels).colors, 0);
    };
    for (const size_t n : {4u, 65u})
        for (const char* name : {"a.cube", "a.clf", "a.3dl"}) {
            expectSame(LutFile{::evenLevels(n), true}.fillWithNoise(), name);
            if (name[2] != '3')
                expectSame(LutFile{::evenLevels(n), false}.fillWithNoise(), name);
        }
    for (const char* layout : {" --layout hald", " --layout lookup"})
        expectSame(LutFile{::evenLevels(9), true, 0, tableOf(strange, ::evenLevels(9)).colors}, "a.png",
                   layout);

    write("a.lut", LutFile{{0, 0.25f, 1}, true, 0, tableOf(strange, {0, 0.25f, 1}).colors}.bytes());
    ASSERT_EQ(run("lut export -y a.lut a.cube"), 0);
    EXPECT_EQ(errorText(), "zebeauty: warning: a.lut: its 3 levels were resampled to 65 uniform ones\n");
    expectNear(baked("a.cube", ::evenLevels(33)).colors, baked("a.lut", ::evenLevels(33)).colors, 1);

    write("a.cube", cube([](Color in) { return Color{2 * in[0], in[1], -in[2]}; }, 2));
    ASSERT_EQ(run("lut export -y a.cube b.cube --levels 3"), 0);
    EXPECT_THAT(bytesOf("b.cube"), HasSubstr("\n2.000000 1.000000 -1.000000\n"));
    ASSERT_EQ(run("lut export -y a.cube b.3dl --levels 5"), 0);
    EXPECT_THAT(errorText(), HasSubstr("150 of 375 values lie outside 0 to 1 (-1 to 2) and were clamped"));
    for (const char* arguments :
         {"a.cube c.jpg", "a.cube c.txt", "a.cube c.png --levels 33", "a.cube c.3dl --levels 3"})
        EXPECT_EQ(run("lut export "s + arguments), 2) << arguments;
}

class Graded : public Lut {
protected:
    void SetUp() override {
        if (run("info") == 4)
            GTEST_SKIP() << "there is no OpenGL ES here";
        const auto byte = [](int value) { return static_cast<uint8_t>(value); };
        Picture slow(192, 128); // halving the chroma of gentle slopes does no harm
        for (int y = 0; y < 128; ++y)
            for (int x = 0; x < 192; ++x)
                slow.set(x, y, {byte(30 + x), byte(30 + y * 3 / 2), byte(220 - x / 2 - y / 2)});
        write("raw.png", slow);
        render("raw.png in.png --smooth 0 --whiten 0");
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
        return sum / static_cast<double>(a.rgb.size());
    }

    void render(const std::string& arguments) { ASSERT_EQ(run("render -y " + arguments), 0) << errorText(); }
};

TEST_F(Graded, AsFfmpegGrades) {
    if (std::system("ffmpeg -version >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "there is no ffmpeg";
    const std::string filter = "cd '" + m_directory.path() +
                               "' && ffmpeg -v error -i in.png -vf "
                               "lut3d=a.cube:interp=trilinear -pix_fmt rgb24 graded.png";
    ASSERT_EQ(std::system(filter.c_str()), 0);
    // The same way through a frame as the tool's own grading.
    render("graded.png expected.png --smooth 0 --whiten 0");
    ASSERT_EQ(run("lut bake a.cube dense.lut --levels 65 --gamma 1.5"), 0) << errorText();
    for (const char* lut : {"a.cube", "dense.lut"}) {
        render("in.png out.png --lut "s + lut);
        EXPECT_LT(meanDifference("out.png", "expected.png"), 1) << lut;
    }
    EXPECT_GT(meanDifference("in.png", "expected.png"), 20);
}

TEST_F(Graded, EffectsRunInTheOrderOfTheCommandLine) {
    render("in.png none.png --smooth 0 --whiten 0");
    render("in.png lut.png --lut a.cube");
    render("in.png white.png --whiten 1 --smooth 0");
    const auto expectSame = [&](const std::string& options, const std::string& expected) {
        render("in.png out.png " + options);
        EXPECT_LT(meanDifference("out.png", expected), 1.5) << options;
    };
    render("lut.png lutwhite.png --smooth 0 --whiten 1");
    render("white.png whitelut.png --lut a.cube");
    EXPECT_GT(meanDifference("lutwhite.png", "whitelut.png"), 10);
    expectSame("--lut a.cube --smooth 0 --whiten 1", "lutwhite.png");
    expectSame("--smooth 0 --whiten 1 --lut a.cube", "whitelut.png");
    expectSame("--lut a.cube --intensity 0", "none.png");
    render("in.png half.png --lut a.cube --intensity 0.5");
    EXPECT_NEAR(meanDifference("half.png", "none.png"), meanDifference("lut.png", "none.png") / 2, 1);
}
