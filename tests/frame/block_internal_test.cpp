// The block primitives: every length and alignment, both sides of every threshold, and nothing beside the block.
#include "frame/block.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>
#include <x86intrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "support/compare.hpp"
#include "support/guarded_block.hpp"
#include "support/max_cache_size.hpp"
#include "support/random.hpp"
#include "support/status_order.hpp"

namespace lumcv::test {
namespace {

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::size_t count, std::uint64_t seed)
{
    Random random(seed);
    Bytes bytes(count);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random.bits());
    }
    return bytes;
}

// Bytes at a chosen distance from a multiple of 64, with room around them that must not change.
class Arena
{
  public:
    static constexpr std::size_t room = 192;

    Arena(std::size_t largest, std::uint64_t seed)
        : bytes_(largest + 2 * room + 64), original_(randomBytes(bytes_.size(), seed))
    {
        bytes_ = original_;
    }
    unsigned char* at(std::size_t alignment)
    {
        const auto misalignment = reinterpret_cast<std::uintptr_t>(bytes_.data() + room) % 64;
        begin_ = room + (64 + alignment - misalignment) % 64;
        return bytes_.data() + begin_;
    }
    // Compares a block written at the last place asked for, and its surroundings, then takes the writing back.
    testing::AssertionResult holds(const unsigned char* expected, std::size_t count)
    {
        const testing::AssertionResult inside = sameElements(expected, bytes_.data() + begin_, count);
        const std::size_t end = begin_ + count;
        const bool before = std::memcmp(bytes_.data() + begin_ - room, original_.data() + begin_ - room, room) == 0;
        const bool after =
            std::memcmp(bytes_.data() + end, original_.data() + end, std::min(room, bytes_.size() - end)) == 0;
        std::memcpy(bytes_.data() + begin_ - room, original_.data() + begin_ - room,
                    std::min(count + 2 * room, bytes_.size() - (begin_ - room)));
        if (!inside) {
            return inside;
        }
        if (!before || !after) {
            return testing::AssertionFailure()
                   << "a byte " << (before ? "after" : "before") << " the block was written";
        }
        return testing::AssertionSuccess();
    }

  private:
    Bytes bytes_;
    Bytes original_;
    std::size_t begin_ = 0;
};

// Each primitive behind the same two signatures, with the size of its element.

struct Zero
{
    const char* name;
    std::size_t size;
    LumStatus (*call)(void* pDst, Lum32s len);
};

const Zero zeros[] = {
    {"lumBlockZero_8u", 1, [](void* p, Lum32s len) { return lumBlockZero_8u(static_cast<Lum8u*>(p), len); }},
    {"lumBlockZero_16s", 2, [](void* p, Lum32s len) { return lumBlockZero_16s(static_cast<Lum16s*>(p), len); }},
    {"lumBlockZero_32f", 4, [](void* p, Lum32s len) { return lumBlockZero_32f(static_cast<Lum32f*>(p), len); }},
};

struct Copy
{
    const char* name;
    std::size_t size;
    LumStatus (*call)(const void* pSrc, void* pDst, Lum32s len);
};

LumStatus copyRaw(const void* pSrc, void* pDst, Lum32s len)
{
    EXPECT_EQ(lumBlockCopyRaw(pSrc, pDst, len), pDst);
    return lumOk;
}

const Copy copies[] = {
    {"lumBlockCopy_8u", 1,
     [](const void* s, void* d, Lum32s len) {
         return lumBlockCopy_8u(static_cast<const Lum8u*>(s), static_cast<Lum8u*>(d), len);
     }},
    {"lumBlockCopy_16s", 2,
     [](const void* s, void* d, Lum32s len) {
         return lumBlockCopy_16s(static_cast<const Lum16s*>(s), static_cast<Lum16s*>(d), len);
     }},
    {"lumBlockCopy_32f", 4,
     [](const void* s, void* d, Lum32s len) {
         return lumBlockCopy_32f(static_cast<const Lum32f*>(s), static_cast<Lum32f*>(d), len);
     }},
    {"lumBlockCopyRaw", 1, copyRaw},
};

