# The platform's own libraries: EGL with OpenGL ES 2.0, the log of Android, zlib, threads.
# On Linux the log is the liblog of Debian's package android-liblog-dev, which sits in a folder of its own;
# programs find it there again through their run path. Android's are named without looking for them: the NDK
# also has a static zlib, which would be found first.

find_package(Threads REQUIRED)

add_library(ze_gl_driver INTERFACE)
target_link_libraries(ze_gl_driver INTERFACE EGL GLESv2)

add_library(ze_android_log INTERFACE)
if(ANDROID)
  target_link_libraries(ze_android_log INTERFACE log)
  add_library(ZLIB::ZLIB INTERFACE IMPORTED)
  target_link_libraries(ZLIB::ZLIB INTERFACE z)
else()
  find_package(ZLIB REQUIRED)
  find_path(ZE_LIBLOG_INCLUDE_DIR android/log.h PATH_SUFFIXES android REQUIRED)
  find_library(ZE_LIBLOG log PATH_SUFFIXES android ${CMAKE_LIBRARY_ARCHITECTURE}/android
               PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android REQUIRED)
  target_include_directories(ze_android_log SYSTEM INTERFACE ${ZE_LIBLOG_INCLUDE_DIR})
  target_link_libraries(ze_android_log INTERFACE ${ZE_LIBLOG})
endif()
