# What the cross build for Windows needs beyond the native one.
enable_language(RC)

# The cross compiler sees none of this system's header folders. Libraries that are headers only are staged alone.
function(parvex_stage_headers target folder)
  find_path(${target}_HEADERS ${folder} PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(staged ${CMAKE_BINARY_DIR}/staged/${folder})
  file(COPY ${${target}_HEADERS}/${folder} DESTINATION ${staged})
  add_library(${target}_staged INTERFACE)
  target_include_directories(${target}_staged SYSTEM INTERFACE ${staged})
  add_library(${target}::${target} ALIAS ${target}_staged)
endfunction()

parvex_stage_headers(nlohmann_json nlohmann)
parvex_stage_headers(CLI11 CLI)

# The version resource of a program or DLL that is built as FILE, and the type library in it, if one is named.
#
#   parvex_resources(TARGET FILE DESCRIPTION [TYPE_LIBRARY])
function(parvex_resources target file description)
  set(RESOURCE_FILE ${file})
  set(RESOURCE_DESCRIPTION ${description})
  cmake_path(GET file STEM RESOURCE_NAME)
  if(file MATCHES "[.]dll$")
    set(RESOURCE_FILE_TYPE VFT_DLL)
  else()
    set(RESOURCE_FILE_TYPE VFT_APP)
  endif()
  if(ARGN)
    set(RESOURCE_TYPE_LIBRARY "1 TYPELIB \"${ARGN}\"")
  endif()
  set(resources ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/version_resource.rc.in ${resources} @ONLY)
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${ARGN}")
  target_sources(${target} PRIVATE ${resources})
endfunction()

# GoogleTest comes as sources.
find_path(PARVEX_GOOGLETEST_SOURCES googletest/CMakeLists.txt PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${PARVEX_GOOGLETEST_SOURCES} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(name gtest gtest_main gmock gmock_main)
  if(NOT TARGET GTest::${name})
    add_library(GTest::${name} ALIAS ${name})
  endif()
endforeach()

# Header and type library from the interface definition.
set(WIDL ${PARVEX_TRIPLET}-widl)
find_program(PARVEX_WIDL ${WIDL} REQUIRED)
set(WINE_IDL /usr/include/wine/wine/windows CACHE PATH "Wine's interface definitions")
set(WINE_MODULES /usr/lib/x86_64-linux-gnu/wine/x86_64-windows CACHE PATH "Wine's modules, for their type libraries")
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(WIDL_BITS -m64)
else()
  set(WIDL_BITS -m32)
endif()

# parvex_idl(IDL HEADER TYPELIB IDS): HEADER, TYPELIB and IDS (the identifiers, a C source) are paths below the build tree.
function(parvex_idl idl header typelib ids)
  set(call ${PARVEX_WIDL} ${WIDL_BITS} -I ${WINE_IDL} -I ${PROJECT_SOURCE_DIR}/src/adapters/windows -L ${WINE_MODULES})
  add_custom_command(OUTPUT ${header} ${typelib} ${ids}
    COMMAND ${call} -h -o ${header} ${idl}
    COMMAND ${call} -t -o ${typelib} ${idl}
    COMMAND ${call} -u -o ${ids} ${idl}
    DEPENDS ${idl} COMMENT "Compiling ${idl}" VERBATIM)
endfunction()
