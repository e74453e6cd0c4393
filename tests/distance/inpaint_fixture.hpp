// A repair as a caller makes it: mask, distances, radius and method, blocks of the queried sizes; compared with the
// reference.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <vector>

#include "distance/contents.hpp"
#include "distance/fast_marching_reference.hpp"
#include "distance/inpaint_reference.hpp"
#include "support/compare.hpp"
#include "support/placed_block.hpp"

namespace lumcv::test::distance {

enum class Damage
{
    Strokes,
    Blob,
    Scattered,
    OnePixel,
    Corner,
    Frame,
    Half,
    Everything,
    AllButTwo,
    Nothing,
    Count
};

enum class Distances
{
    Marched,
    PartlyZero,  ///< some masked pixels have the distance 0
    Ties,        ///< few different values, drawn
    Equal,       ///< one value: the normals are 0
    Drawn,       ///< drawn floats, also on pixels that are not masked
    Count
};

enum class Picture
{
    Noise,
    Ramp,
    Bands,
    Flat,
    FlatFirstChannel,
    FlatOtherChannels,
    BlackAndWhite,
    Count
};

inline bool isDamaged(Damage damage, int x, int y, LumiSize size, Random& random)
{
    const int w = size.width;
    const int h = size.height;
    switch (damage) {
        case Damage::Strokes:
            return std::abs(x - y - w / 5) <= 1 || std::abs(x + 2 * y - w) <= 1 || (y >= h / 2 && y < h / 2 + 3);
        case Damage::Blob:
            return (x - w / 2) * (x - w / 2) + (y - h / 2) * (y - h / 2) <= h * h / 16;
        case Damage::Scattered:
            return random.oneIn(6);
        case Damage::OnePixel:
            return x == w * 2 / 3 && y == h / 3;
        case Damage::Corner:
            return x >= w - 4 && y < 3;
        case Damage::Frame:
            return x < 2 || y < 2 || x >= w - 2 || y >= h - 2;
        case Damage::Half:
            return x >= w / 2;
        case Damage::Everything:
            return true;
        case Damage::AllButTwo:
            return (x != w / 3 && x != w / 3 + 1) || y != h / 2;
        default:
            return false;
    }
}

/// The state of one Init in blocks of exactly the queried sizes, at any address.
struct Repair
{
    LumiSize size = {1, 1};
    Damage damage = Damage::Strokes;
    Distances distances = Distances::Marched;
    Lum32f radius = 3;
    LumiInpaintMethod method = lumInpaintByFront;
    int channels = 1;
    std::uint64_t seed = 0;
    int gap = 0;
    Guard guard = Guard::After;
    std::size_t distance = 0;  ///< between the blocks and the unreadable page

    Layout layout(int layoutChannels = 1, int elementBytes = 1) const
    {
        Layout result = layoutOf(size.width, size.height, gap * elementBytes, guard);
        result.channels = layoutChannels;
        return result;
    }

    Image<Lum8u> mask() const
    {
        Image<Lum8u> result(layout());
        Random random(seed);
        result.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int) {
            const auto value = static_cast<Lum8u>(random.between(1, 255));
            element = isDamaged(damage, x, y, size, random) ? value : Lum8u{0};
        });
        return result;
    }

    Image<Lum32f> distanceImage(const Image<Lum8u>& mask) const
    {
        Image<Lum32f> result = marchedDistances(mask, 0, layout(1, 4));
        Random random(seed + 1);
        result.forEach(Area::Roi, [&](Lum32f& element, int x, int y, int) {
            const bool masked = mask.at(x, y) != 0;
            switch (distances) {
                case Distances::PartlyZero:
                    element = random.oneIn(4) ? 0 : element;
                    break;
                case Distances::Ties:
                    element = masked ? static_cast<Lum32f>(random.between(1, 3)) : 0;
                    break;
                case Distances::Equal:
                    element = masked ? 1 : 0;
                    break;
                case Distances::Drawn:
                    element = masked || random.oneIn(30) ? random.unit<Lum32f>() * 5 - 0.5f : -1;
                    break;
                default:
                    break;
            }
        });
        return result;
    }

    LumStatus sizes(const Image<Lum8u>& mask, Lum32s& specBytes, Lum32s& bufferBytes) const
    {
        return lumiInpaintGetSize(mask.pixels(), mask.step(), size, radius, method, channels, &specBytes, &bufferBytes);
    }
};

inline std::ostream& operator<<(std::ostream& stream, const Repair& repair)
{
    return stream << repair.size.width << " x " << repair.size.height << ", damage " << static_cast<int>(repair.damage)
                  << ", distances " << static_cast<int>(repair.distances) << ", radius " << repair.radius << ", method "
                  << repair.method << ", " << repair.channels << " channels, seed " << repair.seed;
}

