// Tables of sums as operands: known by a pointer that may stand anywhere, and with exactly the memory that is read.
#pragma once

#include <algorithm>
#include <cstdint>

#include "support/image.hpp"

namespace lumcv::test {

/// A table of which only its place is known: entries may be addressed anywhere around its pointer.
template <class T>
struct Table
{
    const T* origin;
    int step;

    T at(int row, int column) const
    {
        return *reinterpret_cast<const T*>(reinterpret_cast<std::uintptr_t>(origin) +
                                           static_cast<std::uintptr_t>(std::int64_t{row} * step) +
                                           static_cast<std::uintptr_t>(std::int64_t{column} * int{sizeof(T)}));
    }
};

/// The part of a table that a call reads: its first row and column as seen from the table pointer, and its size.
struct Extent
{
    int row, column, width, height;
    int columnsOfStep;  ///< what the stride has to hold
};

/// The table whose pointer lies where the entry in row 0 and column 0 would be, if the first entry of the memory is
/// that in the first row and column of the extent.
template <class T>
Table<T> tableAt(const T* firstEntry, int step, const Extent& extent)
{
    const std::int64_t back = std::int64_t{extent.row} * step + std::int64_t{extent.column} * int{sizeof(T)};
    return {
        reinterpret_cast<const T*>(reinterpret_cast<std::uintptr_t>(firstEntry) - static_cast<std::uintptr_t>(back)),
        step};
}

/// A table of exactly the rows and columns that are read. Its pointer is mostly out of the memory that belongs to it.
template <class T>
class TableImage
{
  public:
    explicit TableImage(const Extent& extent, Guard guard = Guard::After, int moreGap = 0)
        : extent_(extent),
          image_({.width = extent.width,
                  .height = extent.height,
                  .gap = (std::max(extent.columnsOfStep - extent.width, 0) + moreGap) * int{sizeof(T)},
                  .guard = guard})
    {
    }
    Image<T>& image()
    {
        return image_;
    }
    const Image<T>& image() const
    {
        return image_;
    }
    int step() const
    {
        return image_.step();
    }
    const T* pointer() const
    {
        return table().origin;
    }
    Table<T> table() const
    {
        return tableAt(image_.pixels(), step(), extent_);
    }

  private:
    Extent extent_;
    Image<T> image_;
};

}  // namespace lumcv::test
