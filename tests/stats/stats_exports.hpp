// The 84 functions of image statistics behind one kind of call: means and deviations, norms, extrema with location.
#pragma once

#include <string_view>
#include <vector>

#include "lumcv/lumcv.h"

namespace lumcv::test::stats {

enum class Element
{
    U8,
    U16,
    F32
};

constexpr int bytesOf(Element element)
{
    return element == Element::U8 ? 1 : element == Element::U16 ? 2 : 4;
}

enum class Operation
{
    Mean,
    MeanStdDev,
    Norm,
    NormDiff,
    NormRel,
    MinMaxIndx
};

enum class Sense
{
    Inf,
    L1,
    L2
};

/// All arguments that the functions take among them.
struct Operands
{
    const void* pSrc1 = nullptr;  ///< also the source of functions that have one
    Lum32s src1Step = 0;
    const void* pSrc2 = nullptr;
    Lum32s src2Step = 0;
    const Lum8u* pMask = nullptr;
    Lum32s maskStep = 0;
    LumiSize roiSize = {0, 0};
    Lum32s coi = 1;
    Lum64f* pValue = nullptr;  ///< of a norm; the mean of the others
    Lum64f* pStdDev = nullptr;
    Lum32f* pMinVal = nullptr;
    Lum32f* pMaxVal = nullptr;
    LumiPoint* pMinIndex = nullptr;
    LumiPoint* pMaxIndex = nullptr;

    template <class S>
    const S* source1() const
    {
        return static_cast<const S*>(pSrc1);
    }
    template <class S>
    const S* source2() const
    {
        return static_cast<const S*>(pSrc2);
    }
};

/// One function: what its name says, and how it is called.
struct Export
{
    using Function = void (*)();

    std::string_view name;
    Operation operation;
    Sense sense;  ///< of norms
    Element element;
    bool masked;
    bool ofInterest;  ///< one channel of three
    Function function;
    LumStatus (*invoke)(Function, const Operands&);

    LumStatus call(const Operands& operands) const
    {
        return invoke(function, operands);
    }
    int channels() const
    {
        return ofInterest ? 3 : 1;
    }
    bool isNorm() const
    {
        return operation == Operation::Norm || twoSources();
    }
    bool twoSources() const
    {
        return operation == Operation::NormDiff || operation == Operation::NormRel;
    }
};

template <class S>
constexpr Element kElementOf = sizeof(S) == 1   ? Element::U8
                               : sizeof(S) == 2 ? Element::U16
                                                : Element::F32;

inline Operation operationOf(std::string_view name)
{
    return name.starts_with("lumiMean_StdDev_") ? Operation::MeanStdDev
           : name.starts_with("lumiMean_")      ? Operation::Mean
           : name.starts_with("lumiNorm_")      ? Operation::Norm
           : name.starts_with("lumiNormDiff_")  ? Operation::NormDiff
           : name.starts_with("lumiNormRel_")   ? Operation::NormRel
                                                : Operation::MinMaxIndx;
}

inline Sense senseOf(std::string_view name)
{
    const auto has = [name](std::string_view part) { return name.find(part) != name.npos; };
    return has("_L1_") ? Sense::L1 : has("_L2_") ? Sense::L2 : Sense::Inf;
}

template <class S, class F>
Export described(std::string_view name, bool masked, bool ofInterest, F f,
                 LumStatus (*invoke)(Export::Function, const Operands&))
{
    return {name,
            operationOf(name),
            senseOf(name),
            kElementOf<S>,
            masked,
            ofInterest,
            reinterpret_cast<Export::Function>(f),
            invoke};
}

// One function for each signature: how the operands stand in the argument list.

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return described<S>(name, true, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.pValue);
    });
}

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*))
{
    return described<S>(name, true, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.coi, o.pValue);
    });
}

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return described<S>(name, false, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.roiSize, o.pValue, o.pStdDev);
    });
}

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return described<S>(name, false, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.roiSize, o.coi, o.pValue,
                                                       o.pStdDev);
    });
}

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*, Lum64f*))
{
    return described<S>(name, true, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.pValue, o.pStdDev);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*, Lum64f*))
{
    return described<S>(name, true, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.coi, o.pValue, o.pStdDev);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum64f*))
{
    return described<S>(name, true, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.source2<S>(), o.src2Step, o.pMask,
                                                       o.maskStep, o.roiSize, o.pValue);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum64f*))
{
    return described<S>(name, true, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.source2<S>(), o.src2Step, o.pMask,
                                                       o.maskStep, o.roiSize, o.coi, o.pValue);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return described<S>(name, false, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.roiSize, o.pMinVal, o.pMaxVal,
                                                       o.pMinIndex, o.pMaxIndex);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, LumiSize, Lum32s, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return described<S>(name, false, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.roiSize, o.coi, o.pMinVal,
                                                       o.pMaxVal, o.pMinIndex, o.pMaxIndex);
    });
}

