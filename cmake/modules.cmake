# A folder is a module: every .cpp directly in FOLDER, those left out whose path matches EXCLUDE or whose name ends in the
# name of the other platform, belongs to the static library NAME.
#
#   parvex_module(NAME FOLDER [EXCLUDE regex] [DEPENDS library...])
function(parvex_module name folder)
  cmake_parse_arguments(ARG "" "EXCLUDE" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  parvex_without_other_platform(sources)
  if(ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX ${ARG_EXCLUDE})
  endif()
  parvex_library(${name} SOURCES ${sources} DEPENDS ${ARG_DEPENDS})
endfunction()

# Takes sources of the platform that is not built out of the list named VARIABLE.
function(parvex_without_other_platform variable)
  if(WIN32)
    list(FILTER ${variable} EXCLUDE REGEX "_(posix|libxml2)\\.cpp$")
  else()
    list(FILTER ${variable} EXCLUDE REGEX "_(windows|msxml)\\.cpp$")
  endif()
  set(${variable} ${${variable}} PARENT_SCOPE)
endfunction()

# The same with the sources named one by one.
#
#   parvex_library(NAME SOURCES file... DEPENDS library...)
function(parvex_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  if(ARG_SOURCES)
    add_library(${name} STATIC ${ARG_SOURCES})
    set(scope PUBLIC)
    target_link_libraries(${name} PRIVATE parvex_warnings)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${PROJECT_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} ${scope} ${ARG_DEPENDS})
endfunction()

# One test program for the .cpp files of FOLDER and of the folders in it, those of the other platform left out; each of
# its tests is a ctest test of its own.
#
#   parvex_test(NAME FOLDER DEPENDS library... [EXCLUDE regex] [PROPERTIES of the ctest tests])
function(parvex_test name folder)
  cmake_parse_arguments(ARG "" "EXCLUDE" "DEPENDS;PROPERTIES" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  parvex_without_other_platform(sources)
  if(ARG_EXCLUDE)
    list(FILTER sources EXCLUDE REGEX ${ARG_EXCLUDE})
  endif()
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(${name} PRIVATE PARVEX_TEST_DATA="${PROJECT_SOURCE_DIR}/tests/data")
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gmock_main GTest::gtest parvex_warnings)
  # A parameter's value may hold any character, and does not belong in the name of a test.
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 120 LABELS ${name} ${ARG_PROPERTIES})
endfunction()
