#include "core/io/dir.h"

#include "tests/core/test_file.h"
#include "tests/support/file_system_double.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::string_literals;

namespace {

namespace fs = std::filesystem;
using testing::IsEmpty;

bool mkpath(const std::string& path) {
    return CZeDir::mkpath(name(path));
}
bool removeRecursively(const std::string& path) {
    return CZeDir::removeRecursively(name(path));
}

TEST(Dir, RefusesPathsThatAreNotAbsolute) {
    const LogCapture log;
    EXPECT_FALSE(mkpath(""));
    EXPECT_FALSE(mkpath("./logs"));
    EXPECT_FALSE(CZeDir::rmdir(CZeString()));
    EXPECT_FALSE(CZeDir::rmdir(name("tmp")));
    EXPECT_FALSE(removeRecursively("tmp/x"));
    EXPECT_THAT(log.texts(),
                testing::ElementsAre("CZeDir::mkpath: Empty or null path name",
                                     "CZeDir::mkpath: only accept absolute dir path!",
                                     "CZeDir::rmdir: Empty or null path name",
                                     "CZeDir::rmdir: only accept absolute dir path!",
                                     "CZeDir::removeRecursively: only accept absolute dir path!"));
}

TEST(Dir, MkpathMakesWhatIsMissing) {
    const LogCapture log;
    const TempDirectory root;
    fs::create_directory(root / "a");
    madeFile(root / "file", "");
    fs::create_symlink(root / "nowhere", root / "dangling");
    fs::create_directory_symlink(root / "a", root / "link");
    const std::pair<std::string, std::string> rows[] = {
        // clang-format off
        {"a", "a"}, {"a/b/c/", "a/b/c"}, {"x//y///\xC3\xA9", "x/y/\xC3\xA9"}, {"link/d/e", "a/d/e"}, {"u/../v", "v"},
        {"file/", ""}, {"file/below", ""}, {"dangling", ""}, {"parent/child/" + std::string(300, 'n') + "/x", ""},
        // clang-format on
    };
    for (const auto& [path, made] : rows) {
        EXPECT_EQ(mkpath(root / path), !made.empty()) << path;
        EXPECT_TRUE(made.empty() || fs::is_directory(root / made)) << path;
    }
    EXPECT_TRUE(mkpath("///"));
    EXPECT_FALSE(fs::exists(root / "nowhere"));
    EXPECT_FALSE(mkpath("/" + std::string(5000, 'n')));
    EXPECT_FALSE(mkpath("/proc/none/below"));
    EXPECT_FALSE(CZeDir::rmdir(name(root / "parent"))); // what was made stays
    EXPECT_TRUE(CZeDir::rmdir(name(root / "parent/child/")));
    EXPECT_TRUE(CZeDir::rmdir(name(root / "parent")));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(Dir, RemoveRecursivelyStaysInsideTheTree) {
    const TempDirectory root;
    fs::create_directory(root / "outside");
    fs::create_directories(root / "tree/.a/b/c");
    madeFile(root / "outside/file", "kept");
    madeFile(root / "tree/.a/b/file", "gone");
    fs::create_directory_symlink(root / "outside", root / "tree/.a/link");
    fs::create_symlink("../outside/file", root / "tree/file link");
    fs::create_directory_symlink(root / "tree", root / "link");
    for (const std::string& path :
         std::vector<std::string>{"link", "link/", "link/.", "link/..//", "tree/.", "tree/.a/..",
                                  "outside/file", "tree\0"s, "tree" + std::string(PATH_MAX, '/') + "x"}) {
        EXPECT_FALSE(removeRecursively(root / path)) << path;
        EXPECT_TRUE(fs::exists(root / "tree/.a/b/file")) << path;
    }
    EXPECT_TRUE(removeRecursively(root / "tree//"));
    EXPECT_TRUE(removeRecursively(root / "tree")); // is not there
    EXPECT_EQ(listing(root), "link outside ");
    EXPECT_EQ(contentOf(root / "outside/file"), "kept");
}

// The directory that is being emptied goes elsewhere, and its ".." leads to another one.
TEST(Dir, RemoveRecursivelyLeavesATreeThatWasMovedAway) {
    const TempDirectory root;
    fs::create_directories(root / "tree/a/b");
    fs::create_directory(root / "outside");
    madeFile(root / "tree/a/b/file", "");
    fs::create_directory(root / "a");
    FileSystemDouble system;
    system.before = [&](const std::string& function) {
        if (function == "unlinkat" && system.count(function) == 0) // for the file in b
            fs::rename(root / "tree/a/b", root / "outside/b");
    };
    EXPECT_FALSE(removeRecursively(root / "tree"));
    EXPECT_EQ(listing(root), "a outside tree ");
    EXPECT_TRUE(fs::exists(root / "outside/b"));
    EXPECT_FALSE(fs::exists(root / "outside/b/file"));
}

TEST(Dir, RemoveRecursivelyNeedsFewDescriptorsHoweverDeep) {
    const TempDirectory root;
    int at = open(root.path().c_str(), O_RDONLY);
    for (int depth = 0; depth < 300; ++depth) { // a path longer than the system takes
        ASSERT_EQ(mkdirat(at, "a long name for a directory", 0700) + mkdirat(at, "b", 0700), 0);
        const int below = openat(at, "a long name for a directory", O_RDONLY);
        close(at);
        at = below;
    }
    rlimit old = {};
    getrlimit(RLIMIT_NOFILE, &old);
    const rlimit few = {static_cast<rlim_t>(at) + 3, old.rlim_max}; // `at` is one of the three
    close(at);
    setrlimit(RLIMIT_NOFILE, &few);
    {
        FileSystemDouble system;
        system.failures["fdopendir"] = {ENOMEM, 4};
        for (int i = 0; i < 4; ++i)
            EXPECT_FALSE(removeRecursively(root.path()));
    }
    EXPECT_TRUE(removeRecursively(root.path()));
    setrlimit(RLIMIT_NOFILE, &old);
}

TEST(Dir, RemoveRecursivelyRemovesWhatItCan) {
    const TempDirectory root;
    for (const char* const path : {"tree/a/1", "tree/b/2", "tree/c/3"})
        ASSERT_TRUE(mkpath(root / path));
    FileSystemDouble system;
    system.failures["unlinkat"] = {EPERM, 1, 2};
    EXPECT_FALSE(removeRecursively(root / "tree"));
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(root / "tree"), {}), 2);
    // The double keeps everything safe, should the root not be recognized.
    system.failures["unlinkat"] = {EPERM, INT_MAX};
    system.calls.clear();
    for (const char* const path : {"/", "//"})
        EXPECT_FALSE(removeRecursively(path)) << path;
    EXPECT_EQ(system.count("unlinkat"), 0);
}

} // namespace
