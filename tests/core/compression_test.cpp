#include "core/tools/compression.h"

#include "tests/core/test_file.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <sys/resource.h>
#include <zlib.h>

/// What zlib's functions give instead of doing anything; the last one first.
static std::vector<int> nextResults;

static int takeResult() {
    const int result = nextResults.empty() ? Z_OK : nextResults.back();
    nextResults.resize(nextResults.size() - !nextResults.empty());
    return result;
}

extern "C" {
decltype(compress2) __real_compress2, __wrap_compress2;
int __wrap_compress2(Bytef* out, uLongf* outSize, const Bytef* in, uLong size, int level) {
    const int result = takeResult();
    return result != Z_OK ? result : __real_compress2(out, outSize, in, size, level);
}
decltype(uncompress) __real_uncompress, __wrap_uncompress;
int __wrap_uncompress(Bytef* out, uLongf* outSize, const Bytef* in, uLong size) {
    const int result = takeResult();
    return result != Z_OK ? result : __real_uncompress(out, outSize, in, size);
}
}

namespace {

using testing::IsEmpty;

CZeByteArray compressed(const std::string& bytes, int level = -1) {
    return ZeCompress(bytes.data(), int(bytes.size()), level);
}

CZeByteArray uncompressed(const std::string& bytes) {
    return ZeUncompress(bytes.data(), int(bytes.size()));
}

std::string prefixed(uint32_t length, const std::string& stream) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(length >> shift & 255));
    return bytes + stream;
}

/// What zlib itself makes of it.
std::string zlibStream(const std::string& bytes, int level) {
    std::string stream(compressBound(bytes.size()), ' ');
    uLong size = stream.size();
    compress2(reinterpret_cast<Bytef*>(stream.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
              bytes.size(), level);
    return stream.substr(0, size);
}

TEST(Compression, IsALengthAndAZlibStream) {
    const LogCapture log;
    for (const std::string& content : {pattern(1), pattern(101), pattern(1000000), std::string(70000, 'x')}) {
        for (const int level : {-1, 0, 9, 10, -2}) {
            const int used = level < -1 || level > 9 ? -1 : level;
            const std::string packed = bytes(compressed(content, level));
            ASSERT_EQ(packed, prefixed(uint32_t(content.size()), zlibStream(content, used))) << level;
            const CZeByteArray back = uncompressed(packed);
            ASSERT_TRUE(bytes(back) == content && *back.end() == '\0') << level;
        }
    }
    EXPECT_EQ(bytes(ZeCompress(nullptr, 0)), prefixed(0, ""));
    EXPECT_TRUE(uncompressed(prefixed(0, "")).isEmpty());
    // A wrong length is no matter, and two gigabytes that are only promised cost no memory.
    const std::string content = pattern(5000), stream = zlibStream(content, 9);
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    for (const uint32_t length : {0u, 1u, 39u, 4999u, 5001u, 0x40000000u, 0x7FFFFFE6u})
        EXPECT_EQ(bytes(uncompressed(prefixed(length, stream + "behind it"))), content) << length;
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 300 << 10); // KiB; a sanitizer takes an eighth
    EXPECT_TRUE(uncompressed(prefixed(7, zlibStream("", 9))).isEmpty());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(Compression, RefusesWithTheseWarnings) {
    const LogCapture log;
    const std::string stream = zlibStream(pattern(5000), -1);
    const std::string corrupted = "ZeUncompress: Input data is corrupted";
    const std::string dataError = "ZeUncompress: Z_DATA_ERROR: Input data is corrupted";
    const std::pair<std::string, CZeByteArray> rows[] = {
        {corrupted, uncompressed("")},
        {corrupted, ZeUncompress(stream.data(), -1)},
        {corrupted, uncompressed(prefixed(0xFFFFFFFF, stream))},
        {corrupted, uncompressed(prefixed(0x7FFFFFE7, stream))},
        {dataError, uncompressed(prefixed(0x7FFFFFE6, "no stream!"))},
        {dataError, uncompressed(prefixed(5000, stream.substr(0, 90) + '?' + stream.substr(91)))},
        {"ZeUncompress: Data is null", ZeUncompress(nullptr, 0)},
        {"ZeCompress: Data is null", ZeCompress(nullptr, 1)},
        {"ZeCompress: Invalid length: -1", ZeCompress("x", -1)},
        {"ZeUncompress: Z_MEM_ERROR: Not enough memory",
         (nextResults = {Z_MEM_ERROR}, uncompressed(prefixed(5000, stream)))},
        {"ZeCompress: Z_MEM_ERROR: Not enough memory",
         (nextResults = {Z_MEM_ERROR, Z_BUF_ERROR, Z_BUF_ERROR}, compressed("x"))},
        {corrupted, (nextResults.assign(31, Z_BUF_ERROR), uncompressed(prefixed(1, stream)))},
    };
    std::vector<std::string> warnings;
    for (const auto& [warning, result] : rows) {
        EXPECT_TRUE(result.isEmpty()) << warning;
        warnings.push_back(warning);
    }
    EXPECT_EQ(log.texts(), warnings);
    EXPECT_THAT(nextResults, IsEmpty()); // 2^30 was the last room that was tried
    nextResults = {Z_BUF_ERROR, Z_BUF_ERROR};
    EXPECT_EQ(bytes(compressed(pattern(5000))), prefixed(5000, stream));
}

} // namespace
