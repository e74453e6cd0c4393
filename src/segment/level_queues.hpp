// 256 queues of pixels, first in, first out, one for each level.
#pragma once

#include <algorithm>
#include <cstdint>

#include "lumcv/types.h"

namespace lumcv {

/// A pixel is a number that tells its place. A queue is a chain of chunks of the size of a cache line, so that what is
/// pushed and popped stays close together, wherever in the image it is.
class LevelQueues
{
  public:
    static constexpr int levels = 256;
    static constexpr uintptr_t alignment = 64;

    /// Bytes of chunks that so many pushes take at most: beyond its first chunk, which is not counted, a queue takes
    /// one every `chunkPixels` pushes.
    static constexpr int64_t bytesFor(int64_t pushes)
    {
        return pushes / chunkPixels * static_cast<int64_t>(sizeof(Chunk));
    }

    /// `chunks` is aligned, and has the bytes for all pushes there will be.
    explicit LevelQueues(Lum8u* chunks) : chunks_(reinterpret_cast<Chunk*>(chunks))
    {
        for (int level = 0; level < levels; ++level)
            head_[level] = tail_[level] = firstChunks_[level].words;
    }

    LevelQueues(const LevelQueues&) = delete;
    LevelQueues& operator=(const LevelQueues&) = delete;

    void push(int level, Lum32u pixel)
    {
        Lum32u* tail = tail_[level];
        *tail++ = pixel;
        if (isBehindPixels(tail))
            tail = append(tail);
        tail_[level] = tail;
    }

    bool isEmpty(int level) const
    {
        return head_[level] == tail_[level];
    }

    /// The oldest pixel of a queue that is not empty.
    Lum32u pop(int level)
    {
        Lum32u* head = head_[level];
        const Lum32u pixel = *head++;
        if (isBehindPixels(head))
            head = chunk(*head).words;
        head_[level] = head;
        return pixel;
    }

    /// The third pixel of a queue, to be asked for early; any number where a chunk or the queue ends before it.
    Lum32u guess(int level) const
    {
        const Lum32u* const head = head_[level];
        constexpr uintptr_t lastWord = alignment - sizeof(Lum32u);
        const auto* const last = reinterpret_cast<const Lum32u*>(reinterpret_cast<uintptr_t>(head) | lastWord);
        return *std::min(head + 2, last);
    }

    /// The first level from this one on whose queue is not empty; `levels` if there is none.
    int nextLevel(int level) const
    {
        while (level < levels && isEmpty(level))
            ++level;
        return level;
    }

  private:
    static constexpr int chunkPixels = 15;

    struct alignas(alignment) Chunk
    {
        Lum32u words[chunkPixels + 1];  ///< pixels; the last one is the number of the next chunk
    };
    static_assert(sizeof(Chunk) == alignment);

    static bool isBehindPixels(const Lum32u* place)
    {
        return reinterpret_cast<uintptr_t>(place) % alignment == chunkPixels * sizeof(Lum32u);
    }

    /// The first chunks of the queues come first, then those in the caller's block.
    Chunk& chunk(Lum32u number)
    {
        return number < levels ? firstChunks_[number] : chunks_[number - levels];
    }

    /// Where pixels go on behind those of a full chunk.
    Lum32u* append(Lum32u* link)
    {
        *link = taken_++;
        return chunk(*link).words;
    }

    Chunk* chunks_;
    Lum32u taken_ = levels;
    Lum32u* head_[levels];
    Lum32u* tail_[levels];
    Chunk firstChunks_[levels] = {};
};

}  // namespace lumcv
