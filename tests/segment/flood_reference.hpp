// Flood fill as it is documented: the plain rule by a search that knows no spans, the others span by span.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "lumcv/types.h"
#include "support/image.hpp"

namespace lumcv::test::flood {

enum class Rule
{
    Plain,
    Range,
    Grad
};

template <class T, int channels>
using Channels = std::array<T, static_cast<std::size_t>(channels)>;

/// What a fill is asked for.
template <class T, int channels>
struct Order
{
    Rule rule = Rule::Plain;
    bool eight = false;
    LumiPoint seed = {0, 0};
    Channels<T, channels> newVal = {};
    Channels<T, channels> minDelta = {};
    Channels<T, channels> maxDelta = {};
};

struct Outcome
{
    double area = 0;
    LumiRect rect = {0, 0, 0, 0};
    std::int64_t popped = 0;
    std::size_t deepest = 0;  ///< entries on the stack at once
};

/// The box of what was seen.
class Box
{
  public:
    void add(int y, int left, int right)
    {
        top_ = std::min(top_, y);
        bottom_ = std::max(bottom_, y);
        left_ = std::min(left_, left);
        right_ = std::max(right_, right);
    }
    LumiRect rect() const
    {
        return {left_, top_, right_ - left_ + 1, bottom_ - top_ + 1};
    }

  private:
    int top_ = std::numeric_limits<int>::max();
    int bottom_ = -1;
    int left_ = std::numeric_limits<int>::max();
    int right_ = -1;
};

/// Which pixels were taken.
class Visited
{
  public:
    Visited(int width, int height)
        : width_(width), taken_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    {
    }
    bool has(int x, int y) const
    {
        return taken_[index(x, y)] != 0;
    }
    void take(int x, int y)
    {
        taken_[index(x, y)] = 1;
    }

  private:
    std::size_t index(int x, int y) const
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
    }
    int width_;
    std::vector<char> taken_;
};

template <class T, int channels>
const T* pixelAt(const Image<T>& image, int x, int y)
{
    return image.row(y) + x * channels;
}

template <class T, int channels>
void paint(Image<T>& image, int x, int y, const Channels<T, channels>& value)
{
    std::copy(value.begin(), value.end(), image.row(y) + x * channels);
}

/// Takes whatever can be reached from the seed by steps to neighbours that pass, in no particular order, and paints it
/// in the end.
template <class T, int channels, class Passes>
Outcome fillReachable(Image<T>& image, const Order<T, channels>& order, Passes passes)
{
    Visited visited(image.width(), image.height());
    std::vector<LumiPoint> taken = {order.seed};
    visited.take(order.seed.x, order.seed.y);
    Box box;
    for (std::size_t i = 0; i < taken.size(); ++i) {
        const LumiPoint here = taken[i];
        box.add(here.y, here.x, here.x);
        for (int y = std::max(here.y - 1, 0); y <= std::min(here.y + 1, image.height() - 1); ++y) {
            for (int x = std::max(here.x - 1, 0); x <= std::min(here.x + 1, image.width() - 1); ++x) {
                const bool isNeighbour = order.eight || x == here.x || y == here.y;
                if (isNeighbour && !visited.has(x, y) &&
                    passes(pixelAt<T, channels>(image, x, y), pixelAt<T, channels>(image, here.x, here.y))) {
                    visited.take(x, y);
                    taken.push_back({x, y});
                }
            }
        }
    }
    for (const LumiPoint& place : taken) {
        paint<T, channels>(image, place.x, place.y, order.newVal);
    }
    Outcome outcome;
    outcome.area = static_cast<double>(taken.size());
    outcome.rect = box.rect();
    return outcome;
}

/// Nothing where the seed has the new value already.
template <class T, int channels>
std::optional<Outcome> fillPlain(Image<T>& image, const Order<T, channels>& order)
{
    Channels<T, channels> seed;
    std::copy_n(pixelAt<T, channels>(image, order.seed.x, order.seed.y), channels, seed.begin());
    const auto equals = [&](const T* pixel, const Channels<T, channels>& value) {
        return std::equal(value.begin(), value.end(), pixel);
    };
    if (equals(seed.data(), order.newVal)) {
        return std::nullopt;
    }
    return fillReachable<T, channels>(image, order, [&](const T* c, const T*) { return equals(c, seed); });
}

struct Span
{
    int y;
    int left;
    int right;
    int parentLeft;
    int parentRight;
    int dir;
};

