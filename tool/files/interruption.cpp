#include "tool/files/interruption.h"

#include <atomic>
#include <csignal>

#include <unistd.h>

namespace ze::tool {
namespace {

constexpr int kEnding = -1;

std::atomic<int> g_holds = 0;  // or kEnding
std::atomic<int> g_signal = 0; // that came, 0 for none
static_assert(std::atomic<int>::is_always_lock_free, "signal handlers take no locks");

void endBy(int signal) {
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// The signal is noted first, so that the last hold to go sees it where this finds a hold.
void endUnlessHeld(int signal) {
    g_signal = signal;
    int none = 0;
    if (g_holds.compare_exchange_strong(none, kEnding))
        endBy(signal);
}

} // namespace

void prepareForInterruptions() {
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is a write that fails
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_DFL)
            continue;
        action.sa_handler = endUnlessHeld;
        action.sa_flags = SA_RESTART;
        sigaction(signal, &action, nullptr);
    }
}

int waitingSignal() {
    return g_signal;
}

InterruptionHold::InterruptionHold() {
    int holds = g_holds;
    while (holds == kEnding || !g_holds.compare_exchange_weak(holds, holds + 1))
        if (holds == kEnding)
            pause();
}

InterruptionHold::~InterruptionHold() {
    if (--g_holds == 0 && g_signal != 0)
        endBy(g_signal);
}

} // namespace ze::tool
