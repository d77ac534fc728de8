# A folder is a module: every .cpp directly in FOLDER belongs to the static library NAME.
#
#   parvex_module(NAME FOLDER DEPENDS library...)
function(parvex_module name folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
  parvex_library(${name} SOURCES ${sources} DEPENDS ${ARG_DEPENDS})
endfunction()

# The same with the sources named one by one, for a folder that holds two modules.
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

# One test program for the .cpp files of FOLDER, those left out whose path matches EXCLUDE; each of its tests is a ctest
# test of its own.
#
#   parvex_test(NAME FOLDER DEPENDS library... [EXCLUDE regex] [PROPERTIES of the ctest tests])
function(parvex_test name folder)
  cmake_parse_arguments(ARG "" "EXCLUDE" "DEPENDS;PROPERTIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${folder}/*.cpp)
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
