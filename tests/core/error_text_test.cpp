#include "core/tools/error_text.h"

#include "core/tools/ze_string.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace {

TEST(ErrorText, NamesErrnoValues) {
    const std::pair<int, const char*> rows[] = {
        {0, ""}, {2, "No such file or directory"}, {EEXIST, std::strerror(EEXIST)}};
    for (const auto& [code, text] : rows) {
        errno = code;
        EXPECT_STREQ(ze::lastErrorText().toLocal8Bit().constData(), text);
        EXPECT_STREQ(ze::errorText(code).toLocal8Bit().constData(), text);
    }
    errno = 0;
    EXPECT_STREQ(ze::lastErrorText(2).toLocal8Bit().constData(), "No such file or directory");
    EXPECT_TRUE(ze::errorText(-1).size() > 0); // no errno value, and not the current one
}

} // namespace