// The value is given as its bytes, of which the element takes as many as it has.
struct Set
{
    const char* name;
    std::size_t size;
    LumStatus (*call)(std::uint32_t value, void* pDst, Lum32s len);
};

const Set set8u = {"lumBlockSet_8u", 1, [](std::uint32_t value, void* p, Lum32s len) {
                       return lumBlockSet_8u(static_cast<Lum8u>(value), static_cast<Lum8u*>(p), len);
                   }};
const Set set16s = {"lumBlockSet_16s", 2, [](std::uint32_t value, void* p, Lum32s len) {
                        return lumBlockSet_16s(static_cast<Lum16s>(value), static_cast<Lum16s*>(p), len);
                    }};
const Set set32f = {"lumBlockSet_32f", 4, [](std::uint32_t value, void* p, Lum32s len) {
                        return lumBlockSet_32f(std::bit_cast<Lum32f>(value), static_cast<Lum32f*>(p), len);
                    }};
const Set sets[] = {set8u, set16s, set32f};

// As a float -1.3e-5; all four bytes differ.
constexpr std::uint32_t fillValue = 0xB75A1C93u;

Bytes repeated(std::uint32_t value, std::size_t size, std::size_t count)
{
    Bytes bytes(size * count);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(value >> (8 * (i % size)));
    }
    return bytes;
}

std::string at(const char* name, std::size_t count, std::size_t alignment)
{
    return std::string(name) + ", " + std::to_string(count) + " elements at alignment " + std::to_string(alignment);
}

// Lengths in elements that end a test soon after every path has been taken a few times.
constexpr std::size_t longestShort = 600;

TEST(Block, ZeroOfEveryLengthAtEveryAlignment)
{
    const Bytes expected(4 * longestShort);
    for (const Zero& zero : zeros) {
        Arena arena(4 * longestShort, 1);
        for (std::size_t count = 1; count <= longestShort; ++count) {
            for (std::size_t alignment = 0; alignment < 64; ++alignment) {
                ASSERT_EQ(zero.call(arena.at(alignment), static_cast<Lum32s>(count)), lumOk);
                ASSERT_TRUE(arena.holds(expected.data(), count * zero.size)) << at(zero.name, count, alignment);
            }
        }
    }
}

TEST(Block, SetOfEveryLengthAtEveryAlignment)
{
    for (const Set& set : sets) {
        const Bytes expected = repeated(fillValue, set.size, longestShort);
        Arena arena(4 * longestShort, 2);
        for (std::size_t count = 1; count <= longestShort; ++count) {
            for (std::size_t alignment = 0; alignment < 64; ++alignment) {
                ASSERT_EQ(set.call(fillValue, arena.at(alignment), static_cast<Lum32s>(count)), lumOk);
                ASSERT_TRUE(arena.holds(expected.data(), count * set.size)) << at(set.name, count, alignment);
            }
        }
    }
}

// Tries a copy of so many elements between two alignments.
testing::AssertionResult tryCopy(const Copy& copy, Arena& source, Arena& destination, std::size_t count,
                                 std::size_t sourceAlignment, std::size_t destinationAlignment)
{
    const unsigned char* const from = source.at(sourceAlignment);
    if (copy.call(from, destination.at(destinationAlignment), static_cast<Lum32s>(count)) != lumOk) {
        return testing::AssertionFailure() << "the copy failed";
    }
    if (const testing::AssertionResult held = destination.holds(from, count * copy.size); !held) {
        return testing::AssertionFailure() << held.message() << "; " << at(copy.name, count, destinationAlignment)
                                           << " from alignment " << sourceAlignment;
    }
    return testing::AssertionSuccess();
}

