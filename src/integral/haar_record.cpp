// The records of Haar stages: their size, Init, and turning upright classifiers into tilted ones.
#include "integral/haar_record.hpp"

#include <algorithm>
#include <climits>

#include "frame/checks.hpp"

namespace lumcv {
namespace {

/// Coordinates wrap around at 32 bits.
HaarCorner corner(int64_t x, int64_t y)
{
    return {static_cast<Lum32s>(x), static_cast<Lum32s>(y)};
}

template <class T>
void layUpright(HaarRectangle<T>& to, LumiRect rect)
{
    const int64_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    to.tl = corner(x, y);
    to.tr = corner(x + w, y);
    to.bl = corner(x, y + h);
    to.br = corner(x + w, y + h);
}

/// The rectangle turned by 45 degrees about its upper left corner.
template <class T>
void layTilted(HaarRectangle<T>& to, LumiRect rect)
{
    const int64_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    to.tl = corner(x, y);
    to.tr = corner(x + w, y + w);
    to.bl = corner(x - h, y + h);
    to.br = corner(x + w - h, y + w + h);
}

/// The rectangle turned to the other side.
template <class T>
void layTiltedBack(HaarRectangle<T>& to, LumiRect rect)
{
    const int64_t x = rect.x, y = rect.y, w = rect.width, h = rect.height;
    to.tl = corner(x + w - h, y - w);
    to.tr = corner(x + w, y + h - w);
    to.bl = corner(x - h, y);
    to.br = corner(x, y + h);
}

template <class T>
LumiRect uprightRect(const HaarRectangle<T>& from)
{
    const auto difference = [](Lum32s a, Lum32s b) {
        return static_cast<Lum32s>(static_cast<Lum32u>(a) - static_cast<Lum32u>(b));
    };
    return {from.tl.x, from.tl.y, difference(from.tr.x, from.tl.x), difference(from.bl.y, from.tl.y)};
}

bool allPositive(const Lum32s* pNum, Lum32s length)
{
    return std::all_of(pNum, pNum + length, [](Lum32s count) { return count >= 1; });
}

int64_t sum(const Lum32s* pNum, Lum32s length)
{
    int64_t total = 0;
    for (Lum32s i = 0; i < length; ++i)
        total += pNum[i];
    return total;
}

/// The caller's list of classifiers.
template <class T>
struct CallerStage
{
    const LumiRect* rects;
    const T* weights;
    const T* thresholds;
    const T* ifBelow;
    const T* otherwise;
    const Lum32s* rectangles;
    Lum32s length;
};

template <class T>
LumStatus checkStage(const LumiHaarStageRecord* pState, const CallerStage<T>& stage, bool isTilted)
{
    auto checks = Checks{}.notNull(pState, stage.rects, stage.weights, stage.thresholds, stage.ifBelow, stage.otherwise,
                                   stage.rectangles);
    checks.require(stage.length >= 1, lumErrSize);
    if (checks.failed())
        return checks.status();
    checks.require(allPositive(stage.rectangles, stage.length), lumErrSize);
    if (checks.failed())
        return checks.status();
    const LumiRect* const end = stage.rects + sum(stage.rectangles, stage.length);
    const bool allValid = std::all_of(stage.rects, end, [isTilted](LumiRect rect) {
        return rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1 &&
               !(isTilted && rect.height > int64_t{rect.x} + 1);
    });
    return checks.require(allValid, lumErrArgument).status();
}

template <class T>
LumStatus init(LumiHaarStageRecord* pState, const CallerStage<T>& stage, bool isTilted)
{
    const LumStatus status = checkStage(pState, stage, isTilted);
    if (status != lumOk)
        return status;

    LumiHaarStageRecord* const record = alignedIn<LumiHaarStageRecord>(pState);
    auto* classifier = reinterpret_cast<HaarClassifier<T>*>(record + 1);
    auto* rectangle = reinterpret_cast<HaarRectangle<T>*>(classifier + stage.length);
    record->classifierCount = stage.length;
    record->hasTilted = isTilted;
    record->pClassifiers = classifier;
    record->pRectangles = rectangle;
    const auto lay = [&](auto belongs) {
        int64_t first = 0;
        for (Lum32s i = 0; i < stage.length; first += stage.rectangles[i], ++i) {
            if (!belongs(stage.rectangles[i]))
                continue;
            *classifier++ = {stage.rectangles[i], stage.thresholds[i], stage.ifBelow[i], stage.otherwise[i],
                             static_cast<Lum32u>(i) << 8 | static_cast<Lum32u>(isTilted)};
            for (int64_t k = first; k < first + stage.rectangles[i]; ++k, ++rectangle) {
                if (isTilted)
                    layTilted(*rectangle, stage.rects[k]);
                else
                    layUpright(*rectangle, stage.rects[k]);
                rectangle->weight = stage.weights[k];
            }
        }
    };
    lay([](Lum32s count) { return count == 2; });
    lay([](Lum32s count) { return count == 3; });
    lay([](Lum32s count) { return count != 2 && count != 3; });
    record->rectangleCount = static_cast<Lum32s>(rectangle - static_cast<HaarRectangle<T>*>(record->pRectangles));
    record->pWorkspace = reinterpret_cast<HaarOffsets*>(rectangle);
    return lumOk;
}

template <class T>
LumStatus windowSize(const LumiHaarStageRecord* pState, LumiSize* pSize)
{
    const auto checks = Checks{}.notNull(pState, pSize);
    if (checks.failed())
        return checks.status();
    const HaarStage<T> stage(*alignedIn<LumiHaarStageRecord>(pState));
    LumiSize size = {0, 0};
    for (Lum32s i = 0; i < stage.rectangleCount; ++i) {
        size.width = std::max(size.width, stage.rectangles[i].tr.x);
        size.height = std::max(size.height, stage.rectangles[i].br.y);
    }
    *pSize = size;
    return lumOk;
}

template <class T>
LumStatus tilt(const Lum8u* pMask, Lum32s flag, LumiHaarStageRecord* pState)
{
    auto checks = Checks{}.notNull(pMask, pState);
    if (checks.failed())
        return checks.status();
    LumiHaarStageRecord* const record = alignedIn<LumiHaarStageRecord>(pState);
    if (checks.require(!record->hasTilted, lumErrArgument).failed())
        return checks.status();
    const HaarStage<T> stage(*record);
    HaarRectangle<T>* rectangle = stage.rectangles;
    for (Lum32s i = 0; i < stage.classifierCount; ++i) {
        HaarClassifier<T>& classifier = stage.classifiers[i];
        HaarRectangle<T>* const end = rectangle + classifier.rectangles;
        if (!pMask[classifier.indexAndTilt >> 8]) {
            rectangle = end;
            continue;
        }
        classifier.indexAndTilt = 1;
        record->hasTilted = 1;
        for (; rectangle < end; ++rectangle) {
            const LumiRect rect = uprightRect(*rectangle);
            if (flag)
                layTilted(*rectangle, rect);
            else
                layTiltedBack(*rectangle, rect);
        }
    }
    return lumOk;
}

}  // namespace
}  // namespace lumcv

