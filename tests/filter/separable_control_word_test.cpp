// The control words of the floating-point units, vector and x87: as before after every return, and no trap by a
// denormal, whatever the caller has unmasked.
#include "filter/separable_arguments.hpp"
#include "support/control_words.hpp"
#include "support/type_test.hpp"

namespace lumcv::test::separable {
namespace {

// All masked; denormals unmasked; and with them invalid operations, divisions by zero and overflows, which no call here
// has. The x87 word 0x037f masks everything, 0x037d unmasks denormals, 0x0372 invalid, zero and overflow too.
constexpr ControlWords kRoundToNearest[] = {
    {kAllMasked, 0x037f},
    {kAllMasked & ~kDenormalMask, 0x037f},
    {kAllMasked & ~kDenormalMask, 0x037d},
    {kAllMasked & ~kDenormalMask & ~0x0680u, 0x0370},
    {kAllMasked, 0x027d},
};

// Other roundings, flushing of denormals, and flags that earlier operations have left: kept as well, though results
// may differ.
constexpr ControlWords kOtherArithmetic[] = {
    {(kAllMasked & ~kDenormalMask) | 0x2000, 0x077d}, {kAllMasked | 0x4000, 0x0b7f},
    {(kAllMasked & ~kDenormalMask) | 0x6000, 0x0f7d}, {(kAllMasked & ~kDenormalMask) | 0x8000, 0x037d},
    {(kAllMasked & ~kDenormalMask) | 0x8040, 0x037d}, {kAllMasked | 0x003f, 0x037f},
    {(kAllMasked & ~kDenormalMask) | 0x002f, 0x037d},
};

TYPE_SUITE(SeparableControlWordsQuick, AllCases, CaseName);

// Denormals wherever there are floats: pixels, border values, coefficients.
template <class T>
T denormalPixel(int number)
{
    if constexpr (std::is_same_v<T, Lum32f>) {
        return static_cast<Lum32f>(number % 5 - 2) * 0x1p-140f;
    } else {
        return static_cast<T>(number * 37);
    }
}

Kernel denormalKernel(LumDataType kernelType, LumiSize size)
{
    Kernel kernel{kernelType, {}, {}, 7, 0};
    const Lum32f unit = kernelType == lumType32f ? 0x1p-130f : 1.0f;
    for (int i = 0; i < size.width; ++i) {
        kernel.x.push_back(static_cast<Lum32f>(i + 1) * unit);
    }
    for (int i = 0; i < size.height; ++i) {
        kernel.y.push_back(i % 2 == 0 ? 3.0f : 2.0f * unit);
    }
    return kernel;
}

TYPE_TEST(SeparableControlWordsQuick, DenormalsDoNotTrap)
{
    using S = typename TypeParam::Source;
    using D = typename TypeParam::Destination;
    int number = 0;
    for (const LumDataType kernelType : TypeParam::kernelTypes) {
        for (const LumiSize kernelSize :
             {LumiSize{1, 1}, LumiSize{3, 3}, LumiSize{5, 5}, LumiSize{6, 4}, LumiSize{9, 12}}) {
            for (const LumiBorderType border : {lumBorderReplicate, lumBorderMirror, lumBorderConstant}) {
                for (const int width : {3, 70}) {
                    const Entry entry = kBothEntries[number % 2];
                    const int channels = kChannels[number++ % 3];
                    Setting setting;
                    setting.size = {width, 9};
                    setting.channels = channels;
                    setting.border = border;
                    const Kernel kernel = denormalKernel(kernelType, kernelSize);
                    Image<S> source(setting.layout<S>());
                    source.forEach(Area::Roi,
                                   [](S& element, int x, int y, int c) { element = denormalPixel<S>(x + y + c); });
                    const S borderValue[4] = {denormalPixel<S>(1), denormalPixel<S>(3), denormalPixel<S>(4),
                                              denormalPixel<S>(5)};
                    const Image<D> expected = reference<TypeParam>(setting, kernel, source, borderValue);
                    const PlacedBlock record = makeRecord(entry, kernel, TypeParam::dataType, channels);
                    const PlacedBlock scratch = makeScratch(kernel, width, channels);
                    for (const ControlWords& words : kRoundToNearest) {
                        Image<D> destination(setting.layout<D>());
                        const Outcome outcome = callUnder(words, [&] {
                            return TypeParam::call(entry, channels, source.pixels(), source.step(),
                                                   destination.pixels(), destination.step(), {width, 9}, border,
                                                   borderValue, specOf(record), scratch.data());
                        });
                        EXPECT_EQ(outcome.status, lumOk);
                        expectWordsKept(outcome, words);
                        EXPECT_TRUE(sameImage(expected, destination)) << kernel << ", border " << border;
                    }
                    for (const ControlWords& words : kOtherArithmetic) {
                        Image<D> destination(setting.layout<D>());
                        const Outcome outcome = callUnder(words, [&] {
                            return TypeParam::call(entry, channels, source.pixels(), source.step(),
                                                   destination.pixels(), destination.step(), {width, 9}, border,
                                                   borderValue, specOf(record), scratch.data());
                        });
                        EXPECT_EQ(outcome.status, lumOk);
                        expectWordsKept(outcome, words);
                    }
                }
            }
        }
    }
}

TYPE_TEST(SeparableControlWordsQuick, KeptAfterEveryError)
{
    for (const Entry entry : kBothEntries) {
        for (const int channels : kChannels) {
            Operands<TypeParam> operands(entry, channels, TypeParam::kernelTypes[0]);
            for (const auto& violation : applyOrder<TypeParam>(entry, channels)) {
                SCOPED_TRACE(violation.name);
                ApplyArgs<TypeParam> args(operands);
                violation.apply(args);
                for (const ControlWords& words : kRoundToNearest) {
                    const Outcome outcome = callUnder(words, [&] { return args.call(); });
                    EXPECT_EQ(outcome.status, violation.status);
                    expectWordsKept(outcome, words);
                }
                for (const ControlWords& words : kOtherArithmetic) {
                    const Outcome outcome = callUnder(words, [&] { return args.call(); });
                    EXPECT_EQ(outcome.status, violation.status);
                    expectWordsKept(outcome, words);
                }
            }
        }
    }
}

// Init copies denormal coefficients, and refuses, without touching the words.
TYPE_TEST(SeparableControlWordsQuick, KeptByInitAndQueries)
{
    for (const LumDataType kernelType : TypeParam::kernelTypes) {
        const Kernel kernel = denormalKernel(kernelType, {5, 3});
        for (const Entry entry : kBothEntries) {
            for (const ControlWords& words : kRoundToNearest) {
                const PlacedBlock block(static_cast<std::size_t>(specSize({5, 3}, kernelType)), Guard::After, 3);
                const Outcome init =
                    callUnder(words, [&] { return layRecord(entry, kernel, TypeParam::dataType, 3, block.data()); });
                EXPECT_EQ(init.status, lumOk);
                expectWordsKept(init, words);
                const Outcome refused =
                    callUnder(words, [&] { return layRecord(entry, kernel, lumType64f, 3, block.data()); });
                EXPECT_EQ(refused.status, lumErrDataType);
                expectWordsKept(refused, words);
                Lum32s bytes = 0;
                const Outcome query = callUnder(words, [&] {
                    return lumiFilterSeparableGetBufferSize({7, 7}, {5, 3}, TypeParam::dataType, kernelType, 3, &bytes);
                });
                EXPECT_EQ(query.status, lumOk);
                expectWordsKept(query, words);
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::separable
