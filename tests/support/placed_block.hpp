// A block of exactly the queried size at any byte address: records and scratch.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

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
        for (std::size_t i = 0; i < block_.size(); ++i) {
            const bool inBlock = i >= begin() && i < begin() + bytes_;
            if (!inBlock && block_.data()[i] != block_.original(i)) {
                return testing::AssertionFailure()
                       << "the byte at offset " << static_cast<long>(i) - static_cast<long>(begin())
                       << " of a block of " << bytes_ << " bytes was written";
            }
        }
        return block_.slackIntact();
    }
    /// From here on a write to the block ends the test.
    void makeReadOnly() const
    {
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        const auto begin = reinterpret_cast<std::uintptr_t>(block_.data()) / page * page;
        const auto end = reinterpret_cast<std::uintptr_t>(block_.data()) + block_.size();
        ASSERT_EQ(mprotect(reinterpret_cast<void*>(begin), (end - begin + page - 1) / page * page, PROT_READ), 0);
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
