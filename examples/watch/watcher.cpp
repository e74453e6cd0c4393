#include "watcher.hpp"

#include <algorithm>
#include <cmath>

namespace watch {

using gallery::check;
using gallery::toByte;

LumFGMMModel usualModel()
{
    LumFGMMModel model{};
    model.numFrames = 100;
    model.maxNGauss = 5;
    model.varInit = 20.0f;
    model.varMin = 8.0f;
    model.varMax = 100.0f;
    model.varWBRatio = 16.0f;
    model.bckgRatio = 0.9f;
    model.varWGen = 9.0f;
    model.CT = 0.05f;
    model.shadowValue = shadowClass;
    model.shadowFlag = 1;
    model.shadowRatio = 0.5f;
    return model;
}

Picture silhouetteOf(const Picture& classes)
{
    return gallery::mapped<Lum8u>(classes,
                                  [](Lum8u level) { return level == foregroundClass ? Lum8u{255} : Lum8u{0}; });
}

Picture historyPicture(const Picture& frame, const Image<Lum32f>& history, float now, float duration)
{
    Picture result(frame.width(), frame.height(), 3);
    for (int y = 0; y < frame.height(); ++y) {
        for (int x = 0; x < frame.width(); ++x) {
            const float stamp = history.at(x, y);
            const int sum = frame.at(x, y, 0) + frame.at(x, y, 1) + frame.at(x, y, 2);
            const float dim = static_cast<float>(sum) * 0.12f;
            const float young = stamp > 0.0f ? 1.0f - (now - stamp) / (duration + 1.0f) : 0.0f;
            const float colour[3] = {80.0f + 175.0f * std::min(1.6f * young, 1.0f), 270.0f * young * young,
                                     stamp == now ? 255.0f : 150.0f * (1.0f - young)};
            for (int c = 0; c < 3; ++c) {
                result.at(x, y, c) = toByte(stamp > 0.0f ? colour[c] : dim);
            }
        }
    }
    return result;
}

Watcher::Watcher(LumiSize size)
    : size_(size), classes_(size.width, size.height, 1), history_(size.width, size.height, 1)
{
    const LumFGMMModel model = usualModel();
    const auto maxNGauss = static_cast<Lum32s>(model.maxNGauss);
    Lum32s stateBytes = 0;
    check(lumiFGMMGetBufferSize_8u_C3R(size_, maxNGauss, &stateBytes), "lumiFGMMGetBufferSize_8u_C3R");
    // the size is an unsigned number
    block_.resize(static_cast<Lum32u>(stateBytes));
    state_ = reinterpret_cast<LumFGMMState*>(block_.data());
    check(lumiFGMMInit_8u_C3R(size_, maxNGauss, &model, state_), "lumiFGMMInit_8u_C3R");
}

void Watcher::take(const Picture& frame)
{
    constexpr Lum64f automaticRate = -1.0;
    check(lumiFGMMForeground_8u_C3R(frame.pixels(), frame.step(), classes_.pixels(), classes_.step(), size_, state_,
                                    nullptr, automaticRate),
          "lumiFGMMForeground_8u_C3R");
    ++frames_;
    if (frames_ == 1) {
        return;  // nothing is background yet
    }
    const Picture silhouette = silhouetteOf(classes_);
    check(lumiUpdateMotionHistory_8u32f_C1IR(silhouette.pixels(), silhouette.step(), history_.pixels(), history_.step(),
                                             size_, now(), duration),
          "lumiUpdateMotionHistory_8u32f_C1IR");
}

Picture Watcher::background() const
{
    Picture result(size_.width, size_.height, 3);
    check(lumiFGMMBackground_8u_C3R(result.pixels(), result.step(), size_, state_), "lumiFGMMBackground_8u_C3R");
    return result;
}

}  // namespace watch
