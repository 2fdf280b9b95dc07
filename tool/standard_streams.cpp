#include "tool/standard_streams.h"

#include "tool/errors.h"

#include <iostream>

#include <fcntl.h>
#include <unistd.h>

namespace ze::tool {

void reserveStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        const bool isClosed = fcntl(stream, F_GETFD) < 0;
        // The lowest free number is given out, here that of the stream. Open for the other direction only, it
        // still fails whoever uses it.
        if (isClosed)
            static_cast<void>(open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

void flushStandardOutput() {
    if (!std::cout.flush())
        throw Failure(ExitCode::failed, "standard output", "cannot be written: " + systemReason());
}

} // namespace ze::tool
