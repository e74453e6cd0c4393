// Rows of opening, closing, top-hat, black-hat and gradient.
#include "bench/morph/elements.hpp"
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Compound = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, T, const LumiMorphCompoundSpec*,
                               Lum8u*);

using Sizes = LumStatus (*)(LumiSize, LumiSize, Lum32s*, Lum32s*);

template <typename T>
auto compound(Compound<T> function, Sizes sizes, const Element& element)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto d = job.destination<T>();
        const LumiSize size = job.size();
        Lum32s specSize = 0, bufferSize = 0;
        sizes(size, element.size, &specSize, &bufferSize);
        auto* const spec = reinterpret_cast<LumiMorphCompoundSpec*>(job.block<Lum8u>(std::size_t(specSize)));
        auto* const buffer = job.block<Lum8u>(std::size_t(bufferSize));
        lumiMorphAdvInit_8u_C1R(size, element.mask.data(), element.size, spec, buffer);
        return
            [=] { return function(s.pixels, s.step, d.pixels, d.step, size, lumBorderReplicate, T{}, spec, buffer); };
    };
}

auto bytes(Compound<Lum8u> function, const Element& element)
{
    return compound<Lum8u>(function, lumiMorphAdvGetSize_8u_C1R, element);
}

auto floats(Compound<Lum32f> function, const Element& element)
{
    return compound<Lum32f>(function, lumiMorphAdvGetSize_32f_C1R, element);
}

const Rows rows{{
    {"lumiMorphOpenBorder_8u_C1R", "rectangle 5x5", {3.6, 2.6}, bytes(lumiMorphOpenBorder_8u_C1R, rectangle(5, 5))},
    {"lumiMorphGradientBorder_8u_C1R",
     "rectangle 3x3",
     {4.4, 2.4},
     bytes(lumiMorphGradientBorder_8u_C1R, rectangle(3, 3))},
    {"lumiMorphTophatBorder_8u_C1R",
     "rectangle 15x15",
     {8.1, 5},
     bytes(lumiMorphTophatBorder_8u_C1R, rectangle(15, 15))},
    {"lumiMorphCloseBorder_8u_C1R", "rectangle 3x3", {}, bytes(lumiMorphCloseBorder_8u_C1R, rectangle(3, 3))},
    {"lumiMorphBlackhatBorder_8u_C1R", "disc 9x9", {}, bytes(lumiMorphBlackhatBorder_8u_C1R, disc(9))},
    {"lumiMorphOpenBorder_32f_C1R", "rectangle 5x5", {}, floats(lumiMorphOpenBorder_32f_C1R, rectangle(5, 5))},
}};

}  // namespace
