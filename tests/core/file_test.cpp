// Devices and files: opening, reading, writing and seeking.

#include "core/io/dir.h"
#include "core/io/file.h"
#include "core/io/generic_file_engine.h"
#include "core/io/save_file.h"
#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/file_system_double.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <functional>
#include <random>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::string_literals;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A device that takes everything, gives nothing and does not say why.
class OddDevice : public CZeIODevice {
    int64_t readData(char*, int64_t) override { return -1; }
    int64_t writeData(const char*, int64_t size) override { return size; }
};

class File : public testing::Test {
protected:
    const LogCapture log;
    const TempDirectory directory;
};

TEST_F(File, RefusesWithTheseWarnings) {
    const std::string path = madeFile(directory / "f", "0123456789");
    char data[8] = "";
    CZeFile closed, reader(name(path)), writer(name(directory / "g")), pipe(name("/dev/null"));
    ASSERT_TRUE(reader.open(Ze::ReadOnly));
    ASSERT_TRUE(writer.open(Ze::WriteOnly));
    const std::tuple<std::string, int64_t, std::function<int64_t()>> rows[] = {
        // clang-format off
        {"CZeIODevice::open: File access not specified", 0, [&] { return closed.open(Ze::Append | Ze::Text); }},
        {"CZeGenericFileEngine::open: No file name specified", 0, [&] { return closed.open(Ze::ReadOnly); }},
        {"Cannot call seek on a sequential device", 0, [&] { return pipe.CZeIODevice::seek(-1); }},
        {"The device is not open", 0, [&] { return OddDevice().seek(-1); }},
        {"CZeIODevice::seek: Invalid pos: -1", 0, [&] { return reader.seek(-1); }},
        {"CZeFileDevice::seek: IODevice is not open", 0, [&] { return closed.seek(-1); }},
        {"CZeFileDevice::flush: No file engine. Is IODevice open?", 0, [&] { return closed.flush(); }},
        {"Called with maxSize < 0", -1, [&] { return closed.read(data, -5); }},
        {"WriteOnly device", -1, [&] { return writer.readLine(data, 8); }},
        {"device not open", -1, [&] { return closed.write(data, 0); }},
        {"ReadOnly device", -1, [&] { return reader.write(data, 1); }},
        {"maxSize argument exceeds CZeByteArray size limit", 1, [&] { return reader.read(0x7FFFFFE7).isNull(); }},
        {"Peeking data for sequential device is not supported!", -1,
         [&] { return pipe.open(Ze::ReadOnly) ? pipe.peek(data, 1) : 0; }},
        {"Called with maxSize < 2", -1, [&] { return closed.readLine(data, 1); }},
        {"CZeFile::open: File (" + path + ") already open", 0, [&] { return reader.open(0); }},
        {"CZeFile::setFileName: File (" + path + ") is already opened", 1,
         [&] { return reader.setFileName(name("x")), reader.fileName() == name(path); }},
        {"CZeFile::remove: Empty or null file name", 0, [&] { return closed.remove(); }},
        {"CZeFile::rename: Empty or null file name", 0, [&] { return closed.rename(name("x")); }},
        {"CZeGenericFileEngine::map: Mapping a file beyond its size is not portable", 1, [&] { return !reader.map(INT64_MAX, INT64_MAX); }},
        {"No file engine available or engine does not support MapExtension", 1, [&] { return !closed.map(0, 1); }},
        {"No file engine available or engine does not support UnMapExtension", 0, [&] { return closed.unmap(nullptr); }},
        {"stat() ZE_FAILED for '" + path + "?'", 0, [&] { return CZeFile(name(path + "?")).exists(); }},
        // clang-format on
    };
    std::vector<std::string> warnings;
    for (const auto& [warning, result, call] : rows) {
        EXPECT_EQ(call(), result) << warning;
        warnings.push_back(warning);
    }
    EXPECT_EQ(log.texts(), warnings);
    EXPECT_EQ(bytes(reader.readAll()), "0123456789");
}

