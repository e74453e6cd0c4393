// One stage of a cascade as the library takes it.
#pragma once

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

    LumiHaarStageRecord* record()
    {
        return record_.get();
    }
    Lum32f threshold() const
    {
        return threshold_;
    }

  private:
    lumcv::Record<LumiHaarStageRecord> record_;
    Lum32f threshold_;
};

}  // namespace detect
