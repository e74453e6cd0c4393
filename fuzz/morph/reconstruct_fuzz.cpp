// Fuzzes the reconstructions of 8u, 16u, 32f and 64f images and their size query.
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

template <typename T>
Run reconstruct(LumStatus (*f)(const T*, Lum32s, T*, Lum32s, LumiSize, Lum8u*, LumiDistanceNorm))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginCall(choices, name);
        Arguments& a = call.arguments;
        const LumiSize queried{a.size().width + choices.between(0, 20), a.size().height + choices.between(0, 5)};
        Lum32s bytes = -1;
        if (lumiMorphReconstructGetBufferSize(queried, typeCode(elementOf<T>()), 1, &bytes) != lumOk)
            fail("the size query failed");
        call.images = {{Role::Read, elementOf<T>()}, {Role::Updated, elementOf<T>()}};
        call.blocks = {{Role::Scratch, std::size_t(bytes)}};
        a.parameter = 0;
        a.anchor = choices.oneIn(2) ? lumDistanceNormL1 : lumDistanceNormInf;
        const int norms[] = {lumDistanceNormL2, 3, -1, INT32_MIN, INT32_MAX};
        const int wrong = choices.oneOf(norms);
        call.violations.push_back(
            {"norm " + std::to_string(wrong), {lumErrArgument}, [=](Arguments& b) { b.anchor = wrong; }});
        call.call = [=](const Arguments& b) {
            return f(b.image<T>(0), b.step(0), b.image<T>(1), b.step(1), b.size(), b.block<Lum8u>(0), b.anchor);
        };
        tryCall(choices, std::move(call));
    };
}

void query(Choices& choices, const std::string& name)
{
    Call call = beginCall(choices, name);
    const int types[] = {lumType8u, lumType16u, lumType32f, lumType64f};
    call.arguments.dataType = choices.oneOf(types);
    call.arguments.channels = 1;
    call.blocks = {{Role::Written, sizeof(Lum32s)}};
    const int wrongTypes[] = {0, 2, lumType16s, 18, -1, INT32_MAX};
    const int wrongType = choices.oneOf(wrongTypes);
    const int wrongCounts[] = {0, 2, 3, 4, -1, INT32_MIN};
    const int wrongCount = choices.oneOf(wrongCounts);
    call.violations.push_back({"wrong type", {lumErrDataType}, [=](Arguments& a) { a.dataType = wrongType; }});
    call.violations.push_back({"wrong channels", {lumErrChannels}, [=](Arguments& a) { a.channels = wrongCount; }});
    call.violations.push_back(
        {"an image beyond any block", {lumErrSizeTooLarge}, [](Arguments& a) { a.width = 0x7ffffff0; }});
    call.call = [](const Arguments& a) {
        Lum32s size = 0;
        if (a.blocks[0])
            std::memcpy(&size, a.blocks[0], sizeof size);
        const LumStatus status =
            lumiMorphReconstructGetBufferSize(a.size(), a.dataType, a.channels, a.blocks[0] ? &size : nullptr);
        if (a.blocks[0])
            std::memcpy(a.blocks[0], &size, sizeof size);
        return status;
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumiMorphReconstructGetBufferSize", query},
    {"lumiMorphReconstructDilate_8u_C1IR", reconstruct(lumiMorphReconstructDilate_8u_C1IR)},
    {"lumiMorphReconstructErode_8u_C1IR", reconstruct(lumiMorphReconstructErode_8u_C1IR)},
    {"lumiMorphReconstructDilate_16u_C1IR", reconstruct(lumiMorphReconstructDilate_16u_C1IR)},
    {"lumiMorphReconstructErode_16u_C1IR", reconstruct(lumiMorphReconstructErode_16u_C1IR)},
    {"lumiMorphReconstructDilate_32f_C1IR", reconstruct(lumiMorphReconstructDilate_32f_C1IR)},
    {"lumiMorphReconstructErode_32f_C1IR", reconstruct(lumiMorphReconstructErode_32f_C1IR)},
    {"lumiMorphReconstructDilate_64f_C1IR", reconstruct(lumiMorphReconstructDilate_64f_C1IR)},
    {"lumiMorphReconstructErode_64f_C1IR", reconstruct(lumiMorphReconstructErode_64f_C1IR)},
}};

}  // namespace
