// Boosting: a cascade made of stages, a stage made of the rectangle features that tell coins from other things best.
//
// Each round looks for the feature and the threshold that part the weighted samples best, lets both sides vote, and
// gives more weight to the samples that the votes got wrong. Weights, votes and thresholds are integers, so that no sum
// depends on the order of its terms, on the compiler or on the processor.
#pragma once

#include <functional>

#include "cascade.hpp"
#include "samples.hpp"

namespace train {

/// What is wanted.
struct Goals
{
    int mostStages;
    int mostClassifiers;       ///< in a stage
    int keptCoins;             ///< at least so many of a thousand coins pass a stage
    int passedOthers;          ///< a stage is done when at most so many of a thousand other windows pass
    std::size_t others;        ///< how many other windows a stage learns from
    std::size_t fewestOthers;  ///< if no more than these can be found, no stage is added
};

/// Says whether a window passes all stages so far.
using Passes = std::function<bool(const Sample&)>;

/// Gives windows without coins that pass the stages so far: as many as are wanted, or as it finds.
using OtherSource = std::function<std::vector<Sample>(const Passes&, std::size_t wanted)>;

/// Told after each stage: its classifiers, and how many coins and others of how many pass it.
using Report = std::function<void(std::size_t classifiers, std::size_t coins, std::size_t ofCoins, std::size_t others,
                                  std::size_t ofOthers)>;

detect::Cascade boost(std::vector<Sample> coins, const OtherSource& others, const Goals& goals, const Report& report);

}  // namespace train
