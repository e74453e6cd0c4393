// The arguments of a call of the separable filter, and everything that it refuses, in the order of its checks.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include "filter/separable_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::separable {

constexpr Lum64s kWidth = 10;
constexpr Lum64s kHeight = 8;
constexpr Lum64s kTooLarge = Lum64s{1} << 31;

// The images and blocks of a valid call, and records that no Init has seen.
template <class C>
struct Operands
{
    using S = typename C::Source;
    using D = typename C::Destination;

    Operands(Entry itsEntry, int itsChannels, LumDataType kernelType, Margins margins = {})
        : entry(itsEntry),
          channels(itsChannels),
          kernel{kernelType, {1, 2, 1, 1}, {1, 0, 2}, 1, 0},
          source(setting(itsChannels).template layout<S>(margins)),
          destination(setting(itsChannels).template layout<D>()),
          record(makeRecord(itsEntry, kernel, C::dataType, itsChannels)),
          withoutKernelX(record),
          withoutKernelY(record),
          zeros(record.size()),
          scratch(makeScratch(kernel, kWidth, itsChannels))
    {
        source.forEach(Area::WithMargins, [](S& element, int x, int y, int) { element = static_cast<S>(x + 3 * y); });
        std::memset(zeros.data(), 0, zeros.size());
        std::memset(withoutKernelX.data() + offsetof(Record, pKernelX), 0, sizeof(void*));
        std::memset(withoutKernelY.data() + offsetof(Record, pKernelY), 0, sizeof(void*));
    }
    static Setting setting(int channels)
    {
        Setting s;
        s.size = {kWidth, kHeight};
        s.channels = channels;
        return s;
    }

    Entry entry;
    int channels;
    Kernel kernel;
    Image<S> source;
    Image<D> destination;
    PlacedBlock record;
    PlacedBlock withoutKernelX;
    PlacedBlock withoutKernelY;
    PlacedBlock zeros;
    PlacedBlock scratch;
};

template <class C>
struct ApplyArgs
{
    using S = typename C::Source;
    using D = typename C::Destination;

    explicit ApplyArgs(Operands<C>& o)
        : operands(&o),
          pSrc(o.source.pixels()),
          srcStep(o.source.step()),
          pDst(o.destination.pixels()),
          dstStep(o.destination.step()),
          borderValue(kBorderValue),
          pSpec(specOf(o.record)),
          pBuffer(o.scratch.data())
    {
    }
    LumStatus call() const
    {
        return C::call(operands->entry, operands->channels, pSrc, srcStep, pDst, dstStep, roiSize, border, borderValue,
                       pSpec, pBuffer);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination), Output(operands->scratch.data(), operands->scratch.size()),
                Output(operands->record.data(), operands->record.size())};
    }
    Lum64s sourceRowBytes() const
    {
        return kWidth * operands->channels * static_cast<Lum64s>(sizeof(S));
    }
    Lum64s destinationRowBytes() const
    {
        return kWidth * operands->channels * static_cast<Lum64s>(sizeof(D));
    }

    static constexpr S kBorderValue[4] = {S{3}, S{1}, S{4}, S{2}};

    const Operands<C>* operands;
    const S* pSrc;
    Lum64s srcStep;
    D* pDst;
    Lum64s dstStep;
    LumiSizeL roiSize = {kWidth, kHeight};
    LumiBorderType border = lumBorderReplicate;
    const S* borderValue;
    const LumFilterSeparableSpec* pSpec;
    Lum8u* pBuffer;
};

template <class C>
std::vector<Violation<ApplyArgs<C>>> applyOrder(Entry entry, int channels)
{
    using Args = ApplyArgs<C>;
    std::vector<Violation<Args>> order = {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = nullptr; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
    };
    const auto append = [&](const std::vector<Violation<Args>>& more) {
        order.insert(order.end(), more.begin(), more.end());
    };
    if (channels > 1) {
        append({{"constant without a value", lumErrNullPointer, [](Args& a) {
                     a.border = lumBorderConstant | lumBorderInMemLeft;
                     a.borderValue = nullptr;
                 }}});
    }
    if (entry == Entry::Large) {
        append({
            {"width too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.width = kTooLarge; }},
            {"height too large", lumErrSizeTooLarge, [](Args& a) { a.roiSize.height = kTooLarge; }},
            {"srcStep too large", lumErrSizeTooLarge, [](Args& a) { a.srcStep = kTooLarge; }},
            {"dstStep too large", lumErrSizeTooLarge, [](Args& a) { a.dstStep = kTooLarge; }},
        });
    }
    append({
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = std::numeric_limits<int>::min(); }},
        {"srcStep below a row", lumErrStep, [](Args& a) { a.srcStep = a.sourceRowBytes() - 1; }},
        {"dstStep below a row", lumErrStep, [](Args& a) { a.dstStep = a.destinationRowBytes() - 1; }},
        {"srcStep an element below a row", lumErrStep,
         [](Args& a) { a.srcStep = a.sourceRowBytes() - static_cast<Lum64s>(sizeof(typename C::Source)); }},
        {"dstStep an element below a row", lumErrStep,
         [](Args& a) { a.dstStep = a.destinationRowBytes() - static_cast<Lum64s>(sizeof(typename C::Destination)); }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"dstStep 0", lumErrStep, [](Args& a) { a.dstStep = 0; }},
        {"srcStep negative", lumErrStep, [](Args& a) { a.srcStep = -a.sourceRowBytes(); }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -a.destinationRowBytes(); }},
        {"no kernel X in the record", lumErrNullPointer, [](Args& a) { a.pSpec = specOf(a.operands->withoutKernelX); }},
        {"no kernel Y in the record", lumErrNullPointer, [](Args& a) { a.pSpec = specOf(a.operands->withoutKernelY); }},
        {"a record of zeros", lumErrNullPointer, [](Args& a) { a.pSpec = specOf(a.operands->zeros); }},
        {"border 256", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderReplicate; }},
        {"border 256 and all sides", lumErrBorder, [](Args& a) { a.border = 256 | lumBorderInMem; }},
        {"border negative", lumErrBorder, [](Args& a) { a.border = -15; }},
        {"border 0", lumErrBorder, [](Args& a) { a.border = 0; }},
        {"border 2", lumErrBorder, [](Args& a) { a.border = 2; }},
        {"border neutral", lumErrBorder, [](Args& a) { a.border = lumBorderNeutral; }},
        {"three sides and no mode", lumErrBorder, [](Args& a) { a.border = 0x70; }},
        {"all sides and no mode of a filter", lumErrBorder, [](Args& a) { a.border = 0xF5; }},
    });
    if (sizeof(typename C::Source) > 1) {
        append({{"srcStep misaligned", lumErrStepAlignment, [](Args& a) { a.srcStep = a.sourceRowBytes() + 1; }}});
    }
    if (sizeof(typename C::Source) > 2) {
        append({{"srcStep aligned to 2", lumErrStepAlignment, [](Args& a) { a.srcStep = a.sourceRowBytes() + 2; }}});
    }
    if (sizeof(typename C::Destination) > 1) {
        append({{"dstStep misaligned", lumErrStepAlignment, [](Args& a) { a.dstStep = a.destinationRowBytes() + 1; }}});
    }
    if (sizeof(typename C::Destination) > 2) {
        append(
            {{"dstStep aligned to 2", lumErrStepAlignment, [](Args& a) { a.dstStep = a.destinationRowBytes() + 2; }}});
    }
    return order;
}

}  // namespace lumcv::test::separable
