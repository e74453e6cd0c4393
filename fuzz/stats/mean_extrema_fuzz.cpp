// Fuzzes the means, the standard deviations and the extrema, with results that are not wanted among other cases.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

// The part that all of them share: a source of one channel or three, perhaps a mask, perhaps a channel of interest.
template <typename T>
Call chooseCall(Choices& choices, const std::string& name, bool masked, bool ofInterest)
{
    Call call = beginCall(choices, name);
    call.images = {{Role::Read, elementOf<T>(), ofInterest ? 3 : 1}};
    if (masked)
        call.images.push_back({Role::Mask, Element::U8});
    if (ofInterest) {
        call.arguments.channels = choices.between(1, 3);
        for (const Lum32s wrong : {0, 4, -1})
            call.violations.push_back({"channel of interest " + std::to_string(wrong),
                                       {lumErrChannelOfInterest},
                                       [wrong](Arguments& a) { a.channels = wrong; }});
    }
    return call;
}

// Results are blocks; those that are not wanted are left out of the call.
template <typename R>
int addResult(Choices& choices, Call& call, bool optional)
{
    if (optional && choices.oneIn(3))
        return -1;
    using Aligned = std::conditional_t<std::is_same_v<R, Lum64f>, Lum64f, Lum32f>;
    call.blocks.push_back({Role::Written, sizeof(R), elementOf<Aligned>(), optional});
    return int(call.blocks.size()) - 1;
}

template <typename R>
R* result(const Arguments& a, int block)
{
    return block < 0 ? nullptr : a.block<R>(std::size_t(block));
}

template <typename T>
Run mean(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, false);
        addResult<Lum64f>(choices, call, false);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.block<Lum64f>(0));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run mean(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, true);
        addResult<Lum64f>(choices, call, false);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.channels, a.block<Lum64f>(0));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run deviation(LumStatus (*f)(const T*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, false, false);
        const int m = addResult<Lum64f>(choices, call, true), d = addResult<Lum64f>(choices, call, true);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.size(), result<Lum64f>(a, m), result<Lum64f>(a, d));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run deviation(LumStatus (*f)(const T*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, false, true);
        const int m = addResult<Lum64f>(choices, call, true), d = addResult<Lum64f>(choices, call, true);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.size(), a.channels, result<Lum64f>(a, m), result<Lum64f>(a, d));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run deviation(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, false);
        const int m = addResult<Lum64f>(choices, call, true), d = addResult<Lum64f>(choices, call, true);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), result<Lum64f>(a, m),
                     result<Lum64f>(a, d));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run deviation(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, true);
        const int m = addResult<Lum64f>(choices, call, true), d = addResult<Lum64f>(choices, call, true);
        call.call = [=](const Arguments& a) {
            return f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.channels, result<Lum64f>(a, m),
                     result<Lum64f>(a, d));
        };
        tryCall(choices, std::move(call));
    };
}

// The four results of the extrema. They must agree with the image that was given.
struct Extrema
{
    int least, greatest, leastPlace, greatestPlace;

    Extrema(Choices& choices, Call& call)
        : least(addResult<Lum32f>(choices, call, true)),
          greatest(addResult<Lum32f>(choices, call, true)),
          leastPlace(addResult<LumiPoint>(choices, call, true)),
          greatestPlace(addResult<LumiPoint>(choices, call, true))
    {
    }

    template <typename T, int channels>
    LumStatus checked(const Arguments& a, LumStatus status) const
    {
        if (status == lumOk) {
            holds<T, channels>(a, least, leastPlace);
            holds<T, channels>(a, greatest, greatestPlace);
        }
        return status == lumWrnEmptyMask ? lumOk : status;  // so that the results of both runs are compared
    }

  private:
    template <typename T, int channels>
    static void holds(const Arguments& a, int value, int place)
    {
        const auto* const v = result<Lum32f>(a, value);
        const auto* const p = result<LumiPoint>(a, place);
        if (!v || !p || p->x < 0)
            return;
        const auto* const row = reinterpret_cast<const T*>(a.image<const unsigned char>(0) + a.steps[0] * p->y);
        if (Lum32f(row[p->x * channels + (channels == 3 ? a.channels - 1 : 0)]) != *v)
            fail("the pixel at (" + std::to_string(p->x) + ", " + std::to_string(p->y) + ") is not the extreme value");
    }
};

