# quenta_library(NAME SOURCES… [LINK targets…]): a static library with the project's flags, one for each folder.
function(quenta_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC quenta_flags ${ARG_LINK})
endfunction()
