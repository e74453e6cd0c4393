// Analysis of a structuring element: its normalised form, the lists and runs of its rows, and the shapes that have
// kernels of their own.
#include "morph/element_record.hpp"

#include <cstring>

namespace lumcv {
namespace {

/// The tables hold lengths and columns as signed 16-bit numbers; the rows of a wider element are not told by runs.
constexpr int64_t widestRun = 0x7FFF;

/// Pads the mask to an odd size, at the top and left, or at the bottom and right if it is rotated.
void normalise(const CallerMask& mask, Lum8u* element)
{
    const int64_t width = mask.width | 1, height = mask.height | 1;
    const int64_t left = mask.isRotated ? 0 : width - mask.width;
    const int64_t top = mask.isRotated ? 0 : height - mask.height;
    std::memset(element, 0, static_cast<size_t>(width * height));
    for (int64_t y = 0; y < mask.height; ++y)
        for (int64_t x = 0; x < mask.width; ++x)
            element[(y + top) * width + x + left] = mask.isSet(y * mask.width + x) ? 255 : 0;
}

void listRow(const Lum8u* row, int64_t width, Lum16u* list)
{
    Lum16u count = 0;
    for (int64_t x = 0; x < width; ++x)
        if (row[x])
            list[++count] = static_cast<Lum16u>(x);
    list[0] = count;
}

/// Finds the row's one run; false if there are two.
bool findRun(const Lum8u* row, int64_t width, Lum16s* run)
{
    int64_t first = 0;
    while (first < width && !row[first])
        ++first;
    int64_t end = first;
    while (end < width && row[end])
        ++end;
    run[0] = static_cast<Lum16s>(end - first);
    run[1] = static_cast<Lum16s>(end > first ? first : -1);
    while (end < width && !row[end])
        ++end;
    return end == width;
}

/// Looks for the one line of the element that is full, along rows (or columns, with strides exchanged), while every
/// other line holds one position at most. A full line has as many positions as there are lines, so that only a square
/// can be a cross. Negative: there is none.
int64_t onlyFullLine(const Lum8u* element, int64_t lines, int64_t lineStride, int64_t length, int64_t stride)
{
    int64_t full = -1;
    for (int64_t line = 0; line < lines; ++line) {
        int64_t count = 0;
        for (int64_t i = 0; i < length; ++i)
            count += element[line * lineStride + i * stride] != 0;
        if (count == lines) {
            if (full >= 0)
                return -1;
            full = line;
        } else if (count > 1)
            return -1;
    }
    return full;
}

constexpr char disc3x3[] = "010111010";
constexpr char disc5x5[] = "0010001110111110111000100";
constexpr char disc7x7[] = "0001000011111001111101111111011111001111100001000";

bool looksLike(const Lum8u* element, const char* picture)
{
    while (*picture)
        if ((*picture++ == '1') != (*element++ != 0))
            return false;
    return true;
}

Lum32s discFlags(const Lum8u* element, int64_t width, int64_t height)
{
    if (width == 3 && height == 3 && looksLike(element, disc3x3))
        return shapeDisc;
    if (width == 5 && height == 5 && looksLike(element, disc5x5))
        return shapeDisc | shapeDisc5x5;
    if (width == 7 && height == 7 && looksLike(element, disc7x7))
        return shapeDisc | shapeDisc7x7;
    return 0;
}

bool isEmptyLine(const Lum8u* first, int64_t length, int64_t stride)
{
    for (int64_t i = 0; i < length; ++i)
        if (first[i * stride])
            return false;
    return true;
}

Lum32s fillFlags(const Lum8u* element, int64_t width, int64_t height)
{
    Lum32s flags = shapeRectangle | shapeEmpty;
    for (int64_t i = 0; i < width * height && flags; ++i)
        flags &= element[i] ? ~shapeEmpty : ~shapeRectangle;
    if (isEmptyLine(element, width, 1) || isEmptyLine(element + (height - 1) * width, width, 1) ||
        isEmptyLine(element, height, width) || isEmptyLine(element + width - 1, height, width))
        flags |= shapeEmptyEdge;
    return flags;
}

template <class Length>
void* lay(const CallerMask& mask, ElementRecord<Length>* record)
{
    const int64_t width = mask.width | 1, height = mask.height | 1;
    auto* const element = reinterpret_cast<Lum8u*>(record + 1);
    normalise(mask, element);

    auto* const lists = alignedIn<Lum16u>(element + width * height);
    auto* const runs = reinterpret_cast<Lum16s*>(lists + (width + 1) * height);
    bool isRowRuns = width <= widestRun;
    for (int64_t y = 0; y < height; ++y) {
        listRow(element + y * width, width, lists + y * (width + 1));
        if (isRowRuns)
            isRowRuns = findRun(element + y * width, width, runs + 2 * y);
    }

    bool isCross = false;
    if (isRowRuns && width > 1 && height > 1) {
        const int64_t row = onlyFullLine(element, height, width, width, 1);
        const int64_t column = row < 0 ? -1 : onlyFullLine(element, width, 1, height, width);
        isCross = column >= 0;
        if (isCross) {
            runs[0] = static_cast<Lum16s>(row);
            runs[1] = static_cast<Lum16s>(column);
        }
    }
    const Lum32s disc = discFlags(element, width, height);

    record->pMask = element;
    record->maskWidth = record->shapeWidth = static_cast<Length>(width);
    record->maskHeight = record->shapeHeight = static_cast<Length>(height);
    record->anchorX = static_cast<Lum32s>(mask.width >> 1);
    record->anchorY = static_cast<Lum32s>(mask.height >> 1);
    record->pRowLists = lists;
    record->isRowRuns = isRowRuns;
    record->pRowRuns = runs;
    record->isCross = isCross;
    record->isDisc = disc != 0;
    record->shapeFlags =
        fillFlags(element, width, height) | (isRowRuns ? shapeRowRuns : 0) | (isCross ? shapeCross : 0) | disc;
    return runs + 2 * height;
}

}  // namespace

void* layElement(const CallerMask& mask, ElementRecord<Lum32s>* record)
{
    return lay(mask, record);
}

void* layElement(const CallerMask& mask, ElementRecord<Lum64s>* record)
{
    return lay(mask, record);
}

}  // namespace lumcv
