// What layers touch: rows that stand alone, records at any address, threads.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "pyramid/layer_fixture.hpp"

namespace lumcv::test::pyramid {
namespace {

class LayerMemory : public testing::TestWithParam<LayerForm>
{
};
INSTANTIATE_TEST_SUITE_P(Forms, LayerMemory, testing::ValuesIn(kForms), formName);

template <class T>
void expectIsolated(const LayerForm& form, Way way, const LayerSetting& setting, Guard guard)
{
    const LumiSize to = setting.destinationSize(way);
    const LayerRecord record(form, way, setting);
    const Image<T> image = drawSource<T>(form, setting);
    IsolatedRows<T> source(
        {.width = setting.size.width, .height = setting.size.height, .channels = form.channels, .guard = guard});
    source.forEach([&](T& element, int x, int y, int c) { element = image.at(x, y, c); });
    source.makeReadOnly();
    IsolatedRows<T> destination({.width = to.width, .height = to.height, .channels = form.channels, .guard = guard});
    ASSERT_EQ(applyLayer(form, way, setting, source, destination, record.state()), lumOk);
    const Image<T> expected = expectedLayer(way, setting, image);
    for (int y = 0; y < to.height; ++y) {
        ASSERT_TRUE(
            sameElements(expected.row(y), destination.row(y), static_cast<std::size_t>(to.width * form.channels)))
            << "row " << y;
    }
    ASSERT_TRUE(destination.slackIntact());
}

// The first or the last byte of every row stands at an unreadable page, and the source cannot be written.
TEST_P(LayerMemory, RowsStandAlone)
{
    int number = 0;
    for (const Way way : {Way::Down, Way::Up}) {
        for (int width = 1; width <= 70; width += width < 20 ? 1 : 7) {
            for (const Guard guard : {Guard::After, Guard::Before}) {
                LayerSetting setting = {.size = {width, 4 + width % 4}, .number = number++};
                if (number % 3 == 1) {
                    setting.kernel = {1, 2, 1};
                }
                if (number % 4 == 0) {
                    setting.rate = 1.6f;
                }
                SCOPED_TRACE(testing::Message() << (way == Way::Down ? "down, " : "up, ") << setting);
                withElement(GetParam(), [&]<class T>() { expectIsolated<T>(GetParam(), way, setting, guard); });
                ASSERT_FALSE(HasFailure());
            }
        }
    }
}

// Records and Init's buffers at each address relative to a vector.
TEST_P(LayerMemory, RecordsAtEveryAddress)
{
    for (const Way way : {Way::Down, Way::Up}) {
        for (int number = 0; number < 67; ++number) {
            LayerSetting setting = {.size = {23, 9}, .number = number};
            if (number % 2 == 1) {
                setting.rate = 1.6f;
            }
            if (number % 3 == 1) {
                setting.size = {23, 5};
            }
            expectLayer(GetParam(), way, setting);
            ASSERT_FALSE(HasFailure());
        }
    }
}

// Source and destination in one block, row beside row: the gap of one is the row of the other.
TEST_P(LayerMemory, RowsTakeTurnsInOneBlock)
{
    const LayerForm& form = GetParam();
    for (const Way way : {Way::Down, Way::Up}) {
        for (int width = 7; width < 20; width += 6) {
            const LayerSetting setting = {.size = {width, 12}, .number = width};
            const LumiSize to = setting.destinationSize(way);
            const LayerRecord record(form, way, setting);
            withElement(form, [&]<class T>() {
                const Image<T> image = drawSource<T>(form, setting);
                Image<T> both({.width = width + to.width, .height = 24, .channels = form.channels});
                for (int y = 0; y < 12; ++y) {
                    std::memcpy(both.row(y), image.row(y), static_cast<std::size_t>(width * form.pixelBytes()));
                }
                ASSERT_EQ(functionsOf(form, way).apply({.pSrc = both.pixels(),
                                                        .srcStep = both.step(),
                                                        .srcRoi = {width, 12},
                                                        .pDst = both.pixels() + width * form.channels,
                                                        .dstStep = both.step(),
                                                        .dstRoi = {to.width, to.height},
                                                        .pState = record.state()}),
                          lumOk);
                const Image<T> expected = expectedLayer(way, setting, image);
                for (int y = 0; y < to.height; ++y) {
                    const auto elements = static_cast<std::size_t>(to.width * form.channels);
                    ASSERT_TRUE(sameElements(expected.row(y), both.row(y) + width * form.channels, elements)) << y;
                }
                for (int y = 0; y < 12; ++y) {
                    const auto elements = static_cast<std::size_t>(width * form.channels);
                    ASSERT_TRUE(sameElements(image.row(y), both.row(y), elements)) << "source, row " << y;
                }
            });
            ASSERT_FALSE(HasFailure());
        }
    }
}

// Threads with a source in common, each with a record of its own.
TEST_P(LayerMemory, ThreadsShareASource)
{
    const LayerForm& form = GetParam();
    for (const Way way : {Way::Down, Way::Up}) {
        for (const Lum32f rate : {2.0f, 1.5f}) {
            const LayerSetting setting = {.size = {67, 31}, .rate = rate};
            const LumiSize to = setting.destinationSize(way);
            withElement(form, [&]<class T>() {
                Image<T> source = drawSource<T>(form, setting);
                const Image<T> expected = expectedLayer(way, setting, source);
                std::vector<Image<T>> results(
                    2, Image<T>(Layout{.width = to.width, .height = to.height, .channels = form.channels}));
                std::vector<std::thread> threads;
                for (Image<T>& result : results) {
                    threads.emplace_back([&] {
                        const LayerRecord record(form, way, setting);
                        for (int i = 0; i < 3; ++i) {
                            std::memset(result.bytes(), i, result.byteCount());
                            EXPECT_EQ(applyLayer(form, way, setting, source, result, record.state()), lumOk);
                        }
                    });
                }
                for (std::thread& thread : threads) {
                    thread.join();
                }
                for (const Image<T>& result : results) {
                    EXPECT_TRUE(sameImage(expected, result));
                }
            });
        }
    }
}

}  // namespace
}  // namespace lumcv::test::pyramid
