# LUMCV_SANITIZER instruments the library, its tests and its examples alike.

# "fuzzer" is the address sanitizer with the coverage that clang's fuzzer is guided by.

set(LUMCV_SANITIZER "" CACHE STRING "Sanitizer: empty, address, undefined, address,undefined, thread or fuzzer")
set_property(CACHE LUMCV_SANITIZER PROPERTY STRINGS "" address undefined "address,undefined" thread fuzzer)

if(LUMCV_SANITIZER STREQUAL "fuzzer")
  add_compile_options(-fsanitize=fuzzer-no-link,address -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=address)
elseif(LUMCV_SANITIZER)
  # a higher level than -O1 takes several times as long to compile and does not make the tests faster
  add_compile_options(-O1 -fsanitize=${LUMCV_SANITIZER} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND LUMCV_SANITIZER MATCHES undefined)
    # its run-time part is C++, and C programs use the library
    add_compile_options(-fno-sanitize=function)
  endif()
  add_link_options(-fsanitize=${LUMCV_SANITIZER})
endif()
