// Waiting for the other end of pipes, which signals end.

#pragma once

#include <string>

namespace ze::tool {

/// Waits until `file` is ready for one of `events`, `POLLIN` or `POLLOUT`, or has failed. False with errno
/// set when it cannot be waited for, to EINTR when a signal waits for the end of the program
/// (`waitingSignal`). Up to `PIPE_BUF` bytes can be written then without more waiting.
bool waitFor(int file, short events);

/// Opens `path` as `open` does with `flags`, `O_RDONLY` or `O_WRONLY`. A named pipe to be written waits for
/// its reader, like `waitFor`; one to be read does not wait for its writer: that is left to `waitFor`. -1
/// with errno set on failure.
int openStream(const std::string& path, int flags);

} // namespace ze::tool
