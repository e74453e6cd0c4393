// The list of FAST corners: one for each byte of the map that is not zero.
#include "feature/fast_record.hpp"
#include "simd/simd.hpp"

namespace lumcv::fast {
namespace {

struct ListCall
{
    Plane<const Lum8u> corners, scores;
    LumCornerFastN* list;
    LumiSize roiSize;
    Lum32s room;
    Lum32s* count;
    const LumFastNSpec* spec;
};

template <bool withOrientation, bool withScores>
[[gnu::flatten]] void list(const ListCall& call)
{
    const Lum32f degreesPerBin = withOrientation ? 360.0f / static_cast<Lum32f>(recordIn(call.spec).bins) : 0.0f;
    Lum32s count = 0;
    for (Lum32s y = 0; y < call.roiSize.height; ++y) {
        const Lum8u* const row = call.corners.row(y);
        simd::eachOnce<simd::registerLanes<Lum8u>>(0, call.roiSize.width, [&, row](int64_t block, auto lanes) {
            const auto bytes = simd::load<lanes>(row + block);
            if (!simd::anyNonZero(bytes))
                return;
            for (uint64_t found = simd::nonZeroBits(bytes); found; found &= found - 1, ++count) {
                if (count >= call.room)
                    continue;
                const int64_t x = block + __builtin_ctzll(found);
                const int bin = row[x] & 63;
                call.list[count] = {static_cast<Lum32s>(x),
                                    y,
                                    row[x] >> 7,
                                    withOrientation ? bin : -1,
                                    withOrientation ? static_cast<Lum32f>(bin) * degreesPerBin : -1.0f,
                                    withScores ? static_cast<Lum32f>(call.scores.row(y)[x]) : -1.0f};
            }
        });
    }
    *call.count = count;
}

LumStatus checkedList(const ListCall& call)
{
    Checks checks;
    checks.notNull(call.corners.pixels, call.list, call.count, call.spec)
        .size(call.roiSize)
        .require(call.room >= 0, lumErrSize);
    if (!checks.failed())
        checks.require(holdsRecord(call.spec), lumErrContext);
    if (checks.failed())
        return checks.status();
    const Record& record = recordIn(call.spec);
    const bool withScores = record.mode & lumFastNScore;
    checks.require(record.dataType == lumType8u, lumErrDataType)
        .require(record.numChannels == 1, lumErrChannels)
        .step(call.corners, call.roiSize.width)
        .require(!withScores || call.scores.step >= call.roiSize.width, lumErrStep)
        .require(isMode(record.mode), lumErrArgument)
        .require(areBins(record.bins, record.mode), lumErrOutOfRange)
        .require(!withScores || call.scores.pixels, lumErrNullPointer);
    if (checks.failed())
        return checks.status();
    if (record.mode & lumFastNOrientation)
        withScores ? list<true, true>(call) : list<true, false>(call);
    else
        withScores ? list<false, true>(call) : list<false, false>(call);
    return lumOk;
}

}  // namespace
}  // namespace lumcv::fast

using namespace lumcv;

LumStatus lumiFastN2DToVec_8u(const Lum8u* pSrcCorner, Lum32s srcCornerStep, const Lum8u* pSrcScore,
                              Lum32s srcScoreStep, LumCornerFastN* pDst, LumiSize roiSize, Lum32s maxLen,
                              Lum32s* pNumCorners, const LumFastNSpec* pSpec)
{
    return fast::checkedList({source(pSrcCorner, srcCornerStep), source(pSrcScore, srcScoreStep), pDst, roiSize, maxLen,
                              pNumCorners, pSpec});
}
