// Layers down and up against their references: records of exactly the told size and images against unreadable pages.
#pragma once

#include <cstring>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "pyramid/layer_down_reference.hpp"
#include "pyramid/layer_forms.hpp"
#include "pyramid/layer_up_reference.hpp"
#include "support/compare.hpp"
#include "support/isolated_rows.hpp"
#include "support/placed_block.hpp"
#include "support/random.hpp"

namespace lumcv::test::pyramid {

enum class Way
{
    Down,
    Up
};

inline const LayerFunctions& functionsOf(const LayerForm& form, Way way)
{
    return way == Way::Down ? form.down : form.up;
}

/// What a layer is made for, and where its blocks stand.
struct LayerSetting
{
    LumiSize size = {40, 30};  ///< of the source
    Lum32f rate = 2;
    std::vector<Lum32f> kernel = {1, 4, 6, 4, 1};
    LumiSize recordSize = {0, 0};   ///< of Init; that of the source if zero
    LumiSize destination = {0, 0};  ///< up only; the largest if zero
    int number = 0;                 ///< a seed for values and places
    Values values = Values::Ordinary;

    LumiSize initSize() const
    {
        return recordSize.width == 0 ? size : recordSize;
    }
    LumiSize destinationSize(Way way) const
    {
        if (way == Way::Down) {
            return downSize(size, rate);
        }
        if (destination.width != 0) {
            return destination;
        }
        return {static_cast<Lum32s>(upMaximum(size.width, rate)), static_cast<Lum32s>(upMaximum(size.height, rate))};
    }
    int kernelSize() const
    {
        return static_cast<int>(kernel.size());
    }
    bool hasBuffer() const
    {
        return initSize().width > kernelSize() && initSize().height > kernelSize();
    }
    /// A symmetric kernel or not; the status of Init says so.
    bool isSymmetric() const
    {
        return mirrored(kernel) == kernel;
    }
    Layout layout(int operand, LumiSize ofSize, int channels, int elementBytes) const
    {
        Random random(static_cast<std::uint64_t>(number * 4 + operand));
        const int gaps[] = {0, elementBytes, 3 * elementBytes, 64};
        const bool isShifted = number % 3 == 2;
        return {.width = ofSize.width,
                .height = ofSize.height,
                .channels = channels,
                .gap = number % 5 == 0 ? 0 : gaps[random.between(0, 3)],
                .guard = number % 2 == 0 ? Guard::After : Guard::Before,
                .offset = isShifted ? static_cast<int>(random.between(0, 63)) : 0};
    }
    PlacedBlock block(Lum64s bytes, int operand) const
    {
        return PlacedBlock(static_cast<std::size_t>(bytes), (number + operand) % 2 == 0 ? Guard::After : Guard::Before,
                           static_cast<std::size_t>((number * 7 + operand * 5) % 67));
    }
};

inline std::ostream& operator<<(std::ostream& stream, const LayerSetting& setting)
{
    stream << "case " << setting.number << ": " << setting.size.width << " x " << setting.size.height << ", rate "
           << setting.rate << ", record of " << setting.initSize().width << " x " << setting.initSize().height
           << ", destination of " << setting.destination.width << " x " << setting.destination.height << ", kernel";
    for (const Lum32f tap : setting.kernel) {
        stream << ' ' << tap;
    }
    return stream;
}

/// The rates next to both bounds of what counts as 2.
inline std::vector<Lum32f> ratesAroundNearTwo()
{
    std::vector<Lum32f> rates;
    for (const Lum32f bound : {1.99998f, 2.00002f}) {
        rates.insert(rates.end(), {std::nextafter(bound, 1.0f), bound, std::nextafter(bound, 3.0f)});
    }
    return rates;
}

using Kernel = std::vector<Lum32f>;

inline const Kernel kBinomial5 = {1, 4, 6, 4, 1};
inline const Kernel kKernels[] = {
    kBinomial5,
    {2, 8, 12, 8, 2},  // the same smoothing, but not the taps that have kernels of their own
    {1, 2, 1},
    {7, 31, 90, 31, 7},
    {5, 3, 5},
    {1, 6, 15, 20, 15, 6, 1},
    {3, 14, 33, 71, 85, 71, 33, 14, 3},
    {0, 0, 9, 0, 0},
    {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}};
inline constexpr int kKernelCount = static_cast<int>(std::size(kKernels));

inline const Lum32f kLayerRates[] = {2.0f,     1.5f,  2.7182817f, 1.001f, 1.99997f, 3.3333333f,
                                     2.00003f, 10.0f, 1.99999f,   1.25f,  2.00001f};

/// Kernels whose normalised taps exceed 16 bits, or whose sums exceed 32 bits.
inline const std::vector<Lum32f> kLargeKernels[] = {{-3, 7, -3},
                                                    {-16383, 32767, -16383},
                                                    {-32768, 32767, -32768},
                                                    {32000, -32000, 0, -32000, 32000},
                                                    {32767, -32768, 2, -32768, 32767},
                                                    {16384, -32768, 16384},
                                                    {-32768, -32768, -32768, -32768, -32768, -32768, -32768}};

/// The taps as the caller holds them, of the form's type.
template <class T>
std::vector<Tap<T>> tapsOf(const LayerSetting& setting)
{
    std::vector<Tap<T>> taps;
    for (const Lum32f tap : setting.kernel) {
        taps.push_back(static_cast<Tap<T>>(tap));
    }
    return taps;
}

/// The bytes of a record, or -1 with a failure. The count of the buffer stays at -1 where none is told.
struct QueriedSizes
{
    Lum64s state = -1;
    Lum64s buffer = -1;
};

inline QueriedSizes queriedSizes(const LayerForm& form, Way way, const LayerSetting& setting)
{
    QueriedSizes sizes;
    const LumiSize roi = setting.initSize();
    EXPECT_EQ(functionsOf(form, way).query({.srcRoi = {roi.width, roi.height},
                                            .rate = setting.rate,
                                            .kernelSize = setting.kernelSize(),
                                            .pStateSize = &sizes.state,
                                            .pBufSize = &sizes.buffer}),
              lumOk);
    return sizes;
}

/// A record in a block of its own. What Init was given beside the block is gone.
class LayerRecord
{
  public:
    LayerRecord(const LayerForm& form, Way way, const LayerSetting& setting)
        : LayerRecord(form, way, setting, queriedSizes(form, way, setting))
    {
    }
    void* state() const
    {
        return state_;
    }
    const PlacedBlock& block() const
    {
        return block_;
    }

