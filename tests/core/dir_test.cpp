#include "core/io/dir.h"

#include "core/tools/ze_string.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool mkpath(const std::string& path) {
    return CZeDir::mkpath(CZeString::fromLocal8Bit(path.c_str()));
}

TEST(Dir, MkpathMakesWhatIsMissing) {
    const LogCapture log;
    const TempDirectory root;
    std::filesystem::create_directory(root / "a");
    std::ofstream(root / "file") << "";
    std::filesystem::create_symlink(root / "nowhere", root / "dangling");
    std::filesystem::create_directory_symlink(root / "a", root / "link");
    const struct {
        const char* path;
        bool result;
        const char* made; // exists as a directory afterwards
    } rows[] = {
        {"a", true, "a"},
        {"a/b/c/", true, "a/b/c"},
        {"a/b/c", true, "a/b/c"},
        {"new///", true, "new"},
        {"x//y///z", true, "x/y/z"},
        {"link/d/e", true, "a/d/e"},
        {"u/../v", true, "v"},
        {"\xC3\xA9t\xC3\xA9/\xE2\x82\xAC", true, "\xC3\xA9t\xC3\xA9/\xE2\x82\xAC"},
        {"file", false, nullptr},
        {"file/", false, nullptr},
        {"file/below", false, nullptr},
        {"dangling", false, nullptr},
        {"dangling/below", false, nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(mkpath(root / row.path), row.result) << row.path;
        EXPECT_TRUE(!row.made || std::filesystem::is_directory(root / row.made)) << row.path;
    }
    EXPECT_FALSE(std::filesystem::exists(root / "nowhere"));
    EXPECT_TRUE(mkpath("/"));
    EXPECT_TRUE(mkpath("///"));
    EXPECT_FALSE(mkpath(root / std::string(300, 'n')));
    EXPECT_FALSE(mkpath("/" + std::string(5000, 'n')));
    EXPECT_FALSE(mkpath("/proc/none/below")); // a parent in which nobody can make anything
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(Dir, MkpathRefusesEmptyAndRelativePaths) {
    const LogCapture log;
    EXPECT_FALSE(CZeDir::mkpath(CZeString()));
    EXPECT_FALSE(mkpath(""));
    EXPECT_FALSE(mkpath("logs"));
    EXPECT_FALSE(mkpath("./logs"));
    EXPECT_FALSE(std::filesystem::exists("logs"));
    const std::string empty = "CZeDir::mkpath: Empty or null path name";
    const std::string relative = "CZeDir::mkpath: only accept absolute dir path!";
    EXPECT_EQ(
        log.entries(),
        (std::vector<LogCapture::Entry>{
            {5, "glowfx", empty}, {5, "glowfx", empty}, {5, "glowfx", relative}, {5, "glowfx", relative}}));
}

TEST(Dir, MkpathKeepsParentsMadeBeforeAFailure) {
    const TempDirectory root;
    EXPECT_FALSE(mkpath(root / ("parent/child/" + std::string(300, 'n') + "/x")));
    EXPECT_TRUE(std::filesystem::is_directory(root / "parent/child"));
}

} // namespace
