// Windows cut out of drawn tables: with a coin in the middle, or without one.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "drawing.hpp"

namespace train {

/// Width and height of the window that features lie in.
constexpr int window = 24;
/// A coin fills this much of its window, in hundredths.
constexpr int coinInWindow = 77;
/// Windows of less deviation are neither learnt from nor, by what the cascade's file says, looked at.
constexpr int leastDeviation = 12;

struct Square
{
    int x, y, side;
};

/// A window of any size brought to 24 x 24 means, summed up.
struct Sample
{
    /// sums[y][x] is the sum over the y rows and x columns before.
    std::int32_t sums[window + 1][window + 1];
    /// The deviation of the window's own pixels, times their number.
    std::int64_t deviation;
    /// The number of the window's own pixels.
    std::int64_t area;
};

/// Sums over a table's pixels and over their squares, which tell the mean and the deviation of any window at once.
class Sums
{
  public:
    explicit Sums(const gallery::Picture& picture);

    bool holds(const Square& square) const;

    /// The window brought to 24 x 24 means; nothing if it is flat. The sums must hold it.
    std::optional<Sample> sample(const Square& square) const;

  private:
    // 192 x 192 white pixels have squares of 2397081600 altogether
    struct Entry
    {
        std::uint32_t pixels;
        std::uint32_t squares;
    };

    const Entry& at(int x, int y) const;
    Entry sum(int left, int top, int right, int bottom) const;

    int step_;
    int height_;
    std::vector<Entry> entries_;
};

/// Cuts windows out of a table.
class Cutter
{
  public:
    explicit Cutter(const Table& table);

    std::size_t coins() const
    {
        return coins_.size();
    }

    /// The window of a coin, a little beside the exact one; nothing if it is flat or reaches beyond the table.
    std::optional<Sample> coin(std::size_t index, gallery::Random& random) const;

    /// A window of any place and size; nothing if it is flat or shares more than half with that of a coin.
    std::optional<Sample> other(gallery::Random& random) const;

  private:
    LumiSize size_;
    Sums sums_;
    std::vector<Square> coins_;
};

}  // namespace train
