# Toolchain of the preset arm64-libcxx: as close to the NDK as Debian comes. Clang for Android's target, libc++
# without the headers that it includes on the side, Debian's headers in place of bionic's. It compiles and
# cannot link.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER clang++-16)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-android24)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
string(JOIN " " CMAKE_CXX_FLAGS_INIT -nostdlibinc -isystem /usr/lib/llvm-16/include/c++/v1
  -isystem /usr/include/aarch64-linux-gnu -isystem /usr/include -D_LIBCPP_REMOVE_TRANSITIVE_INCLUDES)
