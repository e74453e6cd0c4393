#include "tracker.hpp"

#include <algorithm>
#include <cmath>
#include <string>

namespace track {
namespace {

using gallery::Image;
using gallery::Picture;

constexpr Lum32f rate = 2.0f;
constexpr Lum32s mostLevels = 3;  // above the frame itself
constexpr Lum32s kernelSize = 5;
constexpr Lum16s kernel[kernelSize] = {1, 4, 6, 4, 1};

void check(LumStatus status, const char* function)
{
    if (status < lumOk) {
        throw gallery::Failure(std::string(function) + " returned " + std::to_string(status));
    }
}

std::size_t bytes(Lum32s count)
{
    return static_cast<std::size_t>(count);
}

}  // namespace

Pyramid::Pyramid(LumiSize size)
{
    Lum32s recordBytes = 0;
    Lum32s bufferBytes = 0;
    check(lumiPyramidGetSize(&recordBytes, &bufferBytes, mostLevels, size, rate), "lumiPyramidGetSize");
    recordBlock_.resize(bytes(recordBytes));
    std::vector<Lum8u> buffer(bytes(bufferBytes));
    check(lumiPyramidInit(&record_, mostLevels, size, rate, recordBlock_.data(), buffer.data()), "lumiPyramidInit");

    // one record makes every level from the one before; small frames leave the buffer's size alone
    Lum32s layerBytes = 0;
    Lum32s layerBufferBytes = 1;
    check(lumiPyramidLayerDownGetSize_8u_C1R(size, rate, kernelSize, &layerBytes, &layerBufferBytes),
          "lumiPyramidLayerDownGetSize_8u_C1R");
    layerBlock_.resize(bytes(layerBytes));
    buffer.resize(bytes(layerBufferBytes));
    check(
        lumiPyramidLayerDownInit_8u_C1R(&layer_, size, rate, kernel, kernelSize, 2, layerBlock_.data(), buffer.data()),
        "lumiPyramidLayerDownInit_8u_C1R");

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
        check(lumiPyramidLayerDown_8u_C1R(larger.pixels(), larger.step(), larger.size(), smaller.pixels(),
                                          smaller.step(), smaller.size(), layer_),
              "lumiPyramidLayerDown_8u_C1R");
    }
}

std::vector<Point> findCorners(const Picture& gray, int most, int apart)
{
    constexpr Lum32f leastPart = 0.01f;  // of the strongest corner
    Image<Lum32f> strength(gray.width(), gray.height(), 1);
    Lum32s measureBytes = 0;
    Lum32s peakBytes = 0;
    check(lumiMinEigenValGetBufferSize_8u32f_C1R(gray.size(), 3, 5, &measureBytes),
          "lumiMinEigenValGetBufferSize_8u32f_C1R");
    check(lumiFindPeaks3x3GetBufferSize_32f_C1R(gray.width(), &peakBytes), "lumiFindPeaks3x3GetBufferSize_32f_C1R");
    std::vector<Lum8u> buffer(bytes(std::max(measureBytes, peakBytes)));
    check(lumiMinEigenVal_8u32f_C1R(gray.pixels(), gray.step(), strength.pixels(), strength.step(), strength.size(),
                                    lumKernSobel, 3, 5, buffer.data()),
          "lumiMinEigenVal_8u32f_C1R");
    const Lum32f strongest = *std::max_element(strength.elements().begin(), strength.elements().end());
    if (!(strongest > 0.0f)) {
        return {};
    }
    std::vector<LumiPoint> peaks(strength.elements().size());
    Lum32s count = 0;
    check(lumiFindPeaks3x3_32f_C1R(strength.pixels(), strength.step(), strength.size(), leastPart * strongest,
                                   peaks.data(), static_cast<Lum32s>(peaks.size()), &count, lumPeakNormInf, 1,
                                   buffer.data()),
          "lumiFindPeaks3x3_32f_C1R");
    peaks.resize(bytes(count));

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
    Lum32s stateBytes = 0;
    check(lumiOpticalFlowPyrLKGetSize(options.window, firstFrame.size(), lumType8u, 0, &stateBytes),
          "lumiOpticalFlowPyrLKGetSize");
    stateBlock_.resize(bytes(stateBytes));
    check(lumiOpticalFlowPyrLKInit_8u_C1R(&state_, firstFrame.size(), options.window, 0, stateBlock_.data()),
          "lumiOpticalFlowPyrLKInit_8u_C1R");
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
    check(lumiOpticalFlowPyrLK_8u_C1R(before.record(), next.record(), &from.front().x, &to.front().x, status.data(),
                                      error.data(), static_cast<Lum32s>(from.size()), options_.window,
                                      before.record()->level, mostSteps, lastStep, state_),
          "lumiOpticalFlowPyrLK_8u_C1R");
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
