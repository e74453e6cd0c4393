// Morphology written out plainly: what one pass and what the compound operations make of an image, one scalar at a
// time.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "morph/structuring_elements.hpp"

namespace lumcv::test::morph {

enum class Operation
{
    Dilate,
    Erode,
    Open,
    Close,
    Tophat,
    Blackhat,
    Gradient
};

constexpr Operation kSinglePasses[] = {Operation::Dilate, Operation::Erode};
constexpr Operation kCompounds[] = {Operation::Open, Operation::Close, Operation::Tophat, Operation::Blackhat,
                                    Operation::Gradient};

constexpr const char* nameOf(Operation operation)
{
    constexpr const char* names[] = {"Dilate", "Erode", "Open", "Close", "Tophat", "Blackhat", "Gradient"};
    return names[static_cast<int>(operation)];
}

constexpr bool isSinglePass(Operation operation)
{
    return operation == Operation::Dilate || operation == Operation::Erode;
}

/// Which of the two sets of entry points: LumiSize and 32-bit strides, or LumiSizeL and 64-bit strides.
enum class Generation
{
    Ordinary,
    Large
};

constexpr Generation kGenerations[] = {Generation::Ordinary, Generation::Large};

constexpr const char* nameOf(Generation generation)
{
    return generation == Generation::Ordinary ? "ordinary" : "large";
}

/// The border of one pass, as the pass sees it.
struct PassBorder
{
    int mode = lumBorderReplicate;
    int inMemory = 0;  ///< bits 4 to 7

    bool has(int flag) const
    {
        return (inMemory & flag) != 0;
    }
};

/// The coordinate of the pixel that stands for one outside 0..size-1, or nothing where that is the constant.
inline std::optional<int> resolve(int i, int size, bool beforeInMemory, bool behindInMemory, int mode)
{
    if (i >= 0 && i < size) {
        return i;
    }
    if (i < 0 ? beforeInMemory : behindInMemory) {
        return i;
    }
    switch (mode) {
        case lumBorderReplicate:
            return i < 0 ? 0 : size - 1;
        case lumBorderMirror:
            if (size == 1) {
                return 0;
            }
            while (i < 0 || i >= size) {
                i = i < 0 ? -i : 2 * (size - 1) - i;
            }
            return i;
        default:
            return std::nullopt;
    }
}

/// Pixels of a rectangle of the plane around or beside the origin.
template <class T>
struct Plane
{
    Plane(int firstX, int firstY, int itsWidth, int itsHeight, int itsChannels)
        : left(firstX),
          top(firstY),
          width(itsWidth),
          height(itsHeight),
          channels(itsChannels),
          elements(static_cast<std::size_t>(itsWidth) * static_cast<std::size_t>(itsHeight) *
                   static_cast<std::size_t>(itsChannels))
    {
    }
    /// The pixel of column 0, which is one of the plane's.
    T* row(int y)
    {
        return elements.data() + (static_cast<std::ptrdiff_t>(y - top) * width - left) * channels;
    }
    const T* row(int y) const
    {
        return const_cast<Plane*>(this)->row(y);
    }