using namespace lumcv;

LumStatus lumiHaarClassifierGetSize(LumDataType dataType, LumiSize roiSize, const Lum32s* pNum, Lum32s length,
                                    Lum32s* pSize)
{
    auto checks = Checks{}.notNull(pNum, pSize).require(length >= 1, lumErrSize).size(roiSize);
    if (checks.failed())
        return checks.status();
    checks.require(allPositive(pNum, length), lumErrSize)
        .require(dataType == lumType32s || dataType == lumType32f, lumErrDataType);
    if (checks.failed())
        return checks.status();
    const int64_t total = sum(pNum, length);
    const int64_t base = int64_t{length} * 32 + total * 36 + 64;
    const int64_t rowBuffers = dataType == lumType32f ? ((int64_t{roiSize.width} * 8 + 30) & ~int64_t{31}) + 16 : 0;
    const int64_t bytes = base + total * 16 + rowBuffers + 64;
    if (checks.require(bytes <= INT_MAX, lumErrSizeTooLarge).failed())
        return checks.status();
    *pSize = static_cast<Lum32s>(bytes);
    return lumOk;
}

LumStatus lumiHaarClassifierInit_32f(LumiHaarStageRecord* pState, const LumiRect* pFeature, const Lum32f* pWeight,
                                     const Lum32f* pThreshold, const Lum32f* pVal1, const Lum32f* pVal2,
                                     const Lum32s* pNum, Lum32s length)
{
    return init<Lum32f>(pState, {pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length}, false);
}

LumStatus lumiHaarClassifierInit_32s(LumiHaarStageRecord* pState, const LumiRect* pFeature, const Lum32s* pWeight,
                                     const Lum32s* pThreshold, const Lum32s* pVal1, const Lum32s* pVal2,
                                     const Lum32s* pNum, Lum32s length)
{
    return init<Lum32s>(pState, {pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length}, false);
}

LumStatus lumiTiltedHaarClassifierInit_32f(LumiHaarStageRecord* pState, const LumiRect* pFeature, const Lum32f* pWeight,
                                           const Lum32f* pThreshold, const Lum32f* pVal1, const Lum32f* pVal2,
                                           const Lum32s* pNum, Lum32s length)
{
    return init<Lum32f>(pState, {pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length}, true);
}

LumStatus lumiTiltedHaarClassifierInit_32s(LumiHaarStageRecord* pState, const LumiRect* pFeature, const Lum32s* pWeight,
                                           const Lum32s* pThreshold, const Lum32s* pVal1, const Lum32s* pVal2,
                                           const Lum32s* pNum, Lum32s length)
{
    return init<Lum32s>(pState, {pFeature, pWeight, pThreshold, pVal1, pVal2, pNum, length}, true);
}

LumStatus lumiGetHaarClassifierSize_32f(const LumiHaarStageRecord* pState, LumiSize* pSize)
{
    return windowSize<Lum32f>(pState, pSize);
}

LumStatus lumiGetHaarClassifierSize_32s(const LumiHaarStageRecord* pState, LumiSize* pSize)
{
    return windowSize<Lum32s>(pState, pSize);
}

LumStatus lumiTiltHaarFeatures_32f(const Lum8u* pMask, Lum32s flag, LumiHaarStageRecord* pState)
{
    return tilt<Lum32f>(pMask, flag, pState);
}

LumStatus lumiTiltHaarFeatures_32s(const Lum8u* pMask, Lum32s flag, LumiHaarStageRecord* pState)
{
    return tilt<Lum32s>(pMask, flag, pState);
}
