#include "core/tools/error_text.h"

#include "core/tools/ze_string.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace {

TEST(ErrorText, NamesErrnoValues)
{
    const struct {
        int code;
        const char* text;
    } rows[] = {
        {0, ""},
        {2, "No such file or directory"},
        {13, "Permission denied"},
        {24, "Too many open files"},
        {28, "No space left on device"},
        {EEXIST, std::strerror(EEXIST)},
    };
    for (const auto& row : rows) {
        errno = row.code;
        EXPECT_STREQ(ze::lastErrorText().toLocal8Bit().constData(), row.text);
        errno = EBADF;
        EXPECT_STREQ(ze::errorText(row.code).toLocal8Bit().constData(), row.text);
        EXPECT_STREQ(ze::lastErrorText(row.code).toLocal8Bit().constData(), row.text);
    }
    EXPECT_TRUE(ze::errorText(-1).toLocal8Bit().size() > 0); // no errno value, and not the current one
}

} // namespace
