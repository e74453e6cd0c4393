// Arrangements of operands that overlap in one block of floats: exactly in place, shifted by a few elements or by rows,
// interleaved row by row, with the same row stride or different ones.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "lumcv/types.h"
#include "support/compare.hpp"
#include "support/random.hpp"

namespace lumcv::test {

/// Where one operand stands in the block; both numbers count elements.
struct Place
{
    std::ptrdiff_t begin;
    int stride;
};

struct Arrangement
{
    LumiSize roiSize;
    Place source1;
    Place source2;
    Place destination;
    std::size_t elements;  ///< of the whole block
};

inline std::string arrangementText(const Arrangement& a)
{
    const auto text = [](const char* name, const Place& place) {
        return std::string(", ") + name + " at " + std::to_string(place.begin) + " stride " +
               std::to_string(place.stride);
    };
    return std::to_string(a.roiSize.width) + " x " + std::to_string(a.roiSize.height) + text("source 1", a.source1) +
           text("source 2", a.source2) + text("destination", a.destination);
}

template <class F>
void forEachOverlap(F f)
{
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 31, 33, 64, 70}) {
        for (const int height : {1, 2, 4}) {
            const int row = width + 3;
            for (const int sourceStride : {row, row + 5, 2 * row}) {
                for (const int destinationStride : {row, 2 * row}) {
                    for (const int shift :
                         {-row - 1, -row, -33, -16, -9, -8, -7, -5, -4, -3,  -2,      -1,      0,     1,
                          2,        3,    4,   5,   7,  8,  9,  16, 33, row, row + 1, 2 * row, width, 3 * row}) {
                        const int extent = height * 2 * row + 3 * row + 40;
                        const Place destination{extent, destinationStride};
                        const Place overlapping{extent + shift, sourceStride};
                        const Place mirrored{extent - shift, sourceStride};
                        const Place apart{3 * extent, sourceStride};
                        const auto elements = static_cast<std::size_t>(5 * extent);
                        const LumiSize roiSize{width, height};
                        f(Arrangement{roiSize, overlapping, apart, destination, elements});
                        f(Arrangement{roiSize, apart, overlapping, destination, elements});
                        f(Arrangement{roiSize, overlapping, overlapping, destination, elements});
                        f(Arrangement{roiSize, overlapping, mirrored, destination, elements});
                        if (testing::Test::HasFailure()) {
                            return;
                        }
                    }
                }
            }
        }
    }
}

/// Runs two implementations of the same operation, each on its own copy of the same block, and compares the blocks.
/// The values are small, so that a sum of squares that feeds itself stays finite.
template <class Actual, class Expected>
void expectSameBlock(const Arrangement& arrangement, Actual actual, Expected expected)
{
    Random random(arrangement.elements);
    std::vector<float> actualBlock(arrangement.elements);
    std::generate(actualBlock.begin(), actualBlock.end(), [&] { return (random.unit<float>() - 0.5f) / 2; });
    std::vector<float> expectedBlock = actualBlock;
    actual(actualBlock.data());
    expected(expectedBlock.data());
    EXPECT_TRUE(sameElements(expectedBlock.data(), actualBlock.data(), arrangement.elements))
        << arrangementText(arrangement);
}

}  // namespace lumcv::test
