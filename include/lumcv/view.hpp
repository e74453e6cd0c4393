/**
 * @file
 * @brief Of the C++ layer: images in the caller's memory.
 */
#ifndef LUMCV_VIEW_HPP
#define LUMCV_VIEW_HPP

#include <concepts>
#include <cstddef>
#include <type_traits>

#include "types.h"

namespace lumcv {

/**
 * @addtogroup cpp
 * @{
 */

/**
 * An image in the caller's memory, or a part of one: the first pixel, the stride in bytes and the size in pixels.
 *
 * It owns nothing and is passed by value. A View of T is a View of const T as well.
 *
 * @tparam T          the type of an element, const for an image that is only read
 * @tparam channelsOf elements of a pixel, neighbours in memory
 */
template <class T, int channelsOf = 1>
class View
{
    static_assert(std::is_arithmetic_v<T> && channelsOf >= 1);

  public:
    /** Elements of a pixel. */
    static constexpr int channels = channelsOf;

    /**
     * An image with any stride.
     *
     * @param pixels the first pixel
     * @param step   the stride: bytes from a row to the next
     * @param size   width and height in pixels
     */
    constexpr View(T* pixels, Lum32s step, LumiSize size) : pixels_(pixels), step_(step), size_(size) {}
    /**
     * An image whose rows follow each other without gaps.
     *
     * @param pixels the first pixel
     * @param size   width and height in pixels
     */
    constexpr View(T* pixels, LumiSize size)
        : View(pixels, size.width * channels * static_cast<Lum32s>(sizeof(T)), size)
    {
    }
    /**
     * The same image, to be read only.
     *
     * @tparam U     the type of an element, without const
     * @param  other a view whose pixels may be written
     */
    template <std::same_as<std::remove_const_t<T>> U>
    constexpr View(const View<U, channelsOf>& other) : View(other.pixels(), other.step(), other.size())
    {
    }

    /** @return the first pixel */
    constexpr T* pixels() const
    {
        return pixels_;
    }
    /** @return the stride: bytes from a row to the next */
    constexpr Lum32s step() const
    {
        return step_;
    }
    /** @return width and height in pixels */
    constexpr LumiSize size() const
    {
        return size_;
    }

    /**
     * A row of the image.
     *
     * @param y the row
     * @return its first element
     */
    T* row(Lum32s y) const
    {
        using Byte = std::conditional_t<std::is_const_v<T>, const Lum8u, Lum8u>;
        return reinterpret_cast<T*>(reinterpret_cast<Byte*>(pixels_) + static_cast<std::ptrdiff_t>(y) * step_);
    }
    /**
     * An element of a pixel.
     *
     * @param x       the pixel's column
     * @param y       its row
     * @param channel which of its elements
     * @return the element
     */
    T& at(Lum32s x, Lum32s y, int channel = 0) const
    {
        return row(y)[static_cast<std::ptrdiff_t>(x) * channels + channel];
    }
    /**
     * A part of the image.
     *
     * @param rectangle where it lies
     * @return a view of it
     */
    View part(LumiRect rectangle) const
    {
        return {&at(rectangle.x, rectangle.y), step_, {rectangle.width, rectangle.height}};
    }
    /**
     * Some rows of the image.
     *
     * @param top    the first of them
     * @param height how many
     * @return a view of them
     */
    View rows(Lum32s top, Lum32s height) const
    {
        return part({0, top, size_.width, height});
    }
    /** @return the same memory as an image of one channel with longer rows, for functions that take all channels alike
     */
    constexpr View<T> elements() const
    {
        return {pixels_, step_, {size_.width * channels, size_.height}};
    }

  private:
    T* pixels_;
    Lum32s step_;
    LumiSize size_;
};

/**
 * An image of bits, the lowest bit of a byte first: as a View, with the bit at which each row begins.
 *
 * @tparam T Lum8u, const for an image that is only read
 */
template <class T>
class BitView
{
    static_assert(std::is_same_v<std::remove_const_t<T>, Lum8u>);

  public:
    /**
     * An image of bits.
     *
     * @param pixels    the byte with the first pixel, or one before it
     * @param step      the stride: bytes from a row to the next
     * @param bitOffset how many bits behind the first one of that byte the first pixel stands
     * @param size      width and height in pixels
     */
    constexpr BitView(T* pixels, Lum32s step, Lum32s bitOffset, LumiSize size)
        : pixels_(pixels), step_(step), bitOffset_(bitOffset), size_(size)
    {
    }
    /**
     * The same image, to be read only.
     *
     * @tparam U     the type of an element, without const
     * @param  other a view whose pixels may be written
     */
    template <std::same_as<std::remove_const_t<T>> U>
    constexpr BitView(const BitView<U>& other) : BitView(other.pixels(), other.step(), other.bitOffset(), other.size())
    {
    }

    /** @return the byte that the bit offset counts from */
    constexpr T* pixels() const
    {
        return pixels_;
    }
    /** @return the stride: bytes from a row to the next */
    constexpr Lum32s step() const
    {
        return step_;
    }
    /** @return the bit of the first pixel */
    constexpr Lum32s bitOffset() const
    {
        return bitOffset_;
    }
    /** @return width and height in pixels */
    constexpr LumiSize size() const
    {
        return size_;
    }

    /**
     * A pixel.
     *
     * @param x its column
     * @param y its row
     * @return whether its bit is set
     */
    constexpr bool at(Lum32s x, Lum32s y) const
    {
        return (byteOf(x, y) >> bitOf(x) & 1) != 0;
    }
    /**
     * Writes a pixel and leaves those around it alone.
     *
     * @param x     its column
     * @param y     its row
     * @param value what it becomes
     */
    constexpr void set(Lum32s x, Lum32s y, bool value) const requires(!std::is_const_v<T>)
    {
        const int others = byteOf(x, y) & ~(1 << bitOf(x));
        byteOf(x, y) = static_cast<Lum8u>(others | value << bitOf(x));
    }
    /**
     * A part of the image.
     *
     * @param rectangle where it lies
     * @return a view of it
     */
    constexpr BitView part(LumiRect rectangle) const
    {
        return {&byteOf(rectangle.x, rectangle.y), step_, bitOf(rectangle.x), {rectangle.width, rectangle.height}};
    }

  private:
    constexpr T& byteOf(Lum32s x, Lum32s y) const
    {
        return pixels_[static_cast<std::ptrdiff_t>(y) * step_ + (bitOffset_ + x) / 8];
    }
    constexpr Lum32s bitOf(Lum32s x) const
    {
        return (bitOffset_ + x) % 8;
    }

    T* pixels_;
    Lum32s step_;
    Lum32s bitOffset_;
    LumiSize size_;
};

/** @} */

}  // namespace lumcv

#endif
