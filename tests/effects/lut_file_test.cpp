// The reader of LUT files: what it takes, what it refuses and which refusals it tells.

#include "effects/lut/lut_file_reader.h"
#include "tests/support/log_capture.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <bit>
#include <cerrno>

#include <gmock/gmock.h>

namespace {

struct {
    size_t alignment, size;
    bool isRefused;
} g_allocation;

} // namespace

// The linker sends calls of posix_memalign here.
extern "C" {
int __real_posix_memalign(void** block, size_t alignment, size_t size);

int __wrap_posix_memalign(void** block, size_t alignment, size_t size) {
    g_allocation.alignment = alignment;
    g_allocation.size = size;
    return g_allocation.isRefused ? ENOMEM : __real_posix_memalign(block, alignment, size);
}
}

namespace ze {
namespace {

using Texts = std::vector<std::string>;

const Texts kSilence,
    kWrongSignature = {"Invalid lut file signature!"}, kNoHeader = {"Failed to read lut file header!"},
    kNoLevels = {"Failed to read lut level values!"}, kNoColors = {"Failed to read lut data!"};

std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class LutReader : public testing::Test {
protected:
    ~LutReader() override { EXPECT_EQ(openFiles(), m_openFiles); }

    CLutFileReader read(const std::string& file) {
        log.clear();
        return CLutFileReader(CZeString::fromUtf8(file.c_str()));
    }

    /// Messages are errors, and nothing of a refused file remains.
    void expectRefusal(const std::string& bytes, const Texts& messages) {
        writeFile(path, bytes);
        const CLutFileReader reader = read(path);
        std::vector<LogCapture::Entry> entries;
        for (const std::string& message : messages)
            entries.push_back({6, "glowfx", message});
        EXPECT_EQ(log.entries(), entries);
        EXPECT_FALSE(reader.isValid() || reader.version() || !reader.isThreeDimensional() ||
                     reader.levelCount() || reader.levelValues() || reader.colorData());
    }

    void expectContents(const std::string& bytes, const LutFile& file) {
        writeFile(path, bytes);
        const CLutFileReader reader = read(path);
        EXPECT_EQ(log.texts(), kSilence);
        EXPECT_EQ(reader.version(), 1u);
        EXPECT_EQ(reader.isThreeDimensional(), file.isThreeDimensional);
        ASSERT_EQ(reader.levelCount(), file.levels.size());
        EXPECT_EQ(std::memcmp(reader.levelValues(), file.levels.data(), 4 * file.levels.size()), 0);
        EXPECT_EQ(std::memcmp(reader.colorData(), file.colors.data(), file.colors.size()), 0);
        EXPECT_EQ(std::pair(g_allocation.size, g_allocation.alignment),
                  std::pair(file.colors.size(), size_t{64}));
    }

    LogCapture log;
    TempDirectory directory;
    std::string path = directory / "t\u00fcr.lut";

private:
    std::ptrdiff_t m_openFiles = openFiles();
};

/// Levels of any bits come through, even what is not a number.
const std::vector<float> kOddLevels = {std::bit_cast<float>(0x80000001), std::bit_cast<float>(0x7F812345)};

TEST_F(LutReader, ReadsEveryLevelCountInBothDimensionsFromAnyOffset) {
    for (size_t n : {1u, 18u, 65u})
        for (bool isThreeDimensional : {true, false})
            for (size_t gap : {0u, 7u, 20000u}) {
                SCOPED_TRACE(testing::Message() << n << (isThreeDimensional ? " cubed, " : ", ") << gap);
                LutFile file{std::vector<float>(n, 0.25f), isThreeDimensional, gap};
                expectContents(file.fillWithNoise().bytes() + "what follows is ignored", file);
            }
}

TEST_F(LutReader, TellsWhereAFileEndsEarly) {
    LutFile file{kOddLevels, true, 5};
    const std::string bytes = file.fillWithNoise().bytes();
    for (size_t size = 0; size < bytes.size(); ++size) {
        SCOPED_TRACE(size);
        expectRefusal(bytes.substr(0, size), size < 12           ? kSilence
                                             : size < 48         ? kNoHeader
                                             : size < 48 + 5 + 8 ? kNoLevels
                                                                 : kNoColors);
    }
    expectContents(bytes, file);
}

TEST_F(LutReader, ChecksWhatTheHeaderSays) {
    LutFile file{kOddLevels};
    const std::string bytes = file.fillWithNoise().bytes();
    const uint64_t end = bytes.size(), top = uint64_t{1} << 63, all = ~uint64_t{0};
    const Texts kNothingWrong = {""};
    const struct {
        Texts messages;
        size_t offset, size;
        std::vector<uint64_t> values;
    } cases[] = {{kNothingWrong, 20, 4, {256, 0x80000000}},
                 {kNothingWrong, 24, 8, {all}},
                 {kWrongSignature, 7, 1, {0}},
                 {kSilence, 8, 4, {0, 2, 65537}},
                 {kSilence, 12, 4, {0, 66, 0xFFFFFFFF}},
                 {kSilence, 16, 4, {0x80000000}},
                 {kSilence, 32, 8, {top, all}},
                 {kNoLevels, 12, 4, {65}},
                 {kNoLevels, 32, 8, {end - 7, end + 1, uint64_t{1} << 32}},
                 {kNoColors, 32, 8, {49, end - 8}}};
    for (const auto& [messages, offset, size, values] : cases)
        for (uint64_t value : values) {
            SCOPED_TRACE(testing::Message() << value << " at " << offset);
            std::string changed = bytes;
            putLittleEndian(changed, offset, size, value);
            messages == kNothingWrong ? expectContents(changed, file) : expectRefusal(changed, messages);
        }
}

TEST_F(LutReader, TellsWhichFileCannotBeOpened) {
    for (const std::string& missing : {directory / "n\u00f6", directory.path()}) {
        EXPECT_FALSE(read(missing).isValid());
        EXPECT_EQ(log.texts(), Texts{"Failed to open lut file " + missing});
    }
}

TEST_F(LutReader, LacksMemoryInSilence) {
    g_allocation.isRefused = true;
    expectRefusal(LutFile{evenLevels(33)}.fillWithNoise().bytes(), kSilence);
    g_allocation.isRefused = false;
}

} // namespace
} // namespace ze
