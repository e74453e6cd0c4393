// The version record. Each level's build names itself, so that a program can tell which one the loader has picked.
#include "lumcv/frame.h"
#include "simd/level.hpp"

const LumLibraryVersion* lumcvGetLibVersion(void)
{
    using namespace lumcv::simd;
    static const LumLibraryVersion version = {2022,
                                              1,
                                              0,
                                              static_cast<Lum32s>(0xC8D62893u),
                                              {levelCode[0], levelCode[1], levelCode[2], levelCode[3]},
                                              levelLibraryName,
                                              "2022.1.0 (r0xc8d62893)",
                                              "Jan 30 2025"};
    return &version;
}
