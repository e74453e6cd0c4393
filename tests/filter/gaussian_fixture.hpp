// Blocks for the Gaussian filter's tests: of exactly the queried size, at any address, checked for what is written
// beside them; and records laid in such blocks.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include "filter/gaussian_reference.hpp"
#include "support/guarded_block.hpp"

namespace lumcv::test::gaussian {

/// Bytes that end (Guard::After) or begin (Guard::Before) at a distance from an unreadable page; the bytes between hold
/// a pattern. A distance of 0 finds accesses beyond the block, the others try every alignment.
class PlacedBlock
{
  public:
    explicit PlacedBlock(std::size_t bytes, Guard guard = Guard::After, std::size_t distance = 0)
        : bytes_(bytes), distance_(distance), block_(bytes + distance, guard)
    {
    }
    Lum8u* data() const
    {
        return block_.data() + begin();
    }
    LumFilterGaussianSpec* spec() const
    {
        return reinterpret_cast<LumFilterGaussianSpec*>(data());
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

/// What a record is laid for.
struct Parameters
{
    int width = 1;
    int height = 1;
    Lum32s kernelSize = 3;
    Lum32f sigma = 1.0f;
    LumiBorderType border = lumBorderReplicate;
    LumDataType dataType = lumType8u;
    Lum32s channels = 1;
};

/// Which Init and which sizes: those of the ordinary entries or those of the 64-bit ones.
enum class Entry
{
    Ordinary,
    Large
};

inline std::size_t recordBytes(Entry entry, const Parameters& p)
{
    return static_cast<std::size_t>(entry == Entry::Ordinary ? bothSpecSizes(p.kernelSize, p.dataType)
                                                             : specSize(p.kernelSize));
}

inline std::size_t scratchBytes(Entry entry, const Parameters& p)
{
    return static_cast<std::size_t>(entry == Entry::Ordinary
                                        ? bufferSize(p.width, p.height, p.kernelSize, p.dataType, p.channels)
                                        : ringSize(p.width, p.kernelSize, p.channels));
}

/// Lays a record into a block of the exact size, with an Init buffer of the exact size.
inline LumStatus layRecord(Entry entry, const Parameters& p, const PlacedBlock& block)
{
    if (entry == Entry::Ordinary) {
        const PlacedBlock buffer(scratchBytes(entry, p));
        const LumStatus status = lumiFilterGaussianInit({p.width, p.height}, p.kernelSize, p.sigma, p.border,
                                                        p.dataType, p.channels, block.spec(), buffer.data());
        EXPECT_TRUE(buffer.intact());
        return status;
    }
    const PlacedBlock buffer(kInitBufferSize);
    const LumStatus status = lumiFilterGaussianInit_L({p.width, p.height}, p.kernelSize, p.sigma, p.border, p.dataType,
                                                      p.channels, block.spec(), buffer.data());
    EXPECT_TRUE(buffer.intact());
    return status;
}

inline PlacedBlock makeRecord(Entry entry, const Parameters& p, Guard guard = Guard::After, std::size_t distance = 0)
{
    PlacedBlock block(recordBytes(entry, p), guard, distance);
    EXPECT_EQ(layRecord(entry, p, block), lumOk);
    EXPECT_TRUE(block.intact());
    return block;
}

}  // namespace lumcv::test::gaussian