    int left;
    int top;
    int width;
    int height;
    int channels;
    std::vector<T> elements;
};

/// The value of the neutral border: the one that cannot win among the finite ones. Bits are bytes of 0 and 1.
template <class T>
T neutralValue(Operation pass, bool bits)
{
    if (bits) {
        return static_cast<T>(pass == Operation::Dilate ? 0 : 1);
    }
    return pass == Operation::Dilate ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
}

/// What one pass makes of the rectangle `area` of a source that offers row(y), the pixel of column 0 of a row. A
/// position of the element weighs the pixel at its offset; neither operation reflects the element. Of equal pixels the
/// last one stays, in the order of the element's rows, which tells the two zeros of floats apart.
template <class T, class Source>
Plane<T> singlePass(Operation pass, const Offsets& offsets, Plane<T> area, const Source& source, PassBorder border,
                    const T* borderValue, bool bits = false)
{
    const int channels = area.channels;
    const auto rowElements = static_cast<std::size_t>(area.width * channels);
    const std::ptrdiff_t rowBegin = static_cast<std::ptrdiff_t>(area.left) * channels;
    if (offsets.isIdentity) {
        for (int y = area.top; y < area.top + area.height; ++y) {
            std::copy_n(source.row(y) + rowBegin, rowElements, area.row(y) + rowBegin);
        }
        return area;
    }
    int radiusX = 0;
    int radiusY = 0;
    for (const Offset& offset : offsets.list) {
        radiusX = std::max({radiusX, offset.x, -offset.x});
        radiusY = std::max({radiusY, offset.y, -offset.y});
    }
    Plane<T> extended(area.left - radiusX, area.top - radiusY, area.width + 2 * radiusX, area.height + 2 * radiusY,
                      channels);
    std::vector<std::optional<int>> columns;
    for (int x = -radiusX; x < area.width + radiusX; ++x) {
        columns.push_back(
            resolve(x, area.width, border.has(lumBorderInMemLeft), border.has(lumBorderInMemRight), border.mode));
    }
    for (int y = -radiusY; y < area.height + radiusY; ++y) {
        const std::optional<int> row =
            resolve(y, area.height, border.has(lumBorderInMemTop), border.has(lumBorderInMemBottom), border.mode);
        const T* const in = row ? source.row(area.top + *row) + rowBegin : nullptr;
        T* out = extended.row(area.top + y) + rowBegin - radiusX * channels;
        for (const std::optional<int>& column : columns) {
            for (int c = 0; c < channels; ++c) {
                if (row && column) {
                    *out++ = in[*column * channels + c];
                } else {
                    *out++ = border.mode == lumBorderNeutral ? neutralValue<T>(pass, bits) : borderValue[c];
                }
            }
        }
    }
    for (int y = area.top; y < area.top + area.height; ++y) {
        T* const result = area.row(y) + rowBegin;
        const auto candidates = [&](const Offset& offset) {
            return static_cast<const T*>(extended.row(y + offset.y) + rowBegin + offset.x * channels);
        };
        std::copy_n(candidates(offsets.list.front()), rowElements, result);
        for (const Offset& offset : offsets.list) {
            const T* const candidate = candidates(offset);
            if (pass == Operation::Dilate) {
                for (std::size_t i = 0; i < rowElements; ++i) {
                    result[i] = result[i] > candidate[i] ? result[i] : candidate[i];
                }
            } else {
                for (std::size_t i = 0; i < rowElements; ++i) {
                    result[i] = result[i] < candidate[i] ? result[i] : candidate[i];
                }
            }
        }
    }
    return area;
}

/// The difference that ends a compound operation. Bits are bytes of 0 and 1.
template <class T>
T difference(T a, T b, bool clampNegative)
{
    if constexpr (std::numeric_limits<T>::is_integer) {
        const int exact = static_cast<int>(a) - static_cast<int>(b);
        const int saturated = std::clamp<int>(exact, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
        return static_cast<T>(clampNegative && saturated < 0 ? 0 : saturated);
    } else {
        const T exact = a - b;
        return clampNegative && exact < 0 ? T{0} : exact;
    }
}

/// Everything that decides what a call makes of its source.
struct Recipe
{
    Operation operation = Operation::Dilate;
    Generation generation = Generation::Ordinary;
    LumiBorderType border = lumBorderReplicate;
    int setMode = 0;               ///< as given to SetMode: odd keeps the element in the second pass, 4 and 5 negatives
    bool foldsStageFlags = false;  ///< an ordinary single pass that takes the flags of the first stage as its own
    bool refusesMirror = false;    ///< of bits
};

inline bool isMorphMode(int mode, bool refusesMirror = false)
{
    return mode == lumBorderReplicate || mode == lumBorderNeutral || mode == lumBorderConstant ||
           (mode == lumBorderMirror && !refusesMirror);
}

/// The border of a single pass, or of the first pass of a compound.
inline PassBorder firstBorder(const Recipe& recipe)
{
    const bool folds =
        !isSinglePass(recipe.operation) || recipe.generation == Generation::Large || recipe.foldsStageFlags;
    PassBorder border;
    border.mode = recipe.border & 15;
    border.inMemory = recipe.border & lumBorderInMem;
    if (folds) {
        border.inMemory |= (recipe.border >> 4) & lumBorderInMem;
    }
    if (!isMorphMode(border.mode, recipe.refusesMirror)) {
        border.mode = lumBorderNeutral;  // all sides are in memory
    }
    return border;
}

/// How many pixels around the ROI a call may read: the radius of the element, where the border says so, and twice the
/// radius where the first pass of a large compound runs on an enlarged ROI.
struct Reach
{
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

/// By how much the ROI of the first pass is larger than the ROI of the call.
inline Reach enlargement(const Recipe& recipe, const Reach& radius)
{
    const bool grows = recipe.generation == Generation::Large && !isSinglePass(recipe.operation) &&
                       recipe.operation != Operation::Gradient;
    const auto side = [&](int flag, int pixels) { return grows && (recipe.border & flag) != 0 ? pixels : 0; };
    return {side(lumBorderInMemLeft, radius.left), side(lumBorderInMemRight, radius.right),
            side(lumBorderInMemTop, radius.top), side(lumBorderInMemBottom, radius.bottom)};
}

/// What a call makes of the rectangle from (0, 0). `rotatedRadius` is how far the element of the second pass reaches.
template <class T, class Source>
Plane<T> morphology(const Recipe& recipe, const StructuringElement& element, const Reach& rotatedRadius, int width,
                    int height, int channels, const Source& source, const T* borderValue, bool bits = false)
{
    const PassBorder first = firstBorder(recipe);
    const Plane<T> roi(0, 0, width, height, channels);
    const Offsets offsets = element.offsets();
    if (isSinglePass(recipe.operation)) {
        return singlePass(recipe.operation, offsets, roi, source, first, borderValue, bits);
    }
    const Offsets second = recipe.setMode % 2 == 0 ? element.rotatedOffsets() : offsets;
    const bool large = recipe.generation == Generation::Large;

    if (recipe.operation == Operation::Gradient) {
        PassBorder secondBorder = first;
        secondBorder.inMemory = recipe.border & lumBorderInMem;  // without the flags of the first stage
        Plane<T> result = singlePass(Operation::Dilate, offsets, roi, source, first, borderValue, bits);
        const Plane<T> eroded =
            singlePass(Operation::Erode, large ? second : offsets, roi, source, secondBorder, borderValue, bits);
        const bool clampNegative = bits || std::numeric_limits<T>::is_integer == false;
        for (std::size_t i = 0; i < result.elements.size(); ++i) {
            result.elements[i] = difference(result.elements[i], eroded.elements[i], clampNegative);
        }
        return result;
    }

    const bool erodesFirst = recipe.operation == Operation::Open || recipe.operation == Operation::Tophat;
    const Reach grown = enlargement(recipe, rotatedRadius);
    const Plane<T> enlarged(-grown.left, -grown.top, grown.left + width + grown.right,
                            grown.top + height + grown.bottom, channels);
    const Plane<T> between = singlePass(erodesFirst ? Operation::Erode : Operation::Dilate, offsets, enlarged, source,
                                        first, borderValue, bits);
    PassBorder secondBorder;
    secondBorder.mode = first.mode;
    secondBorder.inMemory = large ? recipe.border & lumBorderInMem : 0;
    Plane<T> result = singlePass(erodesFirst ? Operation::Dilate : Operation::Erode, second, roi, between, secondBorder,
                                 borderValue, bits);
    if (recipe.operation == Operation::Open || recipe.operation == Operation::Close) {
        return result;
    }
    // the ordinary 16s forms keep what is negative and the ordinary 32f forms do not, whatever the record says
    constexpr bool isFloat = !std::numeric_limits<T>::is_integer;
    const bool clampNegative = bits || (large ? recipe.setMode < 4 : isFloat);
    for (int y = 0; y < height; ++y) {
        const T* const original = source.row(y);
        T* const pixel = result.row(y);
        for (int i = 0; i < width * channels; ++i) {
            pixel[i] = erodesFirst ? difference(original[i], pixel[i], clampNegative)
                                   : difference(pixel[i], original[i], clampNegative);
        }
    }
    return result;
}

}  // namespace lumcv::test::morph