template <class S>
Export entry(std::string_view name,
             LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32f*, Lum32f*, LumiPoint*, LumiPoint*))
{
    return described<S>(name, true, false, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.pMinVal, o.pMaxVal, o.pMinIndex, o.pMaxIndex);
    });
}

template <class S>
Export entry(std::string_view name, LumStatus (*f)(const S*, Lum32s, const Lum8u*, Lum32s, LumiSize, Lum32s, Lum32f*,
                                                   Lum32f*, LumiPoint*, LumiPoint*))
{
    return described<S>(name, true, true, f, [](Export::Function function, const Operands& o) {
        return reinterpret_cast<decltype(f)>(function)(o.source1<S>(), o.src1Step, o.pMask, o.maskStep, o.roiSize,
                                                       o.coi, o.pMinVal, o.pMaxVal, o.pMinIndex, o.pMaxIndex);
    });
}

/// Means and standard deviations.
inline const std::vector<Export>& meanExports()
{
    static const std::vector<Export> table = {
        entry("lumiMean_8u_C1MR", lumiMean_8u_C1MR),
        entry("lumiMean_16u_C1MR", lumiMean_16u_C1MR),
        entry("lumiMean_32f_C1MR", lumiMean_32f_C1MR),
        entry("lumiMean_8u_C3CMR", lumiMean_8u_C3CMR),
        entry("lumiMean_16u_C3CMR", lumiMean_16u_C3CMR),
        entry("lumiMean_32f_C3CMR", lumiMean_32f_C3CMR),
        entry("lumiMean_StdDev_8u_C1R", lumiMean_StdDev_8u_C1R),
        entry("lumiMean_StdDev_16u_C1R", lumiMean_StdDev_16u_C1R),
        entry("lumiMean_StdDev_32f_C1R", lumiMean_StdDev_32f_C1R),
        entry("lumiMean_StdDev_8u_C3CR", lumiMean_StdDev_8u_C3CR),
        entry("lumiMean_StdDev_16u_C3CR", lumiMean_StdDev_16u_C3CR),
        entry("lumiMean_StdDev_32f_C3CR", lumiMean_StdDev_32f_C3CR),
        entry("lumiMean_StdDev_8u_C1MR", lumiMean_StdDev_8u_C1MR),
        entry("lumiMean_StdDev_16u_C1MR", lumiMean_StdDev_16u_C1MR),
        entry("lumiMean_StdDev_32f_C1MR", lumiMean_StdDev_32f_C1MR),
        entry("lumiMean_StdDev_8u_C3CMR", lumiMean_StdDev_8u_C3CMR),
        entry("lumiMean_StdDev_16u_C3CMR", lumiMean_StdDev_16u_C3CMR),
        entry("lumiMean_StdDev_32f_C3CMR", lumiMean_StdDev_32f_C3CMR),
    };
    return table;
}

