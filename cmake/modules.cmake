# A folder is a module: every .cpp directly in FOLDER belongs to the static library NAME, those left out whose name ends
# in the name of the other platform. DEPENDS is what the folder may include; it names only what was declared before, so
# that arrows point down (scripts/lib/check_house.py compares each include with it). With PLATFORM the module is built on
# that platform only; on the other it is an empty name.
#
#   parvex_module(NAME FOLDER [PLATFORM posix|windows] [DEPENDS library...])
function(parvex_module name folder)
  cmake_parse_arguments(ARG "" "PLATFORM" "DEPENDS" ${ARGN})
  parvex_uses(${folder} NAME ${name} PLATFORM "${ARG_PLATFORM}" DEPENDS ${ARG_DEPENDS})
  if(ARG_PLATFORM AND NOT ARG_PLATFORM STREQUAL PARVEX_PLATFORM)
    add_library(${name} INTERFACE)
    return()
  endif()
  parvex_sources(sources ${folder})
  if(sources)
    add_library(${name} STATIC ${sources})
    set(scope PUBLIC)
    target_link_libraries(${name} PRIVATE parvex_warnings)
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope}
    ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(${name} ${scope} ${ARG_DEPENDS})
endfunction()

# The same for a folder that becomes a program.
#
#   parvex_executable(NAME FOLDER [DEPENDS library...])
function(parvex_executable name folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  parvex_uses(${folder} NAME ${name} DEPENDS ${ARG_DEPENDS})
  parvex_sources(sources ${folder})
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} parvex_warnings)
endfunction()

# One name for several libraries.
#
#   parvex_group(NAME library...)
function(parvex_group name)
  add_library(${name} INTERFACE)
  target_link_libraries(${name} INTERFACE ${ARGN})
  set_property(GLOBAL APPEND_STRING PROPERTY PARVEX_USES "\t${name}\t\t${ARGN}\n")
endfunction()

# The sources of the folder, without those of the other platform, into the variable named VARIABLE.
function(parvex_sources variable folder)
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  parvex_without_other_platform(sources)
  set(${variable} ${sources} PARENT_SCOPE)
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

# Notes what a folder, or a single source, may include, for what is put together in another way than by the functions
# above.
#
#   parvex_uses(PATH [NAME library] [PLATFORM posix|windows] [DEPENDS library...])
function(parvex_uses path)
  cmake_parse_arguments(ARG "" "NAME;PLATFORM" "DEPENDS" ${ARGN})
  cmake_path(ABSOLUTE_PATH path NORMALIZE)
  cmake_path(RELATIVE_PATH path BASE_DIRECTORY ${PROJECT_SOURCE_DIR})
  string(REGEX REPLACE "/$" "" path ${path})
  set_property(GLOBAL APPEND_STRING PROPERTY PARVEX_USES "${path}\t${ARG_NAME}\t${ARG_PLATFORM}\t${ARG_DEPENDS}\n")
endfunction()

# Writes what was noted to uses.tsv of the build tree: path, library, platform, what it may include; in the order of
# declaration.
function(parvex_write_uses)
  get_property(uses GLOBAL PROPERTY PARVEX_USES)
  file(WRITE ${CMAKE_BINARY_DIR}/uses.tsv "${uses}")
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
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS} GTest::gmock_main GTest::gtest parvex_warnings)
  # Tests are compiled quickly; what they test is compiled as everywhere.
  target_compile_options(${name} PRIVATE -O0 -g1)
  parvex_precompile_test_headers(${name})
  # A parameter's value may hold any character, and does not belong in the name of a test.
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES PROPERTIES TIMEOUT 120 LABELS ${name} ${ARG_PROPERTIES})
endfunction()

# The first test program compiles the headers that nearly every test reads; the others use what it made.
function(parvex_precompile_test_headers name)
  get_property(first GLOBAL PROPERTY PARVEX_TEST_HEADERS)
  if(PARVEX_JOIN_SOURCES)
    return()
  elseif(first)
    target_precompile_headers(${name} REUSE_FROM ${first})
  else()
    set_property(GLOBAL PROPERTY PARVEX_TEST_HEADERS ${name})
    target_precompile_headers(${name} PRIVATE
      <gmock/gmock.h> <gtest/gtest.h> <algorithm> <filesystem> <fstream> <functional> <map> <memory> <optional> <string>
      <string_view> <vector>)
  endif()
endfunction()
