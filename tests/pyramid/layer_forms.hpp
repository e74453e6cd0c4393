// All forms of the layer functions behind one signature: types and channels as values, geometry of 64 bits.
#pragma once

#include <gtest/gtest.h>
#include <lumcv/lumcv.h>

#include <ostream>
#include <string>

namespace lumcv::test::pyramid {

/// What a size query takes. The counts are passed through in both directions, so that an unwritten one stays.
struct QueryCall
{
    LumiSizeL srcRoi;
    Lum32f rate = 2;
    Lum32s kernelSize = 5;
    Lum64s* pStateSize = nullptr;
    Lum64s* pBufSize = nullptr;  ///< down only
};

struct InitCall
{
    void** ppState = nullptr;
    LumiSizeL srcRoi;
    Lum32f rate = 2;
    const void* pKernel = nullptr;
    Lum32s kernelSize = 5;
    Lum32s mode = 2;
    Lum8u* pStateMem = nullptr;
    Lum8u* pBuffer = nullptr;  ///< down only
};

struct ApplyCall
{
    const void* pSrc = nullptr;
    Lum64s srcStep = 0;
    LumiSizeL srcRoi;
    void* pDst = nullptr;
    Lum64s dstStep = 0;
    LumiSizeL dstRoi;
    void* pState = nullptr;
};

/// A layer down or up of one type and channel count.
struct LayerFunctions
{
    LumStatus (*query)(const QueryCall&);
    LumStatus (*init)(const InitCall&);
    LumStatus (*apply)(const ApplyCall&);
};

struct LayerForm
{
    const char* name;
    LumDataType type;
    int channels;
    bool isWide;  ///< the 64-bit entry points
    LayerFunctions down;
    LayerFunctions up;

    int elementBytes() const
    {
        return type == lumType8u ? 1 : type == lumType16u ? 2 : 4;
    }
    int pixelBytes() const
    {
        return channels * elementBytes();
    }
};

inline std::ostream& operator<<(std::ostream& stream, const LayerForm& form)
{
    return stream << form.name;
}

namespace forms {

template <class Size>
Size sizeAs(LumiSizeL size)
{
    return {static_cast<decltype(Size::width)>(size.width), static_cast<decltype(Size::height)>(size.height)};
}

/// A count of the form's width in place of one of 64 bits.
template <class Count>
class CountSlot
{
  public:
    explicit CountSlot(Lum64s* pCount) : pCount_(pCount), count_(pCount ? static_cast<Count>(*pCount) : 0) {}
    ~CountSlot()
    {
        if (pCount_) {
            *pCount_ = count_;
        }
    }
    CountSlot(const CountSlot&) = delete;
    CountSlot& operator=(const CountSlot&) = delete;
    Count* pointer()
    {
        return pCount_ ? &count_ : nullptr;
    }

