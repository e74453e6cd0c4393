/**
 * @file
 * @brief Of the C++ layer: owned memory for scratch and records.
 */
#ifndef LUMCV_BLOCK_HPP
#define LUMCV_BLOCK_HPP

#include <cstddef>
#include <utility>

#include "types.h"

namespace lumcv {

/**
 * @addtogroup cpp
 * @{
 */

/**
 * Memory for scratch. In a query, where the function tells a size, it becomes as large; elsewhere it is the pointer.
 *
 * A block grows and does not shrink, so one block serves several functions that are called one after the other. What it
 * held is lost when it grows. A block that no query has sized is a null pointer.
 */
class Block
{
  public:
    Block() = default;
    /**
     * Takes the memory of another one and leaves it where it is.
     *
     * @param other is empty then
     */
    Block(Block&& other) noexcept : bytes_(std::exchange(other.bytes_, nullptr)), size_(std::exchange(other.size_, 0))
    {
    }
    /**
     * Exchanges its memory with another one's.
     *
     * @param other is given up
     * @return itself
     */
    Block& operator=(Block&& other) noexcept
    {
        std::swap(bytes_, other.bytes_);
        std::swap(size_, other.size_);
        return *this;
    }
    ~Block()
    {
        delete[] bytes_;
    }

    /**
     * Makes the block so large, if it is not yet.
     *
     * @param bytes the size that a query told; of 0, too, there will be a pointer that is not null
     */
    void fit(std::size_t bytes)
    {
        if (bytes > size_ || bytes_ == nullptr) {
            delete[] std::exchange(bytes_, nullptr);
            size_ = 0;
            bytes_ = new Lum8u[bytes != 0 ? bytes : 1];
            size_ = bytes;
        }
    }
    /** @return the memory, null before the first fit() */
    Lum8u* data()
    {
        return bytes_;
    }
    /** @return the size in bytes */
    std::size_t size() const
    {
        return size_;
    }

  private:
    Lum8u* bytes_ = nullptr;
    std::size_t size_ = 0;
};

/**
 * Memory for a record that an Init lays. In a query it becomes as large as the function tells; elsewhere it is the
 * pointer to the record, or to its memory where an Init takes that.
 *
 * A record of which only const is taken may serve several threads. It can be moved: the record's memory stays where it
 * is.
 *
 * @tparam R the record as the functions name it, such as LumFilterGaussianSpec
 */
template <class R>
class Record
{
  public:
    Record() = default;
    /**
     * Takes the memory of another one and leaves it where it is.
     *
     * @param other is empty then
     */
    Record(Record&& other) noexcept : block_(std::move(other.block_)), record_(std::exchange(other.record_, nullptr)) {}
    /**
     * Exchanges its memory with another one's.
     *
     * @param other is given up
     * @return itself
     */
    Record& operator=(Record&& other) noexcept
    {
        block_ = std::move(other.block_);
        std::swap(record_, other.record_);
        return *this;
    }

    /**
     * Makes the memory so large, if it is not yet; the record has to be laid again.
     *
     * @param bytes the size that a query told
     */
    void fit(std::size_t bytes)
    {
        block_.fit(bytes);
        record_ = reinterpret_cast<R*>(block_.data());
    }
    /** @return the record, null before the first fit() */
    R* get()
    {
        return record_;
    }
    /** @return the record, null before the first fit() */
    const R* get() const
    {
        return record_;
    }
    /** @return the fields of a record that has some */
    R* operator->()
    {
        return record_;
    }
    /** @return the fields of a record that has some */
    const R* operator->() const
    {
        return record_;
    }
    /** @return where an Init that chooses the place of the record in its memory writes it to */
    R** address()
    {
        return &record_;
    }
    /** @return the memory */
    Lum8u* data()
    {
        return block_.data();
    }
    /** @return the size of the memory in bytes */
    std::size_t size() const
    {
        return block_.size();
    }

  private:
    Block block_;
    R* record_ = nullptr;
};

/** @} */

}  // namespace lumcv

#endif
