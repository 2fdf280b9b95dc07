#include "bench/ratio.h"

#include "bench/median.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr double kTurnSeconds = 0.002;
constexpr int kTurns = 201;

/// The seconds that a call of `run` takes, averaged over `calls` calls in a row.
double secondsPerCall(const std::function<void()>& run, int calls) {
    run();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
        run();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return seconds.count() / calls;
}

/// Measures `contenders`, of which the first is the library.
void measure(benchmark::State& state, const std::vector<Contender>& contenders) {
    const size_t count = contenders.size();
    const int calls = std::max(1, static_cast<int>(kTurnSeconds / secondsPerCall(contenders[0].run, 5)));
    std::vector<double> seconds(count), libraryTimes;
    std::vector<std::vector<double>> ratios(count);
    size_t first = 0;
    for (auto _ : state) {
        for (size_t i = 0; i < count; ++i) {
            const size_t turn = (first + i) % count;
            seconds[turn] = secondsPerCall(contenders[turn].run, calls);
        }
        first = (first + 1) % count;
        state.SetIterationTime(seconds[0]);
        libraryTimes.push_back(seconds[0]);
        for (size_t i = 0; i < count; ++i)
            ratios[i].push_back(seconds[i] / seconds[0]);
    }
    state.counters["median us"] = 1e6 * median(libraryTimes);
    for (size_t i = 1; i < count; ++i)
        state.counters["of " + contenders[i].name] = median(ratios[i]);
}

} // namespace

void addComparison(const std::string& work, std::function<void()> library,
                   const std::vector<Contender>& baselines) {
    std::vector<Contender> contenders{{"library", std::move(library)}};
    contenders.insert(contenders.end(), baselines.begin(), baselines.end());
    benchmark::RegisterBenchmark(work.c_str(), [=](benchmark::State& state) { measure(state, contenders); })
        ->UseManualTime()
        ->Iterations(kTurns)
        ->Unit(benchmark::kMicrosecond);
}

int runComparisons(int argc, char** argv) {
    char tabular[] = "--benchmark_counters_tabular=true";
    std::vector<char*> arguments{argv[0], tabular};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
