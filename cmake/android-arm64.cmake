# Toolchain of the presets android-arm64-*: the NDK's own, for 64-bit Arm from Android 7 (API level 24) on. The
# library shares std::string and std::vector with its host, so both use the one libc++_shared.so.

if(NOT DEFINED ENV{ANDROID_NDK_HOME})
  message(FATAL_ERROR "The Android presets need the NDK, r26 or newer: set ANDROID_NDK_HOME to its folder.")
endif()
if(NOT EXISTS $ENV{ANDROID_NDK_HOME}/build/cmake/android.toolchain.cmake)
  message(FATAL_ERROR "ANDROID_NDK_HOME is $ENV{ANDROID_NDK_HOME}, which is not the folder of an NDK.")
endif()

set(ANDROID_ABI arm64-v8a)
set(ANDROID_PLATFORM android-24)
set(ANDROID_STL c++_shared)
include($ENV{ANDROID_NDK_HOME}/build/cmake/android.toolchain.cmake)
