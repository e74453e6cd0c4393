// Fuzzes the row and column pipelines and their size queries.
#include <algorithm>
#include <cstring>

#include "fuzz/filter/size_query.hpp"

namespace {

using namespace lumcv::fuzz;

int chooseKernelSize(Choices& choices)
{
    if (choices.oneIn(2))
        return choices.oneIn(2) ? 3 : 5;
    return choices.oneIn(50) ? choices.between(50, 1000) : choices.between(1, 24);
}

// The scratch that is needed, or a failure if the query of a valid geometry has none to tell.
std::size_t scratchBytes(Query query, LumiSize size, int kernelSize)
{
    Lum32s bytes = -1;
    if (query(size, kernelSize, &bytes) != lumOk || bytes < 0)
        fail("the size query failed");
    return std::size_t(bytes);
}

Call begin(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    Arguments& a = call.arguments;
    const LumiSize size = call.arguments.size();
    // a large image by a long kernel would take all the time there is
    a.kernelSize = size.width > 1000 ? choices.between(1, 7) : chooseKernelSize(choices);
    for (const int wrong : {0, -1, INT32_MIN})
        call.violations.push_back(
            {"kernel size " + std::to_string(wrong), {lumErrSize}, [=](Arguments& b) { b.kernelSize = wrong; }});
    return call;
}

template <typename K>
void addDivisor(Choices& choices, Call& call)
{
    if (std::is_floating_point_v<K>)
        return;
    call.arguments.divisor = chooseDivisor(choices);
    call.violations.push_back({"divisor 0", {lumErrArgument}, [](Arguments& a) { a.divisor = 0; }});
}

template <typename K, typename Apply>
LumStatus withScale(const Arguments& a, std::size_t buffer, Apply apply)
{
    if constexpr (std::is_floating_point_v<K>)
        return apply(a.block<Lum8u>(buffer));
    else
        return apply(a.divisor, a.block<Lum8u>(buffer));
}

template <typename S, typename D, typename K, typename Border, typename... Scale>
Run rowPass(LumStatus (*f)(const S*, Lum32s, D* const*, LumiSize, const K*, Lum32s, Lum32s, LumiBorderType, Border,
                           Scale...),
            Query query)
{
    return [=](Choices& choices, const std::string& name) {
        constexpr int channels = std::is_pointer_v<Border> ? 3 : 1;
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        a.anchor = choices.oneIn(3) ? choices.between(0, a.kernelSize - 1) : a.kernelSize / 2;
        a.borderType = chooseBorder(choices);

        // exactly the pixels that the border's flags promise
        lumcv::test::Margins margins;
        if (a.borderType & lumBorderInMemLeft)
            margins.left = a.anchor;
        if (a.borderType & lumBorderInMemRight)
            margins.right = a.kernelSize - 1 - a.anchor;
        std::vector<int> rows;
        for (int y = 0; y < a.height; ++y)
            rows.push_back(y);
        call.images = {{Role::Read, elementOf<S>(), channels, margins},
                       {Role::Written, elementOf<D>(), channels, {}, rows}};
        const std::size_t scratch = scratchBytes(query, a.size(), a.kernelSize);
        call.blocks = {{Role::Read, a.kernelSize * sizeof(K), elementOf<K>()},
                       {Role::Read, channels * sizeof(S), elementOf<S>(), true},
                       {Role::Scratch, scratch}};

        for (const int wrong : {-1, a.kernelSize, INT32_MIN})
            call.violations.push_back(
                {"anchor " + std::to_string(wrong), {lumErrAnchor}, [=](Arguments& b) { b.anchor = wrong; }});
        addDivisor<K>(choices, call);
        const int wrong = chooseWrongBorder(choices);
        call.violations.push_back(
            {"border " + std::to_string(wrong), {lumErrBorder}, [=](Arguments& b) { b.borderType = wrong; }});
        call.call = [=](const Arguments& b) {
            return withScale<K>(b, 2, [&](auto... scale) {
                Border border{};
                if constexpr (channels == 3)
                    border = b.block<S>(1);
                else
                    border = *b.block<S>(1);
                return f(b.image<S>(0), b.step(0), b.rows<D>(1), b.size(), b.block<K>(0), b.kernelSize, b.anchor,
                         b.borderType, border, scale...);
            });
        };
        tryCall(choices, std::move(call));
    };
}

template <typename S, typename D, typename K, typename... Scale>
Run columnPass(LumStatus (*f)(S* const*, D*, Lum32s, LumiSize, const K*, Lum32s, Scale...), Query query, int channels)
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name);
        Arguments& a = call.arguments;
        const int height = int(a.height);
        // each destination row's window: the rows of the image with repeated ends, or any rows
        std::vector<int> rows;
        const bool anyRows = choices.oneIn(4);
        const int above = choices.between(0, a.kernelSize - 1);
        for (int i = 0; i < height + a.kernelSize - 1; ++i)
            rows.push_back(anyRows ? choices.between(0, height - 1) : std::clamp(i - above, 0, height - 1));
        call.images = {{Role::Read, elementOf<S>(), channels, {}, rows}, {Role::Written, elementOf<D>(), channels}};
        const std::size_t scratch = scratchBytes(query, a.size(), a.kernelSize);
        call.blocks = {{Role::Read, a.kernelSize * sizeof(K), elementOf<K>()}, {Role::Scratch, scratch}};
        addDivisor<K>(choices, call);
        call.call = [=](const Arguments& b) {
            return withScale<K>(b, 1, [&](auto... scale) {
                return f(b.rows<S>(0), b.image<D>(1), b.step(1), b.size(), b.block<K>(0), b.kernelSize, scale...);
            });
        };
        tryCall(choices, std::move(call));
    };
}

