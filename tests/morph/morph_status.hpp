// The operands of a valid call of morphology and the violations that all entries share, for the tables of their checks.
#pragma once

#include <string>
#include <vector>

#include "morph/morph_fixture.hpp"
#include "support/status_order.hpp"

namespace lumcv::test::morph {

constexpr Lum64s kStatusWidth = 11;
constexpr Lum64s kStatusHeight = 6;

constexpr Lum64s kTooLarge = Lum64s{1} << 31;
constexpr Lum64s kLimit = 0x7fffffff;  ///< of a size or a stride: refused by the passes of the large entries

/// Dilation and erosion of 16s images and erosion of 16u images test it, dilation of 16u images does not.
template <class Form>
bool refusesInPlace(Operation operation)
{
    return Form::dataType == lumType16s || (Form::dataType == lumType16u && operation == Operation::Erode);
}

/// What the large entries call a width or height of 0x7fffffff, and a stride of that size.
template <class Form>
bool limitsAreOrdinaryErrors(Operation operation)
{
    if (operation == Operation::Dilate) {
        return Form::channels == 1;
    }
    return Form::dataType == lumType8u && Form::channels <= 3;
}

/// The images and blocks of a valid call. The source has the margins that any border asks for.
template <class Form>
struct StatusOperands
{
    using T = typename Form::Element;

    StatusOperands(Operation itsOperation, Generation itsGeneration)
        : setting(settingOf(itsOperation, itsGeneration)), source(setting.layout<Form>(Margins::all(2)))
    {
        fillPixels<T>(source, setting, Area::WithMargins);
    }
    static Setting settingOf(Operation operation, Generation generation)
    {
        Setting s;
        s.operation = operation;
        s.generation = generation;
        s.width = kStatusWidth;
        s.height = kStatusHeight;
        return s;
    }

    Setting setting;
    Image<T> source;
    Image<T> destination{setting.layout<Form>()};
    PlacedBlock record = makeRecord<Form>(setting);
    PlacedBlock scratch{scratchBytes<Form>(setting)};
    T borderValue[4] = {};
};

template <class Form>
struct StatusArguments : ApplyArguments<Form>
{
    const StatusOperands<Form>* operands;

    explicit StatusArguments(const StatusOperands<Form>& o) : operands(&o)
    {
        this->pSrc = o.source.pixels();
        this->srcStep = o.source.step();
        this->pDst = const_cast<StatusOperands<Form>&>(o).destination.pixels();
        this->dstStep = o.destination.step();
        this->roiSize = {kStatusWidth, kStatusHeight};
        this->pBorderValue = o.borderValue;
        this->pSpec = {o.record.data()};
        this->pBuffer = o.scratch.data();
    }
    LumStatus call() const
    {
        return ApplyArguments<Form>::call(operands->setting.operation, operands->setting.generation);
    }
    std::vector<Output> outputs() const
    {
        return {Output(operands->destination), Output(operands->source),
                Output(operands->scratch.data(), operands->scratch.size()),
                Output(operands->record.data(), operands->record.size())};
    }
};

template <class Form>
using StatusTable = std::vector<Violation<StatusArguments<Form>>>;

template <class Form>
void append(StatusTable<Form>& table, const StatusTable<Form>& more)
{
    table.insert(table.end(), more.begin(), more.end());
}

template <class Form>
StatusTable<Form> nullPointers()
{
    using Args = StatusArguments<Form>;
    return {
        {"pSrc null", lumErrNullPointer, [](Args& a) { a.pSrc = nullptr; }},
        {"pDst null", lumErrNullPointer, [](Args& a) { a.pDst = nullptr; }},
        {"pSpec null", lumErrNullPointer, [](Args& a) { a.pSpec = {}; }},
        {"pBuffer null", lumErrNullPointer, [](Args& a) { a.pBuffer = nullptr; }},
    };
}

template <class Form>
StatusTable<Form> emptyRois()
{
    using Args = StatusArguments<Form>;
    return {
        {"width 0", lumErrSize, [](Args& a) { a.roiSize.width = 0; }},
        {"width negative", lumErrSize, [](Args& a) { a.roiSize.width = -1; }},
        {"height 0", lumErrSize, [](Args& a) { a.roiSize.height = 0; }},
        {"height negative", lumErrSize, [](Args& a) { a.roiSize.height = -1; }},
    };
}

/// The names of the violations that a stride which grows with the width takes back.
template <class Form>
std::vector<std::string> misalignments()
{
    if (sizeof(typename Form::Element) == 1) {
        return {};
    }
    return {"srcStep misaligned", "dstStep misaligned"};
}

template <class Form>
StatusTable<Form> strides()
{
    using Args = StatusArguments<Form>;
    constexpr auto e = static_cast<Lum64s>(sizeof(typename Form::Element));
    constexpr Lum64s row = kStatusWidth * Form::channels * e;
    StatusTable<Form> table = {
        {"srcStep below the row", lumErrStep, [](Args& a) { a.srcStep = row - e; }},
        {"dstStep below the row", lumErrStep, [](Args& a) { a.dstStep = row - 1; }},
        {"srcStep 0", lumErrStep, [](Args& a) { a.srcStep = 0; }},
        {"dstStep negative", lumErrStep, [](Args& a) { a.dstStep = -2 * row; }},
    };
    if (e > 1) {
        table.push_back({"srcStep misaligned", lumErrStepAlignment, [](Args& a) { a.srcStep = row + 1; }});
        table.push_back({"dstStep misaligned", lumErrStepAlignment, [](Args& a) { a.dstStep = row + e / 2; }});
    }
    return table;
}

}  // namespace lumcv::test::morph
