// Many pictures in one run, or in one picture.

#include "tests/tool/program.h"
#include "tool/chart/chart.h"
#include "tool/files/interruption.h"

#include <csignal>

#include <unistd.h>

using namespace ze::tool;

namespace {

class Batch : public Program {
protected:
    void SetUp() override {
        if (run("info") == 4)
            GTEST_SKIP() << "there is no OpenGL ES here";
        std::filesystem::create_directories(m_directory / "in/sub");
        for (const char* name : {"in/a.png", "in/b.png", "in/sub/c.png", "in/.hidden.png"})
            write(name, m_chart);
    }

    bool exists(const std::string& name) const { return std::filesystem::exists(m_directory / name); }

    Picture m_chart = drawChart(120, 80, ChartNoise::speckled);
};

} // namespace

TEST_F(Batch, GoesOnAfterFailuresAndTellsThemAtTheEnd) {
    write("in/b.png", contentOf(m_directory / "in/b.png").substr(0, 900));
    write("in/clip.y4m", "YUV4MPEG2 W16 H16 F25:1\nFRAME\n" + std::string(384, '\x80'));
    write("in/notes.txt", "no picture\n");
    EXPECT_EQ(run("render -r in missing.png --into in/out --as jpg"), 3);
    EXPECT_THAT(errorText(),
                testing::MatchesRegex(
                    "zebeauty: warning: in: passed over 2 files that are no picture, the first clip.y4m; .*\n"
                    "zebeauty: in/b.png: is no valid picture .*\n"
                    "zebeauty: missing.png: cannot be read: .*\n"
                    "zebeauty: 2 of 4 pictures failed\n"));
    EXPECT_TRUE(exists("in/out/sub/c.jpg"));
    EXPECT_EQ(run("render in/a.png one.jpg"), 0) << errorText();
    EXPECT_EQ(contentOf(m_directory / "in/out/a.jpg"), contentOf(m_directory / "one.jpg"));
    const auto names = fileNames();
    EXPECT_EQ(run("render -r -y in/a.png in/sub --into in/out --as jpg"), 0) << errorText();
    EXPECT_EQ(fileNames(), names);
    write("in/out/a.jpg", "kept");
    EXPECT_EQ(run("render -r in/a.png in/sub --into in/out --as jpg --skip-existing"), 0) << errorText();
    EXPECT_EQ(contentOf(m_directory / "in/out/a.jpg"), "kept");
}

TEST_F(Batch, StartsNothingThatWouldLoseAFile) {
    const auto names = fileNames();
    for (const char* arguments : {"render in in/sub/../a.png --into out", "render in --into in",
                                  "render in/a.png - --into out", "render in --into out --as mp3"})
        EXPECT_EQ(run(arguments), 2) << arguments << errorText();
    EXPECT_EQ(run("render in --into out", kNoGl), 4) << errorText();
    EXPECT_EQ(fileNames(), names);
}

TEST_F(Batch, SheetsShowTheOriginalAndEveryCombination) {
    ASSERT_EQ(run("sheet in/a.png sheet.png --smooth 0.5,1 --whiten 0,0.3"), 0) << errorText();
    ASSERT_EQ(run("render in/a.png last.png --smooth 1 --whiten 0.3"), 0) << errorText();
    const Picture sheet = read("sheet.png"), last = read("last.png");
    constexpr int kGap = 16;
    ASSERT_EQ(sheet.width, 2 * 120 + 3 * kGap);
    const int tile = (sheet.height - kGap) / 3; // with its label and the gap below
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 120; ++x) {
            ASSERT_EQ(sheet.at(kGap + x, kGap + y), m_chart.at(x, y)) << x << ", " << y;
            ASSERT_EQ(sheet.at(120 + 2 * kGap + x, kGap + 2 * tile + y), last.at(x, y)) << x << ", " << y;
        }
    bool hasText = false;
    for (int y = kGap + 80; y < tile; ++y)
        for (int x = kGap; x < kGap + 120; ++x)
            hasText = hasText || sheet.at(x, y).red < 100;
    EXPECT_TRUE(hasText);
}

TEST(Interruption, WaitsUntilNothingIsHalfWritten) {
    TempDirectory directory;
    const pid_t child = fork();
    if (child == 0) {
        prepareForInterruptions();
        {
            const InterruptionHold outer;
            {
                const InterruptionHold inner;
                raise(SIGTERM);
            }
            std::ofstream(directory / "written") << "whole";
        }
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
    EXPECT_EQ(contentOf(directory / "written"), "whole");
}
