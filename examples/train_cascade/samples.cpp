#include "samples.hpp"

#include <algorithm>

namespace train {
namespace {

using gallery::Picture;
using gallery::Random;

Square windowOf(const Coin& coin)
{
    const int side = coin.radius * 2 * 100 / coinInWindow;
    return {(coin.x - side / 2 + unit / 2) / unit, (coin.y - side / 2 + unit / 2) / unit, side / unit};
}

// Whether two windows have more than half of what they cover in common.
bool shareHalf(const Square& a, const Square& b)
{
    const int width = std::min(a.x + a.side, b.x + b.side) - std::max(a.x, b.x);
    const int height = std::min(a.y + a.side, b.y + b.side) - std::max(a.y, b.y);
    if (width <= 0 || height <= 0) {
        return false;
    }
    return 2 * width * height > a.side * a.side + b.side * b.side - width * height;
}

}  // namespace

Sums::Sums(const Picture& picture)
    : step_(picture.width() + 1),
      height_(picture.height()),
      entries_(static_cast<std::size_t>(step_) * static_cast<std::size_t>(height_ + 1))
{
    Entry* below = entries_.data() + step_;
    for (int y = 0; y < height_; ++y, below += step_) {
        Entry row{};
        for (int x = 0; x + 1 < step_; ++x) {
            const std::uint32_t pixel = picture.at(x, y);
            row.pixels += pixel;
            row.squares += pixel * pixel;
            const Entry& above = at(x + 1, y);
            below[x + 1] = {above.pixels + row.pixels, above.squares + row.squares};
        }
    }
}

bool Sums::holds(const Square& square) const
{
    return square.x >= 0 && square.y >= 0 && square.x + square.side < step_ && square.y + square.side <= height_;
}

std::optional<Sample> Sums::sample(const Square& square) const
{
    const Entry whole = sum(square.x, square.y, square.x + square.side, square.y + square.side);
    Sample sample{};
    sample.area = std::int64_t{square.side} * square.side;
    sample.deviation = squareRoot(static_cast<std::uint64_t>(sample.area) * whole.squares -
                                  std::uint64_t{whole.pixels} * whole.pixels);
    if (sample.deviation < leastDeviation * sample.area) {
        return std::nullopt;
    }
    for (int y = 0; y < window; ++y) {
        const int top = square.y + y * square.side / window;
        const int bottom = square.y + (y + 1) * square.side / window;
        std::int32_t row = 0;
        for (int x = 0; x < window; ++x) {
            const int left = square.x + x * square.side / window;
            const int right = square.x + (x + 1) * square.side / window;
            const auto pixels = static_cast<std::uint32_t>((right - left) * (bottom - top));
            row += static_cast<std::int32_t>(sum(left, top, right, bottom).pixels / pixels);
            sample.sums[y + 1][x + 1] = sample.sums[y][x + 1] + row;
        }
    }
    return sample;
}

const Sums::Entry& Sums::at(int x, int y) const
{
    return entries_[static_cast<std::size_t>(y) * static_cast<std::size_t>(step_) + static_cast<std::size_t>(x)];
}

Sums::Entry Sums::sum(int left, int top, int right, int bottom) const
{
    const Entry &a = at(left, top), &b = at(right, top), &c = at(left, bottom), &d = at(right, bottom);
    return {d.pixels - b.pixels - c.pixels + a.pixels, d.squares - b.squares - c.squares + a.squares};
}

Cutter::Cutter(const Table& table) : size_(table.picture.size()), sums_(table.picture)
{
    for (const Coin& coin : table.coins) {
        coins_.push_back(windowOf(coin));
    }
}

std::optional<Sample> Cutter::coin(std::size_t index, Random& random) const
{
    const Square& exact = coins_[index];
    const int side = exact.side * (94 + random.below(13)) / 100;
    const int reach = exact.side / 20;
    const int moveRight = random.below(2 * reach + 1) - reach;
    const int moveDown = random.below(2 * reach + 1) - reach;
    const int shrunk = (exact.side - side) / 2;
    const Square square = {exact.x + shrunk + moveRight, exact.y + shrunk + moveDown, side};
    return side >= window && sums_.holds(square) ? sums_.sample(square) : std::nullopt;
}

std::optional<Sample> Cutter::other(Random& random) const
{
    const int side = window + random.below(52);
    const Square square = {random.below(size_.width - side + 1), random.below(size_.height - side + 1), side};
    const bool isCoin =
        std::any_of(coins_.begin(), coins_.end(), [&](const Square& coin) { return shareHalf(coin, square); });
    return isCoin ? std::nullopt : sums_.sample(square);
}

}  // namespace train
