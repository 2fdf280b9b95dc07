#include "core/io/save_file.h"

#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/file_system_double.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {

class SaveFile : public testing::Test {
protected:
    bool save(const std::string& at) {
        CZeSaveFile saved(name(at));
        return saved.open(Ze::WriteOnly) && saved.write("new", 3) == 3 && saved.commit();
    }

    static constexpr unsigned kAnother = 65534;
    static unsigned ownerOf(const std::string& of) {
        struct stat status = {};
        stat(of.c_str(), &status);
        return status.st_uid;
    }
    /// Takes the privileges of root off for as long as it lives.
    struct AsAnother {
        const bool isRoot = geteuid() == 0;
        AsAnother() {
            EXPECT_TRUE(!isRoot || setresgid(kAnother, kAnother, 0) + setresuid(kAnother, kAnother, 0) == 0);
        }
        ~AsAnother() { EXPECT_TRUE(!isRoot || setresuid(0, 0, 0) + setresgid(0, 0, 0) == 0); }
    };

    LogCapture log;
    TempDirectory directory;
    std::string path = madeFile(directory / "file", "old");
    CZeSaveFile file{name(path)};
    FileSystemDouble system;
};

TEST_F(SaveFile, PutsTheWholeInPlaceAtOnce) {
    const std::string content = pattern(100000);
    chmod(path.c_str(), 0604);
    system.mostBytes = 999;
    system.interrupted = 2;
    ASSERT_TRUE(file.open(Ze::WriteOnly) && file.write(content.data(), 100000) == 100000);
    EXPECT_TRUE(file.seek(0) && file.write(content.data(), 1) == 1 && contentOf(path) == "old");
    EXPECT_TRUE(file.commit() && !file.isOpen() && contentOf(path) == content);
    EXPECT_EQ(permissions(path), 0604u);
    EXPECT_EQ(system.count("fsync"), 2); // the file, then the directory
    const mode_t mask = umask(027);
    EXPECT_TRUE(save(directory / "\xC3\xA9") && permissions(directory / "\xC3\xA9") == 0640);
    umask(mask);
    EXPECT_EQ(listing(directory), "file \xC3\xA9 ");
}

TEST_F(SaveFile, LeavesTheOldFileWheneverSomethingIsWrong) {
    for (const char* const function : {"write", "fsync", "close", "renameat"}) {
        system.failures[function] = {EACCES};
        ASSERT_TRUE(file.open(Ze::WriteOnly) && file.write("new", 3) == 3);
        EXPECT_FALSE(file.commit()) << function;
        EXPECT_EQ(utf8(file.errorString()) + contentOf(path) + listing(directory),
                  "Permission deniedoldfile ");
    }
    // A write that failed spoils the file, whatever is written after it.
    system.failures["write"] = {ENOSPC};
    ASSERT_TRUE(file.open(Ze::WriteOnly) && file.write(pattern(20000).data(), 20000) == -1);
    EXPECT_TRUE(file.write(pattern(20000).data(), 20000) == 20000 && !file.commit());
    EXPECT_EQ(utf8(file.errorString()), "No space left on device");
    system.failures["write"] = {ENOSPC}; // nothing is written any more
    EXPECT_TRUE(file.open(Ze::WriteOnly) && file.write("new", 3) == 3 && file.close() && file.error() == 0);
    EXPECT_TRUE(CZeSaveFile(name(path)).open(Ze::WriteOnly));
    EXPECT_EQ(contentOf(path) + listing(directory), "oldfile ");
}

TEST_F(SaveFile, KeepsTheOwnerOrWhatIsAllowedToTheNewOne) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may give files away";
    ASSERT_EQ(chown(path.c_str(), kAnother, kAnother), 0);
    ASSERT_EQ(chmod(path.c_str(), 06755), 0);
    EXPECT_TRUE(save(path));
    EXPECT_EQ(ownerOf(path), kAnother);
    EXPECT_EQ(permissions(path), 06755u);
    system.failures["fchown"] = {EPERM, 4}; // owner and group, before and after writing
    EXPECT_TRUE(save(path));
    EXPECT_EQ(ownerOf(path), 0u);
    EXPECT_EQ(permissions(path), 0755u);
}

TEST_F(SaveFile, GoesAsFarAsTheUserMay) {
    std::filesystem::create_directory(directory / "drop");
    chmod((directory / "drop").c_str(), 0333); // may not be read
    chmod(directory.path().c_str(), 0777);
    chmod(path.c_str(), 0444);
    const AsAnother user;
    if (access(directory.path().c_str(), R_OK | W_OK | X_OK) != 0)
        GTEST_SKIP() << "another user may not enter " << directory.path();
    EXPECT_TRUE(save(directory / "drop/new"));
    EXPECT_EQ(contentOf(directory / "drop/new"), "new");
    EXPECT_FALSE(file.open(Ze::WriteOnly));
    EXPECT_EQ(utf8(file.errorString()), "Permission denied");
    const std::string own = madeFile(directory / "own", "old");
    chmod(own.c_str(), 06755); // which writing would cost it
    EXPECT_TRUE(save(own));
    EXPECT_EQ(permissions(own), 06755u);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(listing(directory), "drop file own ");
}

TEST_F(SaveFile, FollowsLinksAndStaysInItsDirectory) {
    std::filesystem::create_directory(directory / "a");
    std::filesystem::create_symlink("../file", directory / "a/link");
    std::filesystem::create_symlink(directory / "a/link", directory / "outer");
    std::filesystem::create_symlink("a/new", directory / "dangling");
    EXPECT_TRUE(save(directory / "outer") && save(directory / "dangling"));
    EXPECT_EQ(contentOf(path) + contentOf(directory / "a/new"), "newnew");
    const auto old = std::filesystem::current_path();
    std::filesystem::current_path(directory / "a");
    CZeSaveFile relative(name("relative"));
    EXPECT_TRUE(relative.open(Ze::WriteOnly));
    std::filesystem::current_path(old);
    std::filesystem::rename(directory / "a", directory / "b");
    EXPECT_TRUE(relative.commit() && std::filesystem::exists(directory / "b/relative"));
    EXPECT_EQ(listing(directory), "b dangling file outer ");
}

TEST_F(SaveFile, SaysWhyItCannotBeOpened) {
    std::filesystem::create_symlink("loop", directory / "loop");
    const std::pair<std::string, const char*> rows[] = {
        {"/dev/null", "file to replace is not a regular file"},
        {path + "/", "Is a directory"},
        {directory / "loop", "Too many levels of symbolic links"},
        {":/resource", "Read-only file system"},
        {"", "No file name specified"},
    };
    for (const auto& [at, text] : rows) {
        CZeSaveFile refused(name(at));
        EXPECT_TRUE(!refused.open(Ze::WriteOnly) && refused.error() == Ze::FileErrOpen) << at;
        EXPECT_EQ(utf8(refused.errorString()), text) << at;
    }
    for (const int mode : {0, Ze::ReadWrite | 0, Ze::WriteOnly | Ze::Append})
        EXPECT_FALSE(file.open(mode)) << mode;
    EXPECT_FALSE(file.commit());
    ASSERT_TRUE(file.open(Ze::WriteOnly));
    EXPECT_FALSE(file.open(Ze::WriteOnly));
    file.setFileName(name("other"));
    EXPECT_EQ(utf8(file.fileName()), path);
}

} // namespace
