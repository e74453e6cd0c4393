// The next smaller level of bytes at rate 2 under the kernel 1, 4, 6, 4, 1, whose sums of 25 pixels fit 16 bits.
//
// Every source row is summed along its length at even places, once, and never stored: it adds to the two destination
// rows that it reaches. Between two steps, which yield two destination rows each, stand for each destination column the
// sums of the coming row's upper three source rows and the last source row's own.
#pragma once

#include <algorithm>

#include "frame/image.hpp"
#include "pyramid/layer_room.hpp"
#include "simd/simd.hpp"

namespace lumcv {

class BinomialDown
{
  public:
    /// The destination's rows y are those with 2 y inside the source.
    BinomialDown(Plane<const Lum8u> src, LumiSizeL srcRoi, Plane<Lum8u> dst, LumiSizeL dstRoi, Room room)
        : src_(src), width_(srcRoi.width), lastRow_(srcRoi.height - 1), dst_(dst), dstRoi_(dstRoi)
    {
        // vectors begin with column 1
        const auto take = [&] { return room.take<Lum16s>(dstRoi.width + lineWords, 64) + lineWords - 1; };
        for (Sums& sums : sums_) {
            sums.upper = take();
            sums.last = take();
        }
    }

    void run() const
    {
        begin(src_.row(0));
        const auto row = [this](int64_t y) { return src_.row(std::min(y, lastRow_)); };
        int64_t y = 0;
        for (; y + 1 < dstRoi_.height; y += 2) {
            const int64_t ahead = 2 * y + 8 <= lastRow_ ? 4 * src_.step : 0;
            advanceTwo({row(2 * y + 1), row(2 * y + 2), row(2 * y + 3), row(2 * y + 4), ahead}, sums_[y / 2 % 2],
                       sums_[(y / 2 + 1) % 2], dst_.row(y), dst_.row(y + 1));
        }
        if (y < dstRoi_.height)
            end(row(2 * y + 1), row(2 * y + 2), sums_[y / 2 % 2], dst_.row(y));
    }

  private:
    static constexpr int lanes = std::max(16, simd::registerLanes<Lum16s>);
    static constexpr int lineWords = 32;  // of a cache line
    static constexpr Lum16s half = 128;   // of the 256 by which a sum is divided

    struct Sums
    {
        Lum16s* upper;  ///< 1, 4 and 5 times the rows of a destination row from its first one on
        Lum16s* last;   ///< once the last of these rows, and a half
    };

    /// Of pixel p and those 2, 4, ... behind it.
    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum16s, N> rowSums(const Lum8u* p)
    {
        return simd::pairSums<1, 4>(simd::load<2 * N>(p - 2)) + simd::pairSums<6, 4>(simd::load<2 * N>(p)) +
               simd::pairSums<1, 0>(simd::load<2 * N>(p + 2));
    }

    /// The same of destination column x, near an end of the row.
    simd::Vec<Lum16s, 1> rowSum(const Lum8u* row, int64_t x) const
    {
        const int64_t centre = std::min(2 * x, width_ - 1);
        const auto pixel = [=, this](int64_t i) { return row[std::clamp<int64_t>(centre + i, 0, width_ - 1)]; };
        return {static_cast<Lum16s>(pixel(-2) + 4 * (pixel(-1) + pixel(1)) + 6 * pixel(0) + pixel(2))};
    }

    /// Calls body(x, lanes, sums), where sums(row) are those of a source row in columns from x on. Columns may come
    /// twice.
    template <class Body>
    [[gnu::always_inline]] void eachColumn(Body body) const
    {
        const auto whole = [=](int64_t x) {
            body(x, simd::Lanes<lanes>{}, [=](const Lum8u* row) { return rowSums<lanes>(row + 2 * x); });
        };
        const auto single = [=, this](int64_t x) {
            body(x, simd::Lanes<1>{}, [=, this](const Lum8u* row) { return rowSum(row, x); });
        };
        // a vector reads the pixels from 2 x - 2 to 2 x + 2 lanes + 1
        const int64_t last = width_ / 2 - lanes - 1;
        int64_t rest = 0;
        if (last >= 1) {
            single(0);
            for (int64_t x = 1; x < last; x += lanes)
                whole(x);
            whole(last);
            rest = last + lanes;
        }
        for (int64_t x = rest; x < dstRoi_.width; ++x)
            single(x);
    }

    /// The rows above the first one are like it.
    [[gnu::flatten]] void begin(const Lum8u* row) const
    {
        const Sums to = sums_[0];
        eachColumn([=](int64_t x, auto n, auto sums) {
            const auto sum = sums(row);
            simd::store(to.upper + x, sum * simd::broadcast<n>(Lum16s{10}));
            simd::store(to.last + x, sum + simd::broadcast<n>(half));
        });
    }

    struct FourRows
    {
        const Lum8u *first, *second, *third, *fourth;
        int64_t ahead;  ///< bytes to the next four, or 0

        /// Asks for the pixels of the next four rows: the processor does not see their pages coming.
        template <int N>
        [[gnu::always_inline]] void prefetchNext(int64_t x) const
        {
            for (const Lum8u* row : {first, second, third, fourth})
                simd::prefetch<N>(rowAt(row + x, ahead, 1));
        }
    };

    /// Takes the two lower rows of a destination row, and the two that follow. The sums reach 255 * 256 + 128, as
    /// unsigned words.
    [[gnu::flatten]] void advanceTwo(FourRows rows, Sums from, Sums to, Lum8u* upperDst, Lum8u* lowerDst) const
    {
        eachColumn([=](int64_t x, auto n, auto sums) {
            if constexpr (n > 1)
                rows.template prefetchNext<2 * n>(2 * x);
            const auto second = sums(rows.second);
            // what both destination rows take of the last source row above and of these two
            const auto shared = simd::load<n>(from.last + x) + fourTimes(sums(rows.first)) + second;
            simd::store(upperDst + x, highBytes(simd::load<n>(from.upper + x) + shared));
            const auto fourth = sums(rows.fourth);
            // what the lower destination row and the next one take of these three
            const auto sharedBelow = second + fourTimes(sums(rows.third)) + fourth;
            simd::store(lowerDst + x, highBytes(shared + fourTimes(second) + sharedBelow));
            simd::store(to.upper + x, sharedBelow + fourTimes(fourth));
            simd::store(to.last + x, fourth + simd::broadcast<n>(half));
        });
    }

    /// The last destination row.
    [[gnu::flatten]] void end(const Lum8u* fourth, const Lum8u* fifth, Sums from, Lum8u* dst) const
    {
        eachColumn([=](int64_t x, auto n, auto sums) {
            const auto upper = simd::load<n>(from.upper + x) + simd::load<n>(from.last + x);
            simd::store(dst + x, highBytes(upper + fourTimes(sums(fourth)) + sums(fifth)));
        });
    }

    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum16s, N> fourTimes(simd::Vec<Lum16s, N> v)
    {
        return v * simd::broadcast<N>(Lum16s{4});
    }

    template <int N>
    [[gnu::always_inline]] static simd::Vec<Lum8u, N> highBytes(simd::Vec<Lum16s, N> v)
    {
        if constexpr (N == 1)
            return {static_cast<Lum8u>(static_cast<Lum16u>(v.raw) >> 8)};
        else
            return simd::narrowOnce<Lum8u>(simd::pairSums<0, 1>(simd::reinterpreted<Lum8u>(v)));
    }

    Plane<const Lum8u> src_;
    int64_t width_, lastRow_;
    Plane<Lum8u> dst_;
    LumiSizeL dstRoi_;
    Sums sums_[2];
};

}  // namespace lumcv
