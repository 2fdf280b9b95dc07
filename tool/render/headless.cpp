#include "tool/render/headless.h"

#include <csignal>
#include <cstdlib>

#include <EGL/egl.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ze::tool {
namespace {

constexpr unsigned kPatience = 3; // seconds

bool names(const char* variable) {
    const char* const value = std::getenv(variable);
    return value && *value;
}

bool initializeEgl() {
    return eglInitialize(eglGetDisplay(EGL_DEFAULT_DISPLAY), nullptr, nullptr) == EGL_TRUE;
}

// Says over `parent` that EGL works, and keeps its connection until the parent has one: an X server that
// loses its last client may start over, and would then turn the parent away. The X client library has its own
// words for a server that refuses; standard error is not for them.
[[noreturn]] void initializeAndWait(int parent) {
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    std::signal(SIGALRM, SIG_DFL);
    alarm(kPatience);
    char byte = 0;
    if (initializeEgl() && write(parent, &byte, 1) == 1) {
        alarm(0);
        static_cast<void>(read(parent, &byte, 1));
    }
    _exit(0);
}

// EGL keeps the platform that it first took, and connecting to a host that does not answer takes minutes. So
// another process tries first.
bool displayWorks() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return false;
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        initializeAndWait(ends[1]);
    }
    close(ends[1]);
    char byte = 0;
    const bool works = read(ends[0], &byte, 1) == 1 && initializeEgl();
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return works;
}

void drawWithoutDisplay() {
    if (!names("EGL_PLATFORM"))
        setenv("EGL_PLATFORM", "surfaceless", 1);
}

} // namespace

void prepareEnvironment() {
    if (!names("DISPLAY") && !names("WAYLAND_DISPLAY"))
        drawWithoutDisplay();
    setenv("EGL_LOG_LEVEL", "fatal", 0);
}

void avoidDeadDisplay() {
    static const bool isGood = names("EGL_PLATFORM") || displayWorks();
    if (!isGood)
        drawWithoutDisplay();
}

} // namespace ze::tool
