// A block of bytes that stands right against an unreadable page, so that one byte too far, read or written, ends the
// test. The bytes between the block and the other page boundary hold a pattern that shows what was written there.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

namespace lumcv::test {

/// The end of a block at which the unreadable page begins without a gap.
enum class Guard
{
    After,
    Before
};

/// What a byte that nobody may write holds; neighbouring bytes differ, so that a misplaced copy shows as well.
constexpr unsigned char patternByte(std::size_t index)
{
    return static_cast<unsigned char>(0xA5u ^ (index * 37u) ^ (index >> 8));
}

class GuardedBlock
{
  public:
    /// All bytes hold the pattern at first. The address of a block with Guard::After is what its size makes it.
    GuardedBlock(std::size_t bytes, Guard guard);
    GuardedBlock(const GuardedBlock& other);  ///< the same bytes at the same place in a page
    GuardedBlock(GuardedBlock&& other) noexcept;
    GuardedBlock& operator=(GuardedBlock other) noexcept;
    ~GuardedBlock();

    std::size_t size() const
    {
        return bytes_;
    }
    Guard guard() const
    {
        return guard_;
    }
    unsigned char* data() const
    {
        return data_;
    }
    template <class T>
    T* as() const
    {
        return reinterpret_cast<T*>(data_);
    }

    /// From here on a write to the block ends the test.
    void makeReadOnly() const;

    /// Whether the readable bytes beside the block are as they were.
    testing::AssertionResult slackIntact() const;

    /// What a byte of the block held when the block was made.
    unsigned char original(std::size_t index) const
    {
        return patternByte(blockBegin() + index);
    }

  private:
    std::size_t blockBegin() const;

    std::size_t bytes_ = 0;
    Guard guard_ = Guard::After;
    unsigned char* mapping_ = nullptr;
    unsigned char* data_ = nullptr;
    mutable bool isReadOnly_ = false;  ///< the handle's constness is not that of the bytes
};

}  // namespace lumcv::test
