// Rows of dilation and erosion by a gray element: domes of several sizes.
#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

template <typename T>
using Init = LumStatus (*)(LumiMorphGrayRecord*, LumiSize, const T*, LumiSize, LumiPoint);
template <typename T>
using Apply = LumStatus (*)(const T*, Lum32s, T*, Lum32s, LumiSize, LumiBorderType, const LumiMorphGrayRecord*);

template <typename T, typename Height>
auto grayElement(Apply<T> function, Init<Height> init, int side, int lowered = 0)
{
    return [=](Job& job) -> Call {
        const auto s = job.source<T>();
        const auto d = job.destination<T>();
        const LumiSize size = job.size();
        std::vector<Height> dome;
        for (int j = 0; j < side; ++j)
            for (int i = 0; i < side; ++i) {
                const int x = i - side / 2, y = j - side / 2;
                dome.push_back(Height(side / 2 * (side / 2) * 2 - x * x - y * y - lowered));
            }
        auto* const record =
            reinterpret_cast<LumiMorphGrayRecord*>(job.block<Lum8u>(dome.size() * sizeof(Height) + 32));
        init(record, size, dome.data(), {side, side}, {side / 2, side / 2});
        return [=] { return function(s.pixels, s.step, d.pixels, d.step, size, lumBorderReplicate, record); };
    };
}

auto bytes(Apply<Lum8u> function, int side, int lowered = 0)
{
    return grayElement(function, lumiMorphGrayInit_8u_C1R, side, lowered);
}

auto floats(Apply<Lum32f> function, int side)
{
    return grayElement(function, lumiMorphGrayInit_32f_C1R, side);
}

const Rows rows{{
    {"lumiGrayDilateBorder_8u_C1R", "3x3", {}, bytes(lumiGrayDilateBorder_8u_C1R, 3)},
    {"lumiGrayDilateBorder_8u_C1R", "5x5", {}, bytes(lumiGrayDilateBorder_8u_C1R, 5)},
    {"lumiGrayDilateBorder_8u_C1R", "15x15", {}, bytes(lumiGrayDilateBorder_8u_C1R, 15)},
    {"lumiGrayDilateBorder_8u_C1R", "5x5 +-", {}, bytes(lumiGrayDilateBorder_8u_C1R, 5, 4)},
    {"lumiGrayErodeBorder_8u_C1R", "5x5", {}, bytes(lumiGrayErodeBorder_8u_C1R, 5)},
    {"lumiGrayDilateBorder_32f_C1R", "3x3", {}, floats(lumiGrayDilateBorder_32f_C1R, 3)},
    {"lumiGrayDilateBorder_32f_C1R", "5x5", {}, floats(lumiGrayDilateBorder_32f_C1R, 5)},
    {"lumiGrayDilateBorder_32f_C1R", "15x15", {}, floats(lumiGrayDilateBorder_32f_C1R, 15)},
    {"lumiGrayErodeBorder_32f_C1R", "5x5", {}, floats(lumiGrayErodeBorder_32f_C1R, 5)},
}};

}  // namespace
