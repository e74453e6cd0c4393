// Fuzzes the integral images.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
ImageOperand table(int extra)
{
    ImageOperand operand{Role::Written, elementOf<T>()};
    operand.extra = {extra, extra};
    operand.leastExtra = extra;
    return operand;
}

Run target(std::vector<ImageOperand> images, std::function<LumStatus(const Arguments&)> function)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.arguments.parameter = Lum32f(choices.between(-1000, 1000));
        call.images = images;
        call.call = function;
        tryCall(choices, std::move(call));
    };
}

template <typename D>
Run sums(LumStatus (*f)(const Lum8u*, Lum32s, D*, Lum32s, LumiSize, D), int extra)
{
    return target({{Role::Read, Element::U8}, table<D>(extra)}, [=](const Arguments& a) {
        return f(a.image<Lum8u>(0), a.step(0), a.image<D>(1), a.step(1), a.size(), D(a.parameter));
    });
}

template <typename D, typename Q>
Run sumsAndSquares(LumStatus (*f)(const Lum8u*, Lum32s, D*, Lum32s, Q*, Lum32s, LumiSize, D, Q), int extra)
{
    return target({{Role::Read, Element::U8}, table<D>(extra), table<Q>(extra)}, [=](const Arguments& a) {
        return f(a.image<Lum8u>(0), a.step(0), a.image<D>(1), a.step(1), a.image<Q>(2), a.step(2), a.size(),
                 D(a.parameter), Q(-a.parameter));
    });
}

Run floatSums()
{
    return target({{Role::Read, Element::F32}, table<Lum32f>(1)}, [](const Arguments& a) {
        return lumiIntegral_32f_C1R(a.image<Lum32f>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.size());
    });
}

const Targets targets{{
    {"lumiIntegral_8u32s_C1R", sums(lumiIntegral_8u32s_C1R, 1)},
    {"lumiIntegral_8u32f_C1R", sums(lumiIntegral_8u32f_C1R, 1)},
    {"lumiIntegral_32f_C1R", floatSums()},
    {"lumiSqrIntegral_8u32s_C1R", sumsAndSquares(lumiSqrIntegral_8u32s_C1R, 1)},
    {"lumiSqrIntegral_8u32s64f_C1R", sumsAndSquares(lumiSqrIntegral_8u32s64f_C1R, 1)},
    {"lumiSqrIntegral_8u32f64f_C1R", sumsAndSquares(lumiSqrIntegral_8u32f64f_C1R, 1)},
    {"lumiTiltedIntegral_8u32s_C1R", sums(lumiTiltedIntegral_8u32s_C1R, 2)},
    {"lumiTiltedIntegral_8u32f_C1R", sums(lumiTiltedIntegral_8u32f_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32s_C1R", sumsAndSquares(lumiTiltedSqrIntegral_8u32s_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32s64f_C1R", sumsAndSquares(lumiTiltedSqrIntegral_8u32s64f_C1R, 2)},
    {"lumiTiltedSqrIntegral_8u32f64f_C1R", sumsAndSquares(lumiTiltedSqrIntegral_8u32f64f_C1R, 2)},
}};

}  // namespace
