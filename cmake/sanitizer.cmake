# LUMCV_SANITIZER instruments the library, its tests and its examples alike; with LUMCV_TEST_PROGRAMS, where the tests of
# another build are run, the library and what is still built here.

set(LUMCV_SANITIZER "" CACHE STRING "Sanitizer: empty, address, undefined, address,undefined or thread")
set_property(CACHE LUMCV_SANITIZER PROPERTY STRINGS "" address undefined "address,undefined" thread)

# What the library is compiled with, besides, for clang's fuzzer to see how often each of its branches is taken.
set(LUMCV_COVERAGE_FLAGS "")
if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND LUMCV_SANITIZER MATCHES address)
  set(LUMCV_COVERAGE_FLAGS -fsanitize-coverage=inline-8bit-counters,pc-table)
endif()

if(LUMCV_SANITIZER)
  # a higher level than -O1 takes several times as long to compile and does not make the tests faster
  add_compile_options(-O1 -fsanitize=${LUMCV_SANITIZER} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  if(CMAKE_CXX_COMPILER_ID MATCHES Clang AND LUMCV_SANITIZER MATCHES undefined)
    # its run-time part is C++, and C programs use the library
    add_compile_options(-fno-sanitize=function)
  endif()
  add_link_options(-fsanitize=${LUMCV_SANITIZER})

  # Programs of another build have no run-time part of a sanitizer in them. It is a library then, which the loader puts
  # before all others.
  if(LUMCV_TEST_PROGRAMS)
    if(LUMCV_SANITIZER MATCHES address)
      set(runtime asan)
    elseif(LUMCV_SANITIZER STREQUAL thread)
      set(runtime tsan)
    else()
      set(runtime ubsan)
    endif()
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
      string(REPLACE ubsan ubsan_standalone runtime libclang_rt.${runtime}-x86_64.so)
    else()
      set(runtime lib${runtime}.so)
    endif()
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${runtime}
      OUTPUT_VARIABLE LUMCV_SANITIZER_RUNTIME OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
      get_filename_component(folder ${LUMCV_SANITIZER_RUNTIME} DIRECTORY)
      add_link_options(-shared-libsan LINKER:-rpath,${folder})
    endif()
  endif()
endif()
