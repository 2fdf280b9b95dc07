// Allocations that fail on demand. The linker leads those of a program that links ze_failing_memory through
// doubles.

#pragma once

#include <cstddef>
#include <functional>

/// What the doubles do, and what they have seen on this thread.
struct FailingMemory {
    int untilFailure = 0;    ///< allocations up to and with the one that fails; 0: none does
    bool failsOn = true;     ///< so do all that follow
    bool includesNew = true; ///< so does operator new
    int exempt = 0;          ///< more than 0: operator new does not fail, for now
    bool hasFailed = false;
    int blocks = 0;                 ///< taken by malloc, less those that were freed
    int attempts = 0;               ///< of all kinds, less those that are exempt
    size_t alignment = 0, size = 0; ///< of the last aligned one

    /// Whether the allocation at hand is to fail.
    bool failsNow();
    /// Runs `work` with its `n`-th allocation failing. Returns whether it made so many.
    bool run(int n, const std::function<void()>& work);
};

inline constinit thread_local FailingMemory t_memory;
