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
foreach(header api/ze_beauty_effect.h core/tools/ze_string.h log/log_settings.h host/beautifier.cpp)
  if(NOT ${module}/include/${header} IN_LIST files)
    message(SEND_ERROR "${header} is missing")
  endif()
endforeach()
list(FILTER files EXCLUDE REGEX "^${module}/include/([a-z0-9_/]+\\.h|host/[a-z_]+\\.cpp)$")
if(NOT files STREQUAL "AndroidManifest.xml;${abi}/abi.json;${abi}/libZeBeautyEffect.so;${module}/module.json;prefab/prefab.json")
  message(SEND_ERROR "it holds ${files}")
endif()

# expect(<file> <pattern of its members without white space>)
function(expect file pattern)
  file(READ ${work}/unpacked/${file} json)
  string(JSON ignored LENGTH "${json}") # stops unless it is JSON
  string(REGEX REPLACE "[ \n]" "" json "${json}")
  if(NOT json MATCHES "^{${pattern}}$")
    message(SEND_ERROR "${file} is ${json}")
  endif()
endfunction()
expect(prefab/prefab.json [=["schema_version":2,"name":"ZeBeautyEffect","version":"[0-9.]+","dependencies":\[\]]=])
expect(${module}/module.json [=["library_name":"libZeBeautyEffect","export_libraries":\[\]]=])
expect(${abi}/abi.json [=["abi":"arm64-v8a","api":24,"ndk":[0-9]+,"stl":"c\+\+_shared","static":false]=])

execute_process(COMMAND readelf -SW ${work}/unpacked/${abi}/libZeBeautyEffect.so OUTPUT_VARIABLE sections
  COMMAND_ERROR_IS_FATAL ANY)
if(sections MATCHES "\\.symtab")
  message(SEND_ERROR "the library is not stripped")
endif()
