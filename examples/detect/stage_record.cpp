#include "stage_record.hpp"

#include <cmath>

namespace detect {
namespace {

using lumcv::call;

// Where a coordinate of the cascade's window lies in a larger one.
int grown(int coordinate, int from, int to)
{
    return static_cast<int>(std::lround(static_cast<double>(coordinate) * to / from));
}

}  // namespace

StageRecord::StageRecord(const Stage& stage, const Cascade& cascade, LumiSize window, LumiSize places)
    : threshold_(stage.threshold)
{
    std::vector<LumiRect> rectangles;
    std::vector<Lum32f> weights, thresholds, votesBelow, votesOtherwise;
    std::vector<Lum32s> counts;
    for (const WeakClassifier& weak : stage.classifiers) {
        for (const WeightedRectangle& r : weak.rectangles) {
            const int left = grown(r.x, cascade.windowWidth, window.width);
            const int top = grown(r.y, cascade.windowHeight, window.height);
            const int width = grown(r.x + r.width, cascade.windowWidth, window.width) - left;
            const int height = grown(r.y + r.height, cascade.windowHeight, window.height) - top;
            rectangles.push_back({left, top, width, height});
            // Edges are whole pixels, so not all rectangles grow alike. The weight makes up for that: whatever size it
            // has got, the rectangle counts as the part of the window that it is in the cascade.
            const double part = static_cast<double>(r.width * r.height) / (cascade.windowWidth * cascade.windowHeight);
            weights.push_back(static_cast<Lum32f>(r.weight * part / (width * height)));
        }
        thresholds.push_back(weak.threshold);
        votesBelow.push_back(weak.voteBelow);
        votesOtherwise.push_back(weak.voteOtherwise);
        counts.push_back(static_cast<Lum32s>(weak.rectangles.size()));
    }
    const auto length = static_cast<Lum32s>(counts.size());
    call<lumiHaarClassifierGetSize>(lumType32f, places, counts, length, record_).throwIfError();
    call<lumiHaarClassifierInit_32f>(record_, rectangles, weights, thresholds, votesBelow, votesOtherwise, counts,
                                     length)
        .throwIfError();
}

}  // namespace detect
