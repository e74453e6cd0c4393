// Fuzzes the norms over a mask. The value is a block of its own, so that two calls at different addresses show whether
// it depends on them.
#include <cmath>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
using Norm = LumStatus (*)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*);
template <typename T>
using NormOfChannel = LumStatus (*)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*);
template <typename T>
using NormOfTwo = LumStatus (*)(const T*, Lum32s, const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*);
template <typename T>
using NormOfTwoChannels = LumStatus (*)(const T*, Lum32s, const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s,
                                        Lum64f*);

// `norm` is the function with its value left open; the block of the value stands at any address.
template <typename T>
Run run(int images, int channels, std::function<LumStatus(const Arguments&, Lum64f*)> norm)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        call.images.assign(std::size_t(images), {Role::Read, elementOf<T>(), channels});
        call.images.push_back({Role::Mask, Element::U8});
        call.blocks = {{Role::Written, sizeof(Lum64f)}};
        if (channels == 3) {
            call.arguments.channels = choices.between(1, 3);
            for (const Lum32s wrong : {0, 4, -1, INT32_MIN})
                call.violations.push_back({"channel of interest " + std::to_string(wrong),
                                           {lumErrChannelOfInterest},
                                           [wrong](Arguments& a) { a.channels = wrong; }});
        }
        call.call = [norm](const Arguments& a) -> LumStatus {
            if (!a.blocks[0])
                return norm(a, nullptr);
            Lum64f value;
            std::memcpy(&value, a.blocks[0], sizeof value);
            const LumStatus status = norm(a, &value);
            std::memcpy(a.blocks[0], &value, sizeof value);
            if (status != lumWrnZeroDivisor)
                return status;
            if (std::isfinite(value))
                fail("a finite quotient by zero");
            return lumOk;  // the warning comes with a complete result
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run norm(Norm<T> f)
{
    return run<T>(1, 1, [f](const Arguments& a, Lum64f* value) {
        return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), value);
    });
}

template <typename T>
Run norm(NormOfChannel<T> f)
{
    return run<T>(1, 3, [f](const Arguments& a, Lum64f* value) {
        return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.channels, value);
    });
}

template <typename T>
Run norm(NormOfTwo<T> f)
{
    return run<T>(2, 1, [f](const Arguments& a, Lum64f* value) {
        return f(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.image<Lum8u>(2), a.step(2), a.size(), value);
    });
}

template <typename T>
Run norm(NormOfTwoChannels<T> f)
{
    return run<T>(2, 3, [f](const Arguments& a, Lum64f* value) {
        return f(a.image<T>(0), a.step(0), a.image<T>(1), a.step(1), a.image<Lum8u>(2), a.step(2), a.size(), a.channels,
                 value);
    });
}

