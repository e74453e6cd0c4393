// What both floods work on: a plane of pixels, each in one word with its label, and the pixels beside seeds.
#pragma once

#include <type_traits>

#include "frame/image.hpp"
#include "simd/simd.hpp"

namespace lumcv {

/// The label stands on top, the first channel lowest.
template <int channels, class Label>
using LabelledWord = std::conditional_t<channels == 1 && sizeof(Label) == 1, Lum16u, Lum32u>;

template <int channels, class Label>
inline constexpr int labelPlace = 8 * static_cast<int>(sizeof(LabelledWord<channels, Label>) - sizeof(Label));

/// The word of the same pixel with another label. Words are stored as a whole, as they will be loaded.
template <int channels, class Label>
[[gnu::always_inline]] inline void setLabel(LabelledWord<channels, Label>& word, Lum32u label)
{
    constexpr int place = labelPlace<channels, Label>;
    constexpr Lum32u pixel = (Lum32u{1} << place) - 1;
    word = static_cast<LabelledWord<channels, Label>>((word & pixel) | label << place);
}

template <int channels, class Label>
void layWords(LabelledWord<channels, Label>* words, const Lum8u* pixels, const Label* labels, int64_t width)
{
    int64_t x = 0;
    for (; x + simd::readForWords<channels, Label> <= width; x += simd::laidWords<channels, Label>)
        simd::layWords<channels>(words + x, pixels + channels * x, labels + x);
    for (; x < width; ++x) {
        Lum32u word = 0;
        for (int channel = 0; channel < channels; ++channel)
            word |= static_cast<Lum32u>(pixels[channels * x + channel]) << 8 * channel;
        words[x] = static_cast<LabelledWord<channels, Label>>(word);
        setLabel<channels, Label>(words[x], labels[x]);
    }
}

template <int channels, class Label>
void storeLabels(Label* labels, const LabelledWord<channels, Label>* words, int64_t width)
{
    int64_t x = 0;
    for (; x + 8 <= width; x += 8)
        simd::storeLabels(labels + x, words + x);
    for (; x < width; ++x)
        labels[x] = static_cast<Label>(words[x] >> labelPlace<channels, Label>);
}

/// Calls visit(x) from left to right for the pixels of [begin, end) in row y that may have a marker or be one: for all
/// of which one is near, and for some others.
template <class Label, class Visit>
[[gnu::flatten]] void besideMarkers(Plane<Label> marker, LumiSize size, int64_t y, int64_t begin, int64_t end,
                                    Visit visit)
{
    constexpr int lanes = simd::registerLanes<Label>;
    constexpr int inner = lanes - 2;
    const Label* const row = marker.row(y);
    const Label* const above = y > 0 ? marker.row(y - 1) : row;
    const Label* const below = y + 1 < size.height ? marker.row(y + 1) : row;
    int64_t x = begin;
    while (x < end) {
        int64_t behind = x + 1;
        if (x > 0 && x + inner <= end && x + inner < size.width) {
            behind = x + inner;
            const auto near =
                simd::load<lanes>(row + x - 1) | simd::load<lanes>(above + x - 1) | simd::load<lanes>(below + x - 1);
            if (!anyNonZero(near))
                x = behind;
        }
        for (; x < behind; ++x)
            visit(x);
    }
}

}  // namespace lumcv
