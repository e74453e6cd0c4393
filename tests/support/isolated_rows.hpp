// An image whose rows stand alone: behind (or in front of) each row lies an unreadable page, so that one byte too far
// ends the test in every row and not only in the last, also where the byte would be written back unchanged.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "support/image.hpp"

namespace lumcv::test {

/// Pixels of T with margins around the ROI. The row stride is a whole number of pages.
template <class T>
class IsolatedRows
{
  public:
    using Element = T;

    /// The gap, offset and direction of the layout are not used.
    explicit IsolatedRows(const Layout& layout) : layout_(layout)
    {
        const std::size_t page = pageBytes();
        readable_ = (rowBytes() + page - 1) / page * page;
        mappedBytes_ = static_cast<std::size_t>(rows()) * pitch() + page;
        void* const mapping =
            mmap(nullptr, mappedBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        require(mapping != MAP_FAILED, "no memory");
        mapping_ = static_cast<unsigned char*>(mapping);
        protect(PROT_READ | PROT_WRITE);
        for (int i = 0; i < rows(); ++i) {
            for (std::size_t b = 0; b < readable_; ++b) {
                readableBegin(i)[b] = patternByte(b);
            }
        }
    }
    ~IsolatedRows()
    {
        munmap(mapping_, mappedBytes_);
    }
    IsolatedRows(const IsolatedRows&) = delete;
    IsolatedRows& operator=(const IsolatedRows&) = delete;

    int step() const
    {
        return static_cast<int>(pitch());
    }
    T* pixels() const
    {
        return row(0);
    }
    /// The first pixel of a row of the ROI, or of a row of the margins above and below.
    T* row(int y) const
    {
        require(y >= -layout_.margins.top && y < layout_.height + layout_.margins.bottom, "no such row");
        return reinterpret_cast<T*>(rowBegin(y + layout_.margins.top)) + layout_.margins.left * layout_.channels;
    }
    T& at(int x, int y, int channel = 0) const
    {
        require(x >= -layout_.margins.left && x < layout_.width + layout_.margins.right, "no such column");
        return row(y)[x * layout_.channels + channel];
    }

    /// Calls f(element, x, y, channel) for each pixel, margins included.
    template <class F>
    void forEach(F f)
    {
        const Margins m = layout_.margins;
        for (int y = -m.top; y < layout_.height + m.bottom; ++y) {
            for (int x = -m.left; x < layout_.width + m.right; ++x) {
                for (int c = 0; c < layout_.channels; ++c) {
                    f(at(x, y, c), x, y, c);
                }
            }
        }
    }

    /// From here on a write ends the test.
    void makeReadOnly()
    {
        protect(PROT_READ);
    }

    /// Whether the readable bytes beside the rows hold their pattern.
    testing::AssertionResult slackIntact() const
    {
        for (int i = 0; i < rows(); ++i) {
            for (std::size_t b = 0; b < readable_; ++b) {
                const unsigned char* const byte = readableBegin(i) + b;
                const bool inRow = byte >= rowBegin(i) && byte < rowBegin(i) + rowBytes();
                if (!inRow && *byte != patternByte(b)) {
                    return testing::AssertionFailure()
                           << "row " << i - layout_.margins.top << ", " << byte - rowBegin(i)
                           << " bytes from its begin: got " << int{*byte} << ", expected " << int{patternByte(b)};
                }
            }
        }
        return testing::AssertionSuccess();
    }

  private:
    static std::size_t pageBytes()
    {
        static const std::size_t bytes = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        return bytes;
    }
    static void require(bool condition, const char* complaint)
    {
        if (!condition) {
            std::fprintf(stderr, "isolated rows: %s\n", complaint);
            std::abort();
        }
    }
    int rows() const
    {
        return layout_.margins.top + layout_.height + layout_.margins.bottom;
    }
    std::size_t rowBytes() const
    {
        return static_cast<std::size_t>(layout_.margins.left + layout_.width + layout_.margins.right) *
               static_cast<std::size_t>(layout_.channels) * sizeof(T);
    }
    std::size_t pitch() const
    {
        return readable_ + pageBytes();
    }
    unsigned char* readableBegin(int i) const
    {
        return mapping_ + pageBytes() + static_cast<std::size_t>(i) * pitch();
    }
    unsigned char* rowBegin(int i) const
    {
        return readableBegin(i) + (layout_.guard == Guard::After ? readable_ - rowBytes() : 0);
    }
    void protect(int protection)
    {
        for (int i = 0; i < rows(); ++i) {
            require(mprotect(readableBegin(i), readable_, protection) == 0, "the pages cannot be protected");
        }
    }

    Layout layout_;
    std::size_t readable_ = 0;
    std::size_t mappedBytes_ = 0;
    unsigned char* mapping_ = nullptr;
};

}  // namespace lumcv::test
