# cmake -DNM=<nm> -DLIBRARY=<file> -P check_exports.cmake
# The library exports names that start with CZe, SZe or Ze, and of those with Zec these and no others.
execute_process(COMMAND ${NM} -D --defined-only -C ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(TRANSFORM symbols REPLACE "^[0-9a-f]* +[A-Za-z] " "")
list(FILTER symbols EXCLUDE REGEX "^(typeinfo for |typeinfo name for |vtable for )?(CZe|SZe|Ze[^c])")
list(SORT symbols)
if(NOT symbols STREQUAL "ZecCreateEffect;ZecCreateRenderCore;ZecDestoryEffect;ZecDestroyRenderCore;ZecRender;\
ZecSetBeautyParams;ZecSetLutParams")
  message(SEND_ERROR "exported beside the classes: ${symbols}")
endif()
