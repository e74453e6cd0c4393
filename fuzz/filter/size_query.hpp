// The size queries of a ROI and one number: a kernel size or a mask.
#pragma once

#include <cstring>

#include "fuzz/support/call.hpp"

namespace lumcv::fuzz {

using Query = LumStatus (*)(LumiSize, Lum32s, Lum32s*);

/// Tries a query on a call whose geometry is chosen; the number stands in kernelSize.
inline void tryQuery(Choices& choices, Call call, Query query)
{
    call.blocks = {{Role::Written, sizeof(Lum32s)}};
    call.call = [=](const Arguments& a) {
        // the result stands at any address; a query of this type is entitled to an aligned one
        if (!a.blocks[0])
            return query(a.size(), a.kernelSize, nullptr);
        Lum32s bytes = 0;
        std::memcpy(&bytes, a.blocks[0], sizeof bytes);
        const LumStatus status = query(a.size(), a.kernelSize, &bytes);
        std::memcpy(a.blocks[0], &bytes, sizeof bytes);
        return status;
    };
    tryCall(choices, std::move(call));
}

}  // namespace lumcv::fuzz
