// Where a fuzzed case takes its decisions from: the fuzzer's input first, then a generator seeded with that input.
//
// Compilers differ in the order in which they evaluate operands and arguments. Two decisions therefore stand in two
// statements or in a list in braces, so that a number means the same case whoever compiled it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/random.hpp"

namespace lumcv::fuzz {

class Choices
{
  public:
    // Rarities come up once in a while, or in each case, or in none.
    enum class Rarities
    {
        Some,
        All,
        None
    };

    explicit Choices(std::uint64_t seed, Rarities rarities = Rarities::Some) : random_(seed), rarities_(rarities) {}
    Choices(const std::uint8_t* input, std::size_t size) : input_(input), left_(size), random_(hash(input, size)) {}

    // A number from first to last, both included.
    int between(int first, int last)
    {
        if (left_ == 0)
            return int(random_.between(first, last));
        const std::uint64_t count = std::uint64_t(std::int64_t{last} - first) + 1;
        std::uint64_t number = 0;
        for (std::uint64_t reach = 1; reach < count && left_ > 0; reach <<= 8) {
            number = number << 8 | *input_++;
            --left_;
        }
        return int(first + std::int64_t(number % count));
    }

    bool oneIn(int n)
    {
        return between(1, n) == 1;
    }

    // Not from the input: for what is too slow to be looked for again and again.
    bool rarely(int n)
    {
        return rarities_ == Rarities::Some ? random_.oneIn(n) : rarities_ == Rarities::All;
    }

    template <typename T, std::size_t size>
    T oneOf(const T (&values)[size])
    {
        return values[between(0, int(size) - 1)];
    }

    std::uint64_t seed()
    {
        return random_.bits();
    }

  private:
    static std::uint64_t hash(const std::uint8_t* input, std::size_t size)
    {
        std::uint64_t result = 0xcbf29ce484222325u;
        for (std::size_t i = 0; i < size; ++i)
            result = (result ^ input[i]) * 0x100000001b3u;
        return result;
    }

    const std::uint8_t* input_ = nullptr;
    std::size_t left_ = 0;
    test::Random random_;
    Rarities rarities_ = Rarities::Some;
};

}  // namespace lumcv::fuzz
