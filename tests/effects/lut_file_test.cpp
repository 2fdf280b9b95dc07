// The reader of LUT files: what it takes, what it refuses and which refusals it tells.

#include "effects/lut/lut_file_reader.h"
#include "tests/support/log_capture.h"
#include "tests/support/lut_file.h"
#include "tests/support/temp_directory.h"

#include <bit>

#include <gmock/gmock.h>

namespace ze {
namespace {

using Texts = std::vector<std::string>;

std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

class LutReader : public testing::Test {
protected:
    ~LutReader() override { EXPECT_EQ(openFiles(), m_openFiles); }

    CLutFileReader read(const std::string& bytes) {
        log.clear();
        writeFile(path, bytes);
        return CLutFileReader(CZeString::fromUtf8(path.c_str()));
    }

    /// Nothing of a refused file remains.
    void expectRefusal(const std::string& bytes, const Texts& messages) {
        const CLutFileReader reader = read(bytes);
        EXPECT_EQ(log.texts(), messages);
        EXPECT_FALSE(reader.isValid());
        EXPECT_EQ(reader.version(), 0u);
        EXPECT_EQ(reader.levelValues(), nullptr);
        EXPECT_EQ(reader.colorData(), nullptr);
    }

    void expectContents(const std::string& bytes, const LutFile& file) {
        const CLutFileReader reader = read(bytes);
        EXPECT_EQ(log.texts(), Texts{});
        EXPECT_EQ(reader.version(), 1u);
        EXPECT_EQ(reader.isThreeDimensional(), file.isThreeDimensional);
        ASSERT_EQ(reader.levelCount(), file.levels.size());
        EXPECT_EQ(std::memcmp(reader.levelValues(), file.levels.data(), 4 * file.levels.size()), 0);
        EXPECT_EQ(std::memcmp(reader.colorData(), file.colors.data(), file.colors.size()), 0);
        EXPECT_EQ(std::bit_cast<uintptr_t>(reader.colorData()) % 64, 0u);
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
        const char* const message = size < 48           ? "Failed to read lut file header!"
                                    : size < 48 + 5 + 8 ? "Failed to read lut level values!"
                                                        : "Failed to read lut data!";
        expectRefusal(bytes.substr(0, size), Texts(size < 12 ? 0 : 1, message));
    }
    expectContents(bytes, file);
}

TEST_F(LutReader, ChecksWhatTheHeaderSays) {
    LutFile file{kOddLevels};
    const std::string bytes = file.fillWithNoise().bytes();
    const uint64_t end = bytes.size(), top = uint64_t{1} << 63, all = ~uint64_t{0};
    const Texts kNothingWrong = {""}, kSilence;
    const struct {
        Texts messages;
        size_t offset, size;
        std::vector<uint64_t> values;
    } cases[] = {{kNothingWrong, 20, 4, {256, 0x80000000}},
                 {kNothingWrong, 24, 8, {all}},
                 {{"Invalid lut file signature!"}, 7, 1, {0}},
                 {kSilence, 8, 4, {0, 2, 65537}},
                 {kSilence, 12, 4, {0, 66, 0xFFFFFFFF}},
                 {kSilence, 16, 4, {0x80000000}},
                 {kSilence, 32, 8, {top, all}},
                 {{"Failed to read lut level values!"}, 12, 4, {65}},
                 {{"Failed to read lut level values!"}, 32, 8, {end - 7, end + 1, uint64_t{1} << 32}},
                 {{"Failed to read lut data!"}, 32, 8, {49, end - 8}}};
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
        log.clear();
        EXPECT_FALSE(CLutFileReader(CZeString::fromUtf8(missing.c_str())).isValid());
        EXPECT_EQ(log.entries(),
                  (std::vector{LogCapture::Entry{6, "glowfx", "Failed to open lut file " + missing}}));
    }
}

} // namespace
} // namespace ze