TEST(Block, CopyOfEveryLengthAtEveryAlignment)
{
    for (const Copy& copy : copies) {
        Arena source(4 * longestShort, 3), destination(4 * longestShort, 4);
        for (std::size_t count = 1; count <= longestShort; ++count) {
            for (std::size_t destinationAlignment = 0; destinationAlignment < 64; ++destinationAlignment) {
                // the same alignment, and others that differ from length to length: all pairs come up
                for (std::size_t k = 0; k < 4; ++k) {
                    const std::size_t sourceAlignment =
                        k == 0 ? destinationAlignment : (destinationAlignment + 3 * count + 21 * k) % 64;
                    ASSERT_TRUE(tryCopy(copy, source, destination, count, sourceAlignment, destinationAlignment));
                }
            }
        }
    }
}

TEST(BlockQuick, ShortLengthsAtSomeAlignments)
{
    Arena source(8192, 5), destination(8192, 6);
    const Bytes zeroBytes(8192);
    for (const std::size_t count : {1u, 7u, 31u, 32u, 63u, 255u, 256u, 257u, 300u, 511u, 1023u, 2047u}) {
        for (std::size_t alignment = 0; alignment < 64; alignment += 9) {
            for (const Copy& copy : copies) {
                ASSERT_TRUE(tryCopy(copy, source, destination, count, (alignment * 5 + count) % 64, alignment));
            }
            for (const Zero& zero : zeros) {
                ASSERT_EQ(zero.call(destination.at(alignment), static_cast<Lum32s>(count)), lumOk);
                ASSERT_TRUE(destination.holds(zeroBytes.data(), count * zero.size)) << at(zero.name, count, alignment);
            }
            for (const Set& set : sets) {
                ASSERT_EQ(set.call(fillValue, destination.at(alignment), static_cast<Lum32s>(count)), lumOk);
                ASSERT_TRUE(destination.holds(repeated(fillValue, set.size, count).data(), count * set.size))
                    << at(set.name, count, alignment);
            }
        }
    }
}

// Lengths around every bound between two ways of moving memory, each between unreadable pages.
TEST(Block, NothingBesideTheBlockIsTouched)
{
    std::vector<std::size_t> counts;
    for (std::size_t count = 1; count <= longestShort; ++count) {
        counts.push_back(count);
    }
    for (const std::size_t bound : {4096u, 8192u, 16384u, 16416u, 32767u, 32768u, 32769u, 40000u}) {
        counts.insert(counts.end(), {bound - 33, bound - 1, bound, bound + 1, bound + 31});
    }
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const std::size_t count : counts) {
            for (const Zero& zero : zeros) {
                const GuardedBlock block(count * zero.size, guard);
                ASSERT_EQ(zero.call(block.data(), static_cast<Lum32s>(count)), lumOk);
                const Bytes expected(block.size());
                ASSERT_TRUE(sameElements(expected.data(), block.data(), block.size())) << zero.name << ' ' << count;
                ASSERT_TRUE(block.slackIntact()) << zero.name << ' ' << count;
            }
            for (const Set& set : sets) {
                const GuardedBlock block(count * set.size, guard);
                ASSERT_EQ(set.call(fillValue, block.data(), static_cast<Lum32s>(count)), lumOk);
                const Bytes expected = repeated(fillValue, set.size, count);
                ASSERT_TRUE(sameElements(expected.data(), block.data(), block.size())) << set.name << ' ' << count;
                ASSERT_TRUE(block.slackIntact()) << set.name << ' ' << count;
            }
            for (const Copy& copy : copies) {
                for (const Guard sourceGuard : {Guard::After, Guard::Before}) {
                    const GuardedBlock source(count * copy.size, sourceGuard);
                    const GuardedBlock sourceBefore(source);
                    const GuardedBlock block(count * copy.size, guard);
                    ASSERT_EQ(copy.call(source.data(), block.data(), static_cast<Lum32s>(count)), lumOk);
                    ASSERT_TRUE(sameElements(source.data(), block.data(), block.size())) << copy.name << ' ' << count;
                    ASSERT_TRUE(sameElements(sourceBefore.data(), source.data(), block.size())) << copy.name;
                    ASSERT_TRUE(block.slackIntact()) << copy.name << ' ' << count;
                }
            }
        }
    }
}

