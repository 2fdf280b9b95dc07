# Toolchain of the preset arm64-linux: Debian's cross compiler and arm64 packages (setup/install.sh arm64), and
# the emulator that CTest runs the programs with.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/qemu-aarch64-static)
