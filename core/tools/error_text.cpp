#include "core/tools/error_text.h"

#include "core/tools/ze_string.h"

#include <cerrno>
#include <cstring>

namespace ze {
namespace {

constexpr struct {
    int code;
    const char* text;
} kTexts[] = {
    {0, ""},
    {ENOENT, "No such file or directory"},
    {EACCES, "Permission denied"},
    {EMFILE, "Too many open files"},
    {ENOSPC, "No space left on device"},
};

// strerror_r comes in two forms. GNU's returns the text, which may lie outside the buffer.
[[maybe_unused]] const char* textOf(const char* result, const char*) {
    return result;
}

// POSIX's fills the buffer and returns a status.
[[maybe_unused]] const char* textOf(int, const char* buffer) {
    return buffer;
}

} // namespace

CZeString errorText(int code) {
    for (const auto& known : kTexts)
        if (known.code == code)
            return CZeString::fromLocal8Bit(known.text);
    char buffer[256] = "";
    return CZeString::fromLocal8Bit(textOf(strerror_r(code, buffer, sizeof buffer), buffer)).trimmed();
}

CZeString lastErrorText(int code) {
    return errorText(code == -1 ? errno : code);
}

} // namespace ze
