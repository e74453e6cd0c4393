// Pixels and labels in one word each, against plain loops.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "simd/simd.hpp"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <class T>
T* drawn(const GuardedBlock& block, Random& random)
{
    for (std::size_t i = 0; i < block.size(); ++i)
        block.data()[i] = static_cast<unsigned char>(random.between(0, 255));
    return reinterpret_cast<T*>(block.data());
}

/// The word of a pixel.
template <int channels, class Label>
Lum32u wordOf(const Lum8u* pixel, Label label)
{
    Lum32u word = 0;
    for (int c = 0; c < channels; ++c)
        word |= Lum32u{pixel[c]} << (8 * c);
    return word | Lum32u{label} << (sizeof(Label) == 2 ? 16 : 8 * channels);
}

/// Lays words and takes their labels back; both read no more than they say.
template <int channels, class Label, class Word>
void expectWordsLaid()
{
    constexpr int laid = simd::laidWords<channels, Label>, read = simd::readForWords<channels, Label>;
    constexpr int padded = std::max(laid, 8);
    Random random(5);
    for (int round = 0; round < 50; ++round) {
        const GuardedBlock pixelBlock(std::size_t{read * channels}, Guard::After);
        const GuardedBlock labelBlock(laid * sizeof(Label), Guard::After);
        const auto* const pixels = drawn<Lum8u>(pixelBlock, random);
        const auto* const labels = drawn<Label>(labelBlock, random);
        std::array<Word, padded> words{};
        simd::layWords<channels>(words.data(), pixels, labels);
        for (int i = 0; i < laid; ++i)
            ASSERT_EQ(words[std::size_t(i)], (wordOf<channels, Label>(pixels + channels * i, labels[i]))) << i;
        std::array<Label, 8> back{};
        simd::storeLabels(back.data(), words.data());
        for (int i = 0; i < std::min(laid, 8); ++i)
            ASSERT_EQ(back[std::size_t(i)], labels[i]) << i;
    }
}

TEST(SimdLabelledWords, LaidAndTakenBack)
{
    expectWordsLaid<1, Lum8u, Lum16u>();
    expectWordsLaid<3, Lum8u, Lum32u>();
    expectWordsLaid<1, Lum16u, Lum32u>();
}

constexpr int rowWords = 7;
constexpr int around[8] = {-1, 1, -rowWords, rowWords, -rowWords - 1, -rowWords + 1, rowWords - 1, rowWords + 1};

/// The lanes of a vector.
std::array<Lum16u, 8> lanesOf(simd::Vec<Lum16u, 8> v)
{
    std::array<Lum16u, 8> lanes;
    simd::store(lanes.data(), v);
    return lanes;
}

/// Three rows of three words that stand against a page at one end: what is beyond the neighbours is not read.
template <class Word, class Body>
void forNeighbourhoods(Body body)
{
    Random random(6);
    for (int round = 0; round < 100; ++round) {
        const Guard guard = round % 2 == 0 ? Guard::Before : Guard::After;
        const GuardedBlock block((2 * rowWords + 3) * sizeof(Word), guard);
        body(drawn<const Word>(block, random) + rowWords + 1);
    }
}

TEST(SimdLabelledWords, LabelsOfNeighbours)
{
    forNeighbourhoods<Lum16u>([](const Lum16u* p) {
        const auto labels = lanesOf(simd::neighbourLabels(p, rowWords));
        for (std::size_t i = 0; i < 8; ++i)
            ASSERT_EQ(labels[i], p[around[i]] >> 8) << i;
    });
    forNeighbourhoods<Lum32u>([](const Lum32u* p) {
        const auto labels = lanesOf(simd::neighbourLabels(p, rowWords));
        for (std::size_t i = 0; i < 8; ++i)
            ASSERT_EQ(labels[i], p[around[i]] >> 16) << i;
    });
}

TEST(SimdLabelledWords, StepsToNeighbours)
{
    forNeighbourhoods<Lum16u>([](const Lum16u* p) {
        const auto steps = simd::neighbourSteps(p, rowWords);
        const auto labels = lanesOf(steps.labels), differences = lanesOf(steps.differences);
        for (std::size_t i = 0; i < 8; ++i) {
            ASSERT_EQ(labels[i], p[around[i]] >> 8) << i;
            ASSERT_EQ(differences[i], std::abs((p[around[i]] & 255) - (*p & 255))) << i;
        }
    });
    forNeighbourhoods<Lum32u>([](const Lum32u* p) {
        const auto steps = simd::neighbourSteps(p, rowWords);
        const auto labels = lanesOf(steps.labels), differences = lanesOf(steps.differences);
        for (std::size_t i = 0; i < 8; ++i) {
            const Lum32u other = p[around[i]];
            int largest = 0;
            for (int c = 0; c < 24; c += 8)
                largest =
                    std::max(largest, std::abs(static_cast<int>(other >> c & 255) - static_cast<int>(*p >> c & 255)));
            ASSERT_EQ(labels[i], other >> 24) << i;
            ASSERT_EQ(differences[i], largest) << i;
        }
    });
}

TEST(SimdLabelledWords, TheFirstOfTheLeastLanes)
{
    Random random(7);
    for (int round = 0; round < 300; ++round) {
        std::array<Lum16u, 8> lanes;
        const int highest = round % 3 == 0 ? 65535 : 4;
        for (Lum16u& lane : lanes)
            lane = static_cast<Lum16u>(random.between(0, highest));
        const auto least = simd::leastLane(simd::load<8>(lanes.data()));
        const auto* const first = std::min_element(lanes.begin(), lanes.end());
        ASSERT_EQ(least.value, *first);
        ASSERT_EQ(least.lane, static_cast<Lum32u>(first - lanes.begin()));
    }
}

}  // namespace
}  // namespace lumcv::test
