// A stage's record: what Init lays in the caller's block and apply reads.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"
#include "lumcv/integral.h"

namespace lumcv {

/// A place in a table, from the window's first entry.
struct HaarCorner
{
    Lum32s x, y;
};

template <class T>
struct HaarRectangle
{
    HaarCorner br, bl, tr, tl;
    T weight;
};

template <class T>
struct HaarClassifier
{
    Lum32s rectangles;
    T threshold;
    T ifBelow, otherwise;
    Lum32u indexAndTilt;  ///< position in the caller's list, shifted to the left by 8; bit 0: tilted

    bool isTilted() const
    {
        return indexAndTilt & 1;
    }
};

/// A rectangle's corners in a table of a given stride, in entries.
struct HaarOffsets
{
    Lum32s br, bl, tr, tl;
};

}  // namespace lumcv

/// It lies at the first aligned place of the block; its arrays follow it. Classifiers of two rectangles come first,
/// then those of three, then all others; rectangles stand in the order of their classifiers. The queried size, which
/// counts 64 bytes for the record, 32 for a classifier and 36 and 16 for a rectangle, holds that and the alignment.
struct LumiHaarStageRecord
{
    Lum32s classifierCount;
    Lum32s rectangleCount;
    Lum32s hasTilted;
    void* pClassifiers;              ///< HaarClassifier<T>
    void* pRectangles;               ///< HaarRectangle<T>
    lumcv::HaarOffsets* pWorkspace;  ///< one for each rectangle; written by each plain apply
};

namespace lumcv {

/// A record's arrays. T is Lum32f or Lum32s, as told to Init.
template <class T>
struct HaarStage
{
    explicit HaarStage(const LumiHaarStageRecord& record)
        : classifiers(static_cast<HaarClassifier<T>*>(record.pClassifiers)),
          rectangles(static_cast<HaarRectangle<T>*>(record.pRectangles)),
          classifierCount(record.classifierCount),
          rectangleCount(record.rectangleCount)
    {
    }

    HaarClassifier<T>* classifiers;
    HaarRectangle<T>* rectangles;
    Lum32s classifierCount, rectangleCount;
};

}  // namespace lumcv