TEST_F(File, OpensAsTheAccessCallsFor) {
    constexpr int r = Ze::ReadOnly, w = Ze::WriteOnly, a = Ze::Append, t = Ze::Truncate;
    const std::pair<int, std::string> rows[] = {
        // with what is in the file after "new" was written
        {w, "new"},         {r | w, "new text"},        {w | t | Ze::Text, "new"},  {w | a, "old textnew"},
        {r | w | t, "new"}, {r | w | a, "old textnew"}, {w | a | t, "old textnew"},
    };
    for (const auto& [mode, content] : rows) {
        for (const bool exists : {false, true}) {
            const std::string path = directory / std::to_string(2 * mode + exists);
            CZeFile file(name(exists ? madeFile(path, "old text") : path));
            ASSERT_TRUE(file.open(mode)) << mode;
            EXPECT_EQ(file.pos(), exists && mode & a ? 8 : 0);
            EXPECT_EQ(file.write("new", 3), 3);
            EXPECT_TRUE(file.close());
            EXPECT_EQ(contentOf(path), exists ? content : "new") << mode;
        }
    }
    // A file is not taken for a missing one when the system does not tell.
    FileSystemDouble system;
    system.failures["stat"] = {EIO};
    CZeFile file(name(madeFile(directory / "f", "old text")));
    EXPECT_TRUE(file.open(r | w));
    EXPECT_EQ(contentOf(directory / "f"), "old text");
}

TEST_F(File, SaysWhyItCannotBeOpened) {
    std::filesystem::create_symlink("nowhere", directory / "dangling");
    const std::string file = madeFile(directory / "\xC3\xA9\xE2\x82\xAC", "x");
    constexpr char kNone[] = "No such file or directory";
    const std::tuple<std::string, int, FileSystemDouble::Failure, int, const char*> rows[] = {
        // clang-format off
        {file + "?", Ze::ReadOnly, {0, 0}, 5, kNone}, {directory / "dangling", Ze::ReadOnly, {0, 0}, 5, kNone},
        {file + "\0?"s, Ze::ReadOnly, {0, 0}, 5, kNone}, // not the file before the zero
        {file + std::string(5000, '/'), Ze::ReadOnly, {0, 0}, 5, "File name too long"},
        {directory.path(), Ze::ReadOnly, {0, 0}, 5, "file to open is a directory"},
        {file, Ze::ReadOnly | Ze::Truncate, {0, 0}, 5, "Invalid argument"},
        {file, Ze::ReadOnly, {EACCES}, 5, "Permission denied"}, {file, Ze::ReadOnly, {EMFILE}, 4, "Too many open files"},
        {file, Ze::ReadOnly, {EINTR, 3}, 0, ""}, // tried again
        // clang-format on
    };
    CZeFile opened;
    const auto before = openDescriptors().size();
    for (const auto& [path, mode, failure, code, text] : rows) {
        FileSystemDouble system;
        system.failures["fopen"] = failure;
        opened.setFileName(name(path));
        EXPECT_EQ(opened.open(mode), code == 0) << text;
        EXPECT_EQ(opened.isOpen(), code == 0) << text;
        EXPECT_EQ(opened.error(), code) << text;
        EXPECT_EQ(utf8(opened.errorString()), text);
    }
    EXPECT_EQ(openDescriptors().size(), before + 1);
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(File, LeavesNoDescriptorToAChildProcess) {
    const std::string path = madeFile(directory / "f", "old");
    std::filesystem::create_directory(directory / "tree");
    madeFile(directory / "tree/file", "");
    const std::set<int> others = openDescriptors();
    std::set<int> seen, inherited;
    FileSystemDouble system;
    system.failures["rename"] = {EXDEV};
    system.before = [&](const std::string&) {
        for (const int descriptor : openDescriptors()) {
            seen.insert(descriptor);
            if (!others.count(descriptor) && !(fcntl(descriptor, F_GETFD) & FD_CLOEXEC))
                inherited.insert(descriptor);
        }
    };
    CZeFile file(name(path));
    ASSERT_TRUE(file.open(Ze::ReadWrite));
    EXPECT_EQ(bytes(file.readAll()), "old");
    EXPECT_TRUE(file.rename(name(directory / "copy")));
    CZeSaveFile save(name(path));
    ASSERT_TRUE(save.open(Ze::WriteOnly));
    EXPECT_TRUE(save.commit());
    EXPECT_TRUE(CZeDir::removeRecursively(name(directory / "tree")));
    EXPECT_GE(seen.size(), others.size() + 3);
    EXPECT_THAT(inherited, IsEmpty());
}

// Random operations on a file against the same ones on a string, with short and interrupted transfers.
TEST_F(File, ReadsAndWritesLikeAStringInMemory) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](size_t limit) { return size_t(random() % limit); };
        const bool appends = seed % 3 == 0;
        std::string model = pattern(below(100000));
        CZeFile file(name(madeFile(directory / "f", model)));
        ASSERT_TRUE(file.open(Ze::ReadWrite | (appends ? Ze::Append : 0)));
        FileSystemDouble system;
        system.mostBytes = seed % 2 ? 1 + below(5000) : SIZE_MAX;
        system.interrupted = seed % 2 ? 3 : 0;
        size_t pos = appends ? model.size() : 0;
        for (int step = 0; step < 200; ++step) {
            const size_t sizes[] = {1, 1 + below(64), 1 + below(3000), 16383 + below(3), 40000};
            std::string data(sizes[below(5)], '\0');
            std::string rest = pos < model.size() ? model.substr(pos, data.size()) : "";
            const size_t action = below(7);
            if (action < 2) {
                ASSERT_EQ(file.read(data.data(), int64_t(data.size())), rest.size()) << seed << ' ' << step;
                ASSERT_EQ(data.substr(0, rest.size()), rest);
                pos += rest.size();
            } else if (action == 2) {
                ASSERT_EQ(bytes(file.peek(int64_t(data.size()))), rest);
                ASSERT_EQ(file.atEnd(), rest.empty());
            } else if (action == 3) {
                pos = below(2) ? below(model.size() + 100) : pos - std::min(pos, below(3000));
                ASSERT_TRUE(file.seek(int64_t(pos)));
            } else if (action == 4) {
                data.push_back('\0');
                rest.resize(std::min(rest.find('\n'), rest.size() - 1) + 1);
                ASSERT_EQ(file.readLine(data.data(), int64_t(data.size())), rest.size());
                ASSERT_EQ(data.substr(0, rest.size() + 1), rest + '\0');
                pos += rest.size();
            } else {
                std::generate(data.begin(), data.end(), [&] { return char(random()); });
                ASSERT_EQ(file.write(data.data(), int64_t(data.size())), data.size());
                pos = appends ? model.size() : pos;
                model.resize(std::max(model.size(), pos));
                model.replace(pos, data.size(), data);
                pos += data.size();
            }
            ASSERT_EQ(file.pos(), pos) << seed << ' ' << step;
            ASSERT_EQ(file.size(), model.size()) << seed << ' ' << step;
        }
        ASSERT_TRUE(file.close());
        ASSERT_EQ(contentOf(directory / "f"), model) << seed;
    }
}

