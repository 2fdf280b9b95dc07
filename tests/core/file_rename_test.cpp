// Renaming files, directly, in two steps and by copying.

#include "core/io/file.h"
#include "tests/core/file_system_double.h"
#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>

#include <sys/stat.h>

namespace {

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
    ASSERT_TRUE(file.open(Ze::WriteOnly | Ze::Append) && file.write("end", 3) == 3);
    system.failures["write"] = {ENOSPC};
    EXPECT_EQ(rename("new"), "not 10: No space left on device");
    ASSERT_TRUE(file.open(Ze::WriteOnly | Ze::Append) && file.write("end", 3) == 3);
    EXPECT_EQ(rename("new"), "");
    EXPECT_TRUE(contentOf(directory / "new") == content + "end" && listing(directory) == "new ");
}

TEST_F(FileRename, RefusesWhatWouldLoseAFile) {
    EXPECT_EQ(rename("file"), "Destination file is the same file.");
    // The link leads to the file, but is another one: renamed over it, it would lead to itself.
    std::filesystem::rename(path, directory / "FILE");
    std::filesystem::create_symlink("FILE", path);
    madeFile(directory / "fiLE", "another");
    EXPECT_EQ(rename("FILE"), "Destination file exists");
    EXPECT_EQ(rename("fiLE"), "Destination file exists");
    EXPECT_TRUE(contentOf(directory / "FILE") == content && contentOf(directory / "fiLE") == "another");
    std::filesystem::remove(path);
    EXPECT_EQ(rename("new"), "Source file does not exist.");
}

// Two hard links stand for the one file that a file system without letter case finds under both names.
TEST_F(FileRename, ChangesLetterCaseInTwoSteps) {
    std::filesystem::create_hard_link(path, directory / "FILE");
    system.failures["rename"] = {EBUSY, 1, 1};
    EXPECT_EQ(rename("FILE"), "Device or resource busy");
    EXPECT_EQ(listing(directory), "FILE file ");
    EXPECT_EQ(system.calls["rename"], 3); // there, on, and back
    system.failures["rename"] = {EBUSY, 2, 1};
    const std::string error = rename("FILE");
    EXPECT_THAT(error, testing::MatchesRegex(
                           "Unable to restore from .*/file\\.[a-zA-Z0-9]{6}: Device or resource busy"));
    std::filesystem::rename(error.substr(23, path.size() + 7), path);
    EXPECT_EQ(rename("FILE"), "");
    EXPECT_EQ(listing(directory), "FILE ");
}

TEST_F(FileRename, CopiesWhereTheSystemCannotRename) {
    const auto time = std::filesystem::last_write_time(path) - std::chrono::hours(1000);
    std::filesystem::last_write_time(path, time);
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    system.failures["rename"] = {EXDEV};
    system.mostBytes = 7777;
    system.interrupted = 3;
    EXPECT_EQ(rename("new"), "");
    EXPECT_TRUE(listing(directory) == "new " && contentOf(directory / "new") == content);
    EXPECT_EQ(std::filesystem::status(directory / "new").permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(std::filesystem::last_write_time(directory / "new"), time);
}

TEST_F(FileRename, AFailedCopyLeavesTheSourceAndNothingElse) {
    system.mostBytes = 7777;
    for (const std::string function : {"write", "read", "fopen", "fsync", "unlink"}) {
        const bool isTransfer = function == "write" || function == "read"; // whose second call fails
        system.failures = {{"rename", {EXDEV}}, {function, {EIO, function == "read" ? 100 : 1, isTransfer}}};
        EXPECT_EQ(rename("new"),
                  function == "unlink" ? "Cannot remove source file" : "Error while renaming.");
        system.failures.clear();
        EXPECT_TRUE(listing(directory) == "file " && contentOf(path) == content) << function;
    }
    std::filesystem::create_symlink("nowhere", directory / "dangling");
    system.failures = {{"rename", {EXDEV}}};
    EXPECT_EQ(rename("dangling"), "Error while renaming.");
    std::filesystem::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    system.failures = {{"rename", {EXDEV}}};
    EXPECT_EQ(rename("new"), "Will not rename sequential file using block copy");
    EXPECT_EQ(listing(directory), "dangling file ");
}

} // namespace
