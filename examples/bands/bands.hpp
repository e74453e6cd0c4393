// A chain of operations over a picture, by one call each or in bands on all cores: the same bytes.
#pragma once

#include <vector>

#include "image.hpp"

namespace bands {

using gallery::Picture;

/// Rows of a picture that are worked on by themselves.
struct Band
{
    int top;
    int height;
    LumiBorderType border;  ///< pixels are repeated at the edges of the picture; towards other bands they are in memory
};

/// Cuts a picture into bands of so many rows, for an operation that looks at `margin` rows beyond those of its result.
/// Either all of them are in memory or none is: so the first and the last band are made at least as high as the margin.
std::vector<Band> cut(int height, int rows, int margin);

/// A Gaussian filter, then the morphological gradient, then an opening: the edges of what is not too small. Everything
/// that the operations need to know is laid down once; any number of threads may look at it.
class Chain
{
  public:
    /// For gray pictures of this size.
    explicit Chain(LumiSize size);

    /// One call for each operation.
    Picture whole(const Picture& gray) const;

    /// One task for each band and operation, on the threads of the task arena that this is called in.
    Picture inBands(const Picture& gray, int rows) const;

  private:
    template <class Run>
    Picture run(const Picture& gray, const Run& runStage) const;

    lumcv::Record<LumFilterGaussianSpec> gaussian_;
    lumcv::Record<LumiMorphCompoundSpecL> square_;
};

}  // namespace bands
