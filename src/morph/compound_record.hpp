// The records of the compound operations: the element of each pass.
#pragma once

#include "morph/bit_record.hpp"

/// The two records, LumiMorphMaskRecord or LumiMorphBitRecord, lie behind it in the block.
struct LumiMorphCompoundSpec
{
    void* pFirst;
    void* pSecond;   ///< pRotated, or pFirst in odd modes
    void* pRotated;  ///< the caller's element, rotated by 180 degrees
    Lum32s keepNegative;
};

struct LumiMorphCompoundSpecL
{
    LumiDilateErodeSpec* pFirst;
    LumiDilateErodeSpec* pSecond;
    LumiDilateErodeSpec* pRotated;
    Lum32s keepNegative;
};

namespace lumcv {

/// Where the records of both passes begin in the block.
inline Lum8u* behindHead(void* spec)
{
    constexpr int64_t headBytes = 64;
    return static_cast<Lum8u*>(spec) + headBytes;
}

}  // namespace lumcv
