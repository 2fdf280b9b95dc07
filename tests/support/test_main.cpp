// The main function of every test program.

#include <cstdlib>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    // Without a display EGL needs to be told that there is none.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("EGL_PLATFORM", "surfaceless", 0);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
