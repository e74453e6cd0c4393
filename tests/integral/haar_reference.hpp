// A stage of Haar classifiers one window at a time, as the documentation writes it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "integral/table.hpp"
#include "lumcv/types.h"
#include "support/image.hpp"

namespace lumcv::test::haar {

/// A weak classifier as the caller tells it. V is the type of weights, thresholds and votes.
template <class V>
struct Classifier
{
    std::vector<LumiRect> rects;
    std::vector<V> weights;
    V threshold, val1, val2;
};

template <class V>
using Stage = std::vector<Classifier<V>>;

/// How the corners of a rectangle are told.
enum class Turn
{
    Upright,
    Tilted,             ///< by a tilted Init, or with a flag that is not zero
    TiltedWithZeroFlag  ///< by lumiTiltHaarFeatures with the flag zero
};

struct Corner
{
    int x, y;
};

template <class V>
struct StoredRect
{
    Corner tl, tr, bl, br;
    V weight;
};

template <class V>
StoredRect<V> storedRect(LumiRect r, V weight, Turn turn)
{
    const int x = r.x, y = r.y, w = r.width, h = r.height;
    switch (turn) {
        case Turn::Tilted:
            return {{x, y}, {x + w, y + w}, {x - h, y + h}, {x + w - h, y + w + h}, weight};
        case Turn::TiltedWithZeroFlag:
            return {{x + w - h, y - w}, {x + w, y + h - w}, {x - h, y}, {x, y + h}, weight};
        default:
            return {{x, y}, {x + w, y}, {x, y + h}, {x + w, y + h}, weight};
    }
}

template <class V>
struct StoredClassifier
{
    std::vector<StoredRect<V>> rects;
    V threshold, val1, val2;
    bool isTilted;
};

/// The classifiers in the order of a record: those of two rectangles, those of three, all others. There is a turn for
/// each classifier of the caller's list.
template <class V>
std::vector<StoredClassifier<V>> stored(const Stage<V>& stage, const std::vector<Turn>& turns)
{
    std::vector<StoredClassifier<V>> result;
    const auto append = [&](auto accepts) {
        for (std::size_t i = 0; i < stage.size(); ++i) {
            const Classifier<V>& c = stage[i];
            if (accepts(c.rects.size())) {
                result.push_back({{}, c.threshold, c.val1, c.val2, turns[i] != Turn::Upright});
                for (std::size_t k = 0; k < c.rects.size(); ++k) {
                    result.back().rects.push_back(storedRect(c.rects[k], c.weights[k], turns[i]));
                }
            }
        }
    };
    append([](std::size_t rects) { return rects == 2; });
    append([](std::size_t rects) { return rects == 3; });
    append([](std::size_t rects) { return rects != 2 && rects != 3; });
    return result;
}

/// Where a window is treated by the rules of a group. All windows of the scalar forms are in the tail.
enum class Place
{
    Group,
    Tail
};

/// The windows of a group of lumiApplyHaarClassifier_32f_C1R, by the caller's estimate.
inline int groupLength(Lum32s positive, LumiSize roiSize)
{
    const int windows = roiSize.width * roiSize.height;
    if (positive >= windows / 4) {
        return 16;
    }
    if (positive >= windows / 8) {
        return 4;
    }
    return positive >= windows / 16 ? 8 : 16;
}

/// What an apply call works on. T is the type of the tables.
template <class T, class V>
struct Job
{
    const std::vector<StoredClassifier<V>>& classifiers;
    bool isMixed;
    Table<T> upright;
    Table<T> tilted;  ///< of mixed forms; its pointer is that of the call
    V threshold;
    int scaleFactor;
    Lum32s positive;
};

enum class SumOrder
{
    OneRun,      ///< ((br - bl) - tr) + tl
    MiddleFirst  ///< (br - (bl + tr)) + tl
};

template <class T>
struct Entries
{
    T br, bl, tr, tl;
};

template <class T, class V>
Entries<T> entriesOf(const Job<T, V>& job, const StoredClassifier<V>& classifier, const StoredRect<V>& rect, int i,
                     int j)
{
    const bool fromTilted = job.isMixed && classifier.isTilted;
    const Table<T> table = fromTilted ? job.tilted : job.upright;
    const int ahead = fromTilted ? 1 : 0;
    const auto entry = [&](Corner corner) { return table.at(j + ahead + corner.y, i + ahead + corner.x); };
    return {entry(rect.br), entry(rect.bl), entry(rect.tr), entry(rect.tl)};
}

inline Lum32f rectangleSum(const Entries<Lum32f>& e, SumOrder order)
{
    return order == SumOrder::OneRun ? ((e.br - e.bl) - e.tr) + e.tl : (e.br - (e.bl + e.tr)) + e.tl;
}

inline Lum32f rectangleSum(const Entries<Lum32s>& e, SumOrder)
{
    return static_cast<Lum32f>(static_cast<Lum32s>(static_cast<Lum32u>(e.br) - static_cast<Lum32u>(e.bl) -
                                                   static_cast<Lum32u>(e.tr) + static_cast<Lum32u>(e.tl)));
}

inline std::uint64_t bitsOf(Lum64s value)
{
    return static_cast<std::uint64_t>(value);
}

/// The feature of a float classifier.
template <class T>
Lum32f featureOf(const Job<T, Lum32f>& job, const StoredClassifier<Lum32f>& classifier, int i, int j, SumOrder order)
{
    Lum32f feature = 0;
    for (const StoredRect<Lum32f>& rect : classifier.rects) {
        feature += rect.weight * rectangleSum(entriesOf(job, classifier, rect, i, j), order);
    }
    return feature;
}

/// The feature of an integer classifier, modulo 2^64.
inline Lum64s featureOf(const Job<Lum32s, Lum32s>& job, const StoredClassifier<Lum32s>& classifier, int i, int j,
                        SumOrder)
{
    std::uint64_t feature = 0;
    for (const StoredRect<Lum32s>& rect : classifier.rects) {
        const Entries<Lum32s> e = entriesOf(job, classifier, rect, i, j);
        const auto difference =
            static_cast<Lum32s>(static_cast<Lum32u>(e.br) - (static_cast<Lum32u>(e.bl) + static_cast<Lum32u>(e.tr)));
        feature += bitsOf(rect.weight) * (bitsOf(difference) + bitsOf(e.tl));
    }
    return static_cast<Lum64s>(feature);
}

template <class T>
bool isBelow(const Job<T, Lum32f>&, Lum32f feature, Lum32f threshold, Lum32f norm)
{
    return threshold * norm > feature;
}

inline bool isBelow(const Job<Lum32s, Lum32s>& job, Lum64s feature, Lum32s threshold, Lum32s norm)
{
    const std::uint64_t places = (0 - bitsOf(job.scaleFactor)) % 64;
    return static_cast<Lum64s>(bitsOf(feature) << places) < Lum64s{threshold} * norm;
}

inline Lum32f votesTogether(Lum32f sum, Lum32f vote)
{
    return sum + vote;
}

inline Lum32s votesTogether(Lum32s sum, Lum32s vote)
{
    return static_cast<Lum32s>(static_cast<Lum32u>(sum) + static_cast<Lum32u>(vote));
}

/// The sum of a window's votes.
template <class T, class V>
V stageSum(const Job<T, V>& job, V norm, int i, int j, SumOrder order)
{
    V sum = 0;
    for (const StoredClassifier<V>& c : job.classifiers) {
        sum = votesTogether(sum, isBelow(job, featureOf(job, c, i, j, order), c.threshold, norm) ? c.val1 : c.val2);
    }
    return sum;
}

template <class T, class V>
Place placeOf(const Job<T, V>& job, LumiSize roiSize, int i)
{
    const bool hasGroups = std::is_same_v<T, Lum32f> && !job.isMixed;
    const int length = groupLength(job.positive, roiSize);
    return hasGroups && i < roiSize.width / length * length ? Place::Group : Place::Tail;
}

template <class T, class V>
SumOrder orderOf(const Job<T, V>& job, Place place)
{
    return place == Place::Group || job.isMixed ? SumOrder::OneRun : SumOrder::MiddleFirst;
}

/// Clears the mask where the stage rejects, and returns how many windows it keeps.
template <class T, class V>
Lum32s apply(const Job<T, V>& job, const Image<V>& norms, Image<Lum8u>& mask)
{
    const LumiSize roiSize = {mask.width(), mask.height()};
    Lum32s kept = 0;
    for (int j = 0; j < roiSize.height; ++j) {
        for (int i = 0; i < roiSize.width; ++i) {
            Lum8u& byte = mask.at(i, j);
            if (byte == 0) {
                continue;
            }
            const Place place = placeOf(job, roiSize, i);
            const V sum = stageSum(job, norms.at(i, j), i, j, orderOf(job, place));
            if (place == Place::Group) {
                byte = job.threshold < sum ? Lum8u{255} : Lum8u{0};
            } else if (job.threshold > sum) {
                byte = 0;
            }
            kept += byte != 0;
        }
    }
    return kept;
}

}  // namespace lumcv::test::haar
