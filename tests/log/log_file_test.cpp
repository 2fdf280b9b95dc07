#include "log/log_file.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <limits>

using namespace std::chrono_literals;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::tm dateOf(int year, int month, int day) {
    std::tm date = {};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    return date;
}

const std::tm kFifth = dateOf(2024, 3, 5);
const std::tm kSixth = dateOf(2024, 3, 6);
constexpr ze::LogTime kStart{1h};

TEST(LogSchedule, ADayEndsWithItsLastSecond) {
    std::tm lastSecond = kFifth;
    lastSecond.tm_hour = 23;
    lastSecond.tm_min = lastSecond.tm_sec = 59;
    EXPECT_FALSE(ze::isAnotherDay(kFifth, lastSecond));
    for (const std::tm& other : {kSixth, dateOf(2024, 4, 5), dateOf(2025, 3, 5)})
        EXPECT_TRUE(ze::isAnotherDay(kFifth, other));
}

TEST(LogSchedule, StampsEveryTimeWithItsOwnText) {
    std::tm date = kSixth;
    date.tm_isdst = -1;
    const std::time_t midnight = std::mktime(&date);
    ze::TimeStamp stamp;
    EXPECT_EQ(stamp.of(midnight - 2), "2024-03-05 23:59:58");
    EXPECT_EQ(stamp.of(midnight), "2024-03-06 00:00:00");
    EXPECT_EQ(stamp.of(std::numeric_limits<std::time_t>::max()), "");
}

ze::LogLines lines(std::initializer_list<std::string_view> texts) {
    ze::LogLines result;
    for (const std::string_view text : texts)
        result.append("at", text);
    return result;
}

class LogFileTest : public testing::Test {
protected:
    std::string fileOf(const char* day) const {
        return directory / (std::string("root/glowkit/log/glowkitlog(") + day + ").log");
    }

    LogCapture log;
    TempDirectory directory;
    CZeString root = CZeString::fromLocal8Bit((directory / "root").c_str());
    ze::LogFile file{CZeString::fromLatin1("glowkitlog")};
};

TEST_F(LogFileTest, ChangesWithTheDateOnceFlushed) {
    file.write(lines({"before", "midnight"}), root, kStart, kFifth);
    file.flushIfDue(9'999'999'999ns, kStart + 9'999'999'999ns, kSixth);
    file.write(lines({"after"}), root, kStart + 9'999'999'999ns, kSixth);
    EXPECT_EQ(contentOf(fileOf("2024-03-05")), "");
    file.flushIfDue(0s, kStart + 10s, kSixth);
    EXPECT_EQ(contentOf(fileOf("2024-03-05")), "[at] before\n[at] midnight\n[at] after\n");
    file.write(lines({"later"}), root, kStart + 10s, kSixth);
    file.flushIfDue(10s, kStart + 11s, kSixth); // the same day: flushed and kept open
    EXPECT_EQ(contentOf(fileOf("2024-03-06")), "[at] later\n");
    file.write(lines({"last"}), CZeString(), kStart + 12s, kSixth);
    file.flushIfDue(0s, kStart + 21s - 1ns, kSixth);
    EXPECT_EQ(contentOf(fileOf("2024-03-06")), "[at] later\n");
    file.flushIfDue(0s, kStart + 21s, kSixth);
    EXPECT_EQ(contentOf(fileOf("2024-03-06")), "[at] later\n[at] last\n");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST_F(LogFileTest, AppendsToTheFileOfTheDay) {
    for (int run = 0; run < 2; ++run)
        ze::LogFile(CZeString::fromLatin1("glowkitlog")).write(lines({"line"}), root, kStart, kFifth);
    EXPECT_EQ(contentOf(fileOf("2024-03-05")), "[at] line\n[at] line\n");
}

TEST_F(LogFileTest, TriesAgainHalfAMinuteAfterAFailure) {
    file.write(lines({"lost"}), CZeString(), kStart, kFifth);
    file.write(lines({"lost"}), root, kStart + 30s - 1ns, kFifth);
    EXPECT_FALSE(std::filesystem::exists(directory / "root"));
    std::ofstream(directory / "root") << "in the way";
    file.write(lines({"lost"}), root, kStart + 30s, kFifth);
    std::filesystem::remove(directory / "root");
    file.write(lines({"lost"}), root, kStart + 59s, kFifth);
    file.write(lines({"kept"}), root, kStart + 60s, kFifth);
    file.flushIfDue(10s, kStart + 60s, kFifth);
    EXPECT_EQ(contentOf(fileOf("2024-03-05")), "[at] kept\n");
    EXPECT_EQ(log.entries(), (std::vector<LogCapture::Entry>{
                                 {5, "glowfx", "Failed to create log file: "},
                                 {5, "glowfx", "Failed to create log file: " + fileOf("2024-03-05")}}));
}

} // namespace
