// The version record.
#include "lumcv/frame.h"

const LumLibraryVersion* lumcvGetLibVersion(void)
{
    static const LumLibraryVersion version = {
        2022,         1, 0, static_cast<Lum32s>(0xC8D62893u), {'t', '7'}, "lumCV AVX (t7)", "2022.1.0 (r0xc8d62893)",
        "Jan 30 2025"};
    return &version;
}
