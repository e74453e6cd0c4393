// One stage of a cascade as the library takes it.
#pragma once

#include <vector>

#include "cascade.hpp"
#include "image.hpp"

namespace detect {

/// The rectangles of a stage, grown to a window of any size, in a record. No picture is shrunk to look for large
/// objects.
class StageRecord
{
  public:
    /// The record serves calls that look at no more than so many places of the window.
    StageRecord(const Stage& stage, const Cascade& cascade, LumiSize window, LumiSize places);

    // The record must not be moved in memory. Moving a vector leaves its elements where they are, copying does not.
    StageRecord(StageRecord&&) = default;
    StageRecord& operator=(StageRecord&&) = default;

    LumiHaarStageRecord* record()
    {
        return reinterpret_cast<LumiHaarStageRecord*>(block_.data());
    }
    Lum32f threshold() const
    {
        return threshold_;
    }

  private:
    std::vector<Lum8u> block_;
    Lum32f threshold_;
};

}  // namespace detect