/// Norms of images, of differences, and relative norms.
inline const std::vector<Export>& normExports()
{
    static const std::vector<Export> table = {
        entry("lumiNorm_Inf_8u_C1MR", lumiNorm_Inf_8u_C1MR),
        entry("lumiNorm_Inf_16u_C1MR", lumiNorm_Inf_16u_C1MR),
        entry("lumiNorm_Inf_32f_C1MR", lumiNorm_Inf_32f_C1MR),
        entry("lumiNorm_Inf_8u_C3CMR", lumiNorm_Inf_8u_C3CMR),
        entry("lumiNorm_Inf_16u_C3CMR", lumiNorm_Inf_16u_C3CMR),
        entry("lumiNorm_Inf_32f_C3CMR", lumiNorm_Inf_32f_C3CMR),
        entry("lumiNorm_L1_8u_C1MR", lumiNorm_L1_8u_C1MR),
        entry("lumiNorm_L1_16u_C1MR", lumiNorm_L1_16u_C1MR),
        entry("lumiNorm_L1_32f_C1MR", lumiNorm_L1_32f_C1MR),
        entry("lumiNorm_L1_8u_C3CMR", lumiNorm_L1_8u_C3CMR),
        entry("lumiNorm_L1_16u_C3CMR", lumiNorm_L1_16u_C3CMR),
        entry("lumiNorm_L1_32f_C3CMR", lumiNorm_L1_32f_C3CMR),
        entry("lumiNorm_L2_8u_C1MR", lumiNorm_L2_8u_C1MR),
        entry("lumiNorm_L2_16u_C1MR", lumiNorm_L2_16u_C1MR),
        entry("lumiNorm_L2_32f_C1MR", lumiNorm_L2_32f_C1MR),
        entry("lumiNorm_L2_8u_C3CMR", lumiNorm_L2_8u_C3CMR),
        entry("lumiNorm_L2_16u_C3CMR", lumiNorm_L2_16u_C3CMR),
        entry("lumiNorm_L2_32f_C3CMR", lumiNorm_L2_32f_C3CMR),
        entry("lumiNormDiff_Inf_8u_C1MR", lumiNormDiff_Inf_8u_C1MR),
        entry("lumiNormDiff_Inf_16u_C1MR", lumiNormDiff_Inf_16u_C1MR),
        entry("lumiNormDiff_Inf_32f_C1MR", lumiNormDiff_Inf_32f_C1MR),
        entry("lumiNormDiff_Inf_8u_C3CMR", lumiNormDiff_Inf_8u_C3CMR),
        entry("lumiNormDiff_Inf_16u_C3CMR", lumiNormDiff_Inf_16u_C3CMR),
        entry("lumiNormDiff_Inf_32f_C3CMR", lumiNormDiff_Inf_32f_C3CMR),
        entry("lumiNormDiff_L1_8u_C1MR", lumiNormDiff_L1_8u_C1MR),
        entry("lumiNormDiff_L1_16u_C1MR", lumiNormDiff_L1_16u_C1MR),
        entry("lumiNormDiff_L1_32f_C1MR", lumiNormDiff_L1_32f_C1MR),
        entry("lumiNormDiff_L1_8u_C3CMR", lumiNormDiff_L1_8u_C3CMR),
        entry("lumiNormDiff_L1_16u_C3CMR", lumiNormDiff_L1_16u_C3CMR),
        entry("lumiNormDiff_L1_32f_C3CMR", lumiNormDiff_L1_32f_C3CMR),
        entry("lumiNormDiff_L2_8u_C1MR", lumiNormDiff_L2_8u_C1MR),
        entry("lumiNormDiff_L2_16u_C1MR", lumiNormDiff_L2_16u_C1MR),
        entry("lumiNormDiff_L2_32f_C1MR", lumiNormDiff_L2_32f_C1MR),
        entry("lumiNormDiff_L2_8u_C3CMR", lumiNormDiff_L2_8u_C3CMR),
        entry("lumiNormDiff_L2_16u_C3CMR", lumiNormDiff_L2_16u_C3CMR),
        entry("lumiNormDiff_L2_32f_C3CMR", lumiNormDiff_L2_32f_C3CMR),
        entry("lumiNormRel_Inf_8u_C1MR", lumiNormRel_Inf_8u_C1MR),
        entry("lumiNormRel_Inf_16u_C1MR", lumiNormRel_Inf_16u_C1MR),
        entry("lumiNormRel_Inf_32f_C1MR", lumiNormRel_Inf_32f_C1MR),
        entry("lumiNormRel_Inf_8u_C3CMR", lumiNormRel_Inf_8u_C3CMR),
        entry("lumiNormRel_Inf_16u_C3CMR", lumiNormRel_Inf_16u_C3CMR),
        entry("lumiNormRel_Inf_32f_C3CMR", lumiNormRel_Inf_32f_C3CMR),
        entry("lumiNormRel_L1_8u_C1MR", lumiNormRel_L1_8u_C1MR),
        entry("lumiNormRel_L1_16u_C1MR", lumiNormRel_L1_16u_C1MR),
        entry("lumiNormRel_L1_32f_C1MR", lumiNormRel_L1_32f_C1MR),
        entry("lumiNormRel_L1_8u_C3CMR", lumiNormRel_L1_8u_C3CMR),
        entry("lumiNormRel_L1_16u_C3CMR", lumiNormRel_L1_16u_C3CMR),
        entry("lumiNormRel_L1_32f_C3CMR", lumiNormRel_L1_32f_C3CMR),
        entry("lumiNormRel_L2_8u_C1MR", lumiNormRel_L2_8u_C1MR),
        entry("lumiNormRel_L2_16u_C1MR", lumiNormRel_L2_16u_C1MR),
        entry("lumiNormRel_L2_32f_C1MR", lumiNormRel_L2_32f_C1MR),
        entry("lumiNormRel_L2_8u_C3CMR", lumiNormRel_L2_8u_C3CMR),
        entry("lumiNormRel_L2_16u_C3CMR", lumiNormRel_L2_16u_C3CMR),
        entry("lumiNormRel_L2_32f_C3CMR", lumiNormRel_L2_32f_C3CMR),
    };
    return table;
}

