// Fuzzes the flood fills and their size queries. Regions of more than a pixel need images of few values, so each call
// thins out the values of its image first; what a fill does to the rest of it is for the comparison of both calls.
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

enum class Family
{
    Plain,
    Range,
    Grad
};

// What a call is asked for besides its image; the seed lies in the image unless it is made wrong.
struct Order
{
    LumiPoint seed;
    int newValue, minDelta, maxDelta;
    int values;  // different values in the image
};

template <typename T>
struct Numbers
{
    T of[3];

    explicit Numbers(int first) : of{T(first), T(first + 1), T(first)} {}
};

// Leaves `values` values, which are whole numbers from 0 on; what is not a number stays.
template <typename T>
void thinOut(T* pixels, Lum32s step, LumiSize size, int channels, int values)
{
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width * channels; ++x) {
            T value;
            auto* const p = reinterpret_cast<unsigned char*>(pixels) + std::ptrdiff_t{y} * step + x * sizeof(T);
            std::memcpy(&value, p, sizeof value);
            if constexpr (std::is_floating_point_v<T>)
                value = value > 100 ? T(values - 1) : value < -100 ? T(0) : value == value ? T(values / 2) : value;
            else
                value = T((value % values + values) % values);
            std::memcpy(p, &value, sizeof value);
        }
}

