# LUMCV_SANITIZER instruments the library, its tests and its examples alike.

# "fuzzer" is the address sanitizer with the coverage that clang's fuzzer is guided by.

set(LUMCV_SANITIZER "" CACHE STRING "Sanitizer: empty, address, undefined, thread or fuzzer")
set_property(CACHE LUMCV_SANITIZER PROPERTY STRINGS "" address undefined thread fuzzer)

if(LUMCV_SANITIZER STREQUAL "fuzzer")
  add_compile_options(-fsanitize=fuzzer-no-link,address -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=address)
elseif(LUMCV_SANITIZER)
  add_compile_options(-fsanitize=${LUMCV_SANITIZER} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${LUMCV_SANITIZER})
endif()