TEST_F(File, SmallReadsCostNoSystemCallEach) {
    const std::string content = pattern(1 << 20);
    CZeFile file(name(madeFile(directory / "f", content)));
    ASSERT_TRUE(file.open(Ze::ReadWrite));
    const FileSystemDouble system;
    std::string read(content.size(), ' ');
    for (size_t i = 0; i < read.size(); i += 64)
        ASSERT_TRUE(file.read(&read[i], 64) == 64 && file.seek(int64_t(i)) && file.seek(int64_t(i) + 64));
    EXPECT_TRUE(read == content && system.count("read") <= 65);
    // The block that was read last is the past of the file no more once something is written.
    EXPECT_TRUE(file.write("!", 1) == 1 && file.seek((1 << 20) - 1));
    EXPECT_EQ(bytes(file.read(2)), content.back() + "!"s);
}

TEST_F(File, TextModeDropsCarriageReturns) {
    const std::string path =
        madeFile(directory / "f", "one\r\n\r\r\n\0x\rlast"s + std::string(20000, '\r') + "!");
    for (const bool isText : {false, true}) {
        CZeFile file(name(path));
        ASSERT_TRUE(file.open(Ze::ReadOnly | (isText ? Ze::Text : 0)));
        char line[5];
        std::string lines;
        for (int i = 0; i < 4; ++i)
            lines += std::string(line, size_t(file.readLine(line, sizeof line))) + "|";
        EXPECT_EQ(lines, isText ? "one\n|\n|\0xla|st!|"s : "one\r|\n|\r\r\n|\0x\rl|"s);
        ASSERT_TRUE(file.seek(3) && file.read(line, 1) == 1);
        EXPECT_EQ(line[0], isText ? '\n' : '\r');
        EXPECT_EQ(file.pos(), isText ? 5 : 4); // counts what was dropped
        ASSERT_TRUE(file.seek(0));
        EXPECT_EQ(file.readAll().size(), isText ? 12 : 20016);
        EXPECT_EQ(file.read(line, 1) + file.readLine(line, 5), 0);
    }
}

