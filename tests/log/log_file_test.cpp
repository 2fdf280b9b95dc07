#include "log/file_logger.h"
#include "log/log_file.h"
#include "tests/support/log_capture.h"
#include "tests/support/other_threads.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

std::tm dateOf(const char* text) {
    std::tm date = {};
    strptime(text, "%Y-%m-%d", &date);
    date.tm_isdst = -1;
    return date;
}

const std::tm kFifth = dateOf("2024-03-05");
const std::tm kSixth = dateOf("2024-03-06");
constexpr ze::LogTime kStart{1h};

TEST(LogSchedule, ADayEndsWithItsLastSecond) {
    std::tm lastSecond = kFifth;
    lastSecond.tm_hour = 23;
    lastSecond.tm_min = lastSecond.tm_sec = 59;
    EXPECT_FALSE(ze::isAnotherDay(kFifth, lastSecond));
    for (const std::tm& other : {kSixth, dateOf("2024-04-05"), dateOf("2025-03-05")})
        EXPECT_TRUE(ze::isAnotherDay(kFifth, other));
}

TEST(RootDirectory, IsACopyOfForeignMemory) {
    CZeChar units[] = {u'/', u'a'};
    ze::RootDirectory root;
    root.set(CZeString::fromRawData(units, 2));
    units[1] = u'b';
    EXPECT_EQ(root.get(), CZeLatin1String("/a"));
}

class LogFileTest : public testing::Test {
protected:
    LogFileTest() { setRoot(directory.path()); }

    void setRoot(const std::string& path) { root.set(CZeString::fromLocal8Bit(path.c_str())); }

    void write(std::string_view line, ze::LogDuration time, const std::tm& day) {
        ze::LogLines lines;
        lines.append("[at] ", line);
        file.write(lines, kStart + time, day);
    }

    std::string fileOf(const char* day) const {
        return directory / (std::string("glowkit/log/glowkitlog(") + day + ").log");
    }
    std::string contentOfDay(const char* day) const { return contentOf(fileOf(day)); }

    LogCapture log;
    TempDirectory directory;
    ze::RootDirectory root;
    ze::LogFile file{CZeString::fromLatin1("glowkitlog"), root, ze::kFlushInterval};
};

TEST_F(LogFileTest, ChangesWithTheDateOnceFlushed) {
    write("before", 0s, kFifth);
    file.flushIfDue(9'999'999'999ns, kStart + 9'999'999'999ns, kSixth);
    write("after", 9'999'999'999ns, kSixth);
    EXPECT_EQ(contentOfDay("2024-03-05"), "");
    file.flushIfDue(0s, kStart + 10s, kSixth);
    EXPECT_EQ(contentOfDay("2024-03-05"), "[at] before\n[at] after\n");
    write("later", 10s, kSixth);
    file.flushIfDue(10s, kStart + 11s, kSixth); // the same day: flushed and kept open
    setRoot("");
    write("last", 12s, kSixth);
    file.flushIfDue(0s, kStart + 21s - 1ns, kSixth);
    EXPECT_EQ(contentOfDay("2024-03-06"), "[at] later\n");
    file.flushIfDue(0s, kStart + 21s, kSixth);
    EXPECT_EQ(contentOfDay("2024-03-06"), "[at] later\n[at] last\n");
}

TEST_F(LogFileTest, TriesAgainHalfAMinuteAfterAFailure) {
    setRoot("");
    write("lost", 0s, kFifth);
    setRoot(directory.path());
    write("lost", 30s - 1ns, kFifth);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
    std::ofstream(directory / "glowkit") << "in the way";
    write("lost", 30s, kFifth);
    std::filesystem::remove(directory / "glowkit");
    write("lost", 59s, kFifth);
    for (int i = 0; i < 2; ++i) {
        write("kept", 60s, kFifth);
        file.close();
    }
    EXPECT_EQ(contentOfDay("2024-03-05"), "[at] kept\n[at] kept\n");
    EXPECT_EQ(log.entries(), (std::vector<LogCapture::Entry>{
                                 {5, "glowfx", "Failed to create log file: "},
                                 {5, "glowfx", "Failed to create log file: " + fileOf("2024-03-05")}}));
}

TEST_F(LogFileTest, OpensRegularFilesOnlyAndNotForOtherPrograms) {
    const std::string path = fileOf("2024-03-05");
    std::filesystem::create_directories(directory / "glowkit/log");
    std::filesystem::create_symlink(directory / "elsewhere", path);
    write("lost", 0s, kFifth);
    EXPECT_FALSE(std::filesystem::exists(directory / "elsewhere"));
    std::filesystem::remove(path);
    mkfifo(path.c_str(), 0600);
    write("lost", 30s, kFifth); // would wait for a reader
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    write("lost", 60s, kFifth);
    EXPECT_EQ(log.texts(), std::vector<std::string>(3, "Failed to create log file: " + path));
    std::filesystem::remove(path);
    ::close(reader);
    write("kept", 90s, kFifth); // under the lowest number, which was the reader's
    EXPECT_EQ(fcntl(reader, F_GETFD), FD_CLOEXEC);
}

TEST_F(LogFileTest, IsFlushedAndChangedByItsWriterInTime) {
    static std::atomic<std::time_t> now;
    std::tm midnight = kSixth;
    now = std::mktime(&midnight) - 1;
    ze::FileLogger logger(
        root, 1ms, *[](std::time_t*) { return now.load(); });
    logger.enqueue("before");
    EXPECT_TRUE(becomesTrue([&] { return contentOfDay("2024-03-05") == "[2024-03-05 23:59:59] before\n"; }));
    ++now;
    EXPECT_TRUE(becomesTrue([&] {
        logger.enqueue("after");
        return contentOfDay("2024-03-06").starts_with("[2024-03-06 00:00:00] after\n");
    }));
    now = std::numeric_limits<std::time_t>::max();
    EXPECT_TRUE(becomesTrue([&] {
        logger.enqueue("at no time");
        return contentOfDay("1900-01-00").ends_with("[] at no time\n");
    }));
}

TEST_F(LogFileTest, IsWrittenByAThreadWithoutSignals) {
    ze::FileLogger logger(root, 1ms);
    sigset_t signals;
    pthread_sigmask(SIG_SETMASK, nullptr, &signals);
    EXPECT_EQ(sigismember(&signals, SIGTERM), 0);
    logger.enqueue("line");
    ASSERT_TRUE(becomesTrue([this] { return std::filesystem::exists(directory / "glowkit"); }));
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    kill(getpid(), SIGTERM); // ends the program if the writer's thread takes it
    int taken = 0;
    sigwait(&signals, &taken);
    EXPECT_EQ(taken, SIGTERM);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

} // namespace
