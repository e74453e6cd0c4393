// Walking a row in groups: every pixel once, in its lane, nothing outside the row, the rest filled.
#include "stats/pixel_groups.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/guarded_block.hpp"
#include "support/random.hpp"

namespace lumcv::test {
namespace {

template <int N, class T, int channels>
void expectGroups(std::size_t width, Guard guard)
{
    const std::size_t elements = (width - 1) * channels + 1;  // of the row, from the channel's first on
    GuardedBlock row(elements * sizeof(T), guard), mask(width, guard);
    Random random(width);
    std::vector<T> values(elements);
    for (T& value : values)
        value = random.value<T>(Values::Ordinary);
    std::memcpy(row.data(), values.data(), elements * sizeof(T));

    struct Seen
    {
        std::vector<T> pixels;
        std::vector<Lum8u> bytes;
    };
    const T fill = 77;
    for (const std::size_t begin : {std::size_t{0}, width / 2}) {
        Seen seen;
        const auto collect = [&seen](const T* p, const Lum8u* m) {
            for (int i = 0; i < N; ++i) {
                seen.pixels.push_back(p[i * channels]);
                seen.bytes.push_back(m[i]);
            }
        };
        eachGroup<N>(static_cast<int64_t>(begin), static_cast<int64_t>(width), collect,
                     PixelRow<T, channels>{row.as<const T>(), fill}, PixelRow<Lum8u, 1>{mask.as<const Lum8u>(), 0});
        ASSERT_EQ(seen.pixels.size(), (width - begin + N - 1) / N * N);
        for (std::size_t i = 0; i < seen.pixels.size(); ++i) {
            const bool there = begin + i < width;
            ASSERT_EQ(seen.pixels[i], there ? values[(begin + i) * channels] : fill)
                << "pixel " << i << " of " << width;
            ASSERT_EQ(seen.bytes[i], there ? mask.original(begin + i) : 0) << "byte " << i << " of " << width;
        }
    }
}

template <int N, class T>
void expectGroupsOf()
{
    for (std::size_t width = 1; width <= 3 * N + 1; ++width)
        for (const Guard guard : {Guard::After, Guard::Before}) {
            expectGroups<N, T, 1>(width, guard);
            expectGroups<N, T, 3>(width, guard);
        }
}

TEST(PixelGroups, HoldEachPixelOnceAndFillTheLast)
{
    expectGroupsOf<8, Lum32f>();
    expectGroupsOf<16, Lum32f>();
    expectGroupsOf<32, Lum16u>();
    expectGroupsOf<64, Lum8u>();
}

}  // namespace
}  // namespace lumcv::test
