#include "core/tools/error_text.h"

#include "core/tools/ze_string.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace {

TEST(ErrorText, NamesErrnoValues) {
    errno = EEXIST;
    EXPECT_STREQ(ze::lastErrorText().toLocal8Bit().constData(), std::strerror(EEXIST));
    EXPECT_TRUE(ze::errorText(0).isEmpty());
    errno = 0;
    EXPECT_STREQ(ze::lastErrorText(2).toLocal8Bit().constData(), "No such file or directory");
    EXPECT_TRUE(ze::errorText(-1).size() > 0); // no errno value, and not the current one
}

} // namespace
