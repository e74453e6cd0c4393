// A row of the benchmark table: one operation on one size of image.
//
// A row's setup asks its Job for images and blocks and returns the call to be timed. What the images are for decides
// how many bytes the operation moves, and half of those bytes is what the memory copy beside it copies.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

namespace lumcv::bench {

template <typename T>
struct View
{
    T* pixels;
    Lum32s step;

    T* row(int y) const
    {
        using Byte = std::conditional_t<std::is_const_v<T>, const std::byte, std::byte>;
        return reinterpret_cast<T*>(reinterpret_cast<Byte*>(pixels) + std::ptrdiff_t{y} * step);
    }
};

class Job
{
  public:
    explicit Job(LumiSize size) : size_(size) {}

    LumiSize size() const
    {
        return size_;
    }

    // For an operation that is measured on less than the table's size.
    void workOn(LumiSize size)
    {
        size_ = size;
    }

    // Images of random values, none of them zero: a running average towards zero would end in denormal numbers, which
    // are no measure of the operation.
    template <typename T>
    View<const T> source(int channels = 1)
    {
        return source<T>(size_, channels);
    }

    template <typename T>
    View<T> destination(int channels = 1)
    {
        return destination<T>(size_, channels);
    }

    // Images of another size than the job's.
    template <typename T>
    View<const T> source(LumiSize size, int channels)
    {
        const auto image = destination<T>(size, channels);
        return {image.pixels, image.step};
    }

    template <typename T>
    View<T> destination(LumiSize size, int channels)
    {
        bytesMoved_ += sizeof(T) * channels * size.width * size.height;
        return randomImage<T>(size, channels);
    }

    template <typename T>
    View<T> accumulator(int channels = 1)
    {
        bytesMoved_ += 2 * imageBytes<T>(channels);
        return randomImage<T>(channels);
    }

    // Half of the bytes are zero, in no order.
    View<const Lum8u> mask()
    {
        const auto image = randomImage<Lum8u>(1);
        for (int y = 0; y < size_.height; ++y)
            for (int x = 0; x < size_.width; ++x)
                image.row(y)[x] = image.row(y)[x] % 2 ? 255 : 0;
        bytesMoved_ += imageBytes<Lum8u>(1);
        return {image.pixels, image.step};
    }

    // Memory that is no image (records, scratch, kernels, row pointers) and is not counted.
    template <typename T>
    T* block(std::size_t count)
    {
        return reinterpret_cast<T*>(allocate(count * sizeof(T)));
    }

    std::size_t bytesMoved() const
    {
        return bytesMoved_;
    }

    // Touched before it is returned, and a different distance from a page's start for each block: rows of several
    // images at the same distance would compete for the same cache sets.
    std::byte* allocate(std::size_t bytes);

  private:
    template <typename T>
    std::size_t imageBytes(int channels) const
    {
        return sizeof(T) * channels * size_.width * size_.height;
    }

    template <typename T>
    View<T> randomImage(int channels)
    {
        return randomImage<T>(size_, channels);
    }

    template <typename T>
    View<T> randomImage(LumiSize size, int channels)
    {
        constexpr std::size_t lineBytes = 64;
        const std::size_t elements = std::size_t(size.width) * channels;
        const std::size_t step = (elements * sizeof(T) + lineBytes - 1) / lineBytes * lineBytes;
        View<T> image{reinterpret_cast<T*>(allocate(step * size.height)), Lum32s(step)};
        // a prime length, so that no two rows begin alike
        constexpr std::size_t patternLength = 65521;
        std::vector<T> pattern(patternLength);
        for (T& value : pattern)
            value = randomValue<T>();
        std::size_t at = 0;
        for (int y = 0; y < size.height; ++y)
            for (std::size_t x = 0, count; x < elements; x += count) {
                count = std::min(elements - x, patternLength - at);
                std::copy_n(&pattern[at], count, image.row(y) + x);
                at = (at + count) % patternLength;
            }
        return image;
    }

    template <typename T>
    T randomValue()
    {
        if constexpr (std::is_floating_point_v<T>)
            return std::uniform_real_distribution<T>(1, 255)(random_);
        else {
            using Limits = std::numeric_limits<T>;
            const int value = std::uniform_int_distribution<int>(Limits::min(), Limits::max())(random_);
            return T(value ? value : 1);
        }
    }

    LumiSize size_;
    std::size_t bytesMoved_ = 0;
    std::mt19937 random_{20240229};
    std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

// What a row times: any callable that returns a LumStatus, called many times in a row without a function pointer
// between.
class Call
{
  public:
    template <typename F>
    Call(F call)
        : repeat_([call](int times) {
              LumStatus status = lumOk;
              for (int i = 0; i < times && status == lumOk; ++i)
                  status = call();
              return status;
          })
    {
    }

    LumStatus repeat(int times) const
    {
        return repeat_(times);
    }

  private:
    std::function<LumStatus(int)> repeat_;
};

// Multiples of a memory copy on 1920x1080: what the fastest peer takes, and what this library has to reach. 0 is none.
struct Goal
{
    double peer = 0;
    double ours = 0;
    double oursV4 = 0;  // 0: as ours
};

struct Row
{
    std::string function;  // the export's name in full
    std::string variant;   // what else distinguishes the row: a kernel size, for example; may be empty
    Goal goal;
    std::function<Call(Job&)> setUp;
};

std::vector<Row> joined(std::vector<std::vector<Row>> groups);

// The rows of one file. A global object of this type enters them into the table.
class Rows
{
  public:
    Rows(std::vector<Row> rows);
    static std::vector<Row>& all();
};

}  // namespace lumcv::bench
