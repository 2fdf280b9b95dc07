# cmake -DBUILD_DIR=<dir> -P aar_test.cmake
# What aar.sh packs is all that prefab asks for and nothing else, and it leaves nothing half done.
cmake_minimum_required(VERSION 3.25)
set(aar_sh ${CMAKE_CURRENT_LIST_DIR}/../../packaging/aar.sh)
set(work ${BUILD_DIR}/aar_test)
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work}/unpacked)

execute_process(COMMAND ${aar_sh} ${BUILD_DIR} first.aar WORKING_DIRECTORY ${work} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E sleep 2) # the resolution of times in archives
execute_process(COMMAND ${aar_sh} ${BUILD_DIR} ${work}/second.aar COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files first.aar second.aar WORKING_DIRECTORY ${work}
  COMMAND_ERROR_IS_FATAL ANY)

# An input that cannot be packed leaves what was there before.
file(WRITE ${work}/third.aar before)
execute_process(COMMAND ${aar_sh} ${work} ${work}/third.aar RESULT_VARIABLE result ERROR_VARIABLE message)
file(READ ${work}/third.aar content)
if(result EQUAL 0 OR NOT message MATCHES "libZeBeautyEffect.so is not there" OR NOT content STREQUAL "before")
  message(SEND_ERROR "packing nothing: ${result}, '${message}', left '${content}'")
endif()
file(GLOB left RELATIVE ${work} ${work}/*)
if(NOT left STREQUAL "first.aar;second.aar;third.aar;unpacked")
  message(SEND_ERROR "left behind: ${left}")
endif()

file(ARCHIVE_EXTRACT INPUT ${work}/first.aar DESTINATION ${work}/unpacked)
file(GLOB_RECURSE files RELATIVE ${work}/unpacked ${work}/unpacked/*)
set(module prefab/modules/ZeBeautyEffect)
set(abi ${module}/libs/android.arm64-v8a)
foreach(header api/ze_beauty_effect.h core/tools/ze_string.h log/log_settings.h)
  if(NOT ${module}/include/${header} IN_LIST files)
    message(SEND_ERROR "${header} is missing")
  endif()
endforeach()
list(FILTER files EXCLUDE REGEX "^${module}/include/[a-z0-9_/]+\\.h$")
if(NOT files STREQUAL "AndroidManifest.xml;${abi}/abi.json;${abi}/libZeBeautyEffect.so;${module}/module.json;prefab/prefab.json")
  message(SEND_ERROR "it holds ${files}")
endif()

# expect(<file> <members> [<key> <type> <value>]...)
function(expect file members)
  file(READ ${work}/unpacked/${file} json)
  string(JSON count LENGTH "${json}")
  if(NOT count EQUAL members)
    message(SEND_ERROR "${file} has ${count} members")
  endif()
  while(ARGN)
    list(POP_FRONT ARGN key type value)
    string(JSON actual_type TYPE "${json}" ${key})
    string(JSON actual GET "${json}" ${key})
    if(NOT actual_type STREQUAL type OR NOT actual MATCHES "^${value}$")
      message(SEND_ERROR "${file}: ${key} is ${actual_type} ${actual}")
    endif()
  endwhile()
endfunction()
expect(prefab/prefab.json 4 schema_version NUMBER 2 name STRING ZeBeautyEffect
  version STRING "[0-9]+\\.[0-9]+\\.[0-9]+" dependencies ARRAY "\\[\\]")
expect(${module}/module.json 2 library_name STRING libZeBeautyEffect export_libraries ARRAY "\\[\\]")
expect(${abi}/abi.json 5 abi STRING arm64-v8a api NUMBER 24 ndk NUMBER "[0-9]+" stl STRING "c\\+\\+_shared"
  static BOOLEAN OFF)

execute_process(COMMAND readelf -SW ${work}/unpacked/${abi}/libZeBeautyEffect.so OUTPUT_VARIABLE sections
  COMMAND_ERROR_IS_FATAL ANY)
if(sections MATCHES "\\.symtab")
  message(SEND_ERROR "the library is not stripped")
endif()
