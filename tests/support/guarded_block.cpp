// Guarded blocks: readable pages between two unreadable ones.
#include "support/guarded_block.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace lumcv::test {

// The pattern repeats after this many bytes; whole stretches of it are copied and compared.
constexpr std::size_t kPatternPeriod = 65536;
static_assert(patternByte(12345) == patternByte(12345 + kPatternPeriod));

// Made before any thread starts: the thread sanitizer does not see what the first use of a local one synchronises in a
// program that it has not instrumented.
static const std::vector<unsigned char> pattern = [] {
    std::vector<unsigned char> bytes(kPatternPeriod);
    for (std::size_t i = 0; i < kPatternPeriod; ++i) {
        bytes[i] = patternByte(i);
    }
    return bytes;
}();

// Calls f(offset, expected bytes, count) for the stretches of [begin, end) until one gives false.
template <class F>
static bool forEachStretch(std::size_t begin, std::size_t end, F f)
{
    while (begin < end) {
        const std::size_t phase = begin % kPatternPeriod;
        const std::size_t count = std::min(end - begin, kPatternPeriod - phase);
        if (!f(begin, &pattern[phase], count)) {
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

std::size_t GuardedBlock::blockBegin() const
{
    return guard_ == Guard::Before ? 0 : readableBytes(bytes_) - bytes_;
}

[[noreturn]] static void noPages(const char* call)
{
    std::perror(call);
    std::abort();
}

// Readable pages between two unreadable ones. What was given back is handed out again: sweeps make hundreds of
// thousands of blocks, and the system would take longer for their pages than the tests for their pixels.
class Mappings
{
  public:
    static unsigned char* take(std::size_t readable)
    {
        {
            const std::lock_guard lock(mutex_);
            std::vector<unsigned char*>& free = free_[readable];
            if (!free.empty()) {
                unsigned char* const mapping = free.back();
                free.pop_back();
                freeBytes_ -= readable;
                return mapping;
            }
        }
        const std::size_t bytes = readable + 2 * pageSize();
        void* const mapping = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (mapping == MAP_FAILED) {
            noPages("mmap");
        }
        unsigned char* const first = static_cast<unsigned char*>(mapping);
        if (mprotect(first + pageSize(), readable, PROT_READ | PROT_WRITE) != 0) {
            noPages("mprotect");
        }
        return first;
    }

    static void giveBack(unsigned char* mapping, std::size_t readable, bool isReadOnly)
    {
        if (!isReadOnly || mprotect(mapping + pageSize(), readable, PROT_READ | PROT_WRITE) == 0) {
            const std::lock_guard lock(mutex_);
            if (freeBytes_ + readable <= kMostFreeBytes) {
                free_[readable].push_back(mapping);
                freeBytes_ += readable;
                return;
            }
        }
        munmap(mapping, readable + 2 * pageSize());
    }

  private:
    static constexpr std::size_t kMostFreeBytes = std::size_t{64} << 20;
    static inline std::mutex mutex_;
    static inline std::map<std::size_t, std::vector<unsigned char*>> free_;
    static inline std::size_t freeBytes_ = 0;
};

GuardedBlock::GuardedBlock(std::size_t bytes, Guard guard)
    : bytes_(bytes), guard_(guard), mapping_(Mappings::take(readableBytes(bytes)))
{
    const std::size_t readable = readableBytes(bytes);
    unsigned char* const first = mapping_ + pageSize();
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
      data_(std::exchange(other.data_, nullptr)),
      isReadOnly_(other.isReadOnly_)
{
}

GuardedBlock& GuardedBlock::operator=(GuardedBlock other) noexcept
{
    std::swap(bytes_, other.bytes_);
    std::swap(guard_, other.guard_);
    std::swap(mapping_, other.mapping_);
    std::swap(data_, other.data_);
    std::swap(isReadOnly_, other.isReadOnly_);
    return *this;
}

GuardedBlock::~GuardedBlock()
{
    if (mapping_) {
        Mappings::giveBack(mapping_, readableBytes(bytes_), isReadOnly_);
    }
}

void GuardedBlock::makeReadOnly() const
{
    if (mprotect(mapping_ + pageSize(), readableBytes(bytes_), PROT_READ) != 0) {
        noPages("mprotect");
    }
    isReadOnly_ = true;
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