const Targets targets{{
    {"lumiNorm_Inf_8u_C1MR", norm<Lum8u>(lumiNorm_Inf_8u_C1MR)},
    {"lumiNorm_Inf_16u_C1MR", norm<Lum16u>(lumiNorm_Inf_16u_C1MR)},
    {"lumiNorm_Inf_32f_C1MR", norm<Lum32f>(lumiNorm_Inf_32f_C1MR)},
    {"lumiNorm_Inf_8u_C3CMR", norm<Lum8u>(lumiNorm_Inf_8u_C3CMR)},
    {"lumiNorm_Inf_16u_C3CMR", norm<Lum16u>(lumiNorm_Inf_16u_C3CMR)},
    {"lumiNorm_Inf_32f_C3CMR", norm<Lum32f>(lumiNorm_Inf_32f_C3CMR)},
    {"lumiNorm_L1_8u_C1MR", norm<Lum8u>(lumiNorm_L1_8u_C1MR)},
    {"lumiNorm_L1_16u_C1MR", norm<Lum16u>(lumiNorm_L1_16u_C1MR)},
    {"lumiNorm_L1_32f_C1MR", norm<Lum32f>(lumiNorm_L1_32f_C1MR)},
    {"lumiNorm_L1_8u_C3CMR", norm<Lum8u>(lumiNorm_L1_8u_C3CMR)},
    {"lumiNorm_L1_16u_C3CMR", norm<Lum16u>(lumiNorm_L1_16u_C3CMR)},
    {"lumiNorm_L1_32f_C3CMR", norm<Lum32f>(lumiNorm_L1_32f_C3CMR)},
    {"lumiNorm_L2_8u_C1MR", norm<Lum8u>(lumiNorm_L2_8u_C1MR)},
    {"lumiNorm_L2_16u_C1MR", norm<Lum16u>(lumiNorm_L2_16u_C1MR)},
    {"lumiNorm_L2_32f_C1MR", norm<Lum32f>(lumiNorm_L2_32f_C1MR)},
    {"lumiNorm_L2_8u_C3CMR", norm<Lum8u>(lumiNorm_L2_8u_C3CMR)},
    {"lumiNorm_L2_16u_C3CMR", norm<Lum16u>(lumiNorm_L2_16u_C3CMR)},
    {"lumiNorm_L2_32f_C3CMR", norm<Lum32f>(lumiNorm_L2_32f_C3CMR)},
    {"lumiNormDiff_Inf_8u_C1MR", norm<Lum8u>(lumiNormDiff_Inf_8u_C1MR)},
    {"lumiNormDiff_Inf_16u_C1MR", norm<Lum16u>(lumiNormDiff_Inf_16u_C1MR)},
    {"lumiNormDiff_Inf_32f_C1MR", norm<Lum32f>(lumiNormDiff_Inf_32f_C1MR)},
    {"lumiNormDiff_Inf_8u_C3CMR", norm<Lum8u>(lumiNormDiff_Inf_8u_C3CMR)},
    {"lumiNormDiff_Inf_16u_C3CMR", norm<Lum16u>(lumiNormDiff_Inf_16u_C3CMR)},
    {"lumiNormDiff_Inf_32f_C3CMR", norm<Lum32f>(lumiNormDiff_Inf_32f_C3CMR)},
    {"lumiNormDiff_L1_8u_C1MR", norm<Lum8u>(lumiNormDiff_L1_8u_C1MR)},
    {"lumiNormDiff_L1_16u_C1MR", norm<Lum16u>(lumiNormDiff_L1_16u_C1MR)},
    {"lumiNormDiff_L1_32f_C1MR", norm<Lum32f>(lumiNormDiff_L1_32f_C1MR)},
    {"lumiNormDiff_L1_8u_C3CMR", norm<Lum8u>(lumiNormDiff_L1_8u_C3CMR)},
    {"lumiNormDiff_L1_16u_C3CMR", norm<Lum16u>(lumiNormDiff_L1_16u_C3CMR)},
    {"lumiNormDiff_L1_32f_C3CMR", norm<Lum32f>(lumiNormDiff_L1_32f_C3CMR)},
    {"lumiNormDiff_L2_8u_C1MR", norm<Lum8u>(lumiNormDiff_L2_8u_C1MR)},
    {"lumiNormDiff_L2_16u_C1MR", norm<Lum16u>(lumiNormDiff_L2_16u_C1MR)},
    {"lumiNormDiff_L2_32f_C1MR", norm<Lum32f>(lumiNormDiff_L2_32f_C1MR)},
    {"lumiNormDiff_L2_8u_C3CMR", norm<Lum8u>(lumiNormDiff_L2_8u_C3CMR)},
    {"lumiNormDiff_L2_16u_C3CMR", norm<Lum16u>(lumiNormDiff_L2_16u_C3CMR)},
    {"lumiNormDiff_L2_32f_C3CMR", norm<Lum32f>(lumiNormDiff_L2_32f_C3CMR)},
    {"lumiNormRel_Inf_8u_C1MR", norm<Lum8u>(lumiNormRel_Inf_8u_C1MR)},
    {"lumiNormRel_Inf_16u_C1MR", norm<Lum16u>(lumiNormRel_Inf_16u_C1MR)},
    {"lumiNormRel_Inf_32f_C1MR", norm<Lum32f>(lumiNormRel_Inf_32f_C1MR)},
    {"lumiNormRel_Inf_8u_C3CMR", norm<Lum8u>(lumiNormRel_Inf_8u_C3CMR)},
    {"lumiNormRel_Inf_16u_C3CMR", norm<Lum16u>(lumiNormRel_Inf_16u_C3CMR)},
    {"lumiNormRel_Inf_32f_C3CMR", norm<Lum32f>(lumiNormRel_Inf_32f_C3CMR)},
    {"lumiNormRel_L1_8u_C1MR", norm<Lum8u>(lumiNormRel_L1_8u_C1MR)},
    {"lumiNormRel_L1_16u_C1MR", norm<Lum16u>(lumiNormRel_L1_16u_C1MR)},
    {"lumiNormRel_L1_32f_C1MR", norm<Lum32f>(lumiNormRel_L1_32f_C1MR)},
    {"lumiNormRel_L1_8u_C3CMR", norm<Lum8u>(lumiNormRel_L1_8u_C3CMR)},
    {"lumiNormRel_L1_16u_C3CMR", norm<Lum16u>(lumiNormRel_L1_16u_C3CMR)},
    {"lumiNormRel_L1_32f_C3CMR", norm<Lum32f>(lumiNormRel_L1_32f_C3CMR)},
    {"lumiNormRel_L2_8u_C1MR", norm<Lum8u>(lumiNormRel_L2_8u_C1MR)},
    {"lumiNormRel_L2_16u_C1MR", norm<Lum16u>(lumiNormRel_L2_16u_C1MR)},
    {"lumiNormRel_L2_32f_C1MR", norm<Lum32f>(lumiNormRel_L2_32f_C1MR)},
    {"lumiNormRel_L2_8u_C3CMR", norm<Lum8u>(lumiNormRel_L2_8u_C3CMR)},
    {"lumiNormRel_L2_16u_C3CMR", norm<Lum16u>(lumiNormRel_L2_16u_C3CMR)},
    {"lumiNormRel_L2_32f_C3CMR", norm<Lum32f>(lumiNormRel_L2_32f_C3CMR)},
}};

}  // namespace