  private:
    Lum64s* pCount_;
    Count count_;
};

template <class Size, class Count>
LumStatus callQuery(LumStatus (*query)(Size, Lum32f, Lum32s, Count*, Count*), const QueryCall& c)
{
    CountSlot<Count> state(c.pStateSize), buffer(c.pBufSize);
    return query(sizeAs<Size>(c.srcRoi), c.rate, c.kernelSize, state.pointer(), buffer.pointer());
}

template <class Size, class Count>
LumStatus callQuery(LumStatus (*query)(Size, Lum32f, Lum32s, Count*), const QueryCall& c)
{
    CountSlot<Count> state(c.pStateSize);
    return query(sizeAs<Size>(c.srcRoi), c.rate, c.kernelSize, state.pointer());
}

template <class Record, class Size, class Tap>
LumStatus callInit(LumStatus (*init)(Record**, Size, Lum32f, const Tap*, Lum32s, Lum32s, Lum8u*, Lum8u*),
                   const InitCall& c)
{
    return init(reinterpret_cast<Record**>(c.ppState), sizeAs<Size>(c.srcRoi), c.rate,
                static_cast<const Tap*>(c.pKernel), c.kernelSize, c.mode, c.pStateMem, c.pBuffer);
}

template <class Record, class Size, class Tap>
LumStatus callInit(LumStatus (*init)(Record**, Size, Lum32f, const Tap*, Lum32s, Lum32s, Lum8u*), const InitCall& c)
{
    return init(reinterpret_cast<Record**>(c.ppState), sizeAs<Size>(c.srcRoi), c.rate,
                static_cast<const Tap*>(c.pKernel), c.kernelSize, c.mode, c.pStateMem);
}

template <class T, class Step, class Size, class Record>
LumStatus callApply(LumStatus (*apply)(const T*, Step, Size, T*, Step, Size, Record*), const ApplyCall& c)
{
    return apply(static_cast<const T*>(c.pSrc), static_cast<Step>(c.srcStep), sizeAs<Size>(c.srcRoi),
                 static_cast<T*>(c.pDst), static_cast<Step>(c.dstStep), sizeAs<Size>(c.dstRoi),
                 static_cast<Record*>(c.pState));
}

template <auto Query, auto Init, auto Apply>
constexpr LayerFunctions kFunctions = {[](const QueryCall& c) { return callQuery(Query, c); },
                                       [](const InitCall& c) { return callInit(Init, c); },
                                       [](const ApplyCall& c) { return callApply(Apply, c); }};

}  // namespace forms

inline const LayerForm kForms[] = {
    {"8u_C1R", lumType8u, 1, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_8u_C1R, lumiPyramidLayerDownInit_8u_C1R,
                       lumiPyramidLayerDown_8u_C1R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_8u_C1R, lumiPyramidLayerUpInit_8u_C1R, lumiPyramidLayerUp_8u_C1R>},
    {"8u_C3R", lumType8u, 3, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_8u_C3R, lumiPyramidLayerDownInit_8u_C3R,
                       lumiPyramidLayerDown_8u_C3R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_8u_C3R, lumiPyramidLayerUpInit_8u_C3R, lumiPyramidLayerUp_8u_C3R>},
    {"16u_C1R", lumType16u, 1, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_16u_C1R, lumiPyramidLayerDownInit_16u_C1R,
                       lumiPyramidLayerDown_16u_C1R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_16u_C1R, lumiPyramidLayerUpInit_16u_C1R, lumiPyramidLayerUp_16u_C1R>},
    {"16u_C3R", lumType16u, 3, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_16u_C3R, lumiPyramidLayerDownInit_16u_C3R,
                       lumiPyramidLayerDown_16u_C3R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_16u_C3R, lumiPyramidLayerUpInit_16u_C3R, lumiPyramidLayerUp_16u_C3R>},
    {"32f_C1R", lumType32f, 1, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_32f_C1R, lumiPyramidLayerDownInit_32f_C1R,
                       lumiPyramidLayerDown_32f_C1R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_32f_C1R, lumiPyramidLayerUpInit_32f_C1R, lumiPyramidLayerUp_32f_C1R>},
    {"32f_C3R", lumType32f, 3, false,
     forms::kFunctions<lumiPyramidLayerDownGetSize_32f_C3R, lumiPyramidLayerDownInit_32f_C3R,
                       lumiPyramidLayerDown_32f_C3R>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_32f_C3R, lumiPyramidLayerUpInit_32f_C3R, lumiPyramidLayerUp_32f_C3R>},
    {"32f_C1R_L", lumType32f, 1, true,
     forms::kFunctions<lumiPyramidLayerDownGetSize_32f_C1R_L, lumiPyramidLayerDownInit_32f_C1R_L,
                       lumiPyramidLayerDown_32f_C1R_L>,
     forms::kFunctions<lumiPyramidLayerUpGetSize_32f_C1R_L, lumiPyramidLayerUpInit_32f_C1R_L,
                       lumiPyramidLayerUp_32f_C1R_L>}};

/// Names the tests of a suite over all forms.
inline std::string formName(const testing::TestParamInfo<LayerForm>& form)
{
    return std::string("Of_") + form.param.name;
}

/// Calls f.operator()<T>() with the element type of the form.
template <class F>
void withElement(const LayerForm& form, F f)
{
    switch (form.type) {
        case lumType8u:
            return f.template operator()<Lum8u>();
        case lumType16u:
            return f.template operator()<Lum16u>();
        default:
            return f.template operator()<Lum32f>();
    }
}

}  // namespace lumcv::test::pyramid
