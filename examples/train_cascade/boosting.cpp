#include "boosting.hpp"

#include <algorithm>
#include <array>
#include <cmath>

namespace train {
namespace {

// A feature's value in deviations, in steps of 1/64: what a byte can hold lies between -2 and 2.
constexpr int steps = 64;
constexpr int middle = 128;
constexpr int bins = 256;

// Votes are powers of two, in steps of 1/256 of the exponent.
constexpr int voteUnit = 256;
constexpr int largestVote = 3 * voteUnit;

// What the weights of the samples add up to.
constexpr std::uint64_t totalWeight = std::uint64_t{1} << 40;

struct Rectangle
{
    int x, y, width, height, weight;
};

// The weights are chosen so that an even window gives 0.
using Feature = std::vector<Rectangle>;

struct Classifier
{
    const Feature* feature;
    int bin;  ///< the first that takes the other vote
    int voteBelow;
    int voteOtherwise;
};

struct TrainedStage
{
    std::vector<Classifier> classifiers;
    int threshold;  ///< of the votes' sum, in half steps: always odd, so that no sum is equal to it
};

int valueBin(const Feature& feature, const Sample& sample)
{
    std::int64_t sum = 0;
    for (const Rectangle& r : feature) {
        const auto& top = sample.sums[r.y];
        const auto& bottom = sample.sums[r.y + r.height];
        sum += std::int64_t{r.weight} * (bottom[r.x + r.width] - bottom[r.x] - top[r.x + r.width] + top[r.x]);
    }
    // the sum over the window's area, divided by the deviation, which the sample holds times an area of its own
    const std::int64_t above = sum * sample.area * steps;
    const std::int64_t below = sample.deviation * window * window;
    const std::int64_t quotient = above / below - (above % below < 0 ? 1 : 0);
    return static_cast<int>(std::clamp<std::int64_t>(quotient + middle, 0, bins - 1));
}

// All features over a grid of three pixels: a half, a third or an inner part of a rectangle against the whole of it,
// and two quarters that touch at a corner.
std::vector<Feature> allFeatures()
{
    constexpr int grid = 3;
    std::vector<Feature> features;
    for (int height = grid; height <= window; height += grid) {
        for (int width = grid; width <= window; width += grid) {
            for (int y = 0; y + height <= window; y += grid) {
                for (int x = 0; x + width <= window; x += grid) {
                    const Rectangle whole{x, y, width, height, -1};
                    if (width % 2 == 0) {
                        features.push_back({whole, {x, y, width / 2, height, 2}});
                    }
                    if (height % 2 == 0) {
                        features.push_back({whole, {x, y, width, height / 2, 2}});
                    }
                    if (width > grid) {
                        features.push_back({whole, {x + width / 3, y, width / 3, height, 3}});
                    }
                    if (height > grid) {
                        features.push_back({whole, {x, y + height / 3, width, height / 3, 3}});
                    }
                    if (width > grid && height > grid) {
                        features.push_back({whole, {x + width / 3, y + height / 3, width / 3, height / 3, 9}});
                    }
                    if (width % 4 == 0 && height % 4 == 0) {
                        features.push_back({whole, {x + width / 4, y + height / 4, width / 2, height / 2, 4}});
                    }
                    if (width % 2 == 0 && height % 2 == 0) {
                        features.push_back({whole,
                                            {x, y, width / 2, height / 2, 2},
                                            {x + width / 2, y + height / 2, width / 2, height / 2, 2}});
                    }
                }
            }
        }
    }
    return features;
}

// Powers of two at every 1/256 of the exponent. Roots and products are rounded alike by every processor, which a
// library's exponential is not.
class Powers
{
  public:
    Powers()
    {
        double root = 2.0;
        for (int i = voteUnit; i > 1; i /= 2) {
            root = std::sqrt(root);
        }
        double power = 1.0;
        for (double& entry : table_) {
            entry = power;
            power *= root;
        }
    }

    /// 2 to the power of exponent / 256.
    double of(int exponent) const
    {
        const int whole = exponent >= 0 ? exponent / voteUnit : -((-exponent + voteUnit - 1) / voteUnit);
        return std::ldexp(table_[static_cast<std::size_t>(exponent - whole * voteUnit)], whole);
    }

