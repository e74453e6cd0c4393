// Guarded blocks: readable pages between two unreadable ones.
#include "support/guarded_block.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace lumcv::test {

// The pattern repeats after this many bytes; whole stretches of it are copied and compared.
constexpr std::size_t kPatternPeriod = 65536;
static_assert(patternByte(12345) == patternByte(12345 + kPatternPeriod));

static const unsigned char* pattern()
{
    static const std::vector<unsigned char> bytes = [] {
        std::vector<unsigned char> result(kPatternPeriod);
        for (std::size_t i = 0; i < kPatternPeriod; ++i) {
            result[i] = patternByte(i);
        }
        return result;
    }();
    return bytes.data();
}

// Calls f(offset, expected bytes, count) for the stretches of [begin, end) until one gives false.
template <class F>
static bool forEachStretch(std::size_t begin, std::size_t end, F f)
{
    while (begin < end) {
        const std::size_t phase = begin % kPatternPeriod;
        const std::size_t count = std::min(end - begin, kPatternPeriod - phase);
        if (!f(begin, pattern() + phase, count)) {
            return false;
        }
        begin += count;
    }
    return true;
}

static std::size_t pageSize()
{
    static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

static std::size_t readableBytes(std::size_t bytes)
{
    const std::size_t pages = bytes == 0 ? 1 : (bytes + pageSize() - 1) / pageSize();
    return pages * pageSize();
}

std::size_t GuardedBlock::mappedBytes() const
{
    return readableBytes(bytes_) + 2 * pageSize();
}

std::size_t GuardedBlock::blockBegin() const
{
    return guard_ == Guard::Before ? 0 : readableBytes(bytes_) - bytes_;
}

GuardedBlock::GuardedBlock(std::size_t bytes, Guard guard) : bytes_(bytes), guard_(guard)
{
    const std::size_t readable = readableBytes(bytes);
    void* mapping = mmap(nullptr, mappedBytes(), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapping == MAP_FAILED) {
        throw std::bad_alloc();
    }
    mapping_ = static_cast<unsigned char*>(mapping);
    unsigned char* const first = mapping_ + pageSize();
    if (mprotect(first, readable, PROT_READ | PROT_WRITE) != 0) {
        munmap(mapping, mappedBytes());
        throw std::bad_alloc();
    }
    data_ = first + blockBegin();
    forEachStretch(0, readable, [&](std::size_t offset, const unsigned char* expected, std::size_t count) {
        std::memcpy(first + offset, expected, count);
        return true;
    });
}

GuardedBlock::GuardedBlock(const GuardedBlock& other) : GuardedBlock(other.bytes_, other.guard_)
{
    std::memcpy(mapping_ + pageSize(), other.mapping_ + pageSize(), readableBytes(bytes_));
}

GuardedBlock::GuardedBlock(GuardedBlock&& other) noexcept
    : bytes_(other.bytes_),
      guard_(other.guard_),
      mapping_(std::exchange(other.mapping_, nullptr)),
      data_(std::exchange(other.data_, nullptr))
{
}

GuardedBlock& GuardedBlock::operator=(GuardedBlock other) noexcept
{
    std::swap(bytes_, other.bytes_);
    std::swap(guard_, other.guard_);
    std::swap(mapping_, other.mapping_);
    std::swap(data_, other.data_);
    return *this;
}

GuardedBlock::~GuardedBlock()
{
    if (mapping_) {
        munmap(mapping_, mappedBytes());
    }
}

testing::AssertionResult GuardedBlock::slackIntact() const
{
    const unsigned char* const first = mapping_ + pageSize();
    const std::size_t readable = readableBytes(bytes_);
    const auto same = [&](std::size_t offset, const unsigned char* expected, std::size_t count) {
        return std::memcmp(first + offset, expected, count) == 0;
    };
    if (forEachStretch(0, blockBegin(), same) && forEachStretch(blockBegin() + bytes_, readable, same)) {
        return testing::AssertionSuccess();
    }
    for (std::size_t i = 0; i < readable; ++i) {
        const bool inBlock = i >= blockBegin() && i < blockBegin() + bytes_;
        if (!inBlock && first[i] != patternByte(i)) {
            const auto offset = static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(blockBegin());
            return testing::AssertionFailure()
                   << "the byte at offset " << offset << " of a block of " << bytes_ << " bytes was written: got "
                   << int{first[i]} << ", expected " << int{patternByte(i)};
        }
    }
    return testing::AssertionSuccess();
}

}  // namespace lumcv::test
