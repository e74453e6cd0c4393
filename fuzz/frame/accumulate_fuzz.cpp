// Fuzzes the accumulators.
#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
ImageOperand read()
{
    return {Role::Read, elementOf<T>()};
}

const ImageOperand mask{Role::Mask, Element::U8}, accumulator{Role::Updated, Element::F32};

Run target(std::vector<ImageOperand> images, std::function<LumStatus(const Arguments&)> function)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        const Lum32f alphas[] = {0, 1, 0.05f, -3, 1e30f};
        call.arguments.parameter = choices.oneOf(alphas);
        call.images = images;
        call.call = function;
        tryCall(choices, std::move(call));
    };
}

template <typename S>
Run accumulate(LumStatus (*f)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return target({read<S>(), accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.size());
    });
}

template <typename S>
Run accumulate(LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return target({read<S>(), mask, accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.image<Lum32f>(2), a.step(2), a.size());
    });
}

template <typename S>
Run product(LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return target({read<S>(), read<S>(), accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<S>(1), a.step(1), a.image<Lum32f>(2), a.step(2), a.size());
    });
}

template <typename S>
Run product(LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize))
{
    return target({read<S>(), read<S>(), mask, accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<S>(1), a.step(1), a.image<Lum8u>(2), a.step(2), a.image<Lum32f>(3),
                 a.step(3), a.size());
    });
}

template <typename S>
Run weighted(LumStatus (*f)(const S*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return target({read<S>(), accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.size(), a.parameter);
    });
}

template <typename S>
Run weighted(LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, Lum32f*, Lum32s, LumiSize, Lum32f))
{
    return target({read<S>(), mask, accumulator}, [=](const Arguments& a) {
        return f(a.image<S>(0), a.step(0), a.image<Lum8u>(1), a.step(1), a.image<Lum32f>(2), a.step(2), a.size(),
                 a.parameter);
    });
}

Run weightedThreeImages()
{
    return target({read<Lum32f>(), read<Lum32f>(), {Role::Written, Element::F32}}, [](const Arguments& a) {
        return lumiAddWeighted_32f_C1R(a.image<Lum32f>(0), a.step(0), a.image<Lum32f>(1), a.step(1), a.image<Lum32f>(2),
                                       a.step(2), a.size(), a.parameter);
    });
}

const Targets targets{{
    {"lumiAdd_8u32f_C1IR", accumulate(lumiAdd_8u32f_C1IR)},
    {"lumiAdd_16u32f_C1IR", accumulate(lumiAdd_16u32f_C1IR)},
    {"lumiAdd_8u32f_C1IMR", accumulate(lumiAdd_8u32f_C1IMR)},
    {"lumiAdd_16u32f_C1IMR", accumulate(lumiAdd_16u32f_C1IMR)},
    {"lumiAdd_32f_C1IMR", accumulate(lumiAdd_32f_C1IMR)},
    {"lumiAddSquare_8u32f_C1IR", accumulate(lumiAddSquare_8u32f_C1IR)},
    {"lumiAddSquare_16u32f_C1IR", accumulate(lumiAddSquare_16u32f_C1IR)},
    {"lumiAddSquare_32f_C1IR", accumulate(lumiAddSquare_32f_C1IR)},
    {"lumiAddSquare_8u32f_C1IMR", accumulate(lumiAddSquare_8u32f_C1IMR)},
    {"lumiAddSquare_16u32f_C1IMR", accumulate(lumiAddSquare_16u32f_C1IMR)},
    {"lumiAddSquare_32f_C1IMR", accumulate(lumiAddSquare_32f_C1IMR)},
    {"lumiAddProduct_8u32f_C1IR", product(lumiAddProduct_8u32f_C1IR)},
    {"lumiAddProduct_16u32f_C1IR", product(lumiAddProduct_16u32f_C1IR)},
    {"lumiAddProduct_32f_C1IR", product(lumiAddProduct_32f_C1IR)},
    {"lumiAddProduct_8u32f_C1IMR", product(lumiAddProduct_8u32f_C1IMR)},
    {"lumiAddProduct_16u32f_C1IMR", product(lumiAddProduct_16u32f_C1IMR)},
    {"lumiAddProduct_32f_C1IMR", product(lumiAddProduct_32f_C1IMR)},
    {"lumiAddWeighted_8u32f_C1IR", weighted(lumiAddWeighted_8u32f_C1IR)},
    {"lumiAddWeighted_16u32f_C1IR", weighted(lumiAddWeighted_16u32f_C1IR)},
    {"lumiAddWeighted_32f_C1IR", weighted(lumiAddWeighted_32f_C1IR)},
    {"lumiAddWeighted_8u32f_C1IMR", weighted(lumiAddWeighted_8u32f_C1IMR)},
    {"lumiAddWeighted_16u32f_C1IMR", weighted(lumiAddWeighted_16u32f_C1IMR)},
    {"lumiAddWeighted_32f_C1IMR", weighted(lumiAddWeighted_32f_C1IMR)},
    {"lumiAddWeighted_32f_C1R", weightedThreeImages()},
}};

}  // namespace