    /// The largest exponent, in steps of 1/256, whose power is not above the value.
    int exponentOf(double value) const
    {
        int whole = 0;
        const double fraction = 2.0 * std::frexp(value, &whole);
        const auto above = std::upper_bound(table_.begin(), table_.end(), fraction);
        return (whole - 1) * voteUnit + static_cast<int>(above - table_.begin()) - 1;
    }

  private:
    std::array<double, voteUnit> table_;
};

const Powers powers;

// The samples of one class while a stage is made: their weights, and the sums of their votes.
struct Side
{
    explicit Side(const std::vector<Sample>& samples_)
        : samples(&samples_), weights(samples_.size(), totalWeight / 2 / samples_.size()), sums(samples_.size(), 0)
    {
    }

    /// Half of the total weight goes to each class at first; boosting moves it to where the mistakes are.
    const std::vector<Sample>* samples;
    std::vector<std::uint64_t> weights;
    std::vector<int> sums;
    /// The value of feature f at sample i is values[f * samples + i].
    std::vector<Lum8u> values;

    const Lum8u* valuesOf(std::size_t feature) const
    {
        return values.data() + feature * samples->size();
    }

    void evaluate(const std::vector<Feature>& features)
    {
        values.clear();
        values.reserve(features.size() * samples->size());
        for (const Feature& feature : features) {
            for (const Sample& sample : *samples) {
                values.push_back(static_cast<Lum8u>(valueBin(feature, sample)));
            }
        }
    }

    void histogram(std::size_t feature, std::array<std::uint64_t, bins>& sum) const
    {
        sum.fill(0);
        const Lum8u* value = valuesOf(feature);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            sum[value[i]] += weights[i];
        }
    }

    /// Adds the votes of a classifier, and weighs the samples anew: `sign` is 1 if votes above 0 are right.
    void vote(std::size_t feature, const Classifier& classifier, int sign)
    {
        const Lum8u* value = valuesOf(feature);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            const int vote = value[i] < classifier.bin ? classifier.voteBelow : classifier.voteOtherwise;
            sums[i] += vote;
            weights[i] = static_cast<std::uint64_t>(static_cast<double>(weights[i]) * powers.of(-sign * vote)) + 1;
        }
    }

    std::size_t passing(int threshold) const
    {
        return static_cast<std::size_t>(
            std::count_if(sums.begin(), sums.end(), [=](int sum) { return 2 * sum > threshold; }));
    }
};

std::uint64_t sumOf(const std::vector<std::uint64_t>& weights)
{
    std::uint64_t sum = 0;
    for (const std::uint64_t weight : weights) {
        sum += weight;
    }
    return sum;
}

void normalise(Side& coins, Side& others)
{
    const double factor =
        static_cast<double>(totalWeight) / static_cast<double>(sumOf(coins.weights) + sumOf(others.weights));
    for (Side* side : {&coins, &others}) {
        for (std::uint64_t& weight : side->weights) {
            weight = static_cast<std::uint64_t>(static_cast<double>(weight) * factor) + 1;
        }
    }
}

// Half the logarithm of how much heavier the coins are than the others on one side of a threshold.
int voteOf(std::uint64_t coins, std::uint64_t others)
{
    // a side that none of a class fell on does not say that none ever will
    constexpr double few = static_cast<double>(totalWeight) / 4096;
    const int ratio =
        powers.exponentOf(static_cast<double>(coins) + few) - powers.exponentOf(static_cast<double>(others) + few);
    return std::clamp(ratio / 2, -largestVote, largestVote);
}

// What remains mixed on one side of a threshold.
double mixture(std::uint64_t coins, std::uint64_t others)
{
    return std::sqrt(static_cast<double>(coins) * static_cast<double>(others));
}

