# cmake -DNM=<nm> -DLIBRARY=<file> -P check_exports.cmake
# The library exports the functions of exports.txt and names that start with CZe, SZe or Ze: no function is
# missing and nothing else is there.
execute_process(COMMAND ${NM} -D --defined-only -C ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/exports.txt expected)
string(REGEX REPLACE "\n$" "" symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
foreach(symbol IN LISTS symbols)
  string(REGEX REPLACE "^[0-9a-f]* +[A-Za-z] " "" symbol "${symbol}")
  if(symbol MATCHES "^Zec")
    list(APPEND functions ${symbol})
  elseif(NOT symbol MATCHES "^(typeinfo for |typeinfo name for |vtable for )?(CZe|SZe|Ze)")
    message(SEND_ERROR "must not be exported: ${symbol}")
  endif()
endforeach()
list(SORT functions)
if(NOT functions STREQUAL expected)
  message(SEND_ERROR "exported functions: ${functions}\nexpected: ${expected}")
endif()