TEST_F(File, KeepsWhatADiskDidNotTakeUntilItDoes) {
    const std::string content = pattern(30000);
    CZeFile file(name(directory / "f"));
    ASSERT_TRUE(file.open(Ze::WriteOnly));
    FileSystemDouble system;
    system.mostBytes = 5000;
    system.failures["write"] = {ENOSPC, 2, 1};
    EXPECT_TRUE(file.write(content.data(), 10000) == 10000 && !file.flush() && !file.seek(1));
    EXPECT_TRUE(file.pos() == 10000 && file.size() == 10000 && file.error() == Ze::FileErrWrite &&
                file.flush());
    system.failures["write"] = {EIO, 1, 2};
    EXPECT_EQ(file.write(content.data() + 10000, 20000), 10000); // not buffered: two transfers went well
    EXPECT_EQ(file.write(content.data() + 20000, 10000), 10000);
    EXPECT_TRUE(file.close());
    EXPECT_EQ(contentOf(directory / "f"), content);
    // The last that a network's disk may say.
    for (const int error : {EIO, EINTR}) {
        ASSERT_TRUE(file.open(Ze::WriteOnly));
        system.failures["fclose"] = {error};
        EXPECT_EQ(file.close(), error == EINTR); // which has closed
        EXPECT_EQ(file.error(), error == EINTR ? Ze::FileErrNone : Ze::FileErrWrite);
        EXPECT_EQ(utf8(file.errorString()), error == EINTR ? "" : "Input/output error");
        EXPECT_FALSE(file.isOpen());
    }
}

TEST_F(File, TellsOfErrorsUpToTheEnd) {
    CZeFile file(name(madeFile(directory / "f", "abc")));
    {
        CZeFile full(file.fileName());
        ASSERT_TRUE(full.open(Ze::ReadOnly) && full.seek(1) && full.close());
        full.setFileName(name("/dev/full"));
        ASSERT_TRUE(full.open(Ze::WriteOnly) && full.write("x", 1) == 1 && !full.flush() && !full.flush());
        EXPECT_EQ(full.write(pattern(16384).data(), 16384), -1);
        EXPECT_TRUE(!full.seek(0) && !full.close() && full.error() == Ze::FileErrWrite);
        EXPECT_EQ(utf8(full.errorString()), "No space left on device");
        ASSERT_TRUE(full.open(Ze::WriteOnly) && full.error() == 0 && full.write("x", 1) == 1);
    }
    EXPECT_THAT(log.texts(),
                ElementsAre("Cannot call seek on a sequential device",
                            "CZeFile::~CZeFile: File (/dev/full) is incomplete: No space left on device"));
    FileSystemDouble system;
    char data[8];
    system.failures["read"] = {EIO};
    EXPECT_TRUE(file.open(Ze::ReadOnly) && file.read(data, 2) == -1 && file.error() == Ze::FileErrRead);
    EXPECT_EQ(utf8(file.errorString()), "Input/output error");
    system.failures["read"] = {EIO, 1, 1};
    EXPECT_EQ(file.read(data, 8), 3); // what came before the error
    EXPECT_TRUE(file.remove() && !file.isOpen() && !file.remove() && file.error() == Ze::FileErrRemove);
}

TEST_F(File, GoesBeyondFourGigabytesAndMaps) {
    constexpr int64_t kFar = (int64_t{5} << 30) + 7;
    CZeFile file(name(directory / "sparse"));
    ASSERT_TRUE(file.open(Ze::ReadWrite) && file.seek(kFar) && file.write("far", 3) == 3);
    ASSERT_TRUE(file.seek(kFar - 6) && file.read(2).size() == 2);
    unsigned char* const mapped = file.map(kFar - 5, 8);
    ASSERT_TRUE(mapped && std::memcmp(mapped + 5, "far", 3) == 0) << utf8(file.errorString());
    mapped[0] = 'x';
    std::filesystem::remove(directory / "sparse");
    ASSERT_TRUE(file.size() == kFar + 3 && file.seek(kFar - 5));
    EXPECT_EQ(bytes(file.read(100)), "x\0\0\0\0far"s);
    EXPECT_TRUE(file.write("more", 4) == 4 && file.map(kFar + 3, 4));
    EXPECT_FALSE(file.unmap(mapped + 1) || file.map(-1, 2) || file.map(0, 0));
    EXPECT_TRUE(file.error() == Ze::FileErrMap && file.unmap(mapped) && !file.unmap(mapped));
    EXPECT_TRUE(file.seek(0) && file.readAll().isNull());
    EXPECT_EQ(log.texts().back(), "maxSize argument exceeds CZeByteArray size limit");
}