// One round of boosting.
void addClassifier(TrainedStage& stage, const std::vector<Feature>& features, Side& coins, Side& others)
{
    const std::uint64_t allCoins = sumOf(coins.weights);
    const std::uint64_t allOthers = sumOf(others.weights);
    double best = 2.0 * static_cast<double>(totalWeight);
    std::size_t bestFeature = 0;
    Classifier classifier{};
    std::array<std::uint64_t, bins> coinSums;
    std::array<std::uint64_t, bins> otherSums;
    for (std::size_t f = 0; f < features.size(); ++f) {
        coins.histogram(f, coinSums);
        others.histogram(f, otherSums);
        std::uint64_t coinsBelow = 0;
        std::uint64_t othersBelow = 0;
        for (int bin = 1; bin < bins; ++bin) {
            const std::uint64_t moreCoins = coinSums[static_cast<std::size_t>(bin - 1)];
            const std::uint64_t moreOthers = otherSums[static_cast<std::size_t>(bin - 1)];
            if (moreCoins == 0 && moreOthers == 0) {
                continue;
            }
            coinsBelow += moreCoins;
            othersBelow += moreOthers;
            const double mixed =
                mixture(coinsBelow, othersBelow) + mixture(allCoins - coinsBelow, allOthers - othersBelow);
            if (mixed < best) {
                best = mixed;
                bestFeature = f;
                classifier = {&features[f], bin, voteOf(coinsBelow, othersBelow),
                              voteOf(allCoins - coinsBelow, allOthers - othersBelow)};
            }
        }
    }
    coins.vote(bestFeature, classifier, 1);
    others.vote(bestFeature, classifier, -1);
    normalise(coins, others);
    stage.classifiers.push_back(classifier);
}

// The highest threshold that lets enough coins through.
int thresholdThatKeeps(int ofThousand, std::vector<int> sums)
{
    const std::size_t lost = sums.size() * static_cast<std::size_t>(1000 - ofThousand) / 1000;
    const auto weakest = sums.begin() + static_cast<std::ptrdiff_t>(lost);
    std::nth_element(sums.begin(), weakest, sums.end());
    return 2 * *weakest - 1;
}

bool passes(const TrainedStage& stage, const Sample& sample)
{
    int sum = 0;
    for (const Classifier& c : stage.classifiers) {
        sum += valueBin(*c.feature, sample) < c.bin ? c.voteBelow : c.voteOtherwise;
    }
    return 2 * sum > stage.threshold;
}

// All numbers are small multiples of powers of two, so floats hold them as they are.
detect::Cascade written(const std::vector<TrainedStage>& stages)
{
    detect::Cascade cascade{window, window, static_cast<float>(leastDeviation), {}};
    for (const TrainedStage& stage : stages) {
        detect::Stage to{{}, static_cast<float>(stage.threshold) / (2 * voteUnit)};
        for (const Classifier& c : stage.classifiers) {
            detect::WeakClassifier weak{{},
                                        static_cast<float>(c.bin - middle) / steps,
                                        static_cast<float>(c.voteBelow) / voteUnit,
                                        static_cast<float>(c.voteOtherwise) / voteUnit};
            for (const Rectangle& r : *c.feature) {
                weak.rectangles.push_back({r.x, r.y, r.width, r.height, static_cast<float>(r.weight)});
            }
            to.classifiers.push_back(weak);
        }
        cascade.stages.push_back(to);
    }
    return cascade;
}

}  // namespace

detect::Cascade boost(std::vector<Sample> coins, const OtherSource& findOthers, const Goals& goals,
                      const Report& report)
{
    const std::vector<Feature> features = allFeatures();
    std::vector<TrainedStage> stages;
    const Passes passesAll = [&](const Sample& sample) {
        return std::all_of(stages.begin(), stages.end(),
                           [&](const TrainedStage& stage) { return passes(stage, sample); });
    };
    std::vector<Sample> others;
    while (static_cast<int>(stages.size()) < goals.mostStages) {
        // those that the stages so far take for coins, and new ones to fill up
        const std::vector<Sample> found = findOthers(passesAll, goals.others - others.size());
        others.insert(others.end(), found.begin(), found.end());
        if (others.size() < goals.fewestOthers) {
            break;
        }
        Side coinSide(coins);
        Side otherSide(others);
        coinSide.evaluate(features);
        otherSide.evaluate(features);
        TrainedStage stage;
        std::size_t passing = others.size();
        while (static_cast<int>(stage.classifiers.size()) < goals.mostClassifiers &&
               passing * 1000 > others.size() * static_cast<std::size_t>(goals.passedOthers)) {
            addClassifier(stage, features, coinSide, otherSide);
            stage.threshold = thresholdThatKeeps(goals.keptCoins, coinSide.sums);
            passing = otherSide.passing(stage.threshold);
        }
        stages.push_back(stage);
        report(stage.classifiers.size(), coinSide.passing(stage.threshold), coins.size(), passing, others.size());
        const auto fails = [&](const Sample& sample) { return !passes(stage, sample); };
        std::erase_if(coins, fails);
        std::erase_if(others, fails);
    }
    return written(stages);
}

}  // namespace train
