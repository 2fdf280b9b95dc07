# The four kinds of target. Every source file is listed by name in the CMakeLists.txt of its folder.

# ze_add_part(<name> SOURCES <file>... [PUBLIC_HEADERS <file>...])
# One folder of the library as an object library ze_<name>. The shared library, the tests and the benchmarks
# all link these same objects. PUBLIC_HEADERS are the headers a host may include; each is also compiled alone.
function(ze_add_part name)
  cmake_parse_arguments(arg "" "" "SOURCES;PUBLIC_HEADERS" ${ARGN})
  add_library(ze_${name} OBJECT ${arg_SOURCES})
  target_link_libraries(ze_${name} PRIVATE ze_options)
  target_include_directories(ze_${name} SYSTEM PRIVATE
    $<TARGET_PROPERTY:ze_android_log,INTERFACE_SYSTEM_INCLUDE_DIRECTORIES>
    $<TARGET_PROPERTY:ZLIB::ZLIB,INTERFACE_INCLUDE_DIRECTORIES>)
  set_property(GLOBAL APPEND PROPERTY ZE_PARTS ze_${name})
  foreach(header IN LISTS arg_PUBLIC_HEADERS)
    cmake_path(ABSOLUTE_PATH header BASE_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    cmake_path(RELATIVE_PATH header BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
    set_property(GLOBAL APPEND PROPERTY ZE_PUBLIC_HEADERS ${header})
  endforeach()
endfunction()

# The objects of all parts, for a link step.
function(ze_part_objects out)
  get_property(parts GLOBAL PROPERTY ZE_PARTS)
  list(TRANSFORM parts REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>")
  set(${out} ${parts} PARENT_SCOPE)
endfunction()

# ze_add_shared_library()
# The link step that makes libZeBeautyEffect out of the parts' objects. exports.map names what it exports;
# packaging/check_shape.sh checks what the other options ask for.
function(ze_add_shared_library)
  ze_part_objects(objects)
  get_property(public_headers GLOBAL PROPERTY ZE_PUBLIC_HEADERS)
  list(TRANSFORM public_headers PREPEND ${PROJECT_SOURCE_DIR}/)
  set(map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  add_library(ZeBeautyEffect SHARED ${objects})
  add_library(ZeBeautyEffect::ZeBeautyEffect ALIAS ZeBeautyEffect)
  set_target_properties(ZeBeautyEffect PROPERTIES LINKER_LANGUAGE CXX LINK_DEPENDS ${map})
  target_sources(ZeBeautyEffect INTERFACE FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${public_headers})
  target_compile_features(ZeBeautyEffect INTERFACE cxx_std_17)
  target_link_libraries(ZeBeautyEffect PRIVATE ze_options ze_gl_driver ze_android_log ZLIB::ZLIB Threads::Threads
    ${CMAKE_DL_LIBS})
  target_link_options(ZeBeautyEffect PRIVATE -Wl,--version-script=${map} -Wl,--no-undefined -Wl,--build-id=sha1
    -Wl,-z,max-page-size=16384 -Wl,-z,common-page-size=16384 # devices have pages of 4 or 16 KB
    -Wl,-z,relro -Wl,-z,now -Wl,-z,text -Wl,-z,noexecstack)
endfunction()

# ze_add_test(<name> SOURCES <file>... [RECORDER] [LIBRARIES <target>...] [ENVIRONMENT <var=value>...])
# A GoogleTest program over the parts' objects, run as one CTest test. With RECORDER it links the recording
# doubles of EGL and GLES in place of the driver.
function(ze_add_test name)
  cmake_parse_arguments(arg "RECORDER" "" "SOURCES;LIBRARIES;ENVIRONMENT" ${ARGN})
  ze_part_objects(objects)
  add_executable(${name} ${arg_SOURCES} ${objects})
  if(arg_RECORDER)
    target_link_libraries(${name} PRIVATE ze_gl_recorder)
  else()
    target_link_libraries(${name} PRIVATE ze_gl_driver)
  endif()
  target_link_libraries(${name} PRIVATE ze_options ze_test_support ze_android_log ZLIB::ZLIB Threads::Threads
    ${arg_LIBRARIES} GTest::gmock)
  add_test(NAME ${name} COMMAND ${name})
  ze_set_test_environment(${name} ${arg_ENVIRONMENT})
endfunction()

# ze_set_test_environment(<test> <var=value>...)
# Adds the variables, the emulator that programs of a cross build need to start themselves again, and for
# ThreadSanitizer the suppressions that tests/ keeps.
function(ze_set_test_environment name)
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    list(APPEND ARGN ZE_EMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR})
  endif()
  set_tests_properties(${name} PROPERTIES TIMEOUT 600 ENVIRONMENT
    "${ARGN};TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp")
endfunction()

# ze_add_bench(<name> SOURCES <file>... [LIBRARIES <target>...])
# A Google Benchmark program over the parts' objects. Loops and functions start on 64 bytes: the place of a
# short loop alone can double its time.
function(ze_add_bench name)
  cmake_parse_arguments(arg "" "" "SOURCES;LIBRARIES" ${ARGN})
  ze_part_objects(objects)
  add_executable(${name} ${arg_SOURCES} ${objects})
  target_link_libraries(${name} PRIVATE ze_options ze_gl_driver ze_android_log ZLIB::ZLIB Threads::Threads
    ${arg_LIBRARIES} benchmark::benchmark)
endfunction()
