// Tables of integral images for the rows of this folder.
#pragma once

#include "bench/support/row.hpp"

namespace lumcv::bench {

// `extra` rows and columns more than the image. It counts as an image of its size: through destination() if it is
// written, through source() if it is read; the images that these make are not used.
template <typename T>
View<T> table(Job& job, int extra)
{
    constexpr std::size_t lineBytes = 64;
    const std::size_t rowBytes = (std::size_t(job.size().width) + extra) * sizeof(T);
    const std::size_t step = (rowBytes + lineBytes - 1) / lineBytes * lineBytes;
    return {reinterpret_cast<T*>(job.allocate(step * (std::size_t(job.size().height) + extra))), Lum32s(step)};
}

}  // namespace lumcv::bench
