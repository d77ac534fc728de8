# Compiles the sources of a target that lie in one folder together, eight at most, where PARVEX_JOIN_SOURCES is on: the
# headers are read, and the templates made, once for all of them. That takes a third of the time; a change of one of them
# takes longer. The native build does not do it and shows that each source compiles alone.
#
# What two sources of one folder have in unnamed namespaces needs different names for this.

# parvex_join_sources(FOLDER): for every target that is declared in FOLDER, or in a folder of the project that it adds.
function(parvex_join_sources folder)
  get_property(targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${targets})
    parvex_join_sources_of(${target} ${folder})
  endforeach()
  get_property(subdirectories DIRECTORY ${folder} PROPERTY SUBDIRECTORIES)
  list(FILTER subdirectories INCLUDE REGEX "^${PROJECT_SOURCE_DIR}/")
  foreach(subdirectory ${subdirectories})
    parvex_join_sources(${subdirectory})
  endforeach()
endfunction()

function(parvex_join_sources_of target folder)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "^[^$]*\\.cpp$")
  foreach(source ${sources})
    cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY ${folder} OUTPUT_VARIABLE path)
    cmake_path(RELATIVE_PATH path BASE_DIRECTORY ${PROJECT_SOURCE_DIR} OUTPUT_VARIABLE group)
    cmake_path(GET group PARENT_PATH group)
    string(MAKE_C_IDENTIFIER ${group} group)
    math(EXPR count_${group} "0${count_${group}} + 1")
    math(EXPR part "(${count_${group}} - 1) / 8")
    set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${group}_${part})
  endforeach()
  if(sources)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  endif()
endfunction()

parvex_join_sources(${PROJECT_SOURCE_DIR})
