#include "watcher.hpp"

#include <algorithm>
#include <cmath>

namespace watch {

using gallery::toByte;
using lumcv::call;

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
    call<lumiFGMMGetBufferSize_8u_C3R>(size_, maxNGauss, state_).throwIfError();
    call<lumiFGMMInit_8u_C3R>(size_, maxNGauss, &model, state_).throwIfError();
}

void Watcher::take(const Picture& frame)
{
    constexpr Lum64f automaticRate = -1.0;
    call<lumiFGMMForeground_8u_C3R>(frame.view<3>(), classes_.view(), size_, state_, nullptr, automaticRate)
        .throwIfError();
    ++frames_;
    if (frames_ == 1) {
        return;  // nothing is background yet
    }
    const Picture silhouette = silhouetteOf(classes_);
    call<lumiUpdateMotionHistory_8u32f_C1IR>(silhouette.view(), history_.view(), size_, now(), duration).throwIfError();
}

Picture Watcher::background() const
{
    Picture result(size_.width, size_.height, 3);
    call<lumiFGMMBackground_8u_C3R>(result.view<3>(), size_, state_).throwIfError();
    return result;
}

}  // namespace watch
