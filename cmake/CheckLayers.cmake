# Fails when a source file includes a header of a layer it must not depend on.
# Each folder under src/ is one layer (one library); a layer may include only
# its own headers and those of the layers listed for it below, so the include
# arrows point down and the build's link order stays honest.
#
#   cmake -DKORVEL_SOURCE_DIR=<repo> -P cmake/CheckLayers.cmake
#
# A new folder must be added here, or every include of it is refused.

set(allowed_platform "")
set(allowed_settings platform)
set(allowed_archive platform settings)
set(allowed_search platform settings archive)
set(allowed_preview platform settings archive search)
set(allowed_reports platform settings archive)
set(allowed_desktop platform settings archive)
set(allowed_window platform settings archive search reports desktop preview)
set(allowed_ui platform settings archive search reports desktop window preview)
set(allowed_cli platform settings archive search reports desktop preview)
set(allowed_app platform settings archive search reports desktop window ui preview)

if(NOT KORVEL_SOURCE_DIR)
  get_filename_component(KORVEL_SOURCE_DIR "${CMAKE_CURRENT_LIST_DIR}/.." ABSOLUTE)
endif()

file(GLOB_RECURSE sources RELATIVE "${KORVEL_SOURCE_DIR}/src"
  "${KORVEL_SOURCE_DIR}/src/*.h" "${KORVEL_SOURCE_DIR}/src/*.cpp")
set(problems "")
foreach(source IN LISTS sources)
  string(REGEX MATCH "^[^/]+" layer "${source}")
  if(NOT DEFINED allowed_${layer})
    string(APPEND problems "  src/${source}: the folder ${layer} has no place in cmake/CheckLayers.cmake\n")
    continue()
  endif()
  file(STRINGS "${KORVEL_SOURCE_DIR}/src/${source}" includes REGEX "^[ \t]*#[ \t]*include[ \t]*\"")
  foreach(line IN LISTS includes)
    string(REGEX REPLACE "^[ \t]*#[ \t]*include[ \t]*\"([^\"]*)\".*" "\\1" header "${line}")
    if(NOT header MATCHES "/")
      continue()
    endif()
    string(REGEX MATCH "^[^/]+" target "${header}")
    if(target STREQUAL layer)
      continue()
    endif()
    list(FIND allowed_${layer} "${target}" found)
    if(found EQUAL -1)
      string(APPEND problems "  src/${source}: ${layer} may not include ${header}\n")
    endif()
  endforeach()
endforeach()

if(problems)
  message(FATAL_ERROR "Include arrows that point up or sideways:\n${problems}")
endif()
