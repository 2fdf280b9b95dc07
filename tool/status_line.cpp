#include "tool/status_line.h"

#include <atomic>
#include <cstdio>

namespace ze::tool {
namespace {

constexpr char kClearLine[] = "\r\x1b[K";

std::atomic<bool> g_isShown = false;

} // namespace

void showStatus(const std::string& text) {
    g_isShown = true;
    std::fputs((kClearLine + text).c_str(), stderr);
    std::fflush(stderr);
}

void clearStatus() {
    if (g_isShown.exchange(false))
        std::fputs(kClearLine, stderr);
}

} // namespace ze::tool