// A misaligned source with 16384 bytes or more to go is copied from the end; below that, and when aligned, from the
// start.
TEST(Block, CopyDirections)
{
    Arena source(33000, 7), destination(33000, 8);
    std::vector<std::size_t> counts;
    for (std::size_t count = 16300; count <= 16500; ++count) {
        counts.push_back(count);
    }
    counts.insert(counts.end(), {20000, 24575, 24576, 24577, 32703, 32704, 32736, 32765, 32766, 32767});
    for (const std::size_t count : counts) {
        for (const std::size_t destinationAlignment : {0u, 1u, 16u, 31u, 32u, 33u, 48u, 63u}) {
            for (const std::size_t distance : {0u, 1u, 4u, 15u, 16u, 17u, 31u, 32u, 33u, 63u}) {
                ASSERT_TRUE(tryCopy(copies[0], source, destination, count, (destinationAlignment + distance) % 64,
                                    destinationAlignment));
            }
        }
    }
}

TEST(Block, StringThresholds)
{
    // vector to string: copies from 32768 bytes on, zeros of bytes from 32769, of wider types beyond about 2 MiB
    const std::size_t largest = 4 * (1048577 + 64);
    Arena source(largest, 9), destination(largest, 10);
    const Bytes zeroBytes(largest);
    for (std::size_t alignment = 0; alignment < 64; alignment += 5) {
        for (const std::size_t count : {32766u, 32767u, 32768u, 32769u, 32775u, 33000u}) {
            for (const Copy& copy : copies) {
                for (const std::size_t distance : {0u, 1u, 2u, 4u, 8u, 17u, 34u, 44u}) {
                    ASSERT_TRUE(
                        tryCopy(copy, source, destination, count / copy.size, (alignment + distance) % 64, alignment));
                }
            }
            for (const Zero& zero : zeros) {
                ASSERT_EQ(zero.call(destination.at(alignment), static_cast<Lum32s>(count / zero.size)), lumOk);
                ASSERT_TRUE(destination.holds(zeroBytes.data(), count / zero.size * zero.size))
                    << at(zero.name, count / zero.size, alignment);
            }
        }
    }
    for (const std::size_t alignment : {0u, 1u, 2u, 29u, 32u}) {
        for (const std::size_t count : {1048575u, 1048576u, 1048577u}) {
            ASSERT_EQ(zeros[1].call(destination.at(alignment), static_cast<Lum32s>(count)), lumOk);
            ASSERT_TRUE(destination.holds(zeroBytes.data(), 2 * count)) << at("lumBlockZero_16s", count, alignment);
        }
        for (const std::size_t count : {524287u, 524288u, 524289u}) {
            ASSERT_EQ(zeros[2].call(destination.at(alignment), static_cast<Lum32s>(count)), lumOk);
            ASSERT_TRUE(destination.holds(zeroBytes.data(), 4 * count)) << at("lumBlockZero_32f", count, alignment);
        }
    }
}

// The direction flag.

bool directionFlag()
{
    return (__readeflags() & 0x400u) != 0;
}

// Calls f with the direction flag set and says whether it is still set afterwards; the caller finds it clear.
__attribute__((noinline)) static bool flagSurvives(LumStatus (*f)(const void*, void*, Lum32s), const void* pSrc,
                                                   void* pDst, Lum32s len, LumStatus* pStatus)
{
    __asm__ volatile("std" ::: "cc", "memory");
    *pStatus = f(pSrc, pDst, len);
    const bool survived = directionFlag();
    __asm__ volatile("cld" ::: "cc", "memory");
    return survived;
}

