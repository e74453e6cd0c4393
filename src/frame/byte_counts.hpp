// What the size queries count in and how they answer.
#pragma once

#include <limits>

#include "lumcv/types.h"

namespace lumcv {

/// Holds any product and sum of the formulas.
__extension__ typedef __int128 Bytes;

template <class Count>
constexpr bool fits(Bytes bytes)
{
    return bytes <= std::numeric_limits<Count>::max();
}

template <class Count>
LumStatus storeSize(Bytes bytes, Count* pSize)
{
    if (!fits<Count>(bytes))
        return lumErrSizeTooLarge;
    *pSize = static_cast<Count>(bytes);
    return lumOk;
}

/// Both or none.
template <class Count>
LumStatus storeSizes(Bytes specBytes, Count* pSpecSize, Bytes bufferBytes, Count* pBufferSize)
{
    if (!fits<Count>(specBytes) || !fits<Count>(bufferBytes))
        return lumErrSizeTooLarge;
    *pSpecSize = static_cast<Count>(specBytes);
    *pBufferSize = static_cast<Count>(bufferBytes);
    return lumOk;
}

}  // namespace lumcv