Run sizeQuery(Query query)
{
    return [=](Choices& choices, const std::string& name) { tryQuery(choices, begin(choices, name), query); };
}

const Targets targets{{
    {"lumiFilterRowBorderPipeline_32f_C1R",
     rowPass(lumiFilterRowBorderPipeline_32f_C1R, lumiFilterRowBorderPipelineGetBufferSize_32f_C1R)},
    {"lumiFilterRowBorderPipeline_32f_C3R",
     rowPass(lumiFilterRowBorderPipeline_32f_C3R, lumiFilterRowBorderPipelineGetBufferSize_32f_C3R)},
    {"lumiFilterRowBorderPipeline_16s_C1R",
     rowPass(lumiFilterRowBorderPipeline_16s_C1R, lumiFilterRowBorderPipelineGetBufferSize_16s_C1R)},
    {"lumiFilterRowBorderPipeline_16s_C3R",
     rowPass(lumiFilterRowBorderPipeline_16s_C3R, lumiFilterRowBorderPipelineGetBufferSize_16s_C3R)},
    {"lumiFilterRowBorderPipeline_16u_C1R",
     rowPass(lumiFilterRowBorderPipeline_16u_C1R, lumiFilterRowBorderPipelineGetBufferSize_16u_C1R)},
    {"lumiFilterRowBorderPipeline_16u_C3R",
     rowPass(lumiFilterRowBorderPipeline_16u_C3R, lumiFilterRowBorderPipelineGetBufferSize_16u_C3R)},
    {"lumiFilterRowBorderPipeline_8u16s_C1R",
     rowPass(lumiFilterRowBorderPipeline_8u16s_C1R, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R)},
    {"lumiFilterRowBorderPipeline_8u16s_C3R",
     rowPass(lumiFilterRowBorderPipeline_8u16s_C3R, lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R)},
    {"lumiFilterRowBorderPipeline_Low_16s_C1R",
     rowPass(lumiFilterRowBorderPipeline_Low_16s_C1R, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R)},
    {"lumiFilterRowBorderPipeline_Low_16s_C3R",
     rowPass(lumiFilterRowBorderPipeline_Low_16s_C3R, lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R)},
    {"lumiFilterColumnPipeline_32f_C1R",
     columnPass(lumiFilterColumnPipeline_32f_C1R, lumiFilterColumnPipelineGetBufferSize_32f_C1R, 1)},
    {"lumiFilterColumnPipeline_32f_C3R",
     columnPass(lumiFilterColumnPipeline_32f_C3R, lumiFilterColumnPipelineGetBufferSize_32f_C3R, 3)},
    {"lumiFilterColumnPipeline_16s_C1R",
     columnPass(lumiFilterColumnPipeline_16s_C1R, lumiFilterColumnPipelineGetBufferSize_16s_C1R, 1)},
    {"lumiFilterColumnPipeline_16s_C3R",
     columnPass(lumiFilterColumnPipeline_16s_C3R, lumiFilterColumnPipelineGetBufferSize_16s_C3R, 3)},
    {"lumiFilterColumnPipeline_16s8u_C1R",
     columnPass(lumiFilterColumnPipeline_16s8u_C1R, lumiFilterColumnPipelineGetBufferSize_16s8u_C1R, 1)},
    {"lumiFilterColumnPipeline_16s8u_C3R",
     columnPass(lumiFilterColumnPipeline_16s8u_C3R, lumiFilterColumnPipelineGetBufferSize_16s8u_C3R, 3)},
    {"lumiFilterColumnPipeline_16s8s_C1R",
     columnPass(lumiFilterColumnPipeline_16s8s_C1R, lumiFilterColumnPipelineGetBufferSize_16s8s_C1R, 1)},
    {"lumiFilterColumnPipeline_16s8s_C3R",
     columnPass(lumiFilterColumnPipeline_16s8s_C3R, lumiFilterColumnPipelineGetBufferSize_16s8s_C3R, 3)},
    {"lumiFilterColumnPipeline_16u_C1R",
     columnPass(lumiFilterColumnPipeline_16u_C1R, lumiFilterColumnPipelineGetBufferSize_16u_C1R, 1)},
    {"lumiFilterColumnPipeline_16u_C3R",
     columnPass(lumiFilterColumnPipeline_16u_C3R, lumiFilterColumnPipelineGetBufferSize_16u_C3R, 3)},
    {"lumiFilterColumnPipeline_Low_16s_C1R",
     columnPass(lumiFilterColumnPipeline_Low_16s_C1R, lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R, 1)},
    {"lumiFilterColumnPipeline_Low_16s_C3R",
     columnPass(lumiFilterColumnPipeline_Low_16s_C3R, lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R, 3)},
    {"lumiFilterRowBorderPipelineGetBufferSize_32f_C1R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_32f_C1R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_32f_C3R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_32f_C3R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_16s_C1R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_16s_C1R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_16s_C3R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_16s_C3R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_16u_C1R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_16u_C1R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_16u_C3R", sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_16u_C3R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R",
     sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C1R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R",
     sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_8u16s_C3R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R",
     sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R)},
    {"lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R",
     sizeQuery(lumiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_32f_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_32f_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_32f_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_32f_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s8u_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s8u_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s8u_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s8u_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s8s_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s8s_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_16s8s_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16s8s_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_16u_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16u_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_16u_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_16u_C3R)},
    {"lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_Low_16s_C1R)},
    {"lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R", sizeQuery(lumiFilterColumnPipelineGetBufferSize_Low_16s_C3R)},
}};

}  // namespace
