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

/// A block of text in static storage.
template <size_t Size>
struct StaticText {
    SZeArrayData header;
    CZeChar units[Size];
};

/// Its count starts at 1, for an owner that never goes: the strings that share it never free or change it.
constinit StaticText<23> outOfMemory = {{1, 22, 23, 0, sizeof(SZeArrayData)},
                                        {'C', 'a', 'n', 'n', 'o', 't', ' ', 'a', 'l', 'l', 'o', 'c',
                                         'a', 't', 'e', ' ', 'm', 'e', 'm', 'o', 'r', 'y', '\0'}};

} // namespace

/// A string on `block`, as one more of its owners.
CZeString sharedText(SZeArrayData& block) {
    (void)block.acquire();
    return CZeString(SharedArray<CZeChar>::adopt(&block));
}

CZeString errorText(const char* text) {
    const CZeString string = CZeString::fromLatin1(text);
    const bool isComplete = !string.isEmpty() || *text == '\0';
    return isComplete ? string : sharedText(outOfMemory.header);
}

CZeString errorText(int code) {
    for (const auto& known : kTexts)
        if (known.code == code)
            return errorText(known.text);
    char buffer[256] = "";
    const CZeString text =
        CZeString::fromLocal8Bit(textOf(strerror_r(code, buffer, sizeof buffer), buffer)).trimmed();
    return text.isEmpty() ? sharedText(outOfMemory.header) : text;
}

CZeString lastErrorText(int code) {
    return errorText(code == -1 ? errno : code);
}

} // namespace ze
