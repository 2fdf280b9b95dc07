#include "core/io/dir.h"

#include "tests/core/file_system_double.h"
#include "tests/core/test_file.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <climits>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using testing::IsEmpty;

bool mkpath(const std::string& path) {
    return CZeDir::mkpath(name(path));
}
bool removeRecursively(const std::string& path) {
    return CZeDir::removeRecursively(name(path));
}

TEST(Dir, RefusesPathsThatAreNotAbsolute) {
    const LogCapture log;
    EXPECT_FALSE(mkpath("") || mkpath("./logs") || CZeDir::rmdir(CZeString()) || CZeDir::rmdir(name("tmp")));
    EXPECT_FALSE(removeRecursively("") || removeRecursively("tmp/x") || std::filesystem::exists("logs"));
    EXPECT_THAT(log.texts(),
                testing::ElementsAre("CZeDir::mkpath: Empty or null path name",
                                     "CZeDir::mkpath: only accept absolute dir path!",
                                     "CZeDir::rmdir: Empty or null path name",
                                     "CZeDir::rmdir: only accept absolute dir path!",
                                     "CZeDir::removeRecursively: only accept absolute dir path!",
                                     "CZeDir::removeRecursively: only accept absolute dir path!"));
    EXPECT_EQ(log.entries().at(0).priority, 5);
}

TEST(Dir, MkpathMakesWhatIsMissing) {
    const LogCapture log;
    const TempDirectory root;
    std::filesystem::create_directory(root / "a");
    std::ofstream(root / "file") << "";
    std::filesystem::create_symlink(root / "nowhere", root / "dangling");
    std::filesystem::create_directory_symlink(root / "a", root / "link");
    const std::pair<const char*, const char*> rows[] = {
        // clang-format off
        {"a", "a"}, {"a/b/c/", "a/b/c"}, {"x//y///\xC3\xA9", "x/y/\xC3\xA9"}, {"link/d/e", "a/d/e"},
        {"u/../v", "v"}, {"file/", nullptr}, {"file/below", nullptr}, {"dangling", nullptr},
        // clang-format on
    };
    for (const auto& [path, made] : rows) {
        EXPECT_EQ(mkpath(root / path), made != nullptr) << path;
        EXPECT_TRUE(!made || std::filesystem::is_directory(root / made)) << path;
    }
    EXPECT_TRUE(mkpath("///") && !std::filesystem::exists(root / "nowhere"));
    EXPECT_FALSE(mkpath("/" + std::string(5000, 'n')) || mkpath("/proc/none/below"));
    EXPECT_FALSE(mkpath(root / ("parent/child/" + std::string(300, 'n') + "/x")));
    EXPECT_TRUE(!CZeDir::rmdir(name(root / "parent")) && // what was made stays
                CZeDir::rmdir(name(root / "parent/child/")) && CZeDir::rmdir(name(root / "parent")));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(Dir, RemoveRecursivelyStaysInsideTheTree) {
    const TempDirectory root;
    std::filesystem::create_directories(root / "outside/kept");
    std::filesystem::create_directories(root / "tree/.a/b/c");
    madeFile(root / "outside/file", "kept");
    madeFile(root / "tree/.a/b/file", "gone");
    std::filesystem::create_directory_symlink(root / "outside", root / "tree/.a/link");
    std::filesystem::create_symlink("../outside/file", root / "tree/file link");
    std::filesystem::create_directory_symlink(root / "tree", root / "link");
    for (const auto& path : {root / "link", root / "link/", root / "outside/file", (root / "tree") + '\0'})
        EXPECT_TRUE(!removeRecursively(path) && std::filesystem::exists(root / "tree/.a/b/file")) << path;
    EXPECT_TRUE(removeRecursively(root / "tree//") && removeRecursively(root / "tree")); // or is not there
    EXPECT_EQ(listing(root), "link outside ");
    EXPECT_TRUE(std::filesystem::exists(root / "outside/kept") && contentOf(root / "outside/file") == "kept");
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
    const rlimit few = {rlim_t(at) + 3, old.rlim_max}; // `at` is one of the three
    close(at);
    setrlimit(RLIMIT_NOFILE, &few);
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
    EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(root / "tree"), {}), 2);
    // The double keeps everything safe, should the root not be recognized.
    system.failures["unlinkat"] = {EPERM, INT_MAX};
    system.calls.clear();
    EXPECT_FALSE(removeRecursively("/") || removeRecursively("//") || removeRecursively("/tmp/.."));
    EXPECT_EQ(system.calls["unlinkat"], 0);
}

} // namespace