TEST(BlockQuick, DirectionFlagIsRespectedAndRestored)
{
    using Call = LumStatus (*)(const void*, void*, Lum32s);
    const Call calls[] = {
        copies[0].call,
        copies[1].call,
        copies[2].call,
        [](const void* s, void* d, Lum32s len) {
            return lumBlockCopyRaw(s, d, len) == d ? LumStatus{lumOk} : LumStatus{lumErrGeneric};
        },
        [](const void*, void* d, Lum32s len) { return lumBlockZero_8u(static_cast<Lum8u*>(d), len); },
        [](const void*, void* d, Lum32s len) { return lumBlockZero_16s(static_cast<Lum16s*>(d), len); },
        [](const void*, void* d, Lum32s len) { return lumBlockZero_32f(static_cast<Lum32f*>(d), len); },
    };
    const std::size_t sizes[] = {1, 2, 4, 1, 1, 2, 4};
    const std::size_t largest = 4 * 530000;
    Arena source(largest, 11), destination(largest, 12);
    const Bytes zeroBytes(largest);
    for (std::size_t i = 0; i < 7; ++i) {
        for (const std::size_t count : {20u, 1000u, 20000u, 40001u, i == 5 ? 1048577u : 524289u}) {
            for (const std::size_t distance : {0u, 1u, 2u, 4u}) {
                const unsigned char* const from = source.at(8 + distance);
                unsigned char* const to = destination.at(8);
                LumStatus status = lumErrGeneric;
                EXPECT_TRUE(flagSurvives(calls[i], from, to, static_cast<Lum32s>(count), &status));
                EXPECT_EQ(status, lumOk);
                ASSERT_TRUE(destination.holds(i < 4 ? from : zeroBytes.data(), count * sizes[i]))
                    << "call " << i << ", " << count << " elements";
                EXPECT_EQ(calls[i](from, destination.at(8), static_cast<Lum32s>(count)), lumOk);
                EXPECT_FALSE(directionFlag());
                ASSERT_TRUE(destination.holds(i < 4 ? from : zeroBytes.data(), count * sizes[i]));
            }
        }
    }
}

// Fills above the cache.

// Fills a block under a reported cache size and counts the questions.
void tryLargeFill(const Set& set, Arena& arena, std::size_t count, std::size_t alignment, int reportedStatus,
                  int reportedBytes, long expectedCalls)
{
    const Bytes expected = repeated(fillValue, set.size, count);
    const ReportedCacheSize reported(reportedStatus, reportedBytes);
    ASSERT_EQ(set.call(fillValue, arena.at(alignment), static_cast<Lum32s>(count)), lumOk);
    EXPECT_EQ(reported.calls(), expectedCalls) << at(set.name, count, alignment);
    EXPECT_TRUE(arena.holds(expected.data(), expected.size()))
        << at(set.name, count, alignment) << ", reported status " << reportedStatus << ", bytes " << reportedBytes;
}

TEST(Block, FillAsksForTheCacheSizeOnlyAboveTheThreshold)
{
    Arena arena(4 * (0x200000 + 4096), 13);
    for (const std::size_t alignment : {0u, 4u, 20u, 60u}) {
        tryLargeFill(set8u, arena, 0x1fffff, alignment, lumOk, 65536, 0);
        tryLargeFill(set8u, arena, 0x200000, alignment, lumOk, 65536, 0);
        tryLargeFill(set8u, arena, 0x200001, alignment, lumOk, 65536, 1);
        tryLargeFill(set32f, arena, 0x7ffff, alignment, lumOk, 65536, 0);
        tryLargeFill(set32f, arena, 0x80000, alignment, lumOk, 65536, 0);
        tryLargeFill(set32f, arena, 0x80001, alignment, lumOk, 65536, 1);
        tryLargeFill(set16s, arena, 0x100001, alignment, lumOk, 65536, 0);
        tryLargeFill(set16s, arena, 0x200001, alignment, lumOk, 65536, 0);
    }
}

TEST(Block, FillOfFloatsAtAnOddAddressTakesTheElementsOneByOne)
{
    Arena arena(4 * 0x80001, 14);
    for (const std::size_t alignment : {1u, 2u, 3u, 5u, 62u, 63u}) {
        tryLargeFill(set32f, arena, 0x80001, alignment, lumOk, 65536, 0);
    }
}