inline void drawPicture(Image<Lum8u>& image, Picture picture, std::uint64_t seed)
{
    Random random(seed);
    image.forEach(Area::Roi, [&](Lum8u& element, int x, int y, int c) {
        const auto drawn = static_cast<Lum8u>(random.bits());
        switch (picture) {
            case Picture::Ramp:
                element = static_cast<Lum8u>(3 * x + 5 * y + 60 * c);
                break;
            case Picture::Bands:
                element = (x + y * (c + 1)) / 9 % 2 == 0 ? Lum8u{30} : Lum8u{200};
                break;
            case Picture::Flat:
                element = static_cast<Lum8u>(127 * c + 1);
                break;
            case Picture::FlatFirstChannel:
                element = c == 0 ? Lum8u{77} : drawn;
                break;
            case Picture::FlatOtherChannels:
                element = c == 0 ? drawn : Lum8u{77};
                break;
            case Picture::BlackAndWhite:
                element = drawn % 2 == 0 ? Lum8u{0} : Lum8u{255};
                break;
            default:
                element = drawn;
                break;
        }
    });
}

inline LumStatus inpaint(const Repair& repair, const Image<Lum8u>& source, Image<Lum8u>& destination,
                         LumiInpaintState* state, Lum8u* buffer)
{
    const auto function = repair.channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
    return function(source.pixels(), source.step(), destination.pixels(), destination.step(), repair.size, state,
                    buffer);
}

/// What a caller holds between Init and the repairs. Mask and distances are gone by then.
class Prepared
{
  public:
    explicit Prepared(const Repair& repair) : repair_(repair)
    {
        const Image<Lum8u> mask = repair.mask();
        const Image<Lum32f> distance = repair.distanceImage(mask);
        reference_ = std::make_unique<Inpainting>(mask, distance, repair.radius, repair.method);
        Lum32s specBytes = -1;
        Lum32s bufferBytes = -1;
        EXPECT_EQ(repair.sizes(mask, specBytes, bufferBytes), lumOk);
        if (specBytes < 0 || bufferBytes < 0) {
            return;
        }
        spec_ = std::make_unique<PlacedBlock>(static_cast<std::size_t>(specBytes), repair.guard, repair.distance);
        buffer_ = std::make_unique<PlacedBlock>(static_cast<std::size_t>(bufferBytes), repair.guard, repair.distance);
        const auto init = repair.channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
        EXPECT_EQ(init(&state_, distance.pixels(), distance.step(), mask.pixels(), mask.step(), repair.size,
                       repair.radius, repair.method, spec_->data(), buffer()),
                  lumOk);
        EXPECT_EQ(static_cast<void*>(state_), static_cast<void*>(spec_->data()));
        EXPECT_TRUE(mask.gapsIntact() && distance.gapsIntact());
    }

    Lum8u* buffer() const
    {
        return buffer_ == nullptr || buffer_->size() == 0 ? nullptr : buffer_->data();
    }
    const PlacedBlock& bufferBlock() const
    {
        return *buffer_;
    }
    LumiInpaintState* state() const
    {
        return state_;
    }
    Inpainting& reference()
    {
        return *reference_;
    }

    /// Repairs a picture and compares.
    void expectRepaired(Picture picture, int destinationGap = 0)
    {
        if (state_ == nullptr) {
            return;
        }
        Image<Lum8u> source(repair_.layout(repair_.channels));
        drawPicture(source, picture, repair_.seed + 2);
        Layout layout = repair_.layout(repair_.channels);
        layout.gap += destinationGap;
        Image<Lum8u> destination(layout);
        EXPECT_EQ(inpaint(repair_, source, destination, state_, buffer()), lumOk);
        EXPECT_TRUE(sameImage(reference_->repair(source, layout), destination))
            << repair_ << ", picture " << static_cast<int>(picture);
        EXPECT_TRUE(destination.gapsIntact()) << repair_;
        EXPECT_TRUE(source.gapsIntact()) << repair_;
        EXPECT_TRUE(spec_->intact()) << repair_;
        EXPECT_TRUE(buffer_->intact()) << repair_;
    }

  private:
    Repair repair_;
    std::unique_ptr<Inpainting> reference_;
    std::unique_ptr<PlacedBlock> spec_;
    std::unique_ptr<PlacedBlock> buffer_;
    LumiInpaintState* state_ = nullptr;
};

}  // namespace lumcv::test::distance
