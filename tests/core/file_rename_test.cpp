// Renaming files, directly, in two steps and by copying.

#include "core/io/file.h"
#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/file_system_double.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class FileRename : public testing::Test {
protected:
    /// Renames and gives the error, after its code when that is not FileErrRename.
    std::string rename(const std::string& newName) {
        const bool isRenamed = file.rename(name(directory / newName));
        EXPECT_EQ(isRenamed, file.error() == 0);
        EXPECT_EQ(utf8(file.fileName()), directory / (isRenamed ? newName : "file"));
        return (isRenamed || file.error() == 10 ? "" : "not 10: ") + utf8(file.errorString());
    }

    LogCapture log;
    TempDirectory directory;
    const std::string content = pattern(200000);
    std::string path = madeFile(directory / "file", content);
    CZeFile file{name(path)};
    FileSystemDouble system;
};

TEST_F(FileRename, MovesTheFileWithWhatIsStillToBeWritten) {
    ASSERT_TRUE(file.open(Ze::WriteOnly | Ze::Append));
    ASSERT_EQ(file.write("end", 3), 3);
    system.failures["write"] = {ENOSPC};
    EXPECT_EQ(rename("new"), "not 10: No space left on device");
    ASSERT_TRUE(file.open(Ze::WriteOnly | Ze::Append));
    ASSERT_EQ(file.write("end", 3), 3);
    EXPECT_EQ(rename("new"), "");
    EXPECT_EQ(contentOf(directory / "new"), content + "end");
    EXPECT_EQ(listing(directory), "new ");
}

TEST_F(FileRename, RefusesWhatWouldLoseAFile) {
    EXPECT_EQ(rename("file"), "Destination file is the same file.");
    fs::create_symlink("nowhere", directory / "dangling");
    EXPECT_EQ(rename("dangling"), "Destination file exists");
    system.failures["lstat"] = {EIO};
    EXPECT_EQ(rename("new"), "Input/output error");
    // The link leads to the file, but is another one: renamed over it, it would lead to itself.
    fs::rename(path, directory / "FILE");
    fs::create_symlink("FILE", path);
    madeFile(directory / "fiLE", "another");
    EXPECT_EQ(rename("FILE"), "Destination file exists");
    EXPECT_EQ(rename("fiLE"), "Destination file exists");
    EXPECT_EQ(contentOf(directory / "FILE"), content);
    EXPECT_EQ(contentOf(directory / "fiLE"), "another");
    // Nothing could find the file under the name of a resource.
    const auto old = fs::current_path();
    fs::current_path(directory.path());
    fs::create_directory(":");
    EXPECT_FALSE(file.rename(name(":/new")));
    EXPECT_EQ(utf8(file.errorString()), "Read-only file system");
    EXPECT_TRUE(fs::is_empty(":"));
    fs::current_path(old);
    fs::remove(path);
    EXPECT_EQ(rename("new"), "Source file does not exist.");
}

// Two hard links stand for the one file that a file system without letter case finds under both names.
TEST_F(FileRename, ChangesLetterCaseInTwoSteps) {
    fs::create_hard_link(path, directory / "FILE");
    system.failures["rename"] = {EBUSY, 1, 1};
    EXPECT_EQ(rename("FILE"), "Device or resource busy");
    EXPECT_EQ(listing(directory), "FILE file ");
    EXPECT_EQ(system.count("rename"), 3); // there, on, and back
    system.failures["rename"] = {EBUSY, 2, 1};
    const std::string error = rename("FILE");
    EXPECT_THAT(error, testing::MatchesRegex(
                           "Unable to restore from .*/file\\.[a-zA-Z0-9]{6}: Device or resource busy"));
    fs::rename(error.substr(23, path.size() + 7), path);
    EXPECT_EQ(rename("FILE"), "");
    EXPECT_EQ(listing(directory), "FILE ");
}

TEST_F(FileRename, CopiesWhereTheSystemCannotRename) {
    const auto time = fs::last_write_time(path) - std::chrono::hours(1000);
    fs::last_write_time(path, time);
    ASSERT_EQ(chmod(path.c_str(), 06750), 0);
    system.failures["rename"] = {EXDEV};
    system.mostBytes = 7777;
    system.interrupted = 3;
    EXPECT_EQ(rename("new"), "");
    EXPECT_EQ(listing(directory), "new ");
    EXPECT_EQ(contentOf(directory / "new"), content);
    EXPECT_EQ(fs::last_write_time(directory / "new"), time);
    // The copy and its name are on the disk before the source goes.
    std::erase_if(system.calls, [](const std::string& call) { return call != "fsync" && call != "unlink"; });
    EXPECT_THAT(system.calls, testing::ElementsAre("fsync", "fsync", "unlink"));
}

TEST_F(FileRename, GivesAnotherOwnerAndGroupNoMoreThanEverybodyHas) {
    for (const bool keepsOwner : {true, false}) {
        ASSERT_EQ(chmod(path.c_str(), 06750), 0);
        system.failures = {{"rename", {EXDEV}}, {"fchown", {EPERM, keepsOwner ? 0 : 2}}};
        EXPECT_EQ(rename("new"), "");
        EXPECT_EQ(permissions(directory / "new"), keepsOwner ? 06750u : 0700u);
        EXPECT_EQ(rename("file"), "");
    }
}

// Somebody who may write to the directory puts a link in the place of the copy.
TEST_F(FileRename, WritesToNothingButItsCopy) {
    const std::string victim = madeFile(directory / "victim", "kept"), copy = directory / "new";
    system.failures["rename"] = {EXDEV};
    system.before = [&](const std::string&) {
        if (!fs::is_symlink(copy) && fs::remove(copy))
            fs::create_symlink(victim, copy);
    };
    EXPECT_EQ(rename("new"), "Error while renaming.");
    EXPECT_EQ(contentOf(victim), "kept");
    EXPECT_EQ(contentOf(path), content);
    EXPECT_TRUE(fs::is_symlink(copy));
}

TEST_F(FileRename, AFailedCopyLeavesTheSourceAndNothingElse) {
    system.mostBytes = 7777;
    const std::pair<std::string, FileSystemDouble::Failure> rows[] = {
        {"fopen", {EIO}},       {"write", {EIO, 1, 1}}, {"read", {EIO, 100, 1}}, {"fsync", {EIO}},
        {"fsync", {EIO, 1, 1}}, {"close", {EIO}},       {"unlink", {EIO}},
    };
    for (const auto& [function, failure] : rows) {
        system.failures = {{"rename", {EXDEV}}, {function, failure}};
        EXPECT_EQ(rename("new"),
                  function == "unlink" ? "Cannot remove source file" : "Error while renaming.");
        EXPECT_EQ(listing(directory), "file ") << function;
        EXPECT_EQ(contentOf(path), content) << function;
    }
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    system.failures = {{"rename", {EXDEV}}};
    EXPECT_EQ(rename("new"), "Will not rename sequential file using block copy");
    EXPECT_EQ(listing(directory), "file ");
}

} // namespace
