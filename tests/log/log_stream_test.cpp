#include "core/tools/ze_string.h"
#include "core/warning.h"
#include "log/emit.h"
#include "log/log_settings.h"
#include "log/log_stream.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LogFilter, DecidesByLevel) {
    const auto streams = {ZeLogInfo, ZeLogWarning, ZeLogError};
    const auto printfs = {ZeLogInfof, ZeLogWarningf, ZeLogErrorf};
    constexpr int kLowestLevel[] = {3, 2, 1, 0}; // that passes filter 0 to 3
    for (int filter = 0; filter < 4; ++filter) {
        ZeSetLogFilter(filter);
        ZeSetLogFilter(4); // ignored, as any other value
        ZeSetLogFilter(-1);
        for (int level = 0; level < 3; ++level) {
            const bool passes = level >= kLowestLevel[filter];
            const LogCapture log;
            CZeLogStream(level, 0, nullptr, nullptr, false) << "text";
            streams.begin()[level]({}) << "text";
            printfs.begin()[level]({}, "%s", "text");
            EXPECT_EQ(log.entries(),
                      std::vector<LogCapture::Entry>(passes ? 3 : 0, {4 + level, "glowfx", "text"}));
            EXPECT_EQ(ZeIsLogLevelEnabled(level), passes) << filter << ", " << level;
        }
    }
}

TEST(LogStream, AppendsEveryKindOfPiece) {
    const LogCapture log;
    using std::numeric_limits;
    ZeLogInfo() << "caf\xC3\xA9" << static_cast<const char*>(nullptr) << '|'
                << CZeString::fromUtf8("\xE2\x82\xAC") << true << false << nullptr << '\xE9';
    ZeLogInfo() << numeric_limits<std::int16_t>::min() << ' ' << numeric_limits<std::uint16_t>::max() << ' '
                << numeric_limits<unsigned>::max() << ' ' << numeric_limits<std::int64_t>::min() << ' '
                << numeric_limits<std::uint64_t>::max() << ' ' << static_cast<std::int8_t>(-5);
    ZeLogInfo() << 0.1f << ' ' << 1234567.0 << ' ' << -2.5e-7 << std::string(5000, 'x').c_str();
    EXPECT_THAT(log.texts(),
                ElementsAre("caf\xC3\xA9|\xE2\x82\xACtruefalse(nullptr)\xC3\xA9",
                            "-32768 65535 4294967295 -9223372036854775808 18446744073709551615 -5",
                            "0.1 1.23457e+06 -2.5e-07" + std::string(5000, 'x')));
}

TEST(LogStream, EmitsOnceWhenTheLastCopyGoes) {
    const LogCapture log;
    auto first = std::make_unique<CZeLogStream>(ZeLogInfo());
    CZeLogStream copy = *first;
    *first << "one ";
    first.reset();
    copy << "message";
    EXPECT_THAT(log.texts(), IsEmpty());
    const CZeLogStream& self = copy;
    copy = self;
    copy = ZeLogError() << "other";
    copy.setEnabled(false);
    copy = ZeLogInfo();
    EXPECT_THAT(log.texts(), ElementsAre("one message"));
}

TEST(LogText, NamesThePlaceOnlyWithAFileNameAndCutsEitherAt1023Bytes) {
    const LogCapture log;
    const SZeLogContext draw = {.line = 42, .fileName = "render", .functionName = "draw"};
    const std::string text(1024, 'x'), cut(1023, 'x');
    ZeLogWarning(draw) << "text";
    ZeLogErrorf(draw, "%s", text.c_str());
    ZeLogInfo({.line = 42, .functionName = "draw"}) << "text";
    ZeLogInfof({.fileName = text.c_str(), .functionName = "draw"}, "text");
    ze::emit(nullptr, 0, draw);
    ze::coreWarning("%s", text.c_str());
    EXPECT_THAT(log.texts(), ElementsAre("render(42), draw: text", "render(42), draw: " + cut, "text",
                                         cut + "text", "render(42), draw: ", cut));
    EXPECT_EQ(log.entries().back().priority, 5);
}

} // namespace
