#include "tool/files/waiting.h"

#include "tool/files/interruption.h"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

namespace ze::tool {
namespace {

constexpr int kPatience = 100; // milliseconds between two looks for a signal

bool isNamedPipe(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode);
}

} // namespace

bool waitFor(int file, short events) {
    pollfd event = {file, events, 0};
    for (;;) {
        if (waitingSignal() != 0) {
            errno = EINTR;
            return false;
        }
        const int count = poll(&event, 1, kPatience);
        if (count > 0)
            return true;
        if (count < 0 && errno != EINTR)
            return false;
    }
}

int openStream(const std::string& path, int flags) {
    if (!isNamedPipe(path))
        return open(path.c_str(), flags | O_CLOEXEC);
    for (;;) {
        const int file = open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK);
        if (file >= 0)
            fcntl(file, F_SETFL, flags);
        if (file >= 0 || errno != ENXIO) // nobody reads yet
            return file;
        if (waitingSignal() != 0) {
            errno = EINTR;
            return -1;
        }
        poll(nullptr, 0, kPatience);
    }
}

} // namespace ze::tool
