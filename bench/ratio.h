// Benchmarks that print ratios: the library against something known that does equal work in the same run.

#pragma once

#include <functional>
#include <string>
#include <vector>

/// One way to do a piece of work. `run` does it once; it is called many times.
struct Contender {
    std::string name;
    std::function<void()> run;
};

/// Adds the benchmark `work`. Its counters are the median time of `library` in microseconds and, for each
/// baseline, the median of the baseline's time divided by the library's: above 1 the library is the faster
/// one. All take turns of about two milliseconds, each after one call to warm up. A ratio is taken within a
/// round of turns, so that it depends little on the load of the machine.
void addComparison(const std::string& work, std::function<void()> library,
                   const std::vector<Contender>& baselines);

/// Runs what was added and prints a table. Takes the options of Google Benchmark. Returns the exit status.
int runComparisons(int argc, char** argv);