TEST(Block, FillUnderEveryAnswerOfTheCacheQuery)
{
    Arena arena(4 * 0x80000 + 4096, 15);
    struct Answer
    {
        int status;
        int bytes;
    };
    const Answer answers[] = {{lumOk, 65536},
                              {lumOk, 1},
                              {lumOk, 0},
                              {lumOk, -1},
                              {lumOk, -65536},
                              {lumOk, std::numeric_limits<int>::max()},
                              {lumErrGeneric, 65536},
                              {1, 65536},
                              {lumOk, 0x200003},
                              {lumOk, 0x200004},
                              {lumOk, 0x200005}};
    for (const Answer& answer : answers) {
        for (const std::size_t alignment : {0u, 4u, 32u, 60u}) {
            tryLargeFill(set8u, arena, 0x200004, alignment, answer.status, answer.bytes, 1);
            tryLargeFill(set32f, arena, 0x80001, alignment, answer.status, answer.bytes, 1);
        }
    }
}

TEST(Block, NonTemporalFillAtEveryAlignmentAndWithEveryTail)
{
    Arena arena(4 * 0x80000 + 4096, 16);
    for (std::size_t alignment = 0; alignment < 64; ++alignment) {
        tryLargeFill(set8u, arena, 0x200001 + alignment * 37 % 600, alignment, lumOk, 65536, 1);
        tryLargeFill(set32f, arena, 0x80001 + alignment * 29 % 200, alignment / 4 * 4, lumOk, 65536, 1);
        ASSERT_FALSE(HasFailure());
    }
    for (std::size_t extra = 1; extra <= 64; ++extra) {
        tryLargeFill(set8u, arena, 0x200000 + extra, 0, lumOk, 65536, 1);
        tryLargeFill(set8u, arena, 0x200000 + 448 + extra, 1, lumOk, 65536, 1);
        ASSERT_FALSE(HasFailure());
    }
}

TEST(Block, NonTemporalFillStaysBetweenUnreadablePages)
{
    const ReportedCacheSize reported(lumOk, 65536);
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (const std::size_t count : {0x80001u, 0x80002u, 0x80010u, 0x80081u, 0x8008fu}) {
            const GuardedBlock floats(4 * count, guard);
            ASSERT_EQ(set32f.call(fillValue, floats.data(), static_cast<Lum32s>(count)), lumOk);
            EXPECT_TRUE(sameElements(repeated(fillValue, 4, count).data(), floats.data(), floats.size()));
            EXPECT_TRUE(floats.slackIntact());
            const GuardedBlock bytes(4 * count - 1, guard);
            ASSERT_EQ(set8u.call(fillValue, bytes.data(), static_cast<Lum32s>(bytes.size())), lumOk);
            EXPECT_TRUE(sameElements(repeated(fillValue, 1, bytes.size()).data(), bytes.data(), bytes.size()));
            EXPECT_TRUE(bytes.slackIntact());
        }
    }
    EXPECT_EQ(reported.calls(), 20);
}

// Copies whose bytes exceed what 31 bits count.

// Address space of any size that costs little memory: one window of memory is mapped again and again, and only chosen
// stretches have memory of their own, filled with bytes that occur nowhere else.
class RepeatedMemory
{
  public:
    static constexpr std::size_t window = 1u << 22;
    static constexpr std::size_t stretch = 1u << 16;

