// Operands of the row and column pipelines in blocks of exactly their size against unreadable pages: arrays (kernels,
// border values, row pointers, rows) and scratch at any byte address.
#pragma once

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "lumcv/types.h"
#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {

/// An array that ends, or begins, at an unreadable page.
template <typename T>
class GuardedArray
{
  public:
    GuardedArray(const std::vector<T>& values, Guard guard) : block_(values.size() * sizeof(T), guard)
    {
        std::copy(values.begin(), values.end(), block_.template as<T>());
    }
    /// Elements with the pattern of the block, for a row that is to be written.
    GuardedArray(std::size_t count, Guard guard) : block_(count * sizeof(T), guard) {}

    T* data() const
    {
        return block_.template as<T>();
    }
    const GuardedBlock& block() const
    {
        return block_;
    }

  private:
    GuardedBlock block_;
};

/// A scratch block `offset` bytes away from the unreadable page.
class Scratch
{
  public:
    Scratch(std::size_t bytes, Guard guard, std::size_t offset)
        : block_(bytes + offset, guard), fresh_(block_), bytes_(bytes), offset_(offset)
    {
    }

    Lum8u* data() const
    {
        return block_.data() + (block_.guard() == Guard::Before ? offset_ : 0);
    }
    /// Whether the bytes between the scratch and the pages' ends are as they were.
    testing::AssertionResult surroundingsIntact() const
    {
        const std::size_t begin = block_.guard() == Guard::Before ? 0 : bytes_;
        if (!std::equal(block_.data() + begin, block_.data() + begin + offset_, fresh_.data() + begin)) {
            return testing::AssertionFailure() << "a byte next to the scratch of " << bytes_ << " bytes was written";
        }
        return block_.slackIntact();
    }

  private:
    GuardedBlock block_;
    GuardedBlock fresh_;
    std::size_t bytes_;
    std::size_t offset_;
};

/// Where the operands of a case stand: all before a page, all behind one, or each where the dice say.
enum class Placement
{
    PageAfter,
    PageBefore,
    Mixed
};

inline Guard guardFor(Placement placement, Random& random)
{
    if (placement == Placement::Mixed) {
        return random.oneIn(2) ? Guard::After : Guard::Before;
    }
    return placement == Placement::PageAfter ? Guard::After : Guard::Before;
}

/// How large the coefficients of a kernel are.
enum class Coefficients
{
    Small,   ///< results mostly within the type, ties among them
    Medium,  ///< sums of more than 16 bits
    Full     ///< the whole type, ends included
};

template <typename Kernel>
std::vector<Kernel> drawKernel(int size, Coefficients coefficients, bool symmetric, Random& random)
{
    std::vector<Kernel> kernel(static_cast<std::size_t>(size));
    for (Kernel& k : kernel) {
        if constexpr (std::is_same_v<Kernel, Lum32f>) {
            k = coefficients == Coefficients::Full ? random.value<Lum32f>(Values::Extreme)
                                                   : 2 * random.unit<Lum32f>() - 0.75f;
        } else if (coefficients == Coefficients::Full) {
            k = random.value<Lum16s>(Values::Extreme);
        } else {
            const int limit = coefficients == Coefficients::Small ? 4 : 600;
            k = static_cast<Kernel>(random.between(-limit, limit + 1));
        }
    }
    if (symmetric) {
        std::reverse_copy(kernel.begin(), kernel.begin() + size / 2, kernel.end() - size / 2);
    }
    return kernel;
}

/// One of the divisors that matter, or one that brings the sum back into the range of the elements.
template <typename Kernel>
int drawDivisor(const std::vector<Kernel>& kernel, Random& random)
{
    const int fixed[] = {1, 1, -1, 2, 3, 16, -7, 256, 1000, -16384, 16385, INT_MAX, INT_MIN};
    const auto choice = random.between(0, 19);
    if (choice < 13) {
        return fixed[choice];
    }
    double magnitude = 1;
    for (const Kernel k : kernel) {
        magnitude += std::abs(static_cast<double>(k)) / 3;
    }
    return static_cast<int>(std::min(magnitude, 1e6)) * (random.oneIn(4) ? -1 : 1);
}

// What a typed test calls a variant.
struct VariantName
{
    template <typename V>
    static std::string GetName(int)
    {
        return V::name;
    }
};

}  // namespace lumcv::test
