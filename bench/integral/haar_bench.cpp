// Rows of the Haar classifiers: a stage of 20 classifiers over windows of 24x24. The variant is the share of windows
// that are candidates, which decides the path. No window is cleared, so each call finds the same mask.
#include "bench/integral/tables.hpp"

namespace {

using namespace lumcv::bench;

constexpr int window = 24;

struct Stage
{
    std::vector<LumiRect> rects;
    std::vector<Lum32f> weights, thresholds, votes;
    std::vector<Lum32s> counts;

    Stage()
    {
        std::mt19937 random{11};
        for (int c = 0; c < 20; ++c) {
            counts.push_back(c % 4 ? 2 : 3);
            for (int r = 0; r < counts.back(); ++r) {
                const Lum32s x = Lum32s(random() % 12), y = Lum32s(random() % 12);
                rects.push_back({x, y, 4 + Lum32s(random() % 8), 4 + Lum32s(random() % 8)});
                weights.push_back(r ? 2.0f : -1.0f);
            }
            thresholds.push_back(0.1f);
            votes.push_back(1.0f);
        }
    }
};

auto apply(int oneIn)
{
    return [=](Job& job) -> Call {
        const auto size = job.size();
        job.source<Lum32f>();
        const auto sums = table<Lum32f>(job, window + 1);
        const LumiSize imageSize{size.width + window, size.height + window};
        std::vector<Lum8u> image(std::size_t(imageSize.width) * imageSize.height);
        std::mt19937 random{5};
        for (Lum8u& pixel : image)
            pixel = Lum8u(random());
        lumiIntegral_8u32f_C1R(image.data(), imageSize.width, sums.pixels, sums.step, imageSize, 0);
        const auto norms = job.source<Lum32f>();
        const auto mask = job.accumulator<Lum8u>();
        Lum32s candidates = 0;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x) {
                mask.row(y)[x] = random() % unsigned(oneIn) ? 0 : 255;
                candidates += mask.row(y)[x] != 0;
            }
        const Stage stage;
        const Lum32s length = Lum32s(stage.counts.size());
        Lum32s bytes = 0;
        lumiHaarClassifierGetSize(lumType32f, size, stage.counts.data(), length, &bytes);
        auto* const record = reinterpret_cast<LumiHaarStageRecord*>(job.allocate(std::size_t(bytes)));
        lumiHaarClassifierInit_32f(record, stage.rects.data(), stage.weights.data(), stage.thresholds.data(),
                                   stage.votes.data(), stage.votes.data(), stage.counts.data(), length);
        return [=] {
            Lum32s count = candidates;
            return lumiApplyHaarClassifier_32f_C1R(sums.pixels, sums.step, norms.pixels, norms.step, mask.pixels,
                                                   mask.step, size, &count, 0.5f, record);
        };
    };
}

const Rows rows{{
    {"lumiApplyHaarClassifier_32f_C1R", "all", {}, apply(1)},
    {"lumiApplyHaarClassifier_32f_C1R", "1 of 6", {}, apply(6)},
    {"lumiApplyHaarClassifier_32f_C1R", "1 of 12", {}, apply(12)},
    {"lumiApplyHaarClassifier_32f_C1R", "1 of 100", {}, apply(100)},
}};

}  // namespace