/// Smallest and largest pixels and where they are.
inline const std::vector<Export>& extremaExports()
{
    static const std::vector<Export> table = {
        entry("lumiMinMaxIndx_8u_C1R", lumiMinMaxIndx_8u_C1R),
        entry("lumiMinMaxIndx_16u_C1R", lumiMinMaxIndx_16u_C1R),
        entry("lumiMinMaxIndx_32f_C1R", lumiMinMaxIndx_32f_C1R),
        entry("lumiMinMaxIndx_8u_C1MR", lumiMinMaxIndx_8u_C1MR),
        entry("lumiMinMaxIndx_16u_C1MR", lumiMinMaxIndx_16u_C1MR),
        entry("lumiMinMaxIndx_32f_C1MR", lumiMinMaxIndx_32f_C1MR),
        entry("lumiMinMaxIndx_8u_C3CR", lumiMinMaxIndx_8u_C3CR),
        entry("lumiMinMaxIndx_16u_C3CR", lumiMinMaxIndx_16u_C3CR),
        entry("lumiMinMaxIndx_32f_C3CR", lumiMinMaxIndx_32f_C3CR),
        entry("lumiMinMaxIndx_8u_C3CMR", lumiMinMaxIndx_8u_C3CMR),
        entry("lumiMinMaxIndx_16u_C3CMR", lumiMinMaxIndx_16u_C3CMR),
        entry("lumiMinMaxIndx_32f_C3CMR", lumiMinMaxIndx_32f_C3CMR),
    };
    return table;
}

/// All of them.
inline const std::vector<Export>& allExports()
{
    static const std::vector<Export> table = [] {
        std::vector<Export> all = meanExports();
        all.insert(all.end(), normExports().begin(), normExports().end());
        all.insert(all.end(), extremaExports().begin(), extremaExports().end());
        return all;
    }();
    return table;
}

}  // namespace lumcv::test::stats
