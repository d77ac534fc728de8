# Every target of the project is built with these.
add_library(parvex_warnings INTERFACE)
target_compile_options(parvex_warnings INTERFACE -Wall -Wextra -Werror)

if(PARVEX_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# Coverage for libFuzzer in every source; only the fuzz targets themselves are linked with its main function. Warnings
# are the other compilers' business there.
if(PARVEX_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    -Wno-error)
  add_link_options(-fsanitize=address,undefined)
endif()
