// The names of the processor level that this build is compiled for, as the version record shows them.
#pragma once

namespace lumcv::simd {

#if defined(__AVX512BW__)
inline constexpr char levelCode[4] = "v4";
inline constexpr const char* levelLibraryName = "lumCV AVX-512 (v4)";
#elif defined(__AVX2__)
inline constexpr char levelCode[4] = "v3";
inline constexpr const char* levelLibraryName = "lumCV AVX2 (v3)";
#else
inline constexpr char levelCode[4] = "t7";
inline constexpr const char* levelLibraryName = "lumCV AVX (t7)";
#endif

}  // namespace lumcv::simd
