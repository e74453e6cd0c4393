// Rows of dilation and erosion: rectangles, crosses, discs and irregular elements.
#include "bench/morph/elements.hpp"
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

/// One channel takes the border value, several a pointer to it.
template <typename T, typename BorderValue>
using Pass = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, BorderValue,
                           const LumiMorphMaskRecord*, Lum8u*);

using Sizes = LumStatus (*)(LumiSize, LumiSize, Lum32s*, Lum32s*);

template <typename T, typename BorderValue>
auto pass(Pass<T, BorderValue> function, Sizes sizes, int channels, const Element& element)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>(channels);
        const auto d = job.destination<T>(channels);
        const LumiSize size = job.size();
        Lum32s specSize = 0, bufferSize = 0;
        sizes(size, element.size, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumiMorphMaskRecord*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        lumiMorphologyBorderInit_8u_C1R(size, element.mask.data(), element.size, spec, buffer);
        return [=] {
            return function(s.pixels, s.step, d.pixels, d.step, size, lumBorderReplicate, BorderValue{}, spec, buffer);
        };
    };
}

std::vector<Row> bytes()
{
    const auto dilate = [](const Element& element) {
        return pass<Lum8u, Lum8u>(lumiDilateBorder_8u_C1R, lumiMorphologyBorderGetSize_8u_C1R, 1, element);
    };
    const auto erode = [](const Element& element) {
        return pass<Lum8u, Lum8u>(lumiErodeBorder_8u_C1R, lumiMorphologyBorderGetSize_8u_C1R, 1, element);
    };
    return {
        {"lumiErodeBorder_8u_C1R", "rectangle 3x3", {1.75, 1.3}, erode(rectangle(3, 3))},
        {"lumiErodeBorder_8u_C1R", "rectangle 5x5", {2.1, 1.5}, erode(rectangle(5, 5))},
        {"lumiErodeBorder_8u_C1R", "rectangle 15x15", {3.6, 2.5}, erode(rectangle(15, 15))},
        {"lumiDilateBorder_8u_C1R", "rectangle 3x3", {1.75, 1.3}, dilate(rectangle(3, 3))},
        {"lumiDilateBorder_8u_C1R", "rectangle 5x5", {2.1, 1.5}, dilate(rectangle(5, 5))},
        {"lumiDilateBorder_8u_C1R", "rectangle 7x7", {}, dilate(rectangle(7, 7))},
        {"lumiDilateBorder_8u_C1R", "rectangle 15x15", {3.6, 2.5}, dilate(rectangle(15, 15))},
        {"lumiDilateBorder_8u_C1R", "rectangle 61x61", {}, dilate(rectangle(61, 61))},
        {"lumiDilateBorder_8u_C1R", "rectangle 15x1", {}, dilate(rectangle(15, 1))},
        {"lumiDilateBorder_8u_C1R", "rectangle 1x15", {}, dilate(rectangle(1, 15))},
        {"lumiDilateBorder_8u_C1R", "cross 3x3", {1.4, 1.3}, dilate(cross(3))},
        {"lumiDilateBorder_8u_C1R", "cross 7x7", {}, dilate(cross(7))},
        {"lumiDilateBorder_8u_C1R", "disc 5x5", {}, dilate(disc(5))},
        {"lumiDilateBorder_8u_C1R", "disc 9x9", {8.6, 4}, dilate(disc(9))},
        {"lumiErodeBorder_8u_C1R", "disc 9x9", {8.6, 4}, erode(disc(9))},
        {"lumiDilateBorder_8u_C1R", "ring 9x9", {}, dilate(ring(9))},
    };
}

std::vector<Row> otherTypes()
{
    const auto bytes3 = [](const Element& element) {
        return pass<Lum8u, const Lum8u*>(lumiDilateBorder_8u_C3R, lumiMorphologyBorderGetSize_8u_C3R, 3, element);
    };
    const auto bytes4 = [](const Element& element) {
        return pass<Lum8u, const Lum8u*>(lumiDilateBorder_8u_C4R, lumiMorphologyBorderGetSize_8u_C4R, 4, element);
    };
    const auto words = [](const Element& element) {
        return pass<Lum16u, Lum16u>(lumiDilateBorder_16u_C1R, lumiMorphologyBorderGetSize_16u_C1R, 1, element);
    };
    const auto signedWords = [](const Element& element) {
        return pass<Lum16s, Lum16s>(lumiDilateBorder_16s_C1R, lumiMorphologyBorderGetSize_16s_C1R, 1, element);
    };
    const auto floats = [](const Element& element) {
        return pass<Lum32f, Lum32f>(lumiDilateBorder_32f_C1R, lumiMorphologyBorderGetSize_32f_C1R, 1, element);
    };
    const auto floats3 = [](const Element& element) {
        return pass<Lum32f, const Lum32f*>(lumiDilateBorder_32f_C3R, lumiMorphologyBorderGetSize_32f_C3R, 3, element);
    };
    const auto floats4 = [](const Element& element) {
        return pass<Lum32f, const Lum32f*>(lumiDilateBorder_32f_C4R, lumiMorphologyBorderGetSize_32f_C4R, 4, element);
    };
    return {
        {"lumiDilateBorder_8u_C3R", "rectangle 3x3", {2.0, 1.4}, bytes3(rectangle(3, 3))},
        {"lumiDilateBorder_8u_C3R", "rectangle 15x15", {}, bytes3(rectangle(15, 15))},
        {"lumiDilateBorder_8u_C4R", "rectangle 3x3", {}, bytes4(rectangle(3, 3))},
        {"lumiDilateBorder_16u_C1R", "rectangle 3x3", {}, words(rectangle(3, 3))},
        {"lumiDilateBorder_16u_C1R", "rectangle 15x15", {}, words(rectangle(15, 15))},
        {"lumiDilateBorder_16s_C1R", "rectangle 3x3", {}, signedWords(rectangle(3, 3))},
        {"lumiDilateBorder_32f_C1R", "rectangle 3x3", {2.5, 1.4}, floats(rectangle(3, 3))},
        {"lumiDilateBorder_32f_C1R", "rectangle 15x15", {3.9, 2.5}, floats(rectangle(15, 15))},
        {"lumiDilateBorder_32f_C1R", "disc 9x9", {}, floats(disc(9))},
        {"lumiDilateBorder_32f_C3R", "rectangle 3x3", {}, floats3(rectangle(3, 3))},
        {"lumiDilateBorder_32f_C4R", "rectangle 5x5", {}, floats4(rectangle(5, 5))},
    };
}

const Rows rows{joined({bytes(), otherTypes()})};

}  // namespace
