// Block primitives: clear, fill, copy and divide a contiguous block. Lengths count elements.
//
// They choose by length among vector code, the processor's string instructions and, for fills beyond the largest
// cache, stores past the caches. Nothing outside the block is touched; source and destination do not overlap.
// A null pointer is lumErrNullPointer, a length below 1 lumErrSize.
#pragma once

#include "lumcv/types.h"

namespace lumcv {

LumStatus lumBlockZero_8u(Lum8u* pDst, Lum32s len);
LumStatus lumBlockZero_16s(Lum16s* pDst, Lum32s len);
LumStatus lumBlockZero_32f(Lum32f* pDst, Lum32s len);

LumStatus lumBlockCopy_8u(const Lum8u* pSrc, Lum8u* pDst, Lum32s len);
LumStatus lumBlockCopy_16s(const Lum16s* pSrc, Lum16s* pDst, Lum32s len);
LumStatus lumBlockCopy_32f(const Lum32f* pSrc, Lum32f* pDst, Lum32s len);

/// lumBlockCopy_8u for callers that know their arguments. Returns pDst.
void* lumBlockCopyRaw(const void* pSrc, void* pDst, Lum32s len);

LumStatus lumBlockSet_8u(Lum8u value, Lum8u* pDst, Lum32s len);
LumStatus lumBlockSet_16s(Lum16s value, Lum16s* pDst, Lum32s len);
LumStatus lumBlockSet_32f(Lum32f value, Lum32f* pDst, Lum32s len);

/// Multiplies every element by the single-precision reciprocal of value; 0.0 is lumErrDivideByZero.
LumStatus lumBlockDivC_32f(Lum32f value, Lum32f* pSrcDst, Lum32s len);

}  // namespace lumcv
