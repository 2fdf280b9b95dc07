// Signals that end the program, held back while files are half written.

#pragma once

namespace ze::tool {

/// From here on SIGINT, SIGTERM, SIGHUP and SIGPIPE end the program at once, as they do by themselves, but
/// wait for the end of every `InterruptionHold`. Those that are ignored already stay so. Call it before there
/// are other threads.
void prepareForInterruptions();

/// The signal that waits for the end of the holds, for long work to stop early; 0 for none. Any thread may
/// call.
int waitingSignal();

/// While one of these lives, on whichever thread, no such signal ends the program.
class InterruptionHold {
public:
    InterruptionHold();
    ~InterruptionHold();
    InterruptionHold(const InterruptionHold&) = delete;
    InterruptionHold& operator=(const InterruptionHold&) = delete;
};

} // namespace ze::tool
