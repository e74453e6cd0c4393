// A block of exactly the queried size at any byte address: records and scratch.
#pragma once

#include <cstddef>

#include "support/guarded_block.hpp"

namespace lumcv::test {

/// Bytes that end (Guard::After) or begin (Guard::Before) at a distance from an unreadable page; the bytes between hold
/// a pattern. A distance of 0 finds accesses beyond the block, the others try every alignment.
class PlacedBlock
{
  public:
    explicit PlacedBlock(std::size_t bytes, Guard guard = Guard::After, std::size_t distance = 0)
        : bytes_(bytes), distance_(distance), block_(bytes + distance, guard)
    {
    }
    unsigned char* data() const
    {
        return block_.data() + begin();
    }
    std::size_t size() const
    {
        return bytes_;
    }
    testing::AssertionResult intact() const
    {
        for (std::size_t i = 0; i < distance_; ++i) {
            const std::size_t offset = begin() == 0 ? bytes_ + i : i;
            if (block_.data()[offset] != block_.original(offset)) {
                return testing::AssertionFailure()
                       << "the byte at offset " << static_cast<long>(offset) - static_cast<long>(begin())
                       << " of a block of " << bytes_ << " bytes was written";
            }
        }
        return block_.slackIntact();
    }
    /// From here on a write to the block ends the test.
    void makeReadOnly() const
    {
        block_.makeReadOnly();
    }

  private:
    std::size_t begin() const
    {
        return block_.guard() == Guard::After ? 0 : distance_;
    }

    std::size_t bytes_;
    std::size_t distance_;
    GuardedBlock block_;
};

}  // namespace lumcv::test
