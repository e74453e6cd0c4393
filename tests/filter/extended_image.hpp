// A ROI with everything around it that a kernel reaches: real pixels on the sides in memory, and what the border mode
// makes of the others. The columns of a row are extended as the row pass does it, the rows in the same way.
#pragma once

#include <optional>
#include <vector>

#include "filter/pipeline_reference.hpp"
#include "support/promised_margins.hpp"

namespace lumcv::test {

// What the family of filters accepts: a mode with any sides in memory, or exactly 240.
inline bool isFilterBorder(LumiBorderType border)
{
    const int mode = border & 15;
    return border == lumBorderInMem ||
           (border >= 0 && border <= 255 &&
            (mode == lumBorderReplicate || mode == lumBorderMirror || mode == lumBorderConstant));
}

// The row in memory that stands at y, or nothing if it is a row of the border value.
inline std::optional<int> extendedRowIndex(int y, int height, LumiBorderType border)
{
    if (y >= 0 && y < height) {
        return y;
    }
    if ((border & (y < 0 ? lumBorderInMemTop : lumBorderInMemBottom)) != 0) {
        return y;
    }
    switch (border & 15) {
        case lumBorderConstant:
            return std::nullopt;
        case lumBorderMirror:
            return mirrorIndex(y, height);
        default:
            return std::clamp(y, 0, height - 1);
    }
}

template <class T>
class ExtendedImage
{
  public:
    // The source offers row(y), also for rows in memory outside of the ROI. The border value is only read where the
    // mode is constant.
    template <class Source>
    ExtendedImage(const Source& source, LumiSize size, int channels, Margins reach, LumiBorderType border,
                  const T* borderValue)
        : reach_(reach)
    {
        for (int y = -reach.top; y < size.height + reach.bottom; ++y) {
            const std::optional<int> index = extendedRowIndex(y, size.height, border);
            constant_.push_back(!index);
            if (index) {
                rows_.push_back(extendRow(source.row(*index), size.width, channels, reach.left, reach.right,
                                          parseRowBorder(border), borderValue));
                continue;
            }
            std::vector<T> row;  // of the border value over its whole width, whatever lies in memory left and right
            for (int x = -reach.left; x < size.width + reach.right; ++x) {
                row.insert(row.end(), borderValue, borderValue + channels);
            }
            rows_.push_back(row);
        }
    }
    // The elements of a row from the leftmost pixel reached.
    const std::vector<T>& row(int y) const
    {
        return rows_[static_cast<std::size_t>(y + reach_.top)];
    }
    bool isConstant(int y) const
    {
        return constant_[static_cast<std::size_t>(y + reach_.top)];
    }

  private:
    Margins reach_;
    std::vector<std::vector<T>> rows_;
    std::vector<bool> constant_;
};

}  // namespace lumcv::test
