// The main function of every test program.

#include <cstdlib>
#include <vector>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    // Without a display EGL needs to be told that there is none.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
        setenv("EGL_PLATFORM", "surfaceless", 0);
    // A death test starts the program once more with the arguments that GoogleTest was given.
    std::vector<char*> arguments(argv, argv + argc + 1);
    if (char* const emulator = std::getenv("ZE_EMULATOR"))
        arguments.insert(arguments.begin(), emulator);
    int count = static_cast<int>(arguments.size()) - 1;
    testing::InitGoogleMock(&count, arguments.data());
    return RUN_ALL_TESTS();
}
