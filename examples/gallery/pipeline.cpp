// Gallery: row and column pipelines, and the model of how the two are joined to a separable filter.
#include <algorithm>

#include "section.hpp"

namespace gallery {
namespace {

using Kernel = std::vector<Lum16s>;

Lum32s lengthOf(const Kernel& kernel)
{
    return static_cast<Lum32s>(kernel.size());
}

// Joins the two pipelines through a ring of rows.
//
// The picture is worked through in bands. For each band, the row pass filters the source rows that the band is the
// first to need into free places of the ring, and the column pass combines the rows of the ring into the band. Both
// reach rows through an array of pointers, and that is all there is to the joint: no intermediate image exists and no
// row is copied. A row above or below the picture is a pointer to the first or last row, once more.
//
// `queryColumn` and `column` are the size query and the call of the column pipeline that makes the destination's type.
template <typename Destination, typename QueryColumn, typename Column>
LumStatus filterSeparable(const Picture& source, Image<Destination>& destination, const Kernel& rowKernel,
                          Lum32s rowDivisor, const Kernel& columnKernel, Lum32s columnDivisor, QueryColumn queryColumn,
                          Column column)
{
    constexpr int bandHeight = 16;
    const int width = source.width();
    const int height = source.height();
    const int above = lengthOf(columnKernel) / 2;
    const int ringHeight = bandHeight + lengthOf(columnKernel) - 1;

    Lum32s rowBytes = 0;
    Lum32s columnBytes = 0;
    LumStatus status =
        lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R({width, ringHeight}, lengthOf(rowKernel), &rowBytes);
    if (status != lumOk) {
        return status;
    }
    status = queryColumn({width, bandHeight}, lengthOf(columnKernel), &columnBytes);
    if (status != lumOk) {
        return status;
    }
    // the two passes never run at the same time, so one block serves both
    Block buffer(static_cast<std::size_t>(std::max(rowBytes, columnBytes)));
    Image<Lum16s> ring(width, ringHeight, 1);
    std::vector<Lum16s*> rows(static_cast<std::size_t>(ringHeight));
    const auto ringRow = [&](int y) { return &ring.at(0, y % ringHeight); };

    int filtered = 0;
    for (int top = 0; top < height; top += bandHeight) {
        const int bottom = std::min(top + bandHeight, height);

        const int needed = std::min(bottom + lengthOf(columnKernel) - 1 - above, height);
        if (filtered < needed) {
            for (int y = filtered; y < needed; ++y) {
                rows[static_cast<std::size_t>(y - filtered)] = ringRow(y);
            }
            status = lumiFilterRowBorderPipeline_8u16s_C1R(
                &source.at(0, filtered), source.step(), rows.data(), {width, needed - filtered}, rowKernel.data(),
                lengthOf(rowKernel), lengthOf(rowKernel) / 2, lumBorderMirror, 0, rowDivisor, buffer.data());
            if (status != lumOk) {
                return status;
            }
            filtered = needed;
        }

        for (int i = 0; i < bottom - top + lengthOf(columnKernel) - 1; ++i) {
            rows[static_cast<std::size_t>(i)] = ringRow(std::clamp(top - above + i, 0, height - 1));
        }
        status = column(rows.data(), &destination.at(0, top), destination.step(), {width, bottom - top},
                        columnKernel.data(), lengthOf(columnKernel), columnDivisor, buffer.data());
        if (status != lumOk) {
            return status;
        }
    }
    return lumOk;
}

constexpr const char* joined =
    "for each band of 16 rows:\n"
    "    lumiFilterRowBorderPipeline_8u16s_C1R(pSrc, srcStep, ppRows, {width, newRows}, pRowKernel, kernelSize, "
    "kernelSize / 2, lumBorderMirror, 0, divisor, pBuffer);\n"
    "    ";

Picture smooth(const Source& source, Shot& shot)
{
    Picture result(source.gray.width(), source.gray.height(), 1);
    const Kernel binomial{1, 6, 15, 20, 15, 6, 1};
    // the rows keep a factor of 16 for the columns to divide by, so that nothing is rounded away between the two
    const std::string call = std::string(joined) +
                             "lumiFilterColumnPipeline_16s8u_C1R(ppRows, pDst, dstStep, {width, 16}, pColumnKernel, "
                             "kernelSize, divisor, pBuffer)";
    shot.time(call.c_str(), [&] {
        return filterSeparable(source.gray, result, binomial, 4, binomial, 64 * 16,
                               lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, lumiFilterColumnPipeline_16s8u_C1R);
    });
    return result;
}

Picture derivative(const Source& source, Shot& shot)
{
    Image<Lum8s> slope(source.gray.width(), source.gray.height(), 1);
    const std::string call = std::string(joined) +
                             "lumiFilterColumnPipeline_16s8s_C1R(ppRows, pDst, dstStep, {width, 16}, pColumnKernel, "
                             "kernelSize, divisor, pBuffer)";
    shot.time(call.c_str(), [&] {
        return filterSeparable(source.gray, slope, {-1, 0, 1}, 1, {1, 2, 1}, 4,
                               lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, lumiFilterColumnPipeline_16s8s_C1R);
    });
    return mapped<Lum8u>(slope, [](Lum8s v) { return static_cast<Lum8u>(v + 128); });
}

const Section section{
    20,
    "Row and column pipelines",
    "Any separable filter as two passes over rows that the caller holds: a ring of rows joins them, and no "
    "intermediate "
    "image is made.",
    {{"pipeline-smooth", "Binomial 7 x 7 through a ring of rows",
      "Bytes to 16-bit rows and back to bytes; the weights are 1 6 15 20 15 6 1 in both directions.", smooth},
     {"pipeline-derivative", "Horizontal derivative through a ring of rows",
      "-1 0 1 along the rows, 1 2 1 down the columns, to signed bytes; middle gray is no slope.", derivative}},
};

}  // namespace
}  // namespace gallery
