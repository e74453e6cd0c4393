# LUMCV_SANITIZER instruments the library, its tests and its examples alike.

set(LUMCV_SANITIZER "" CACHE STRING "Sanitizer: empty, address, undefined or thread")
set_property(CACHE LUMCV_SANITIZER PROPERTY STRINGS "" address undefined thread)

if(LUMCV_SANITIZER)
  add_compile_options(-fsanitize=${LUMCV_SANITIZER} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
  add_link_options(-fsanitize=${LUMCV_SANITIZER})
endif()