TEST_F(File, StopsAtTheLastPosition) {
    const int memory = memfd_create("huge", MFD_CLOEXEC); // takes all positions
    CZeFile file(name("/proc/self/fd/" + std::to_string(memory)));
    ASSERT_TRUE(file.open(Ze::ReadWrite));
    ASSERT_TRUE(file.seek(INT64_MAX));
    EXPECT_EQ(file.write("x", 1), -1);
    EXPECT_EQ(file.error(), Ze::FileErrWrite);
    EXPECT_EQ(utf8(file.errorString()), "File too large");
    EXPECT_EQ(file.pos(), INT64_MAX);
    EXPECT_TRUE(file.close());
    close(memory);
    OddDevice device;
    char data = 0;
    ASSERT_TRUE(device.open(Ze::ReadWrite));
    EXPECT_EQ(device.read(&data, 1), -1);
    EXPECT_EQ(utf8(device.errorString()), "Unknown error");
    ASSERT_TRUE(device.seek(INT64_MAX));
    EXPECT_EQ(device.write("x", 1), 1);
    EXPECT_EQ(device.pos(), INT64_MAX);
}

TEST_F(File, ReadsAPipeAsItComes) {
    const std::string path = directory / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] {
        CZeFile pipe(name(path));
        EXPECT_TRUE(pipe.open(Ze::WriteOnly) && pipe.write("line\n", 5) == 5 && pipe.flush());
        EXPECT_EQ(pipe.write(pattern(200000).data(), 200000), 200000);
    });
    CZeFile pipe(name(path));
    ASSERT_TRUE(pipe.open(Ze::ReadOnly));
    char data[100];
    EXPECT_EQ(pipe.readLine(data, 100), 5);
    EXPECT_EQ(bytes(pipe.readAll()), pattern(200000));
    writer.join();
    EXPECT_TRUE(pipe.atEnd());
    ASSERT_TRUE(pipe.close());
    ASSERT_TRUE(pipe.open(Ze::ReadWrite));
    EXPECT_EQ(pipe.write("abc", 3), 3);
    EXPECT_EQ(pipe.read(data, 1), 1);
    EXPECT_EQ(pipe.write("XY", 2), 2); // what was read ahead stays
    EXPECT_EQ(bytes(pipe.read(100)), "bc");
    EXPECT_EQ(bytes(pipe.read(100)), "XY");
    EXPECT_EQ(pipe.pos(), 5);
    CZeFile noSize(name("/proc/self/status"));
    ASSERT_TRUE(noSize.open(Ze::ReadOnly));
    EXPECT_EQ(bytes(noSize.readAll()).substr(0, 5), "Name:");
}

TEST_F(File, EnginesAskTheSystem) {
    CZeGenericFileEngine engine(name(madeFile(directory / "f", "")));
    ASSERT_TRUE(engine.open(Ze::ReadOnly));
    EXPECT_FALSE(engine.seek(-1));
    EXPECT_EQ(engine.error(), Ze::FileErrPosition);
    const CZeGenericFileEngine here(name(directory.path())), file(name(directory / "f")),
        none(name(directory / "none"));
    EXPECT_TRUE(here.isDirectory() && !file.isDirectory() && !none.isDirectory());
    EXPECT_THAT(log.texts(), ElementsAre("stat() ZE_FAILED for '" + directory / "none" + "'"));
    const std::string kept = getenv("TMPDIR") ? getenv("TMPDIR") : "/tmp";
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(utf8(CZeGenericFileEngine::tempPath()), "/tmp");
    setenv("TMPDIR", "/elsewhere", 1);
    EXPECT_EQ(utf8(CZeGenericFileEngine::tempPath()), "/elsewhere");
    setenv("TMPDIR", kept.c_str(), 1);
}

} // namespace
