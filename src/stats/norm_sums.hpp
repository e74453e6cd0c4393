// What the norms gather from the pixels under a mask: the largest magnitude, or the sum of magnitudes or squares.
//
// A gatherer takes a step of pixels at a time, of one image or of two, together with the mask bytes. It is told to
// settle as addSettled() has it, and when a row ends.
#pragma once

#include "stats/pixel_groups.hpp"

namespace lumcv {

/// What gathers pixels of type T, 64 bytes of them at a time at every level.
template <class T>
struct Gathering
{
    static constexpr int lanes = 64 / static_cast<int>(sizeof(T));
    using Step = simd::Vec<T, lanes>;

    // what most of them do about it
    void settle() {}
    void endRow() {}
};

/// Inf. A not-a-number is greater than nothing.
template <class T>
class Greatest : public Gathering<T>
{
  public:
    using typename Gathering<T>::Step;
    using Gathering<T>::lanes;

    void add(const Lum8u* mask, Step x)
    {
        if constexpr (std::is_same_v<T, Lum32f>)
            x = simd::magnitude(x);
        greatest_ = simd::max(simd::keepWhere(mask, x), greatest_);
    }

    void add(const Lum8u* mask, Step a, Step b)
    {
        add(mask, simd::absoluteDifference(a, b));
    }

    Lum64f value() const
    {
        T each[lanes];
        simd::store(each, greatest_);
        T greatest = 0;
        for (const T lane : each)
            greatest = lane > greatest ? lane : greatest;
        return static_cast<Lum64f>(greatest);
    }

  private:
    Step greatest_ = simd::broadcast<lanes>(T{0});
};

/// L1 of bytes, exact.
class ByteSum : public Gathering<Lum8u>
{
  public:
    void add(const Lum8u* mask, Step x)
    {
        sums_ = sums_ + simd::sumsOf(simd::keepWhere(mask, x));
    }

    void add(const Lum8u* mask, Step a, Step b)
    {
        sums_ = sums_ + simd::sumsOfDifferences(simd::keepWhere(mask, a), simd::keepWhere(mask, b));
    }

    Lum64f value() const
    {
        return static_cast<Lum64f>(simd::total(sums_));
    }

  private:
    simd::Sums<uint64_t, lanes, 1> sums_{};
};

/// L2 of bytes, exact.
class ByteSquareSum : public Gathering<Lum8u>
{
  public:
    void add(const Lum8u* mask, Step x)
    {
        recent_ = recent_ + simd::squareSumsOf(simd::keepWhere(mask, x));
    }

    void add(const Lum8u* mask, Step a, Step b)
    {
        add(mask, simd::absoluteDifference(a, b));
    }

    void settle()
    {
        sums_ = sums_ + simd::widenedUnsigned(recent_);
        recent_ = Recent{};
    }

    Lum64f value() const
    {
        return static_cast<Lum64f>(simd::total(sums_));
    }

  private:
    using Recent = simd::Sums<Lum32s, lanes, 1>;

    // the narrowest register has 4 lanes, and a quarter of the pixels falls to each
    static_assert(pixelsPerSettlement / 4 * 255 * 255 <= UINT32_MAX);
    Recent recent_{};
    simd::Sums<uint64_t, lanes, 1> sums_{};
};

/// L1 and L2 of words, exact: x is 32768 + d with a signed word d, and the square of x is d * d + 65536 * d + 2^30.
/// What is masked out counts as an x of 0.
template <bool squares>
class WordSum : public Gathering<Lum16u>
{
  public:
    void add(const Lum8u* mask, Step x)
    {
        const auto kept = simd::keepWhere(mask, x);
        const auto distance = simd::reinterpreted<Lum16s>(kept - simd::broadcast<lanes>(Lum16u{0x8000}));
        recent_ = recent_ + simd::sumsOf(distance);
        if constexpr (squares)
            squareSums_ = squareSums_ + simd::squareSumsOf(distance);
        pixels_ += lanes;
    }

    void add(const Lum8u* mask, Step a, Step b)
    {
        add(mask, simd::absoluteDifference(a, b));
    }

    void settle()
    {
        sums_ = sums_ + simd::widenedSigned(recent_);
        recent_ = Recent{};
    }

    Lum64f value() const  // modulo 2^64, so that a negative sum of distances does no harm
    {
        const uint64_t distances = simd::total(sums_);
        if constexpr (squares)
            return static_cast<Lum64f>(simd::total(squareSums_) + (distances << 16) + (pixels_ << 30));
        else
            return static_cast<Lum64f>(distances + (pixels_ << 15));
    }

  private:
    using Recent = simd::Sums<Lum32s, lanes, 2>;
    using Settled = simd::Sums<uint64_t, lanes, 2>;

    // the narrowest register has 4 lanes, and a quarter of the pixels falls to each
    static_assert(pixelsPerSettlement / 4 * 32768 <= INT32_MAX);
    Recent recent_{};
    Settled sums_{};
    Settled squareSums_{};
    uint64_t pixels_ = 0;  ///< masked-out ones and those that fill the last step of a row among them
};

/// L1 and L2 of floats: pixel x of a row goes to lane x mod 8, and the lanes are folded at the end of the row.
template <bool squares, class Lane>
class FloatSum : public Gathering<Lum32f>
{
  public:
    void add(const Lum8u* mask, Step x)
    {
        // a factor, not a selection: it turns what is not finite into not-a-number
        const auto kept = x * simd::keepWhere(mask, simd::broadcast<lanes>(1.0f));
        addEight(simd::lowerHalf(kept));
        addEight(simd::upperHalf(kept));
    }

    void add(const Lum8u* mask, Step a, Step b)
    {
        add(mask, a - b);
    }

    void endRow()
    {
        total_ += simd::total(lanes_);
        lanes_ = Lanes{};
    }

    Lum64f value() const
    {
        return total_;
    }

  private:
    using Lanes = simd::Vec<Lane, 8>;

    void addEight(simd::Vec<Lum32f, 8> x)
    {
        if constexpr (!squares)
            lanes_ = lanes_ + simd::toDouble(simd::magnitude(x));
        else if constexpr (std::is_same_v<Lane, Lum64f>)
            lanes_ = simd::addExactSquare(lanes_, simd::toDouble(x));
        else
            lanes_ = lanes_ + x * x;
    }

    Lanes lanes_{};
    Lum64f total_ = 0.0;
};

}  // namespace lumcv