// One call: `fill(arguments, seed, newValue, minDelta, maxDelta, region)` with arrays of three values.
template <typename T, int channels, typename Fill>
Run run(Family family, Fill fill)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        const LumiSize size = call.arguments.size();
        const std::size_t bytes =
            bytesOf(family == Family::Grad ? lumiFloodFillGetSize_Grad : lumiFloodFillGetSize, call);
        Order order{};
        order.seed = {choices.between(0, size.width - 1), choices.between(0, size.height - 1)};
        order.values = choices.between(1, 4);
        order.newValue = choices.between(0, 6);
        order.minDelta = choices.between(0, 2);
        order.maxDelta = choices.between(0, 2);
        call.images = {{Role::Updated, elementOf<T>(), channels}};
        call.blocks = {{Role::Scratch, bytes}, {Role::Written, sizeof(LumiConnectedComp), Element::F64}};
        call.prepare = [=](Arguments& a) { thinOut(a.image<T>(0), a.step(0), a.size(), channels, order.values); };
        // the seed is moved out of the image by the number of the anchor
        call.arguments.anchor = 0;
        for (const int wrong : {1, 2, 3, 4})
            call.violations.push_back({"seed outside", {lumErrOutOfRange}, [=](Arguments& a) { a.anchor = wrong; }});
        if (family == Family::Grad && std::is_floating_point_v<T>) {
            call.violations.push_back({"negative delta", {lumErrOutOfRange}, [](Arguments& a) { a.divisor = -1; }});
        }
        call.call = [=](const Arguments& a) {
            LumiPoint seed = order.seed;
            if (a.anchor == 1)
                seed.x = -1;
            if (a.anchor == 2)
                seed.x = Lum32s(a.width) < 0 ? 0 : Lum32s(a.width);
            if (a.anchor == 3)
                seed.y = INT32_MIN;
            if (a.anchor == 4)
                seed.y = INT32_MAX;
            const LumiConnectedComp none{-1, {-1, -1, -1}, {-1, -1, -1, -1}};
            LumiConnectedComp region = none;
            void* const out = a.blocks[1];
            const Numbers<T> newValue(order.newValue), minDelta(a.divisor < 0 ? -1 : order.minDelta),
                maxDelta(order.maxDelta);
            const LumStatus status = fill(a, seed, newValue.of, minDelta.of, maxDelta.of, out ? &region : nullptr);
            if (status == lumOk)
                std::memcpy(out, &region, sizeof region);
            else if (std::memcmp(&region, &none, sizeof region) != 0)
                fail("the record was written after an error");
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T>
Run plain(LumStatus (*f)(T*, Lum32s, LumiSize, LumiPoint, T, LumiConnectedComp*, Lum8u*))
{
    return run<T, 1>(Family::Plain, [=](const Arguments& a, LumiPoint seed, const T* value, const T*, const T*,
                                        LumiConnectedComp* region) {
        return f(a.image<T>(0), a.step(0), a.size(), seed, *value, region, a.block<Lum8u>(0));
    });
}

template <typename T>
Run plain(LumStatus (*f)(T*, Lum32s, LumiSize, LumiPoint, const T*, LumiConnectedComp*, Lum8u*))
{
    return run<T, 3>(Family::Plain, [=](const Arguments& a, LumiPoint seed, const T* value, const T*, const T*,
                                        LumiConnectedComp* region) {
        return f(a.image<T>(0), a.step(0), a.size(), seed, value, region, a.block<Lum8u>(0));
    });
}

template <typename T>
Run within(Family family, LumStatus (*f)(T*, Lum32s, LumiSize, LumiPoint, T, T, T, LumiConnectedComp*, Lum8u*))
{
    return run<T, 1>(family, [=](const Arguments& a, LumiPoint seed, const T* value, const T* minDelta,
                                 const T* maxDelta, LumiConnectedComp* region) {
        return f(a.image<T>(0), a.step(0), a.size(), seed, *value, *minDelta, *maxDelta, region, a.block<Lum8u>(0));
    });
}

template <typename T>
Run within(Family family,
           LumStatus (*f)(T*, Lum32s, LumiSize, LumiPoint, const T*, const T*, const T*, LumiConnectedComp*, Lum8u*))
{
    return run<T, 3>(family, [=](const Arguments& a, LumiPoint seed, const T* value, const T* minDelta,
                                 const T* maxDelta, LumiConnectedComp* region) {
        return f(a.image<T>(0), a.step(0), a.size(), seed, value, minDelta, maxDelta, region, a.block<Lum8u>(0));
    });
}

const Targets targets{{
    {"lumiFloodFillGetSize", roiQuery(lumiFloodFillGetSize)},
    {"lumiFloodFillGetSize_Grad", roiQuery(lumiFloodFillGetSize_Grad)},
    {"lumiFloodFill_4Con_16u_C1IR", plain(lumiFloodFill_4Con_16u_C1IR)},
    {"lumiFloodFill_4Con_16u_C3IR", plain(lumiFloodFill_4Con_16u_C3IR)},
    {"lumiFloodFill_4Con_32f_C1IR", plain(lumiFloodFill_4Con_32f_C1IR)},
    {"lumiFloodFill_4Con_32f_C3IR", plain(lumiFloodFill_4Con_32f_C3IR)},
    {"lumiFloodFill_4Con_32s_C1IR", plain(lumiFloodFill_4Con_32s_C1IR)},
    {"lumiFloodFill_4Con_8u_C1IR", plain(lumiFloodFill_4Con_8u_C1IR)},
    {"lumiFloodFill_4Con_8u_C3IR", plain(lumiFloodFill_4Con_8u_C3IR)},
    {"lumiFloodFill_8Con_16u_C1IR", plain(lumiFloodFill_8Con_16u_C1IR)},
    {"lumiFloodFill_8Con_16u_C3IR", plain(lumiFloodFill_8Con_16u_C3IR)},
    {"lumiFloodFill_8Con_32f_C1IR", plain(lumiFloodFill_8Con_32f_C1IR)},
    {"lumiFloodFill_8Con_32f_C3IR", plain(lumiFloodFill_8Con_32f_C3IR)},
    {"lumiFloodFill_8Con_32s_C1IR", plain(lumiFloodFill_8Con_32s_C1IR)},
    {"lumiFloodFill_8Con_8u_C1IR", plain(lumiFloodFill_8Con_8u_C1IR)},
    {"lumiFloodFill_8Con_8u_C3IR", plain(lumiFloodFill_8Con_8u_C3IR)},
    {"lumiFloodFill_Range4Con_16u_C1IR", within(Family::Range, lumiFloodFill_Range4Con_16u_C1IR)},
    {"lumiFloodFill_Range4Con_16u_C3IR", within(Family::Range, lumiFloodFill_Range4Con_16u_C3IR)},
    {"lumiFloodFill_Range4Con_32f_C1IR", within(Family::Range, lumiFloodFill_Range4Con_32f_C1IR)},
    {"lumiFloodFill_Range4Con_32f_C3IR", within(Family::Range, lumiFloodFill_Range4Con_32f_C3IR)},
    {"lumiFloodFill_Range4Con_8u_C1IR", within(Family::Range, lumiFloodFill_Range4Con_8u_C1IR)},
    {"lumiFloodFill_Range4Con_8u_C3IR", within(Family::Range, lumiFloodFill_Range4Con_8u_C3IR)},
    {"lumiFloodFill_Range8Con_16u_C1IR", within(Family::Range, lumiFloodFill_Range8Con_16u_C1IR)},
    {"lumiFloodFill_Range8Con_16u_C3IR", within(Family::Range, lumiFloodFill_Range8Con_16u_C3IR)},
    {"lumiFloodFill_Range8Con_32f_C1IR", within(Family::Range, lumiFloodFill_Range8Con_32f_C1IR)},
    {"lumiFloodFill_Range8Con_32f_C3IR", within(Family::Range, lumiFloodFill_Range8Con_32f_C3IR)},
    {"lumiFloodFill_Range8Con_8u_C1IR", within(Family::Range, lumiFloodFill_Range8Con_8u_C1IR)},
    {"lumiFloodFill_Range8Con_8u_C3IR", within(Family::Range, lumiFloodFill_Range8Con_8u_C3IR)},
    {"lumiFloodFill_Grad4Con_16u_C1IR", within(Family::Grad, lumiFloodFill_Grad4Con_16u_C1IR)},
    {"lumiFloodFill_Grad4Con_16u_C3IR", within(Family::Grad, lumiFloodFill_Grad4Con_16u_C3IR)},
    {"lumiFloodFill_Grad4Con_32f_C1IR", within(Family::Grad, lumiFloodFill_Grad4Con_32f_C1IR)},
    {"lumiFloodFill_Grad4Con_32f_C3IR", within(Family::Grad, lumiFloodFill_Grad4Con_32f_C3IR)},
    {"lumiFloodFill_Grad4Con_8u_C1IR", within(Family::Grad, lumiFloodFill_Grad4Con_8u_C1IR)},
    {"lumiFloodFill_Grad4Con_8u_C3IR", within(Family::Grad, lumiFloodFill_Grad4Con_8u_C3IR)},
    {"lumiFloodFill_Grad8Con_16u_C1IR", within(Family::Grad, lumiFloodFill_Grad8Con_16u_C1IR)},
    {"lumiFloodFill_Grad8Con_16u_C3IR", within(Family::Grad, lumiFloodFill_Grad8Con_16u_C3IR)},
    {"lumiFloodFill_Grad8Con_32f_C1IR", within(Family::Grad, lumiFloodFill_Grad8Con_32f_C1IR)},
    {"lumiFloodFill_Grad8Con_32f_C3IR", within(Family::Grad, lumiFloodFill_Grad8Con_32f_C3IR)},
    {"lumiFloodFill_Grad8Con_8u_C1IR", within(Family::Grad, lumiFloodFill_Grad8Con_8u_C1IR)},
    {"lumiFloodFill_Grad8Con_8u_C3IR", within(Family::Grad, lumiFloodFill_Grad8Con_8u_C3IR)},
}};

}  // namespace
