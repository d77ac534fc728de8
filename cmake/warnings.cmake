# Every target of the project is built with these.
add_library(parvex_warnings INTERFACE)
target_compile_options(parvex_warnings INTERFACE -Wall -Wextra)
if(PARVEX_WARNINGS_AS_ERRORS)
  target_compile_options(parvex_warnings INTERFACE -Werror)
endif()

if(PARVEX_JOIN_SOURCES)
  # To the compiler a joined source is a header, where it warns of unnamed namespaces.
  target_compile_options(parvex_warnings INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
endif()

if(PARVEX_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Coverage for libFuzzer in every source; only the fuzz targets themselves are linked with its main function.
if(PARVEX_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
