// A boosted cascade, and the text format that it is kept in.
//
// A file of the format is made of lines, and a line of words between blanks. What follows a '#' is a remark.
//
//     cascade 1                       what the file is, and the version of the format: the first line
//     window 24 24                    width and height of the window that the rectangles lie in
//     deviation 6                     windows whose standard deviation is less are no objects
//     stage -0.5                      a stage and its threshold; its classifiers follow
//     weak 0.25 -1.5 0.75             a classifier: threshold, vote below the threshold, vote otherwise
//     rect 0 0 24 24 -1               a rectangle of it: x, y, width, height, weight
//     rect 6 6 12 12 4
//
// There may be any number of stages, of classifiers in a stage and of rectangles in a classifier, but at least one of
// each. What a file says about a window of the picture:
//
//     feature = sum over the rectangles of weight * (sum of the pixels in it) / (pixels in the window)
//     vote    = feature < threshold * deviation of the window ? vote below : vote otherwise
//
// and a window is an object if in every stage the sum of the votes is above the stage's threshold. (Let no sum be equal
// to it: which way those go is not laid down.) In a larger window the rectangles grow with it, and a weight shrinks as
// its rectangle grows, so that the thresholds stay as they are.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace detect {

struct WeightedRectangle
{
    int x, y, width, height;
    float weight;
};

struct WeakClassifier
{
    std::vector<WeightedRectangle> rectangles;
    float threshold;
    float voteBelow;
    float voteOtherwise;
};

struct Stage
{
    std::vector<WeakClassifier> classifiers;
    float threshold;
};

struct Cascade
{
    int windowWidth = 0;
    int windowHeight = 0;
    float leastDeviation = 0.0f;
    std::vector<Stage> stages;
};

/// Reads a file of the format. Throws gallery::Failure, in words, for whatever is not right.
Cascade readCascade(const std::filesystem::path& path);

/// The same of a text; `name` stands for the file in messages.
Cascade parseCascade(std::string_view text, const std::string& name);

/// The cascade in the format. Reading gives back the same numbers, bit for bit.
std::string cascadeText(const Cascade& cascade);

}  // namespace detect
