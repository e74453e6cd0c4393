// The analysed structuring element: what Init lays in the caller's block and apply reads.
#pragma once

#include <cstdint>

#include "frame/rounding.hpp"
#include "lumcv/morph.h"

namespace lumcv {

/// What an element's shape allows; the bits of ElementRecord::shapeFlags.
enum ShapeFlag : Lum32s
{
    shapeRectangle = 0x02,  ///< every position is set
    shapeEmpty = 0x04,      ///< none is
    shapeEmptyEdge = 0x08,  ///< the first or last row or column is empty
    shapeRowRuns = 0x10,    ///< every row is at most one run
    shapeCross = 0x20,      ///< one full row and one full column
    shapeDisc = 0x100,      ///< the disc of 3x3; of 5x5 and 7x7 together with the next two
    shapeDisc5x5 = 0x200,
    shapeDisc7x7 = 0x400
};

/// The normalised element has an odd width and height: an even mask grows by an empty row or column. The pointers lead
/// into the storage behind the record, which holds the element, the row lists and the row runs, in this order.
template <class Length>
struct ElementRecord
{
    const Lum8u* pMask;  ///< maskWidth * maskHeight bytes, 255 where the element is set and 0 elsewhere
    Length maskWidth, maskHeight;
    Lum32s anchorX, anchorY;  ///< the centre
    Length shapeWidth, shapeHeight;
    const Lum16u* pRowLists;  ///< for each row maskWidth + 1 entries: how many are set, and their columns
    Lum32s isRowRuns;
    const Lum16s* pRowRuns;  ///< for each row the length of its run and its first column, -1 if the row is empty; of a
                             ///< cross, the first pair is the place where its arms meet
    Lum32s shapeFlags;
    Lum32s isCross, isDisc;
};

/// How a kernel sees an element, whichever record holds it.
struct Element
{
    const Lum8u* mask;
    int64_t width, height;
    int64_t anchorX, anchorY;
    const Lum16u* rowLists;
    const Lum16s* rowRuns;
    Lum32s flags;

    template <class Length>
    explicit Element(const ElementRecord<Length>& record)
        : mask(record.pMask),
          width(record.maskWidth),
          height(record.maskHeight),
          anchorX(record.anchorX),
          anchorY(record.anchorY),
          rowLists(record.pRowLists),
          rowRuns(record.pRowRuns),
          flags(record.shapeFlags)
    {
    }

    bool is(ShapeFlag flag) const
    {
        return flags & flag;
    }

    /// An empty element and one of 1 x 1 pixels copy the image and look at nothing around it.
    bool copies() const
    {
        return is(shapeEmpty) || (width == 1 && height == 1);
    }

    struct Run
    {
        int64_t length, first;
    };

    /// The run of a row, of an element whose rows are one each.
    Run run(int64_t y) const
    {
        if (!is(shapeCross))
            return {rowRuns[2 * y], rowRuns[2 * y + 1]};
        if (y == rowRuns[0])
            return {width, 0};
        return {1, rowRuns[1]};
    }

    /// Whether the lists' 16-bit columns reach over the whole width.
    bool hasRowLists() const
    {
        return width <= 0xFFFF;
    }
};

/// A caller's mask: width * height bytes without gaps. Rotated by 180 degrees, it is read from its end.
struct CallerMask
{
    const Lum8u* bytes;
    int64_t width, height;
    bool isRotated = false;

    Lum8u at(int64_t index) const
    {
        return bytes[isRotated ? width * height - 1 - index : index];
    }

    bool isSet(int64_t index) const
    {
        return at(index) != 0;
    }
};

/// Analyses the mask and lays its record, with the storage right behind it, at an aligned place. Returns the end of the
/// storage. An even mask is padded at the top and left, a rotated one at the bottom and right.
void* layElement(const CallerMask& mask, ElementRecord<Lum32s>* record);
void* layElement(const CallerMask& mask, ElementRecord<Lum64s>* record);

}  // namespace lumcv

/// The record of the 32-bit functions, alone in its block.
struct LumiMorphMaskRecord : lumcv::ElementRecord<Lum32s>
{
};