/// Spans and how they are found. `passes(x, y, atX, atY)` tells whether a pixel that may be taken passes next to an
/// accepted one, `take(x, y)` takes it, `push(span)` keeps a span.
template <class Passes, class Take, class Push>
class Scanner
{
  public:
    Scanner(LumiSize size, bool eight, Passes passes, Take take, Push push)
        : size_(size), wide_(eight ? 1 : 0), passes_(passes), take_(take), push_(push)
    {
    }

    /// The span of the seed: columns are compared along the row alone.
    Span first(LumiPoint seed)
    {
        Span span = {seed.y, seed.x, seed.x, 0, 0, seed.y == size_.height - 1 ? -1 : 1};
        extend(span, nullptr);
        span.parentLeft = span.right + 1;
        span.parentRight = span.right;
        return span;
    }

    void process(const Span& span)
    {
        const int forward = span.y - span.dir;
        if (forward >= 0 && forward < size_.height) {
            scan(forward, span.left - wide_, span.right + wide_, span, span.dir);
        }
        const int back = span.y + span.dir;
        scan(back, span.left - wide_, span.parentLeft - 1, span, -span.dir);
        scan(back, span.parentRight + 1, span.right + wide_, span, -span.dir);
    }

  private:
    void scan(int y, int begin, int end, const Span& from, int dir)
    {
        int x = std::max(begin, 0);
        while (x <= std::min(end, size_.width - 1)) {
            if (!passes_(x, y, std::clamp(x, from.left, from.right), from.y)) {
                ++x;
                continue;
            }
            Span found = {y, x, x, from.left, from.right, dir};
            extend(found, &from);
            push_(found);
            x = found.right + 2;
        }
    }

    void extend(Span& span, const Span* from)
    {
        take_(span.left, span.y);
        while (span.left > 0 && passes_(span.left - 1, span.y, span.left, span.y)) {
            take_(--span.left, span.y);
        }
        for (int x = span.right + 1; x < size_.width; ++x) {
            const bool passesAlong = passes_(x, span.y, x - 1, span.y);
            const bool passesAcross = from != nullptr && x <= from->right && passes_(x, span.y, x, from->y);
            if (!passesAlong && !passesAcross) {
                break;
            }
            take_(x, span.y);
            span.right = x;
        }
    }

    LumiSize size_;
    int wide_;
    Passes passes_;
    Take take_;
    Push push_;
};

inline std::int64_t rangeCapacity(std::int64_t width, std::int64_t height)
{
    return width * height / 4;
}
inline std::int64_t rangeLimit(std::int64_t width, std::int64_t height)
{
    return 1048576 + 64 * width * height;
}

/// The bounds of a fixed range.
template <class T>
struct Bounds
{
    T low;
    T high;

    Bounds(T value, T minDelta, T maxDelta)
    {
        if constexpr (std::floating_point<T>) {
            low = value - minDelta;
            high = value + maxDelta;
        } else {
            low = static_cast<T>(std::max(int{value} - int{minDelta}, 0));
            high = static_cast<T>(std::min(int{value} + int{maxDelta}, int{std::numeric_limits<T>::max()}));
        }
    }
    bool hold(T value) const
    {
        return value >= low && high >= value;
    }
};

/// Pixels are painted as they are taken, so those that the new value lets pass are found again; the stack that wraps
/// ends such a fill, or else the count of spans does.
template <class T, int channels>
Outcome fillRange(Image<T>& image, const Order<T, channels>& order, std::optional<std::int64_t> mostPopped = {})
{
    std::vector<Bounds<T>> bounds;
    for (int c = 0; c < channels; ++c) {
        const auto i = static_cast<std::size_t>(c);
        bounds.emplace_back(image.at(order.seed.x, order.seed.y, c), order.minDelta[i], order.maxDelta[i]);
    }
    const LumiSize size = {image.width(), image.height()};
    const auto capacity = static_cast<std::size_t>(rangeCapacity(size.width, size.height));
    const std::int64_t limit = mostPopped.value_or(rangeLimit(size.width, size.height));
    Outcome outcome;
    std::vector<Span> slots(capacity + 1);
    std::size_t index = 0;

    const auto passes = [&](int x, int y, int, int) {
        for (int c = 0; c < channels; ++c) {
            if (!bounds[static_cast<std::size_t>(c)].hold(image.row(y)[x * channels + c])) {
                return false;
            }
        }
        return true;
    };
    const auto take = [&](int x, int y) {
        paint<T, channels>(image, x, y, order.newVal);
        ++outcome.area;
    };
    const auto push = [&](const Span& span) {
        if (index == slots.size()) {
            slots.resize(2 * index);  // a stack of no capacity never wraps
        }
        slots[index++] = span;
        outcome.deepest = std::max(outcome.deepest, index);
        if (index == capacity) {
            index = 0;
        }
    };
    Scanner scanner(size, order.eight, passes, take, push);
    const Span first = scanner.first(order.seed);
    Box box;
    if (size.height == 1) {
        box.add(first.y, first.left, first.right);
        outcome.rect = box.rect();
        return outcome;
    }
    push(first);
    do {
        // the first push wraps if there is room for one entry; that entry is processed all the same
        const Span span = outcome.popped == 0 ? first : slots[index - 1];
        index -= index > 0 ? 1 : 0;
        ++outcome.popped;
        box.add(span.y, span.left, span.right);
        scanner.process(span);
    } while (index != 0 && outcome.popped < limit);
    outcome.rect = box.rect();
    return outcome;
}

