// What logging costs the thread that logs, with one such thread and with two, against the asynchronous logger
// of spdlog: the time to hand over a line whose text is ready, and the time of a call that the filter drops.
//
// Each thread logs in bursts that fit into spdlog's queue of 8192 lines, so that neither side waits for its
// writer or drops a line. Both writers append to a file in the same directory, with the same time stamp.

#include "bench/median.h"
#include "log/file_logger.h"
#include "log/file_sink.h"
#include "log/log_settings.h"
#include "log/log_stream.h"
#include "tests/support/temp_directory.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>

namespace {

constexpr size_t kQueue = 8192;
constexpr int kRounds = 61;
constexpr size_t kBurst = 4000; // lines of one thread
constexpr char kLine[] = "GL error: 0x1282 after the second of three passes";
constexpr auto kPause = std::chrono::milliseconds(15); // for the writers to catch up

using Clock = std::chrono::steady_clock;

double nanoseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::nano>(duration).count();
}

/// spdlog with one writer, writing lines as the library does.
struct Spdlog {
    explicit Spdlog(const std::string& path)
        : pool(std::make_shared<spdlog::details::thread_pool>(kQueue, 1)),
          logger(std::make_shared<spdlog::async_logger>(
              "bench", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path), pool,
              spdlog::async_overflow_policy::block)) {
        logger->set_pattern("[%Y-%m-%d %H:%M:%S] %v");
    }

    std::shared_ptr<spdlog::details::thread_pool> pool;
    std::shared_ptr<spdlog::async_logger> logger;
};

/// One kind of call, and what the rounds gave: nanoseconds a call of one thread, or of all.
struct Series {
    std::vector<double> medians, p99s, means;
};

/// Runs `work` on `threads` threads at once.
template <class Work>
void runTogether(size_t threads, Work work) {
    std::atomic<size_t> waiting = threads;
    std::vector<std::thread> running;
    for (size_t thread = 0; thread < threads; ++thread) {
        running.emplace_back([&, thread] {
            --waiting;
            while (waiting != 0)
                std::this_thread::yield();
            work(thread);
        });
    }
    for (std::thread& thread : running)
        thread.join();
    std::this_thread::sleep_for(kPause);
}

/// One burst to time every call, and one to time them together.
template <class Call>
void measure(size_t threads, Call call, Series& series) {
    std::vector<double> times(threads * kBurst);
    runTogether(threads, [&](size_t thread) {
        Clock::time_point last = Clock::now();
        for (size_t i = 0; i < kBurst; ++i) {
            call();
            const Clock::time_point now = Clock::now();
            times[thread * kBurst + i] = nanoseconds(now - std::exchange(last, now));
        }
    });
    series.medians.push_back(median(times));
    const auto p99 = times.begin() + static_cast<ptrdiff_t>(times.size() / 100 * 99);
    std::nth_element(times.begin(), p99, times.end());
    series.p99s.push_back(*p99);

    std::vector<Clock::time_point> starts(threads), ends(threads);
    runTogether(threads, [&](size_t thread) {
        starts[thread] = Clock::now();
        for (size_t i = 0; i < kBurst; ++i)
            call();
        ends[thread] = Clock::now();
    });
    const auto duration =
        *std::max_element(ends.begin(), ends.end()) - *std::min_element(starts.begin(), starts.end());
    series.means.push_back(nanoseconds(duration) / static_cast<double>(threads * kBurst));
}

double medianRatio(const std::vector<double>& baseline, const std::vector<double>& library) {
    std::vector<double> ratios;
    for (size_t i = 0; i < library.size(); ++i)
        ratios.push_back(baseline[i] / library[i]);
    return median(ratios);
}

void printLine(const char* name, const std::vector<double>& library, const std::vector<double>& baseline) {
    std::printf("  %-24s %9.0f %9.0f %9.2f\n", name, median(library), median(baseline),
                medianRatio(baseline, library));
}

void compareEnqueue(size_t threads, spdlog::logger& other) {
    Series library, baseline, clock;
    for (int round = 0; round < kRounds; ++round) {
        const auto measureLibrary = [&] {
            measure(
                threads, [] { ze::writeToFile(kLine); }, library);
        };
        const auto measureOther = [&] {
            measure(
                threads,
                [&] { other.log(spdlog::level::info, spdlog::string_view_t(kLine, sizeof kLine - 1)); },
                baseline);
        };
        round % 2 ? measureLibrary() : measureOther();
        round % 2 ? measureOther() : measureLibrary();
        measure(
            threads, [] {}, clock);
    }
    std::printf("%zu thread(s); reading the clock is %.0f ns of each median and p99\n", threads,
                median(clock.medians));
    printLine("median", library.medians, baseline.medians);
    printLine("p99", library.p99s, baseline.p99s);
    printLine("all threads together", library.means, baseline.means);
}

/// Nanoseconds of a call, as the median of rounds.
template <class Call>
double timeOf(Call call) {
    constexpr int kCalls = 10'000;
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < kCalls; ++i)
            call(i);
        times.push_back(nanoseconds(Clock::now() - start) / kCalls);
    }
    return median(times);
}

void compareDropped(spdlog::logger& other) {
    ZeSetLogFilter(1);
    other.set_level(spdlog::level::err);
    std::printf("dropped by the filter, ns a call\n");
    std::printf("  %-24s %9.2f\n", "ZeLogInfof",
                timeOf([](int i) { ZeLogInfof({}, "frame %d took %g ms", i, 0.5); }));
    std::printf("  %-24s %9.2f\n", "ZeLogInfo() <<",
                timeOf([](int i) { ZeLogInfo() << "frame " << i << " took " << 0.5 << " ms"; }));
    std::printf("  %-24s %9.2f\n", "spdlog",
                timeOf([&](int i) { other.info("frame {} took {} ms", i, 0.5); }));
    ZeSetLogFilter(3);
}

/// The lines without their time stamps; empty when one has none.
std::string linesWithoutStamps(const std::string& content) {
    constexpr char kStamp[] = "[2024-03-05 23:59:59] ";
    std::string result;
    for (size_t at = 0; at < content.size();) {
        const size_t end = content.find('\n', at) + 1;
        const std::string line = content.substr(at, end - at);
        if (line.size() < sizeof kStamp || line[0] != '[' || line[11] != ' ' || line.substr(20, 2) != "] ")
            return "";
        result += line.substr(sizeof kStamp - 1);
        at = end;
    }
    return result;
}

/// Whether both write the same lines.
bool agree() {
    const TempDirectory directory;
    {
        ze::RootDirectory root;
        root.set(CZeString::fromLocal8Bit(directory.path().c_str()));
        ze::FileLogger library(root);
        const Spdlog other(directory / "spdlog");
        for (int i = 0; i < 1000; ++i) {
            library.enqueue(std::to_string(i).c_str());
            other.logger->info(std::to_string(i));
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
    }
    std::string ours;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "glowkit/log"))
        ours += contentOf(entry.path().string());
    ours = linesWithoutStamps(ours);
    return !ours.empty() && ours == linesWithoutStamps(contentOf(directory / "spdlog"));
}

} // namespace

int main() {
    if (!agree()) {
        std::fputs("The library and spdlog write different lines\n", stderr);
        return 1;
    }
    const TempDirectory directory;
    ZeSetLogRootDirectory(directory.path().c_str());
    const Spdlog other(directory / "spdlog");
    std::printf("%-26s %9s %9s %9s\n", "ns a line", "library", "spdlog", "of spdlog");
    for (const size_t threads : {1U, 2U})
        compareEnqueue(threads, *other.logger);
    compareDropped(*other.logger);
    return 0;
}
