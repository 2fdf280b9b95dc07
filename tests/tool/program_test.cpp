// zebeauty as its users meet it.

#include "tests/tool/program.h"
#include "tool/chart/chart.h"
#include "tool/info/gl_info.h"

using namespace ze::tool;
using namespace std::string_literals;
using testing::MatchesRegex;

TEST_F(Program, FailsWithItsExitCodeOneLineAndNothingLeftBehind) {
    write("in.png", drawChart(40, 30, ChartNoise::speckled));
    const std::string png = contentOf(m_directory / "in.png");
    write("flipped.png", png.substr(0, 600) + static_cast<char>(png[600] ^ 1) + png.substr(601));
    write("list.png", "#EXTM3U\n#EXTINF:1,\nin.png\n"s);
    std::filesystem::create_directory(m_directory / "folder.png");
    const auto before = fileNames();

    // clang-format off
    const struct {
        const char* arguments;
        int code;
        const char* reason; // After "zebeauty: ".
        const char* environment = "";
    } cases[] = {
        {"", 2, "no command"},
        {"help", 2, "unknown command 'help'; see zebeauty --help"},
        {"lut frob", 2, "unknown command 'frob'; see zebeauty lut --help"},
        {"render --frob a b", 2, "The following argument was not expected: --frob; see zebeauty render --help"},
        {"chart -- -x.frob", 2, "-x.frob: unknown extension"},
        {"render in.png", 2, ".+"},
        {"render in.png out.png --smooth 1.01", 2, "--smooth: "},
        {"render in.png out.gir", 2, "out.gir: unknown extension; .png, .jpg, "},
        {"render in.png out.png --compare ./out.png", 2, "./out.png: is named as OUTPUT"},
        {"render in.png in.png", 2, "in.png: exists already"},
        {"render -y in.png folder.png", 2, "folder.png: is a folder; name a file in it"},
        {"chart out.png --size 0x5", 2, "--size: "},
        {"render missing.png out.png", 3, "missing.png: cannot be read: No such file"},
        {"render 'a\nb.png' out.png", 3, "a b.png: cannot be read"},
        {"render list.png out.png", 3, "list.png: is no picture in a format that can be read"},
        {"render flipped.png out.png", 3, "flipped.png: is no valid picture "},
        {"render in.png no/out.png --smooth 0 --whiten 0", 1, "no/out.png: cannot be written: No such file"},
        {"render in.png out.png --compare no/b.png --smooth 0 --whiten 0", 1, "no/b.png: cannot be written: "},
        {"render in.png out.png", 4, "in.png: no EGL with OpenGL ES 2.0: eglGetDisplay failed", kNoGl},
        {"render in.png out.png", 4, "in.png: no EGL with OpenGL ES 2.0: eglInitialize failed.*; EGL_PLATFORM=surfaceless draws", "EGL_PLATFORM=bogus"},
    };
    // clang-format on
    const bool isAngle = isOnAngle();
    for (const auto& c : cases) {
        if (*c.environment && isAngle)
            continue;
        EXPECT_EQ(run(c.arguments, c.environment), c.code) << c.arguments;
        EXPECT_THAT(errorText(), MatchesRegex("zebeauty: "s + c.reason + "[^\n]*\n")) << c.arguments;
        EXPECT_EQ(errorText().find("; see zebeauty") != std::string::npos, c.code == 2) << c.arguments;
        EXPECT_EQ(outputText(), "") << c.arguments;
        EXPECT_EQ(fileNames(), before) << c.arguments;
    }
    EXPECT_EQ(contentOf(m_directory / "in.png"), png);
    for (const char* version : {"--version", "-V"}) {
        EXPECT_EQ(run(version), 0);
        EXPECT_THAT(outputText(), MatchesRegex("zebeauty [0-9]+[.][0-9]+[.][0-9]+\n"));
    }
}

TEST_F(Program, SaysSoWhenStandardOutputIsClosedOrFull) {
    for (const char* arguments : {"--help", "completion"}) {
        for (const char* output : {">/dev/full", ">&-"}) {
            EXPECT_EQ(run(arguments + " "s + output + " 2>err #"), 1) << arguments << output;
            EXPECT_THAT(contentOf(m_directory / "err"),
                        MatchesRegex("zebeauty: standard output: cannot be written: .+\n"));
        }
    }
}

