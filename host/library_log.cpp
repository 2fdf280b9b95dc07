#include "host/library_log.h"

#include <atomic>
#include <cstdio>
#include <cstring>

#include <android/log.h>
#ifdef __ANDROID__
#include <dlfcn.h>
#endif

namespace zebeauty {
namespace {

constexpr char kTag[] = "glowfx";

std::atomic<bool> g_passesOn{true};

// The library logs on the thread that calls it. No std::string: a message at the exit of the process may come
// after the thread's objects are destroyed.
thread_local char t_firstError[1024];

/// Returns whether the message is to be passed on.
bool remember(int priority, const char* tag, const char* text) {
    if (!tag || std::strcmp(tag, kTag) != 0)
        return true;
    if (priority >= ANDROID_LOG_ERROR && t_firstError[0] == '\0')
        std::snprintf(t_firstError, sizeof t_firstError, "%s", text);
    return g_passesOn.load(std::memory_order_relaxed);
}

#ifdef __ANDROID__

// Apps that run on older systems too find these at run time.
template <class Function>
Function find(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
}

using SetLogger = void (*)(__android_logger_function);

__android_logger_function logdLogger() {
    static const auto s_logger = find<__android_logger_function>("__android_log_logd_logger");
    return s_logger;
}

void receive(const __android_log_message* message) {
    if (remember(message->priority, message->tag, message->message) && logdLogger())
        logdLogger()(message);
}

bool setLogger() {
    const auto set = find<SetLogger>("__android_log_set_logger");
    if (set)
        set(receive);
    return set != nullptr;
}

#else

void receive(const __android_logger_data* data, const char* text) {
    if (remember(data->priority, data->tag, text))
        __android_log_stderr_logger(data, text);
}

bool setLogger() {
    __android_log_set_logger(receive);
    return true;
}

#endif

} // namespace

bool catchLibraryErrors(bool passesOn) {
    g_passesOn = passesOn;
    return setLogger();
}

std::string takeLibraryError() {
    std::string error = t_firstError;
    t_firstError[0] = '\0';
    return error;
}

} // namespace zebeauty