    RepeatedMemory(std::size_t bytes, std::uint64_t seed) : seed_(seed)
    {
        mappedBytes_ = (bytes + window - 1) / window * window + window;
        const int file = memfd_create("window", 0);
        void* reserved = mmap(nullptr, mappedBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        valid_ = file >= 0 && reserved != MAP_FAILED && ftruncate(file, window) == 0;
        begin_ = static_cast<unsigned char*>(reserved);
        // the last window stays unreadable
        for (std::size_t offset = 0; valid_ && offset + window < mappedBytes_; offset += window) {
            valid_ =
                mmap(begin_ + offset, window, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) != MAP_FAILED;
        }
        if (file >= 0) {
            close(file);
        }
        // the block ends at the unreadable window
        data_ = begin_ + (mappedBytes_ - window) - bytes;
    }
    RepeatedMemory(const RepeatedMemory&) = delete;
    RepeatedMemory& operator=(const RepeatedMemory&) = delete;
    ~RepeatedMemory()
    {
        if (begin_ != MAP_FAILED) {
            munmap(begin_, mappedBytes_);
        }
    }
    bool valid() const
    {
        return valid_;
    }
    unsigned char* data() const
    {
        return data_;
    }
    // Gives the stretch around this offset of the block memory of its own.
    void separate(std::size_t offset)
    {
        unsigned char* const begin = stretchAround(offset);
        valid_ = valid_ && mmap(begin, stretch, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1,
                                0) != MAP_FAILED;
        if (valid_) {
            const Bytes bytes = randomBytes(stretch, seed_ + offset);
            std::memcpy(begin, bytes.data(), stretch);
        }
    }
    unsigned char* stretchAround(std::size_t offset) const
    {
        unsigned char* const page = data_ + offset - reinterpret_cast<std::uintptr_t>(data_ + offset) % 4096;
        const std::ptrdiff_t latest = begin_ + (mappedBytes_ - window) - stretch - page;
        return page + std::min<std::ptrdiff_t>(latest, -static_cast<std::ptrdiff_t>(stretch) / 2);
    }

  private:
    std::uint64_t seed_;
    std::size_t mappedBytes_ = 0;
    bool valid_ = false;
    unsigned char* begin_ = nullptr;
    unsigned char* data_ = nullptr;
};

void tryHugeCopy(const Copy& copy, std::size_t count)
{
    const std::size_t bytes = count * copy.size;
    RepeatedMemory source(bytes, 17), destination(bytes, 18);
    // every place where one round of a copy may end and the next begin, and both ends
    std::vector<std::size_t> seams = {RepeatedMemory::stretch, bytes - 1};
    for (std::size_t seam = 0x7fffffe0u; seam < bytes; seam += 0x7fffffe0u) {
        seams.push_back(seam);
    }
    for (const std::size_t seam : seams) {
        source.separate(seam);
        destination.separate(seam);
    }
    if (!source.valid() || !destination.valid()) {
        GTEST_SKIP() << "no address space for two blocks of " << bytes << " bytes";
    }
    ASSERT_EQ(copy.call(source.data(), destination.data(), static_cast<Lum32s>(count)), lumOk);
    for (const std::size_t seam : seams) {
        const unsigned char* const begin = std::max(destination.stretchAround(seam), destination.data());
        const auto offset = static_cast<std::size_t>(begin - destination.data());
        const std::size_t length = std::min(RepeatedMemory::stretch, bytes - offset);
        EXPECT_EQ(std::memcmp(source.data() + offset, begin, length), 0)
            << copy.name << ' ' << count << ", seam " << seam;
    }
}

// The largest count that goes in one, the smallest that goes in two rounds, and three rounds of which the last is one
// element.

TEST(BlockHuge, CopyOfFloatsInRounds)
{
    tryHugeCopy(copies[2], 0x1fffffff);
    tryHugeCopy(copies[2], 0x20000000);
    tryHugeCopy(copies[2], 2 * 0x1ffffff8 + 1);
}

TEST(BlockHuge, CopyOfWordsInRounds)
{
    tryHugeCopy(copies[1], 0x3fffffff);
    tryHugeCopy(copies[1], 0x40000000);
    tryHugeCopy(copies[1], 2 * 0x3ffffff0 + 1);
}

// Division.

TEST(Block, DivisionMultipliesByTheReciprocal)
{
    constexpr Lum32f infinity = std::numeric_limits<Lum32f>::infinity();
    const Lum32f values[] = {3, -7.3f, 1, 0.1f, 1e-40f, 3e38f, infinity, std::numeric_limits<Lum32f>::quiet_NaN()};
    Random random;
    int otherThanDivision = 0;
    for (const Guard guard : {Guard::After, Guard::Before}) {
        for (int count = 1; count <= 300; ++count) {
            const auto elements = static_cast<std::size_t>(count);
            const GuardedBlock block(4 * elements, guard);
            std::vector<Lum32f> start(elements), expected(elements);
            const Lum32f value = values[count % 8];
            const Lum32f reciprocal = 1.0f / value;
            for (std::size_t i = 0; i < elements; ++i) {
                start[i] = random.value<Lum32f>(count % 3 == 0 ? Values::NonFinite : Values::Ordinary);
                expected[i] = start[i] * reciprocal;
                otherThanDivision += !sameElement(expected[i], start[i] / value);
            }
            std::memcpy(block.data(), start.data(), block.size());
            ASSERT_EQ(lumBlockDivC_32f(value, block.as<Lum32f>(), count), lumOk);
            ASSERT_TRUE(sameElements(expected.data(), block.as<Lum32f>(), elements)) << "divided by " << value;
            ASSERT_TRUE(block.slackIntact());
        }
    }
    EXPECT_GT(otherThanDivision, 1000);
}

TEST(BlockQuick, DivisionByZeroLeavesTheBlock)
{
    for (const Lum32f zero : {0.0f, -0.0f}) {
        Lum32f block[] = {1, -2, 0, std::numeric_limits<Lum32f>::infinity(), 5};
        const Lum32f before[] = {1, -2, 0, std::numeric_limits<Lum32f>::infinity(), 5};
        EXPECT_EQ(lumBlockDivC_32f(zero, block, 5), lumErrDivideByZero);
        EXPECT_TRUE(sameElements(before, block, 5));
    }
}

// Argument checks.

struct BlockArgs
{
    std::function<LumStatus(const void*, void*, Lum32s, Lum32f)> f;
    const void* pSrc;
    void* pDst;
    Lum32s len;
    Lum32f value;
    const GuardedBlock* destination;