template <typename T>
Run extrema(LumStatus (*f)(const T*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, false, false);
        const Extrema e(choices, call);
        call.call = [=](const Arguments& a) {
            return e.checked<T, 1>(
                a, f(a.image<T>(0), a.step(0), a.size(), result<Lum32f>(a, e.least), result<Lum32f>(a, e.greatest),
                     result<LumiPoint>(a, e.leastPlace), result<LumiPoint>(a, e.greatestPlace)));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run extrema(LumStatus (*f)(const T*, Lum32s, LumiSize, Lum32s, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, false, true);
        const Extrema e(choices, call);
        call.call = [=](const Arguments& a) {
            return e.checked<T, 3>(a, f(a.image<T>(0), a.step(0), a.size(), a.channels, result<Lum32f>(a, e.least),
                                        result<Lum32f>(a, e.greatest), result<LumiPoint>(a, e.leastPlace),
                                        result<LumiPoint>(a, e.greatestPlace)));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run extrema(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, false);
        const Extrema e(choices, call);
        call.call = [=](const Arguments& a) {
            return e.checked<T, 1>(a, f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(),
                                        result<Lum32f>(a, e.least), result<Lum32f>(a, e.greatest),
                                        result<LumiPoint>(a, e.leastPlace), result<LumiPoint>(a, e.greatestPlace)));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run extrema(LumStatus (*f)(const T*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum32f*, Lum32f*, LumiPoint*,
                           LumiPoint*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = chooseCall<T>(choices, name, true, true);
        const Extrema e(choices, call);
        call.call = [=](const Arguments& a) {
            return e.checked<T, 3>(a, f(a.image<T>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.size(), a.channels,
                                        result<Lum32f>(a, e.least), result<Lum32f>(a, e.greatest),
                                        result<LumiPoint>(a, e.leastPlace), result<LumiPoint>(a, e.greatestPlace)));
        };
        tryCall(choices, std::move(call));
    };
}

const Targets targets{{
    {"lumiMean_8u_C1MR", mean(lumiMean_8u_C1MR)},
    {"lumiMean_16u_C1MR", mean(lumiMean_16u_C1MR)},
    {"lumiMean_32f_C1MR", mean(lumiMean_32f_C1MR)},
    {"lumiMean_8u_C3CMR", mean(lumiMean_8u_C3CMR)},
    {"lumiMean_16u_C3CMR", mean(lumiMean_16u_C3CMR)},
    {"lumiMean_32f_C3CMR", mean(lumiMean_32f_C3CMR)},
    {"lumiMean_StdDev_8u_C1R", deviation(lumiMean_StdDev_8u_C1R)},
    {"lumiMean_StdDev_16u_C1R", deviation(lumiMean_StdDev_16u_C1R)},
    {"lumiMean_StdDev_32f_C1R", deviation(lumiMean_StdDev_32f_C1R)},
    {"lumiMean_StdDev_8u_C3CR", deviation(lumiMean_StdDev_8u_C3CR)},
    {"lumiMean_StdDev_16u_C3CR", deviation(lumiMean_StdDev_16u_C3CR)},
    {"lumiMean_StdDev_32f_C3CR", deviation(lumiMean_StdDev_32f_C3CR)},
    {"lumiMean_StdDev_8u_C1MR", deviation(lumiMean_StdDev_8u_C1MR)},
    {"lumiMean_StdDev_16u_C1MR", deviation(lumiMean_StdDev_16u_C1MR)},
    {"lumiMean_StdDev_32f_C1MR", deviation(lumiMean_StdDev_32f_C1MR)},
    {"lumiMean_StdDev_8u_C3CMR", deviation(lumiMean_StdDev_8u_C3CMR)},
    {"lumiMean_StdDev_16u_C3CMR", deviation(lumiMean_StdDev_16u_C3CMR)},
    {"lumiMean_StdDev_32f_C3CMR", deviation(lumiMean_StdDev_32f_C3CMR)},
    {"lumiMinMaxIndx_8u_C1R", extrema(lumiMinMaxIndx_8u_C1R)},
    {"lumiMinMaxIndx_16u_C1R", extrema(lumiMinMaxIndx_16u_C1R)},
    {"lumiMinMaxIndx_32f_C1R", extrema(lumiMinMaxIndx_32f_C1R)},
    {"lumiMinMaxIndx_8u_C1MR", extrema(lumiMinMaxIndx_8u_C1MR)},
    {"lumiMinMaxIndx_16u_C1MR", extrema(lumiMinMaxIndx_16u_C1MR)},
    {"lumiMinMaxIndx_32f_C1MR", extrema(lumiMinMaxIndx_32f_C1MR)},
    {"lumiMinMaxIndx_8u_C3CR", extrema(lumiMinMaxIndx_8u_C3CR)},
    {"lumiMinMaxIndx_16u_C3CR", extrema(lumiMinMaxIndx_16u_C3CR)},
    {"lumiMinMaxIndx_32f_C3CR", extrema(lumiMinMaxIndx_32f_C3CR)},
    {"lumiMinMaxIndx_8u_C3CMR", extrema(lumiMinMaxIndx_8u_C3CMR)},
    {"lumiMinMaxIndx_16u_C3CMR", extrema(lumiMinMaxIndx_16u_C3CMR)},
    {"lumiMinMaxIndx_32f_C3CMR", extrema(lumiMinMaxIndx_32f_C3CMR)},
}};

}  // namespace
