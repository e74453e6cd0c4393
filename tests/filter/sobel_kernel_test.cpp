// The Sobel kernels: binomial smoothing and differences of an impulse, in the order in which they are made.
#include <lumcv/lumcv.h>

#include <limits>
#include <string>
#include <vector>

#include "filter/pipeline_blocks.hpp"
#include "support/compare.hpp"
#include "support/status_order.hpp"
#include "support/type_test.hpp"

namespace lumcv::test {
namespace {

template <class T>
struct SobelKernelExports;

template <>
struct SobelKernelExports<Lum16s>
{
    static constexpr const char* name = "16s";
    static constexpr auto generate = lumiGenSobelKernel_16s;
};

template <>
struct SobelKernelExports<Lum32f>
{
    static constexpr const char* name = "32f";
    static constexpr auto generate = lumiGenSobelKernel_32f;
};

struct SobelKernelName
{
    template <typename T>
    static std::string GetName(int)
    {
        return SobelKernelExports<T>::name;
    }
};

using SobelKernelTypes = testing::Types<Lum16s, Lum32f>;
TYPE_SUITE(SobelKernelQuick, SobelKernelTypes, SobelKernelName);

// The kernel in an array of exactly its size.
template <class T>
std::vector<T> generated(Lum32s kernelSize, Lum32s dx, Lum32s sign, Guard guard = Guard::After)
{
    const GuardedArray<T> kernel(static_cast<std::size_t>(kernelSize), guard);
    EXPECT_EQ(SobelKernelExports<T>::generate(kernel.data(), kernelSize, dx, sign), lumOk);
    EXPECT_TRUE(kernel.block().slackIntact());
    return {kernel.data(), kernel.data() + kernelSize};
}

// In floats each operation is rounded by itself; 16s elements keep their low 16 bits.
template <class T>
std::vector<T> referenceKernel(int kernelSize, int dx, int sign)
{
    std::vector<T> kernel(static_cast<std::size_t>(kernelSize));
    kernel.back() = 1;
    int start = kernelSize - 1;
    for (int round = 0; round < kernelSize - 1; ++round) {
        --start;
        for (std::size_t i = static_cast<std::size_t>(start); i + 1 < kernel.size(); ++i) {
            kernel[i] =
                static_cast<T>(round < kernelSize - 1 - dx ? kernel[i] + kernel[i + 1] : kernel[i] - kernel[i + 1]);
        }
    }
    if (sign < 0) {
        for (T& element : kernel) {
            element = static_cast<T>(-element);
        }
    }
    return kernel;
}

TYPE_TEST(SobelKernelQuick, SmallKernels)
{
    using V = std::vector<TypeParam>;
    EXPECT_EQ(generated<TypeParam>(1, 0, 1), (V{1}));
    EXPECT_EQ(generated<TypeParam>(1, 0, -1), (V{-1}));
    EXPECT_EQ(generated<TypeParam>(3, 0, 1), (V{1, 2, 1}));
    EXPECT_EQ(generated<TypeParam>(3, 1, 1), (V{-1, 0, 1}));
    EXPECT_EQ(generated<TypeParam>(3, 2, 1), (V{1, -2, 1}));
    EXPECT_EQ(generated<TypeParam>(5, 0, 1), (V{1, 4, 6, 4, 1}));
    EXPECT_EQ(generated<TypeParam>(5, 1, 1), (V{-1, -2, 0, 2, 1}));
    EXPECT_EQ(generated<TypeParam>(5, 2, 1), (V{1, 0, -2, 0, 1}));
    EXPECT_EQ(generated<TypeParam>(5, 3, 1), (V{-1, 2, 0, -2, 1}));
    EXPECT_EQ(generated<TypeParam>(5, 4, 1), (V{1, -4, 6, -4, 1}));
    EXPECT_EQ(generated<TypeParam>(7, 1, 1), (V{-1, -4, -5, 0, 5, 4, 1}));
}

TYPE_TEST(SobelKernelQuick, OnlyANegativeSignNegates)
{
    using V = std::vector<TypeParam>;
    constexpr int intMax = std::numeric_limits<int>::max();
    constexpr int intMin = std::numeric_limits<int>::min();
    for (const Lum32s sign : {0, 1, 2, intMax}) {
        EXPECT_EQ(generated<TypeParam>(3, 1, sign), (V{-1, 0, 1})) << "sign " << sign;
    }
    for (const Lum32s sign : {-1, -2, intMin}) {
        EXPECT_EQ(generated<TypeParam>(3, 1, sign), (V{1, 0, -1})) << "sign " << sign;
    }
}

// Up to sizes at which 16 bits wrap and floats round and overflow.
TYPE_TEST(SobelKernelQuick, MatchesTheReference)
{
    for (const int kernelSize : {1, 3, 5, 7, 9, 15, 17, 19, 21, 25, 31, 33, 41, 63, 65, 127, 129, 141, 301}) {
        for (const int dx : {0, 1, 2, 3, kernelSize / 2, kernelSize - 2, kernelSize - 1}) {
            if (dx < 0 || dx >= kernelSize) {
                continue;
            }
            for (const int sign : {1, -1}) {
                const std::vector<TypeParam> expected = referenceKernel<TypeParam>(kernelSize, dx, sign);
                for (const Guard guard : {Guard::After, Guard::Before}) {
                    const std::vector<TypeParam> actual = generated<TypeParam>(kernelSize, dx, sign, guard);
                    EXPECT_TRUE(sameElements(expected.data(), actual.data(), expected.size()))
                        << "size " << kernelSize << ", dx " << dx << ", sign " << sign;
                }
            }
        }
    }
}

template <class T>
struct SobelKernelArgs
{
    const GuardedArray<T>* kernel;
    bool withKernel = true;
    Lum32s kernelSize = 5;
    Lum32s dx = 1;
    Lum32s sign = -1;

    LumStatus call() const
    {
        return SobelKernelExports<T>::generate(withKernel ? kernel->data() : nullptr, kernelSize, dx, sign);
    }
    std::vector<Output> outputs() const
    {
        return {Output(kernel->block())};
    }
};

TYPE_TEST(SobelKernelQuick, ChecksInOrder)
{
    using Args = SobelKernelArgs<TypeParam>;
    const GuardedArray<TypeParam> kernel(5, Guard::After);
    constexpr int intMax = std::numeric_limits<int>::max();
    constexpr int intMin = std::numeric_limits<int>::min();
    for (const Lum32s dx : {0, 1, 4}) {
        expectStatusOrder(Args{&kernel, true, 5, dx, -1},
                          {
                              {"pDst null", lumErrNullPointer, [](Args& a) { a.withKernel = false; }},
                              {"size 0", lumErrSize, [](Args& a) { a.kernelSize = 0; }},
                              {"size -1", lumErrSize, [](Args& a) { a.kernelSize = -1; }},
                              {"size of the least number", lumErrSize, [](Args& a) { a.kernelSize = intMin; }},
                              {"size 4", lumErrSize, [](Args& a) { a.kernelSize = 4; }},
                              {"size 2", lumErrSize, [](Args& a) { a.kernelSize = 2; }},
                              {"dx -1", lumErrSize, [](Args& a) { a.dx = -1; }},
                              {"dx of the least number", lumErrSize, [](Args& a) { a.dx = intMin; }},
                              {"dx 5", lumErrSize, [](Args& a) { a.dx = 5; }},
                              {"dx of the largest number", lumErrSize, [](Args& a) { a.dx = intMax; }},
                          });
    }
}

}  // namespace
}  // namespace lumcv::test