    LumStatus call() const
    {
        return f(pSrc, pDst, len, value);
    }
    std::vector<Output> outputs() const
    {
        return {Output(*destination)};
    }
};

TEST(BlockQuick, ChecksInDocumentedOrder)
{
    using Checks = std::vector<Violation<BlockArgs>>;
    const GuardedBlock source(400, Guard::After), destination(400, Guard::After);
    const Checks sizes = {
        {"len 0", lumErrSize, [](BlockArgs& a) { a.len = 0; }},
        {"len -1", lumErrSize, [](BlockArgs& a) { a.len = -1; }},
        {"len smallest", lumErrSize, [](BlockArgs& a) { a.len = std::numeric_limits<Lum32s>::min(); }},
    };
    Checks one = {{"pDst null", lumErrNullPointer, [](BlockArgs& a) { a.pDst = nullptr; }}};
    one.insert(one.end(), sizes.begin(), sizes.end());
    Checks two = one;
    two.insert(two.begin(), {"pSrc null", lumErrNullPointer, [](BlockArgs& a) { a.pSrc = nullptr; }});
    Checks division = one;
    division.push_back({"value 0", lumErrDivideByZero, [](BlockArgs& a) { a.value = 0; }});

    BlockArgs valid{nullptr, source.data() + 1, destination.data(), 99, 3, &destination};
    for (const Zero& zero : zeros) {
        SCOPED_TRACE(zero.name);
        valid.f = [&](const void*, void* d, Lum32s len, Lum32f) { return zero.call(d, len); };
        expectStatusOrder(valid, one);
    }
    for (const Set& set : sets) {
        SCOPED_TRACE(set.name);
        valid.f = [&](const void*, void* d, Lum32s len, Lum32f) { return set.call(fillValue, d, len); };
        expectStatusOrder(valid, one);
    }
    for (const Copy& copy : {copies[0], copies[1], copies[2]}) {
        SCOPED_TRACE(copy.name);
        valid.f = [&](const void* s, void* d, Lum32s len, Lum32f) { return copy.call(s, d, len); };
        expectStatusOrder(valid, two);
    }
    valid.f = [](const void*, void* d, Lum32s len, Lum32f value) {
        return lumBlockDivC_32f(value, static_cast<Lum32f*>(d), len);
    };
    for (int i = 0; i < 100; ++i) {
        destination.as<Lum32f>()[i] = static_cast<Lum32f>(i);
    }
    expectStatusOrder(valid, division);
}

}  // namespace
}  // namespace lumcv::test
