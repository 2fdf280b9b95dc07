# Language level, warnings, sanitizers and visibility, in one interface target that everything links.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(ze_options INTERFACE)
target_include_directories(ze_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_options(ze_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wcast-qual -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wundef)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies inside its own std::string (GCC bug 105651).
  target_compile_options(ze_options INTERFACE -Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # A unique symbol, as GCC makes of inline static data, would keep the library from ever being unloaded.
  target_compile_options(ze_options INTERFACE -fno-gnu-unique)
endif()
if(ZE_WARNINGS_AS_ERRORS)
  target_compile_options(ze_options INTERFACE -Werror)
endif()
if(ZE_SANITIZE)
  target_compile_options(ze_options INTERFACE
    -fsanitize=${ZE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ze_options INTERFACE -fsanitize=${ZE_SANITIZE})
endif()
