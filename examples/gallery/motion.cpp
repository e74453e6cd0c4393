// Gallery: a film from a camera that stands: what is in front, what the background looks like, and what moved when.
#include "busy_scene.hpp"
#include "section.hpp"
#include "watcher.hpp"

namespace gallery {
namespace {

constexpr int frameCount = watch::BusyScene::still + 28;

watch::BusyScene filmOf(const Source& source)
{
    return watch::BusyScene(watch::middleOf(source.colour, 640, 480));
}

// The model behind a film of which it takes one frame after the other.
class Learner
{
  public:
    Learner(LumiSize size, Shot& shot) : classes(size.width, size.height, 1), shot_(shot)
    {
        const LumFGMMModel model = watch::usualModel();
        const auto maxNGauss = static_cast<Lum32s>(model.maxNGauss);
        Lum32s stateSize = 0;
        shot.prepare(GALLERY_CALL(lumiFGMMGetBufferSize_8u_C3R(size, maxNGauss, &stateSize)));
        block_.resize(static_cast<Lum32u>(stateSize));
        pState = reinterpret_cast<LumFGMMState*>(block_.data());
        shot.prepare(GALLERY_CALL(lumiFGMMInit_8u_C3R(size, maxNGauss, &model, pState)));
    }
    Learner(const Learner&) = delete;
    Learner& operator=(const Learner&) = delete;

    void take(const Picture& frame, bool isTimed)
    {
        const auto run = [&](const char* text, const std::function<LumStatus()>& call) {
            isTimed ? shot_.timeOnce(text, call) : shot_.prepare(text, call);
        };
        run(GALLERY_CALL(lumiFGMMForeground_8u_C3R(frame.pixels(), frame.step(), classes.pixels(), classes.step(),
                                                   classes.size(), pState, nullptr, -1.0)));
    }

    Picture classes;
    LumFGMMState* pState = nullptr;

  private:
    Shot& shot_;
    Block block_;
};

Picture lastFrame(const Source& source, Shot&)
{
    return filmOf(source).frame(frameCount - 1);
}

Picture classes(const Source& source, Shot& shot)
{
    const watch::BusyScene film = filmOf(source);
    Learner learner(film.size(), shot);
    for (int i = 0; i < frameCount; ++i) {
        learner.take(film.frame(i), true);
    }
    return learner.classes;
}

Picture background(const Source& source, Shot& shot)
{
    const watch::BusyScene film = filmOf(source);
    Learner learner(film.size(), shot);
    for (int i = 0; i < frameCount; ++i) {
        learner.take(film.frame(i), false);
    }
    Picture result(film.size().width, film.size().height, 3);
    shot.time(GALLERY_CALL(lumiFGMMBackground_8u_C3R(result.pixels(), result.step(), result.size(), learner.pState)));
    return result;
}

Picture history(const Source& source, Shot& shot)
{
    constexpr Lum32f duration = 16.0f;
    const watch::BusyScene film = filmOf(source);
    Learner learner(film.size(), shot);
    Image<Lum32f> mhi(film.size().width, film.size().height, 1);
    for (int i = 0; i < frameCount; ++i) {
        learner.take(film.frame(i), false);
        if (i > 0) {
            const Picture silhouette = watch::silhouetteOf(learner.classes);
            const auto timestamp = static_cast<Lum32f>(i);
            shot.timeOnce(GALLERY_CALL(lumiUpdateMotionHistory_8u32f_C1IR(
                silhouette.pixels(), silhouette.step(), mhi.pixels(), mhi.step(), mhi.size(), timestamp, duration)));
        }
    }
    return watch::historyPicture(film.frame(frameCount - 1), mhi, frameCount - 1, duration);
}

const Section section{
    74,
    "Background and motion",
    "A film of 48 frames from a camera that stands, with noise, a flicker of leaves in the upper left quarter, and two "
    "balls that roll by and throw shadows. A mixture of Gaussians at each pixel learns what is background.",
    {{"watch-frame", "The last frame", "What the camera sees.", lastFrame},
     {"watch-classes", "Foreground and shadow", "White is in front of the background, gray is a shadow.", classes},
     {"watch-background", "The background", "As the model knows it, without the balls.", background},
     {"watch-history", "Motion history",
      "What moved in the last 16 frames: white now, then yellow to red to violet; shadows are left out.", history}},
};

}  // namespace
}  // namespace gallery
