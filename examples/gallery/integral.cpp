// Gallery: integral images, local deviation, and the cascade that finds coins.
#include <algorithm>
#include <cmath>

#include "coins_cascade.hpp"
#include "scan.hpp"
#include "section.hpp"
#include "stage_record.hpp"

namespace gallery {
namespace {

Picture integralBands(const Source& source, Shot& shot)
{
    const Picture& gray = source.gray;
    Image<Lum32s> sums(gray.width() + 1, gray.height() + 1, 1);
    shot.time(
        GALLERY_CALL(lumiIntegral_8u32s_C1R(gray.pixels(), gray.step(), sums.pixels(), sums.step(), gray.size(), 0)));

    // brighter from band to band, and within each from its beginning to its end
    constexpr int bands = 20;
    const double whole = std::max(1, sums.elements().back());
    return mapped<Lum8u>(sums, [=](Lum32s sum) {
        const double position = bands * (sum / whole);
        return toByte(static_cast<float>(position / bands * 180.0 + (position - std::floor(position)) * 75.0));
    });
}

// The table of sums and that of squares, which deviations and cascades start from.
struct Tables
{
    Tables(const Picture& gray, Shot& shot)
        : sums(gray.width() + 1, gray.height() + 1, 1), squares(gray.width() + 1, gray.height() + 1, 1)
    {
        shot.prepare(
            GALLERY_CALL(lumiSqrIntegral_8u32f64f_C1R(gray.pixels(), gray.step(), sums.pixels(), sums.step(),
                                                      squares.pixels(), squares.step(), gray.size(), 0.0f, 0.0)));
    }

    Image<Lum32f> sums;
    Image<Lum64f> squares;
};

Picture localDeviation(const Source& source, Shot& shot)
{
    constexpr int side = 9;
    const Picture& gray = source.gray;
    const Tables tables(gray, shot);
    const Image<Lum32f>& sums = tables.sums;
    const Image<Lum64f>& squares = tables.squares;
    Image<Lum32f> deviation(gray.width() - side + 1, gray.height() - side + 1, 1);
    shot.time(GALLERY_CALL(lumiRectStdDev_32f_C1R(sums.pixels(), sums.step(), squares.pixels(), squares.step(),
                                                  deviation.pixels(), deviation.step(), deviation.size(),
                                                  LumiRect{0, 0, side, side})));
    return mapped<Lum8u>(deviation, [](Lum32f value) { return toByte(3.0f * value); });
}

detect::Cascade coinsCascade()
{
    return detect::parseCascade(coinsCascadeText, "coins.cascade");
}

Picture stagesPassed(const Source& source, Shot& shot)
{
    constexpr LumiSize window = {48, 48};
    const Picture& gray = source.gray;
    const detect::Cascade cascade = coinsCascade();
    const Tables tables(gray, shot);
    const Image<Lum32f>& sums = tables.sums;
    const Image<Lum64f>& squares = tables.squares;
    Image<Lum32f> norms(gray.width() - window.width + 1, gray.height() - window.height + 1, 1);
    shot.prepare(GALLERY_CALL(lumiRectStdDev_32f_C1R(sums.pixels(), sums.step(), squares.pixels(), squares.step(),
                                                     norms.pixels(), norms.step(), norms.size(),
                                                     LumiRect{0, 0, window.width, window.height})));
    Picture mask(norms.width(), norms.height(), 1, 255);
    Picture passed(gray.width(), gray.height(), 1);
    const int share = 255 / static_cast<int>(cascade.stages.size());
    int positive = norms.width() * norms.height();
    for (const detect::Stage& description : cascade.stages) {
        detect::StageRecord stage(description, cascade, window, norms.size());
        shot.timeOnce(GALLERY_CALL(
            lumiApplyHaarClassifier_32f_C1R(sums.pixels(), sums.step(), norms.pixels(), norms.step(), mask.pixels(),
                                            mask.step(), mask.size(), &positive, stage.threshold(), stage.record())));
        for (int y = 0; y < mask.height(); ++y) {
            for (int x = 0; x < mask.width(); ++x) {
                Lum8u& middle = passed.at(x + window.width / 2, y + window.height / 2);
                middle = static_cast<Lum8u>(middle + (mask.at(x, y) != 0 ? share : 0));
            }
        }
    }
    return passed;
}

Picture coinsFound(const Source& source, Shot&)
{
    constexpr Lum8u colour[3] = {255, 64, 48};
    Picture result = source.colour;
    for (const detect::Found& coin : detect::findObjects(source.gray, coinsCascade(), {})) {
        detect::drawFrame(result, coin.place, colour);
    }
    return result;
}

const Section integrals{
    50,
    "Integral images",
    "Each entry is the sum of all pixels above it and to its left, so the sum under any rectangle is four reads.",
    {{"integral", "Integral image",
      "From black in the upper left corner to the whole sum in the lower right one, in twenty bands of equal share.",
      integralBands},
     {"local-deviation", "Local deviation",
      "The standard deviation under a square of 9 x 9 pixels, three times enlarged: even areas are black.",
      localDeviation}},
};

const Section cascades{
    52,
    "Cascade of rectangle features",
    "Stages of weak classifiers that were taught on drawn coins look for bright, round things on darker ground. Few "
    "windows get past the first stages.",
    {{"cascade-stages", "Stages that a window passes",
      "A window of 48 x 48 pixels begins at each pixel; the brighter, the more of the stages it passes. White ones "
      "pass "
      "all.",
      stagesPassed},
     {"cascade-coins", "What the cascade finds",
      "In windows from 24 pixels up, a tenth wider each time; those that overlap are merged. What is bright, round and "
      "alone is taken for a coin.",
      coinsFound}},
};

}  // namespace
}  // namespace gallery
