// What the norms gather from the pixels under a mask: the largest magnitude, or the sum of magnitudes or squares.
//
// A gatherer takes a step of pixels at a time, of one image or of two, together with the mask bytes. It is told when a
// row ends, and after at most `stepsBetweenSpills` steps that its partial sums are about to be full.
#pragma once

#include "simd/simd.hpp"

namespace lumcv {

/// Pixels of a step: 64 bytes, so that the sums of floats have the same lanes at every level.
template <class T>
inline constexpr int stepLanes = 64 / static_cast<int>(sizeof(T));

template <class T>
using Step = simd::Vec<T, stepLanes<T>>;

inline constexpr int stepsBetweenSpills = 4096;

/// Inf. A not-a-number is greater than nothing.
template <class T>
class Greatest
{
  public:
    static constexpr bool inOrder = false;

    void add(const Lum8u* mask, Step<T> x)
    {
        if constexpr (std::is_same_v<T, Lum32f>)
            x = simd::magnitude(x);
        greatest_ = simd::max(simd::keepWhere(mask, x), greatest_);
    }

    void add(const Lum8u* mask, Step<T> a, Step<T> b)
    {
        add(mask, simd::absoluteDifference(a, b));
    }

    void spill() {}
    void endRow() {}

    Lum64f value() const
    {
        T lanes[stepLanes<T>];
        simd::store(lanes, greatest_);
        T greatest = 0;
        for (const T lane : lanes)
            greatest = lane > greatest ? lane : greatest;
        return static_cast<Lum64f>(greatest);
    }

  private:
    Step<T> greatest_ = simd::broadcast<stepLanes<T>>(T{0});
};

/// L1 of bytes.
struct ByteMagnitudes
{
    using Partial = simd::Register<uint64_t>;

    static Partial of(const Lum8u* mask, Step<Lum8u> x)
    {
        return simd::byteSums(simd::keepWhere(mask, x));
    }
    static Partial of(const Lum8u* mask, Step<Lum8u> a, Step<Lum8u> b)
    {
        return simd::differenceSums(simd::keepWhere(mask, a), simd::keepWhere(mask, b));
    }
};

/// L2 of bytes.
struct ByteSquares
{
    using Partial = simd::Register<Lum32u>;
    // the narrowest register has 4 lanes, and 16 pixels of a step fall to each
    static_assert(stepsBetweenSpills * 16ll * 255 * 255 <= UINT32_MAX);

    static Partial of(const Lum8u* mask, Step<Lum8u> x)
    {
        return simd::byteSquares(simd::keepWhere(mask, x));
    }
    static Partial of(const Lum8u* mask, Step<Lum8u> a, Step<Lum8u> b)
    {
        return of(mask, simd::absoluteDifference(a, b));
    }
};

/// L1 of words.
struct WordMagnitudes
{
    using Partial = simd::Register<Lum32u>;
    // the narrowest register has 4 lanes, and 8 pixels of a step fall to each
    static_assert(stepsBetweenSpills * 8ll * 65535 <= UINT32_MAX);

    static Partial of(const Lum8u* mask, Step<Lum16u> x)
    {
        return simd::wordSums(simd::keepWhere(mask, x));
    }
    static Partial of(const Lum8u* mask, Step<Lum16u> a, Step<Lum16u> b)
    {
        return of(mask, simd::absoluteDifference(a, b));
    }
};

/// L2 of words.
struct WordSquares
{
    using Partial = simd::WordSquares;
    // the narrowest register has 4 lanes, and 8 pixels of a step fall to each
    static_assert(stepsBetweenSpills * 8ll * 255 * 255 <= UINT32_MAX);

    static Partial of(const Lum8u* mask, Step<Lum16u> x)
    {
        return simd::wordSquares(simd::keepWhere(mask, x));
    }
    static Partial of(const Lum8u* mask, Step<Lum16u> a, Step<Lum16u> b)
    {
        return of(mask, simd::absoluteDifference(a, b));
    }
};

/// L1 and L2 of integers, exact: partial sums that are spilled into 64-bit lanes.
template <class Terms>
class IntegerSum
{
  public:
    static constexpr bool inOrder = false;

    template <class... Steps>
    void add(const Lum8u* mask, Steps... steps)
    {
        partial_ = partial_ + Terms::of(mask, steps...);
    }

    void spill()
    {
        total_ = total_ + simd::widened(partial_);
        partial_ = Partial{};
    }
    void endRow()
    {
        spill();
    }

    Lum64f value() const
    {
        return static_cast<Lum64f>(simd::total(total_));
    }

  private:
    using Partial = typename Terms::Partial;

    Partial partial_{};
    simd::Register<uint64_t> total_{};
};

enum class Power
{
    magnitude,
    square
};

/// L1 and L2 of floats: pixel x of a row goes to lane x mod 8, and the lanes are folded at the end of the row.
template <Power power, class Lane>
class FloatSum
{
  public:
    static constexpr bool inOrder = true;

    void add(const Lum8u* mask, Step<Lum32f> x)
    {
        // a factor, not a selection: it turns what is not finite into not-a-number
        const auto kept = x * simd::keepWhere(mask, simd::broadcast<stepLanes<Lum32f>>(1.0f));
        addEight(simd::lowerHalf(kept));
        addEight(simd::upperHalf(kept));
    }

    void add(const Lum8u* mask, Step<Lum32f> a, Step<Lum32f> b)
    {
        add(mask, a - b);
    }

    void spill() {}

    void endRow()
    {
        Lane l[8];
        simd::store(l, lanes_);
        total_ += ((l[0] + l[4]) + (l[2] + l[6])) + ((l[1] + l[5]) + (l[3] + l[7]));
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
        const auto wide = [](simd::Vec<Lum32f, 8> v) {
            if constexpr (sizeof(Lane) == sizeof(Lum64f))
                return simd::toDouble(v);
            else
                return v;
        };
        if constexpr (power == Power::magnitude)
            lanes_ = lanes_ + wide(simd::magnitude(x));
        else
            lanes_ = lanes_ + wide(x) * wide(x);
    }

    Lanes lanes_{};
    Lum64f total_ = 0.0;
};

}  // namespace lumcv