  private:
    LayerRecord(const LayerForm& form, Way way, const LayerSetting& setting, QueriedSizes sizes)
        : block_(setting.block(sizes.state, 0))
    {
        const LumiSize roi = setting.initSize();
        std::optional<PlacedBlock> buffer;
        if (way == Way::Down && setting.hasBuffer()) {
            buffer.emplace(setting.block(sizes.buffer, 1));
        }
        withElement(form, [&]<class T>() {
            const std::vector<Tap<T>> taps = tapsOf<T>(setting);
            const GuardedBlock kernel(taps.size() * sizeof(Tap<T>), Guard::After);
            std::memcpy(kernel.data(), taps.data(), kernel.size());
            kernel.makeReadOnly();
            const LumStatus status = functionsOf(form, way).init({.ppState = &state_,
                                                                  .srcRoi = {roi.width, roi.height},
                                                                  .rate = setting.rate,
                                                                  .pKernel = kernel.data(),
                                                                  .kernelSize = setting.kernelSize(),
                                                                  .pStateMem = block_.data(),
                                                                  .pBuffer = buffer ? buffer->data() : nullptr});
            EXPECT_EQ(status, setting.isSymmetric() ? lumOk : lumWrnKernelNotSymmetric);
        });
        EXPECT_TRUE(block_.intact());
        if (buffer) {
            EXPECT_TRUE(buffer->intact());
        }
    }

    PlacedBlock block_;
    void* state_ = nullptr;
};

template <class SourceImage, class DestinationImage>
LumStatus applyLayer(const LayerForm& form, Way way, const LayerSetting& setting, SourceImage& source,
                     DestinationImage& destination, void* pState)
{
    const LumiSize to = setting.destinationSize(way);
    return functionsOf(form, way).apply({.pSrc = source.pixels(),
                                         .srcStep = source.step(),
                                         .srcRoi = {setting.size.width, setting.size.height},
                                         .pDst = destination.pixels(),
                                         .dstStep = destination.step(),
                                         .dstRoi = {to.width, to.height},
                                         .pState = pState});
}

template <class T>
Image<T> drawSource(const LayerForm& form, const LayerSetting& setting)
{
    Image<T> source(setting.layout(1, setting.size, form.channels, sizeof(T)));
    Random random(static_cast<std::uint64_t>(setting.number) + 77);
    fill(source, random, setting.values);
    return source;
}

template <class T>
Image<T> expectedLayer(Way way, const LayerSetting& setting, const Image<T>& source)
{
    const LumiSize to = setting.destinationSize(way);
    Image<T> expected(Layout{.width = to.width, .height = to.height, .channels = source.channels()});
    if (way == Way::Down) {
        layerDown(source, expected, tapsOf<T>(setting), setting.rate);
    } else {
        layerUp(source, expected, tapsOf<T>(setting), setting.rate);
    }
    return expected;
}

/// One layer with a record of its own or one that serves others as well.
inline void expectLayer(const LayerForm& form, Way way, const LayerSetting& setting, const LayerRecord& record)
{
    SCOPED_TRACE(testing::Message() << form << (way == Way::Down ? " down, " : " up, ") << setting);
    withElement(form, [&]<class T>() {
        Image<T> source = drawSource<T>(form, setting);
        const Image<T> before = source;
        Image<T> destination(setting.layout(2, setting.destinationSize(way), form.channels, sizeof(T)));
        EXPECT_EQ(applyLayer(form, way, setting, source, destination, record.state()), lumOk);
        EXPECT_TRUE(sameImage(expectedLayer(way, setting, source), destination));
        EXPECT_TRUE(destination.gapsIntact());
        EXPECT_TRUE(sameBytes(before, source));
        EXPECT_TRUE(record.block().intact());
    });
}

inline void expectLayer(const LayerForm& form, Way way, const LayerSetting& setting)
{
    expectLayer(form, way, setting, LayerRecord(form, way, setting));
}

}  // namespace lumcv::test::pyramid