TEST_F(Program, DrawsWithoutADisplayUnlessThePlatformIsNamed) {
    if (run("info --json") == 4)
        GTEST_SKIP() << "there is no OpenGL ES here";
    EXPECT_THAT(outputText(), MatchesRegex("[{]\"version\":\"[0-9.]+\",\"eglVendor\":.*"
                                           "\"maxTextureSize\":[0-9]+,\"libraries\":[{].+[}][}]\n"));
    const std::string plain = "env -u EGL_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY ";
    for (const char* display :
         {"DISPLAY=", "DISPLAY=:9999", "DISPLAY=no.such.host:0", "WAYLAND_DISPLAY=none"})
        EXPECT_EQ(run("info", plain + display), 0) << display << ": " << errorText();
    EXPECT_EQ(run("info", plain + "DISPLAY=:9999 EGL_PLATFORM=x11"), isOnAngle() ? 0 : 4);
}

TEST_F(Program, CompletesCommandsOptionsValuesAndFiles) {
    // clang-format off
    const struct {
        const char* words; // The last is being typed.
        const char* replies;
    } cases[] = {
        {"lut i", "info identity"},
        {"l", "lut"},
        {"completi", ""},
        {"lut bake --lev", "--levels --levels-at"},
        {"render a b --fo", "--format"},
        {"render --format = nv1", "nv12"},
        {"render --format =", "nv12 nv21"},
        {"render --smooth ''", ""},
        {"render --lut ''", "FILES"},
        {"render -- -", "FILES"},
        {"info ''", ""},
    };
    // clang-format on
    ASSERT_EQ(run("completion"), 0);
    write("completion", outputText() + "compopt() { COMPREPLY=(FILES); }\n"
                                       "COMP_WORDS=(zebeauty \"$@\") COMP_CWORD=$#\n"
                                       "_zebeauty; echo \"${COMPREPLY[*]}\" >replies\n");
    for (const auto& c : cases) {
        EXPECT_EQ(run("-V >version && bash completion "s + c.words), 0) << errorText();
        EXPECT_EQ(contentOf(m_directory / "replies"), c.replies + "\n"s) << c.words;
    }
}

TEST_F(Program, WritesTheSamePixelsInBothLayoutsWithoutAnEffectAndWithoutGl) {
    const Picture chart = drawChart(33, 17, ChartNoise::speckled);
    write("http:%d.png", chart); // means the file of this name
    const std::string render = "render http:%d.png --smooth 0 --whiten 0 --detail frame ";
    ASSERT_EQ(run(render + "a.png --compare both.png", kNoGl), 0) << errorText();
    ASSERT_EQ(run(render + "b.PNG --format nv21", kNoGl), 0) << errorText();
    const Picture after = read("a.png"), both = read("both.png");
    EXPECT_EQ(contentOf(m_directory / "a.png"), contentOf(m_directory / "b.PNG"));
    for (const char* option : {"--standard bt709", "--range video"}) {
        ASSERT_EQ(run(render + "-y b.PNG " + option, kNoGl), 0) << errorText();
        EXPECT_NE(read("b.PNG").rgb, after.rgb) << option;
    }
    ASSERT_EQ(both.width, 66);
    for (int x = 0; x < 66; ++x)
        ASSERT_EQ(both.at(x, 16), (x < 33 ? chart : after).at(x % 33, 16));
    EXPECT_EQ(fileNames(), (std::set<std::string>{"http:%d.png", "a.png", "b.PNG", "both.png"}));
}

TEST_F(Program, RendersUpToTheLimitOfTheGpu) {
    if (run("info") == 4)
        GTEST_SKIP() << "there is no OpenGL ES here";
    const int limit = queryGl().maxTextureSize;
    EXPECT_THAT(outputText(), MatchesRegex("EGL vendor: .+\nGL version: OpenGL ES .+\nGL_MAX_TEXTURE_SIZE: " +
                                           std::to_string(limit) + "\n"));
    write("limit.png", Picture(limit, 1));
    write("over.png", Picture(1, limit + 1));
    EXPECT_EQ(run("render limit.png out.jpeg"), 0) << errorText();
    EXPECT_EQ(read("out.jpeg").width, limit);
    EXPECT_EQ(run("render over.png out.png"), 1);
    EXPECT_THAT(errorText(), MatchesRegex("zebeauty: over.png: 1x" + std::to_string(limit + 1) +
                                          ".*limit is " + std::to_string(limit) + ".*\n"));
    EXPECT_FALSE(std::filesystem::exists(m_directory / "out.png"));
}
