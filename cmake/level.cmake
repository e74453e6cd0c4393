# The processor levels: which instructions a build of the library may execute.
#
#   base  AVX and nothing newer
#   v3    x86-64-v3 (AVX2, FMA, BMI)
#   v4    x86-64-v4 (AVX-512 F, BW, CD, DQ, VL)
#
# The flags reach the library alone; tests, benchmarks and examples stay portable.

set(LUMCV_LEVEL base CACHE STRING "Processor level of the library: base, v3 or v4")
set_property(CACHE LUMCV_LEVEL PROPERTY STRINGS base v3 v4)
set(LUMCV_MORE_LEVELS "" CACHE STRING "Levels that are built beside the base one, for installation: v3, v4 or both")

# lumcv_level(LEVEL): sets LUMCV_LEVEL_FLAGS, and LUMCV_LEVEL_SUBDIR, where below a library folder the loader looks for
# this level; empty for base
macro(lumcv_level level)
  if("${level}" STREQUAL "base")
    # haswell tuning only keeps unaligned 32-byte loads and stores in one piece; it enables no instruction
    set(LUMCV_LEVEL_FLAGS -march=x86-64-v2 -mavx -mtune=haswell)
    set(LUMCV_LEVEL_SUBDIR "")
  elseif("${level}" STREQUAL "v3")
    set(LUMCV_LEVEL_FLAGS -march=x86-64-v3 -mtune=haswell)
    set(LUMCV_LEVEL_SUBDIR glibc-hwcaps/x86-64-v3)
  elseif("${level}" STREQUAL "v4")
    set(LUMCV_LEVEL_FLAGS -march=x86-64-v4 -mprefer-vector-width=512)
    set(LUMCV_LEVEL_SUBDIR glibc-hwcaps/x86-64-v4)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      # g++ 12 takes the undefined operands inside its own AVX-512 header for mistakes of ours
      list(APPEND LUMCV_LEVEL_FLAGS -Wno-maybe-uninitialized -Wno-uninitialized)
    endif()
  else()
    message(FATAL_ERROR "'${level}' is not a processor level; it must be base, v3 or v4")
  endif()
endmacro()

if(LUMCV_MORE_LEVELS AND NOT LUMCV_LEVEL STREQUAL base)
  message(FATAL_ERROR "LUMCV_MORE_LEVELS is for LUMCV_LEVEL base; here it is '${LUMCV_LEVEL}'")
endif()
lumcv_level(${LUMCV_LEVEL})
