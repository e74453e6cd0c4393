# One set of warnings for everything that is compiled here.

option(LUMCV_WERROR "Treat warnings as errors" OFF)

set(LUMCV_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wcast-align -Wunused -Wnon-virtual-dtor -Woverloaded-virtual)
if(LUMCV_WERROR)
  list(APPEND LUMCV_WARNINGS -Werror)
endif()

add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:${LUMCV_WARNINGS}>")
