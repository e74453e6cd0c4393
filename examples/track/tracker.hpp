// Follows the corners of a first frame through the frames after it.
#pragma once

#include <array>
#include <vector>

#include "image.hpp"

namespace track {

struct Point
{
    Lum32f x, y;
};

struct TrackOptions
{
    int mostCorners = 150;     ///< how many corners are followed, the strongest ones
    int apart = 10;            ///< least distance between two of them, in pixels
    int window = 15;           ///< side of the window that is held against the next frame
    Lum32f worstError = 18.0;  ///< a window that differs more than this from frame to frame is lost, in gray levels
};

/// Where a corner was in each frame, until it was lost.
struct Track
{
    std::vector<Point> path;
    bool isLost = false;
};

/// The levels of a frame, each half as wide and high as the one before. The memory is allocated once.
class Pyramid
{
  public:
    explicit Pyramid(LumiSize size);

    /// Takes a gray frame as level 0 and makes the others of it.
    void take(const gallery::Picture& frame);

    const lumcv::Record<LumiPyramidRecord>& record() const
    {
        return record_;
    }

  private:
    lumcv::Record<LumiPyramidRecord> record_;
    lumcv::Record<LumiPyramidLayerDownRecord> layer_;
    std::vector<gallery::Picture> images_;
};

/// The strongest corners of a gray picture, by the smaller eigenvalue of its derivatives.
std::vector<Point> findCorners(const gallery::Picture& gray, int most, int apart);

class Tracker
{
  public:
    Tracker(const gallery::Picture& firstFrame, const TrackOptions& options);

    /// Follows all points that are not lost to the next frame, which has the size of the first.
    void follow(const gallery::Picture& frame);

    const std::vector<Track>& tracks() const
    {
        return tracks_;
    }

  private:
    TrackOptions options_;
    std::vector<Track> tracks_;
    std::array<Pyramid, 2> pyramids_;  // of the frame before and of the next one, in turn
    int last_ = 0;                     // which of them holds the frame before
    lumcv::Record<LumOptFlowPyrLKState> state_;
};

}  // namespace track
