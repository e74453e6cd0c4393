// Plain flood fill, and the sizes of the scratch.
#include "frame/byte_counts.hpp"
#include "lumcv/segment.h"
#include "segment/flood_call.hpp"
#include "segment/flood_fill.hpp"

namespace lumcv::flood {
namespace {

template <Neighbours neighbours, int channels, class T>
LumStatus fill(const Call<T>& call)
{
    const auto checks = floodChecks<channels>(call);
    if (checks.failed())
        return checks.status();
    const auto value = pixelAt<channels>(call.image, call.seed);
    if (std::equal(value.of, value.of + channels, call.newValue))
        return lumOk;
    const Region region =
        fillConnected<neighbours, channels>(call.image, call.roiSize, call.seed, value.of, call.newValue, call.buffer);
    return report<channels>(region, call.newValue, call.region);
}

}  // namespace
}  // namespace lumcv::flood

using namespace lumcv;
using flood::Call;
using flood::Neighbours;

LumStatus lumiFloodFillGetSize(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    return storeSize(6 * Bytes{roiSize.width} * roiSize.height + 32, pBufferSize);
}

LumStatus lumiFloodFillGetSize_Grad(LumiSize roiSize, Lum32s* pBufferSize)
{
    const auto checks = Checks{}.notNull(pBufferSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    const Bytes width = roiSize.width, height = roiSize.height;
    return storeSize((width + 2) * (height + 2) + 16 * width * height + 64, pBufferSize);
}

LumStatus lumiFloodFill_4Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum8u newVal,
                                     LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum16u newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_32s_C1IR(Lum32s* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum32s newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum32s>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum32f newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                     const Lum8u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                      const Lum16u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_4Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                      const Lum32f* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::four, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_8u_C1IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum8u newVal,
                                     LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_16u_C1IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum16u newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_32s_C1IR(Lum32s* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum32s newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum32s>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_32f_C1IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed, Lum32f newVal,
                                      LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 1>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, &newVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_8u_C3IR(Lum8u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                     const Lum8u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum8u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_16u_C3IR(Lum16u* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                      const Lum16u* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum16u>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}

LumStatus lumiFloodFill_8Con_32f_C3IR(Lum32f* pImage, Lum32s imageStep, LumiSize roiSize, LumiPoint seed,
                                      const Lum32f* pNewVal, LumiConnectedComp* pRegion, Lum8u* pBuffer)
{
    return flood::fill<Neighbours::eight, 3>(
        Call<Lum32f>{destination(pImage, imageStep), roiSize, seed, pNewVal, pRegion, pBuffer});
}
