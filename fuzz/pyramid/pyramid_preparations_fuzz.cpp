// Fuzzes what pyramids need before a layer can be made: sizes of levels, size queries and Inits.
#include <cmath>
#include <cstring>

#include "fuzz/pyramid/pyramid_choices.hpp"

namespace {

using namespace lumcv::fuzz;

// The rate stands in parameter, the number of taps in kernelSize, the level in anchor, the mode in divisor.
Call begin(Choices& choices, const std::string& name, bool isLong)
{
    Call call = beginCall(choices, name);
    call.arguments.parameter = chooseRate(choices);
    const Lum32f rates[] = {1, 0.5f, 0, -2, 10.000001f, INFINITY, -INFINITY, NAN};
    const Lum32f wrong = choices.oneOf(rates);
    addViolation(call, "rate " + std::to_string(wrong), lumErrArgument, [=](Arguments& a) { a.parameter = wrong; });
    if (isLong)
        for (const Lum64s size : {Lum64s{0x80000000}, Lum64s{INT64_MAX}}) {
            addViolation(call, "width " + std::to_string(size), lumErrSizeTooLarge,
                         [=](Arguments& a) { a.width = size; });
            addViolation(call, "height " + std::to_string(size), lumErrSizeTooLarge,
                         [=](Arguments& a) { a.height = size; });
        }
    return call;
}

Call beginRecord(Choices& choices, const std::string& name, bool isLong)
{
    Call call = begin(choices, name, isLong);
    call.arguments.anchor = choices.oneIn(10) ? choices.between(1, 1 << 20) : choices.between(1, 12);
    const int levels[] = {0, -1, INT32_MIN};
    const int wrong = choices.oneOf(levels);
    addViolation(call, "level " + std::to_string(wrong), lumErrArgument, [=](Arguments& a) { a.anchor = wrong; });
    return call;
}

Call beginLayer(Choices& choices, const std::string& name, bool isLong, int taps)
{
    Call call = begin(choices, name, isLong);
    call.arguments.kernelSize = taps;
    const int sizes[] = {-3, 0, 1, 2, 4, 100, INT32_MIN};
    const int wrong = choices.oneOf(sizes);
    addViolation(call, "kernel size " + std::to_string(wrong), lumErrArgument,
                 [=](Arguments& a) { a.kernelSize = wrong; });
    return call;
}

template <typename Size>
constexpr bool isLongSize = std::is_same_v<Size, LumiSizeL>;

template <typename Number>
BlockOperand result()
{
    return {Role::Written, sizeof(Number), numberElement<Number>};
}

template <typename Size>
BlockOperand sizeResult()
{
    return {Role::Written, sizeof(Size), numberElement<decltype(Size::width)>};
}

// What is found on the way down leads back up.
template <typename Size>
void expectWayUp(Size larger, Size smaller, Lum32f rate)
{
    LumiSizeL least, most;
    if (lumiGetPyramidUpROI_L({smaller.width, smaller.height}, &least, &most, rate) != lumOk)
        fail("no larger level");
    if (larger.width < least.width || larger.width > most.width || larger.height < least.height ||
        larger.height > most.height)
        fail("no way back up");
}

template <typename Size>
Run levelDown(LumStatus (*f)(Size, Size*, Lum32f))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, isLongSize<Size>);
        if (choices.oneIn(2))
            call.arguments.width = choices.between(1, 1 << 24);
        call.blocks = {sizeResult<Size>()};
        call.call = [=](const Arguments& a) {
            auto* const smaller = a.block<Size>(0);
            const LumStatus status = f(a.sizeAs<Size>(), smaller, a.parameter);
            if (status == lumOk)
                expectWayUp(a.sizeAs<Size>(), *smaller, a.parameter);
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Size>
Run levelUp(LumStatus (*f)(Size, Size*, Size*, Lum32f))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = begin(choices, name, isLongSize<Size>);
        if (choices.oneIn(2))
            call.arguments.width = choices.between(1, 1 << 24);
        if (!isLongSize<Size>)
            addViolation(call, "a large image", lumErrSizeTooLarge, [](Arguments& a) { a.width = INT32_MAX; });
        call.blocks = {sizeResult<Size>(), sizeResult<Size>()};
        call.call = [=](const Arguments& a) {
            return f(a.sizeAs<Size>(), a.block<Size>(0), a.block<Size>(1), a.parameter);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Size, typename Number>
Run queryRecord(LumStatus (*f)(Number*, Number*, Lum32s, Size, Lum32f))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginRecord(choices, name, isLongSize<Size>);
        if (!isLongSize<Size>)
            addViolation(call, "a large image", lumErrSizeTooLarge, [](Arguments& a) {
                a.parameter = 2;
                a.width = INT32_MAX;
            });
        call.blocks = {result<Number>(), result<Number>()};
        call.call = [=](const Arguments& a) {
            return f(a.block<Number>(0), a.block<Number>(1), a.anchor, a.sizeAs<Size>(), a.parameter);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Size, typename Number>
Run initRecord(LumStatus (*f)(LumiPyramidRecord**, Lum32s, Size, Lum32f, Lum8u*, Lum8u*),
               LumStatus (*query)(Number*, Number*, Lum32s, Size, Lum32f))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginRecord(choices, name, isLongSize<Size>);
        const Arguments& a = call.arguments;
        Number bytes = -1, bufferBytes = -1;
        if (query(&bytes, &bufferBytes, a.anchor, a.sizeAs<Size>(), a.parameter) != lumOk)
            fail("the query failed");
        call.blocks = {{Role::Laid, std::size_t(bytes)}, {Role::Scratch, std::size_t(bufferBytes)}};
        call.call = [=](const Arguments& b) {
            LumiPyramidRecord* laid = nullptr;
            const LumStatus status =
                f(&laid, b.anchor, b.sizeAs<Size>(), b.parameter, b.block<Lum8u>(0), b.block<Lum8u>(1));
            if (laid != (status == lumOk ? b.blocks[0] : nullptr))
                fail("the record's address is wrong");
            return status;
        };
        tryCall(choices, std::move(call));
    };
}

int chooseTaps(Choices& choices)
{
    return 2 * (choices.oneIn(4) ? choices.between(1, 40) : choices.between(1, 4)) + 1;
}

void addHugeImage(Call& call, LumStatus status)
{
    addViolation(call, "a huge image", status, [](Arguments& a) {
        a.parameter = 2;  // with a rate near 1 it would take very long to count the levels
        a.width = INT32_MAX;
        a.height = INT32_MAX;
    });
}

template <typename Size, typename Number>
Run queryLayer(LumStatus (*f)(Size, Lum32f, Lum32s, Number*, Number*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginLayer(choices, name, isLongSize<Size>, chooseTaps(choices));
        addHugeImage(call, lumErrSizeTooLarge);
        call.blocks = {result<Number>(), result<Number>()};
        // the size of the scratch is left alone where none is needed
        call.prepare = [](Arguments& a) { std::memset(a.blocks[1], 0, sizeof(Number)); };
        call.call = [=](const Arguments& a) {
            return f(a.sizeAs<Size>(), a.parameter, a.kernelSize, a.block<Number>(0), a.block<Number>(1));
        };
        tryCall(choices, std::move(call));
    };
}

template <typename Size, typename Number>
Run queryLayer(LumStatus (*f)(Size, Lum32f, Lum32s, Number*))
{
    return [=](Choices& choices, const std::string& name) {
        Call call = beginLayer(choices, name, isLongSize<Size>, chooseTaps(choices));
        if (!isLongSize<Size>)
            addHugeImage(call, lumErrSizeTooLarge);
        call.blocks = {result<Number>()};
        call.call = [=](const Arguments& a) {
            return f(a.sizeAs<Size>(), a.parameter, a.kernelSize, a.block<Number>(0));
        };
        tryCall(choices, std::move(call));
    };
}

// The kernel is the second block behind the record's.
template <typename Taps>
void addKernel(Call& call, const std::vector<Taps>& kernel)
{
    call.blocks.push_back({Role::Read, kernel.size() * sizeof(Taps), elementOf<Taps>()});
    call.prepare = [=](Arguments& a) { std::memcpy(a.blocks[1], kernel.data(), kernel.size() * sizeof(Taps)); };
}

void addMode(Choices& choices, Call& call)
{
    call.arguments.divisor = 2;
    const int modes[] = {0, 1, 3, -2, INT32_MAX};
    const int wrong = choices.oneOf(modes);
    addViolation(call, "mode " + std::to_string(wrong), lumErrArgument, [=](Arguments& a) { a.divisor = wrong; });
}

// What Init returns, with a warning taken for success.
template <typename Record>
LumStatus checkedLayer(LumStatus status, const Record* laid, const Arguments& a)
{
    if (laid != (isReady(status) ? recordIn<Record>(a.blocks[0]) : nullptr))
        fail("the record's address is wrong");
    return isReady(status) ? LumStatus{lumOk} : status;
}

template <typename T, typename Size, typename Number>
Run initDown(LumStatus (*f)(LumiPyramidLayerDownRecord**, Size, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*, Lum8u*),
             LumStatus (*query)(Size, Lum32f, Lum32s, Number*, Number*))
{
    return [=](Choices& choices, const std::string& name) {
        const auto kernel = chooseKernel<T>(choices);
        Call call = beginLayer(choices, name, isLongSize<Size>, int(kernel.size()));
        addMode(choices, call);
        const Arguments& a = call.arguments;
        Number bytes = -1, bufferBytes = 0;
        if (query(a.sizeAs<Size>(), a.parameter, a.kernelSize, &bytes, &bufferBytes) != lumOk)
            fail("the query failed");
        call.blocks = {{Role::Laid, std::size_t(bytes)}};
        addKernel(call, kernel);
        const auto needsScratch = [](const Arguments& b) { return b.width > b.kernelSize && b.height > b.kernelSize; };
        call.blocks.push_back({Role::Scratch, std::size_t(bufferBytes), Element::U8, !needsScratch(a)});
        const bool mayBeWithout = choices.oneIn(2);
        call.call = [=](const Arguments& b) {
            LumiPyramidLayerDownRecord* laid = nullptr;
            const LumStatus status =
                f(&laid, b.sizeAs<Size>(), b.parameter, b.block<Tap<T>>(1), b.kernelSize, b.divisor, b.block<Lum8u>(0),
                  mayBeWithout && !needsScratch(b) ? nullptr : b.block<Lum8u>(2));
            return checkedLayer(status, laid, b);
        };
        tryCall(choices, std::move(call));
    };
}

template <typename T, typename Size, typename Number>
Run initUp(LumStatus (*f)(LumiPyramidLayerUpRecord**, Size, Lum32f, const Tap<T>*, Lum32s, Lum32s, Lum8u*),
           LumStatus (*query)(Size, Lum32f, Lum32s, Number*))
{
    return [=](Choices& choices, const std::string& name) {
        const auto kernel = chooseKernel<T>(choices);
        Call call = beginLayer(choices, name, isLongSize<Size>, int(kernel.size()));
        addMode(choices, call);
        const Arguments& a = call.arguments;
        Number bytes = -1;
        if (query(a.sizeAs<Size>(), a.parameter, a.kernelSize, &bytes) != lumOk)
            fail("the query failed");
        call.blocks = {{Role::Laid, std::size_t(bytes)}};
        addKernel(call, kernel);
        call.call = [=](const Arguments& b) {
            LumiPyramidLayerUpRecord* laid = nullptr;
            const LumStatus status =
                f(&laid, b.sizeAs<Size>(), b.parameter, b.block<Tap<T>>(1), b.kernelSize, b.divisor, b.block<Lum8u>(0));
            return checkedLayer(status, laid, b);
        };
        tryCall(choices, std::move(call));
    };
}

const Targets levels{{
    {"lumiGetPyramidDownROI", levelDown(lumiGetPyramidDownROI)},
    {"lumiGetPyramidDownROI_L", levelDown(lumiGetPyramidDownROI_L)},
    {"lumiGetPyramidUpROI", levelUp(lumiGetPyramidUpROI)},
    {"lumiGetPyramidUpROI_L", levelUp(lumiGetPyramidUpROI_L)},
    {"lumiPyramidGetSize", queryRecord(lumiPyramidGetSize)},
    {"lumiPyramidGetSize_L", queryRecord(lumiPyramidGetSize_L)},
    {"lumiPyramidInit", initRecord(lumiPyramidInit, lumiPyramidGetSize)},
    {"lumiPyramidInit_L", initRecord(lumiPyramidInit_L, lumiPyramidGetSize_L)},
}};

const Targets layersDown{{
    {"lumiPyramidLayerDownGetSize_8u_C1R", queryLayer(lumiPyramidLayerDownGetSize_8u_C1R)},
    {"lumiPyramidLayerDownGetSize_8u_C3R", queryLayer(lumiPyramidLayerDownGetSize_8u_C3R)},
    {"lumiPyramidLayerDownGetSize_16u_C1R", queryLayer(lumiPyramidLayerDownGetSize_16u_C1R)},
    {"lumiPyramidLayerDownGetSize_16u_C3R", queryLayer(lumiPyramidLayerDownGetSize_16u_C3R)},
    {"lumiPyramidLayerDownGetSize_32f_C1R", queryLayer(lumiPyramidLayerDownGetSize_32f_C1R)},
    {"lumiPyramidLayerDownGetSize_32f_C3R", queryLayer(lumiPyramidLayerDownGetSize_32f_C3R)},
    {"lumiPyramidLayerDownGetSize_32f_C1R_L", queryLayer(lumiPyramidLayerDownGetSize_32f_C1R_L)},
    {"lumiPyramidLayerDownInit_8u_C1R",
     initDown<Lum8u>(lumiPyramidLayerDownInit_8u_C1R, lumiPyramidLayerDownGetSize_8u_C1R)},
    {"lumiPyramidLayerDownInit_8u_C3R",
     initDown<Lum8u>(lumiPyramidLayerDownInit_8u_C3R, lumiPyramidLayerDownGetSize_8u_C3R)},
    {"lumiPyramidLayerDownInit_16u_C1R",
     initDown<Lum16u>(lumiPyramidLayerDownInit_16u_C1R, lumiPyramidLayerDownGetSize_16u_C1R)},
    {"lumiPyramidLayerDownInit_16u_C3R",
     initDown<Lum16u>(lumiPyramidLayerDownInit_16u_C3R, lumiPyramidLayerDownGetSize_16u_C3R)},
    {"lumiPyramidLayerDownInit_32f_C1R",
     initDown<Lum32f>(lumiPyramidLayerDownInit_32f_C1R, lumiPyramidLayerDownGetSize_32f_C1R)},
    {"lumiPyramidLayerDownInit_32f_C3R",
     initDown<Lum32f>(lumiPyramidLayerDownInit_32f_C3R, lumiPyramidLayerDownGetSize_32f_C3R)},
    {"lumiPyramidLayerDownInit_32f_C1R_L",
     initDown<Lum32f>(lumiPyramidLayerDownInit_32f_C1R_L, lumiPyramidLayerDownGetSize_32f_C1R_L)},
}};

const Targets layersUp{{
    {"lumiPyramidLayerUpGetSize_8u_C1R", queryLayer(lumiPyramidLayerUpGetSize_8u_C1R)},
    {"lumiPyramidLayerUpGetSize_8u_C3R", queryLayer(lumiPyramidLayerUpGetSize_8u_C3R)},
    {"lumiPyramidLayerUpGetSize_16u_C1R", queryLayer(lumiPyramidLayerUpGetSize_16u_C1R)},
    {"lumiPyramidLayerUpGetSize_16u_C3R", queryLayer(lumiPyramidLayerUpGetSize_16u_C3R)},
    {"lumiPyramidLayerUpGetSize_32f_C1R", queryLayer(lumiPyramidLayerUpGetSize_32f_C1R)},
    {"lumiPyramidLayerUpGetSize_32f_C3R", queryLayer(lumiPyramidLayerUpGetSize_32f_C3R)},
    {"lumiPyramidLayerUpGetSize_32f_C1R_L", queryLayer(lumiPyramidLayerUpGetSize_32f_C1R_L)},
    {"lumiPyramidLayerUpInit_8u_C1R", initUp<Lum8u>(lumiPyramidLayerUpInit_8u_C1R, lumiPyramidLayerUpGetSize_8u_C1R)},
    {"lumiPyramidLayerUpInit_8u_C3R", initUp<Lum8u>(lumiPyramidLayerUpInit_8u_C3R, lumiPyramidLayerUpGetSize_8u_C3R)},
    {"lumiPyramidLayerUpInit_16u_C1R",
     initUp<Lum16u>(lumiPyramidLayerUpInit_16u_C1R, lumiPyramidLayerUpGetSize_16u_C1R)},
    {"lumiPyramidLayerUpInit_16u_C3R",
     initUp<Lum16u>(lumiPyramidLayerUpInit_16u_C3R, lumiPyramidLayerUpGetSize_16u_C3R)},
    {"lumiPyramidLayerUpInit_32f_C1R",
     initUp<Lum32f>(lumiPyramidLayerUpInit_32f_C1R, lumiPyramidLayerUpGetSize_32f_C1R)},
    {"lumiPyramidLayerUpInit_32f_C3R",
     initUp<Lum32f>(lumiPyramidLayerUpInit_32f_C3R, lumiPyramidLayerUpGetSize_32f_C3R)},
    {"lumiPyramidLayerUpInit_32f_C1R_L",
     initUp<Lum32f>(lumiPyramidLayerUpInit_32f_C1R_L, lumiPyramidLayerUpGetSize_32f_C1R_L)},
}};

}  // namespace
