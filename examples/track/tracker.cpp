#include "tracker.hpp"

#include <algorithm>
#include <cmath>

namespace track {
namespace {

using gallery::Image;
using gallery::Picture;
using lumcv::Block;
using lumcv::call;

constexpr Lum32f rate = 2.0f;
constexpr Lum32s mostLevels = 3;  // above the frame itself
constexpr Lum32s kernelSize = 5;
constexpr Lum16s kernel[kernelSize] = {1, 4, 6, 4, 1};

}  // namespace

Pyramid::Pyramid(LumiSize size)
{
    Block scratch;
    call<lumiPyramidGetSize>(record_, scratch, mostLevels, size, rate).throwIfError();
    call<lumiPyramidInit>(record_, mostLevels, size, rate, record_, scratch).throwIfError();

    // one record makes every level from the one before
    call<lumiPyramidLayerDownGetSize_8u_C1R>(size, rate, kernelSize, layer_, scratch).throwIfError();
    call<lumiPyramidLayerDownInit_8u_C1R>(layer_, size, rate, kernel, kernelSize, 2, layer_, scratch).throwIfError();

    for (int l = 0; l <= record_->level; ++l) {
        images_.emplace_back(record_->pLayerSizes[l].width, record_->pLayerSizes[l].height, 1);
    }
    for (int l = 0; l <= record_->level; ++l) {
        Picture& image = images_[static_cast<std::size_t>(l)];
        record_->ppLayers[l] = image.pixels();
        record_->pLayerSteps[l] = image.step();
    }
}

void Pyramid::take(const Picture& frame)
{
    images_.front().elements() = frame.elements();
    for (std::size_t l = 1; l < images_.size(); ++l) {
        const Picture& larger = images_[l - 1];
        Picture& smaller = images_[l];
        call<lumiPyramidLayerDown_8u_C1R>(larger.view(), larger.size(), smaller.view(), smaller.size(), layer_)
            .throwIfError();
    }
}

std::vector<Point> findCorners(const Picture& gray, int most, int apart)
{
    constexpr Lum32f leastPart = 0.01f;  // of the strongest corner
    Image<Lum32f> strength(gray.width(), gray.height(), 1);
    Block scratch;
    call<lumiMinEigenValGetBufferSize_8u32f_C1R>(gray.size(), 3, 5, scratch).throwIfError();
    call<lumiFindPeaks3x3GetBufferSize_32f_C1R>(gray.width(), scratch).throwIfError();
    call<lumiMinEigenVal_8u32f_C1R>(gray.view(), strength.view(), strength.size(), lumKernSobel, 3, 5, scratch)
        .throwIfError();
    const Lum32f strongest = *std::max_element(strength.elements().begin(), strength.elements().end());
    if (!(strongest > 0.0f)) {
        return {};
    }
    std::vector<LumiPoint> peaks(strength.elements().size());
    Lum32s count = 0;
    call<lumiFindPeaks3x3_32f_C1R>(strength.view(), strength.size(), leastPart * strongest, peaks,
                                   static_cast<Lum32s>(peaks.size()), &count, lumPeakNormInf, 1, scratch)
        .throwIfError();
    peaks.resize(static_cast<std::size_t>(count));

    // the strongest first, and none too close to a stronger one
    std::stable_sort(peaks.begin(), peaks.end(), [&](const LumiPoint& a, const LumiPoint& b) {
        return strength.at(a.x, a.y) > strength.at(b.x, b.y);
    });
    std::vector<Point> corners;
    for (const LumiPoint& peak : peaks) {
        const Point p{static_cast<Lum32f>(peak.x), static_cast<Lum32f>(peak.y)};
        const bool isFree = std::none_of(corners.begin(), corners.end(), [&](const Point& other) {
            return std::hypot(p.x - other.x, p.y - other.y) < static_cast<Lum32f>(apart);
        });
        if (isFree) {
            corners.push_back(p);
        }
        if (static_cast<int>(corners.size()) == most) {
            break;
        }
    }
    return corners;
}

Tracker::Tracker(const Picture& firstFrame, const TrackOptions& options)
    : options_(options), pyramids_{Pyramid(firstFrame.size()), Pyramid(firstFrame.size())}
{
    for (const Point& corner : findCorners(firstFrame, options.mostCorners, options.apart)) {
        tracks_.push_back({{corner}});
    }
    pyramids_[0].take(firstFrame);
    call<lumiOpticalFlowPyrLKGetSize>(options.window, firstFrame.size(), lumType8u, 0, state_).throwIfError();
    call<lumiOpticalFlowPyrLKInit_8u_C1R>(state_, firstFrame.size(), options.window, 0, state_).throwIfError();
}

void Tracker::follow(const Picture& frame)
{
    constexpr Lum32s mostSteps = 20;
    constexpr Lum32f lastStep = 0.01f;
    Pyramid& before = pyramids_[static_cast<std::size_t>(last_)];
    last_ = 1 - last_;
    Pyramid& next = pyramids_[static_cast<std::size_t>(last_)];
    next.take(frame);

    std::vector<Track*> followed;
    std::vector<Point> from;
    for (Track& track : tracks_) {
        if (!track.isLost) {
            followed.push_back(&track);
            from.push_back(track.path.back());
        }
    }
    if (from.empty()) {
        return;
    }
    std::vector<Point> to(from.size());
    std::vector<Lum8s> status(from.size());
    std::vector<Lum32f> error(from.size());
    call<lumiOpticalFlowPyrLK_8u_C1R>(before.record(), next.record(), &from.front().x, &to.front().x, status, error,
                                      static_cast<Lum32s>(from.size()), options_.window, before.record()->level,
                                      mostSteps, lastStep, state_)
        .throwIfError();
    for (std::size_t i = 0; i < followed.size(); ++i) {
        const bool isInside = to[i].x >= 0.0f && to[i].x <= static_cast<Lum32f>(frame.width() - 1) && to[i].y >= 0.0f &&
                              to[i].y <= static_cast<Lum32f>(frame.height() - 1);
        if (status[i] == 0 && isInside && error[i] <= options_.worstError) {
            followed[i]->path.push_back(to[i]);
        } else {
            followed[i]->isLost = true;
        }
    }
}

}  // namespace track
