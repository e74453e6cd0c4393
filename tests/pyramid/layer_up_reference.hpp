// The layer up, written pixel by pixel from its definition.
#pragma once

#include "pyramid/layer_down_reference.hpp"

namespace lumcv::test::pyramid {

/// The taps of the way up: 13 fractional bits for integers, rounded.
inline std::vector<Lum32f> upTaps(const std::vector<Lum32f>& kernel)
{
    return normalisedTaps(kernel);
}
inline std::vector<Lum32f> upTaps(const std::vector<Lum16s>& kernel)
{
    const std::vector<Lum16s> symmetric = mirrored(kernel);
    std::vector<Lum32f> taps(symmetric.begin(), symmetric.end());
    const Lum32f sum = tapSum(taps);
    for (Lum32f& tap : taps) {
        if (sum != 0) {
            tap = static_cast<Lum16s>(truncated(tap * 16384 / sum + 0.5f) >> 1);
        }
    }
    return taps;
}

/// What a destination coordinate takes of one axis: places in the source with their weights, in ascending order.
struct Share
{
    Lum64s place;
    Lum32f weight;
};

inline std::vector<Share> generalShares(int d, Lum32f rate, const std::vector<Lum32f>& taps)
{
    const Lum64f wideRate = rate;
    const auto centre = static_cast<Lum64s>(taps.size() / 2);
    const auto f = static_cast<Lum64s>(d / wideRate);
    const auto reach = static_cast<Lum64s>(static_cast<Lum64f>(centre) / wideRate + 0.5);
    std::vector<Share> shares;
    Lum32f sum = 0;
    for (Lum64s j = f - reach; j <= f + reach + 1; ++j) {
        const Lum64s index = static_cast<Lum64s>(std::floor(static_cast<Lum64f>(j) * wideRate - d + 0.5)) + centre;
        if (index >= 0 && index < static_cast<Lum64s>(taps.size())) {
            shares.push_back({j, taps[static_cast<std::size_t>(index)]});
            sum = shares.size() == 1 ? shares.back().weight : sum + shares.back().weight;
        }
    }
    if (sum == 0) {
        return {{f, 1.0f}};
    }
    for (Share& share : shares) {
        share.weight = share.weight / sum;
    }
    return shares;
}

/// In eighths, at a rate of 2 with the kernel 1, 4, 6, 4, 1. The left end is a reflection, the right one a repetition.
inline std::vector<Share> binomialShares(int d, int side)
{
    const int i = d / 2;
    if (side == 1 || d >= 2 * side - 1) {
        return {{side - 1, 8}};
    }
    if (d % 2 == 1) {
        return {{i, 4}, {i + 1, 4}};
    }
    if (i == 0) {
        return {{0, 6}, {1, 2}};
    }
    if (i == side - 1) {
        return {{i - 1, 1}, {i, 7}};
    }
    return {{i - 1, 1}, {i, 6}, {i + 1, 1}};
}

template <class T>
void layerUp(const Image<T>& source, Image<T>& destination, const std::vector<Tap<T>>& kernel, Lum32f rate)
{
    const bool isBinomial = !kIsFloat<T> && isBinomial5(mirrored(kernel)) && isNearTwo(rate);
    const std::vector<Lum32f> taps = upTaps(kernel);
    std::vector<std::vector<Share>> columns, rows;
    for (int x = 0; x < destination.width(); ++x) {
        columns.push_back(isBinomial ? binomialShares(x, source.width()) : generalShares(x, rate, taps));
    }
    for (int y = 0; y < destination.height(); ++y) {
        rows.push_back(isBinomial ? binomialShares(y, source.height()) : generalShares(y, rate, taps));
    }
    Plane<Lum32f> pixels = planeOf<Lum32f>(source);
    destination.forEach(Area::Roi, [&](T& element, int x, int y, int c) {
        const auto sumOf = [](const std::vector<Share>& shares, auto valueAt) {
            Lum32f sum = 0;
            for (std::size_t i = 0; i < shares.size(); ++i) {
                const Lum32f product = shares[i].weight * valueAt(shares[i].place);
                sum = i == 0 ? product : sum + product;
            }
            return sum;
        };
        // the binomial sums are integers of at most 22 bits, which single precision holds
        const Lum32f value = sumOf(rows[static_cast<std::size_t>(y)], [&](Lum64s row) {
            return sumOf(columns[static_cast<std::size_t>(x)],
                         [&](Lum64s column) { return pixels.at(column, row, c); });
        });
        if constexpr (kIsFloat<T>) {
            element = value;
        } else if (isBinomial) {
            element = static_cast<T>((static_cast<Lum64s>(value) + 32) >> 6);
        } else {
            constexpr Lum32f most = std::is_same_v<T, Lum8u> ? 255 : 65535;
            element = static_cast<T>(std::clamp(std::nearbyint(value), 0.0f, most));
        }
    });
}

}  // namespace lumcv::test::pyramid