/// Whether a pixel passes next to an accepted one.
template <class T>
bool isNear(T candidate, T accepted, T minDelta, T maxDelta)
{
    if constexpr (std::floating_point<T>) {
        const T centre = (minDelta - maxDelta) * T{0.5};
        const T radius = (minDelta + maxDelta) * T{0.5};
        const T difference = candidate - accepted;
        return std::abs(difference + centre) <= radius;
    } else {
        const int difference = int{candidate} - int{accepted};
        return difference >= -int{minDelta} && difference <= int{maxDelta};
    }
}

template <class T, int channels>
bool isNear(const T* candidate, const T* accepted, const Order<T, channels>& order)
{
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c) {
        if (!isNear(candidate[c], accepted[c], order.minDelta[c], order.maxDelta[c])) {
            return false;
        }
    }
    return true;
}

/// A span is painted when it has served as reference for its neighbours; a map tells what was taken.
template <class T, int channels>
Outcome fillGrad(Image<T>& image, const Order<T, channels>& order)
{
    const LumiSize size = {image.width(), image.height()};
    Outcome outcome;
    Visited visited(size.width, size.height);
    std::vector<Span> stack;

    const auto passes = [&](int x, int y, int atX, int atY) {
        return !visited.has(x, y) &&
               isNear(pixelAt<T, channels>(image, x, y), pixelAt<T, channels>(image, atX, atY), order);
    };
    const auto take = [&](int x, int y) { visited.take(x, y); };
    const auto push = [&](const Span& span) {
        stack.push_back(span);
        outcome.deepest = std::max(outcome.deepest, stack.size());
    };
    const auto paintSpan = [&](const Span& span) {
        for (int x = span.left; x <= span.right; ++x) {
            paint<T, channels>(image, x, span.y, order.newVal);
        }
        outcome.area += span.right - span.left + 1;
    };
    Scanner scanner(size, order.eight, passes, take, push);
    Box box;
    push(scanner.first(order.seed));
    while (!stack.empty()) {
        const Span span = stack.back();
        stack.pop_back();
        ++outcome.popped;
        box.add(span.y, span.left, span.right);
        if (size.height > 1) {
            scanner.process(span);
        }
        paintSpan(span);
    }
    outcome.rect = box.rect();
    return outcome;
}

/// With four neighbours the order in which spans are found makes no difference: the fill takes what is reached by steps
/// that pass. With eight it may take less, since diagonal neighbours are compared at the ends of a span alone.
template <class T, int channels>
Outcome fillGradReachable(Image<T>& image, const Order<T, channels>& order)
{
    return fillReachable<T, channels>(image, order,
                                      [&](const T* c, const T* a) { return isNear<T, channels>(c, a, order); });
}

/// Fills by the order's rule; nothing for a plain fill that ends at once.
template <class T, int channels>
std::optional<Outcome> fill(Image<T>& image, const Order<T, channels>& order)
{
    switch (order.rule) {
        case Rule::Plain:
            return fillPlain<T, channels>(image, order);
        case Rule::Range:
            if constexpr (!std::same_as<T, Lum32s>) {
                return fillRange<T, channels>(image, order);
            }
            break;
        case Rule::Grad:
            if constexpr (!std::same_as<T, Lum32s>) {
                return fillGrad<T, channels>(image, order);
            }
            break;
    }
    return std::nullopt;
}

}  // namespace lumcv::test::flood
