// An image of the gallery: rows of interleaved pixels without gaps, told to the library as pointer, stride and size.
#pragma once

#include <lumcv/lumcv.hpp>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace gallery {

/// What ends the program with a message for its user.
struct Failure : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

template <typename T>
class Image
{
  public:
    Image(int width, int height, int channels, T value = T{})
        : width_(width), height_(height), channels_(channels), elements_(elementCount(width, height, channels), value)
    {
    }

    int width() const
    {
        return width_;
    }
    int height() const
    {
        return height_;
    }
    int channels() const
    {
        return channels_;
    }

    /// What the library takes: the first pixel, the stride in bytes and the size in pixels.
    T* pixels()
    {
        return elements_.data();
    }
    const T* pixels() const
    {
        return elements_.data();
    }
    int step() const
    {
        return width_ * channels_ * static_cast<int>(sizeof(T));
    }
    LumiSize size() const
    {
        return {width_, height_};
    }

    /// The same as one argument of lumcv::call; throws Failure if the image has other channels.
    template <int channels = 1>
    lumcv::View<T, channels> view()
    {
        checkChannels(channels);
        return {pixels(), step(), size()};
    }
    template <int channels = 1>
    lumcv::View<const T, channels> view() const
    {
        checkChannels(channels);
        return {pixels(), step(), size()};
    }

    T& at(int x, int y, int channel = 0)
    {
        return elements_[index(x, y, channel)];
    }
    const T& at(int x, int y, int channel = 0) const
    {
        return elements_[index(x, y, channel)];
    }

    std::vector<T>& elements()
    {
        return elements_;
    }
    const std::vector<T>& elements() const
    {
        return elements_;
    }

  private:
    void checkChannels(int channels) const
    {
        if (channels != channels_) {
            throw Failure("an image of " + std::to_string(channels_) + " channels is taken for one of " +
                          std::to_string(channels));
        }
    }
    static std::size_t elementCount(int width, int height, int channels)
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channels);
    }
    std::size_t index(int x, int y, int channel) const
    {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x)) *
                   static_cast<std::size_t>(channels_) +
               static_cast<std::size_t>(channel);
    }

    int width_;
    int height_;
    int channels_;
    std::vector<T> elements_;
};

/// What the gallery shows: 8-bit gray or RGB.
using Picture = Image<Lum8u>;

/// The same image with every element put through a function.
template <typename To, typename From, typename Function>
Image<To> mapped(const Image<From>& source, Function function)
{
    Image<To> result(source.width(), source.height(), source.channels());
    for (std::size_t i = 0; i < source.elements().size(); ++i) {
        result.elements()[i] = function(source.elements()[i]);
    }
    return result;
}

/// Signed values as gray: 0 becomes 128, and a step of `valuesPerGray` one level.
inline Image<Lum8u> aroundGray(const Image<Lum16s>& image, int valuesPerGray)
{
    return mapped<Lum8u>(
        image, [valuesPerGray](Lum16s v) { return static_cast<Lum8u>(std::clamp(128 + v / valuesPerGray, 0, 255)); });
}

/// Brings a float of the range 0..255 to a byte.
inline Lum8u toByte(float value)
{
    return value <= 0.0f ? Lum8u{0} : value >= 255.0f ? Lum8u{255} : static_cast<Lum8u>(value + 0.5f);
}

}  // namespace gallery
