// The pieces of lumcv.hpp by themselves: statuses, views, blocks and records.
#include <gtest/gtest.h>
#include <lumcv/lumcv.hpp>

#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using lumcv::BitView;
using lumcv::Block;
using lumcv::Record;
using lumcv::Status;
using lumcv::View;

TEST(Status, TellsSuccessWarningsAndErrors)
{
    constexpr Status success(lumOk), warning(lumWrnRoiClipped), error(lumErrStep, "lumiSomething");
    static_assert(success.ok() && !success.isWarning() && !success.isError());
    static_assert(!warning.ok() && warning.isWarning() && !warning.isError());
    static_assert(!error.ok() && !error.isWarning() && error.isError());
    EXPECT_EQ(error.code(), -16);
    EXPECT_EQ(error.name(), "lumErrStep");
    EXPECT_EQ(error.text(), "a stride below a row's width in bytes, or not positive");
    EXPECT_EQ(error.function(), "lumiSomething");
    EXPECT_EQ(Status(77).name(), "unknown status");
}

TEST(View, KnowsItsRowsPixelsAndParts)
{
    std::vector<Lum16u> elements(4 * 20);
    const View<Lum16u, 3> image(elements.data(), 40, {5, 4});
    EXPECT_EQ(image.row(2), elements.data() + 40);
    EXPECT_EQ(&image.at(4, 3, 2), elements.data() + 3 * 20 + 4 * 3 + 2);
    const View<Lum16u, 3> part = image.part({1, 2, 3, 2});
    EXPECT_EQ(part.pixels(), &image.at(1, 2));
    EXPECT_EQ(part.step(), 40);
    EXPECT_EQ(part.size().width, 3);
    EXPECT_EQ(part.size().height, 2);
    const View<Lum16u, 3> rows = image.rows(1, 3);
    EXPECT_EQ(rows.pixels(), image.row(1));
    EXPECT_EQ(rows.size().width, 5);
    EXPECT_EQ(rows.size().height, 3);
    const View<Lum16u> all = part.elements();
    EXPECT_EQ(all.pixels(), part.pixels());
    EXPECT_EQ(all.size().width, 9);
    EXPECT_EQ(all.step(), 40);
    EXPECT_EQ((View<Lum16u, 3>(elements.data(), {5, 4}).step()), 30);
}

TEST(View, BecomesConstAndNothingElse)
{
    static_assert(std::is_convertible_v<View<Lum8u, 3>, View<const Lum8u, 3>>);
    static_assert(!std::is_convertible_v<View<const Lum8u>, View<Lum8u>>);
    static_assert(!std::is_convertible_v<View<Lum8u, 3>, View<Lum8u>>);
    static_assert(!std::is_convertible_v<View<Lum8u>, View<const Lum8s>>);
    static_assert(std::is_convertible_v<BitView<Lum8u>, BitView<const Lum8u>>);
    static_assert(!std::is_convertible_v<BitView<const Lum8u>, BitView<Lum8u>>);
    static_assert(std::is_trivially_copyable_v<View<Lum8u>> && std::is_trivially_copyable_v<BitView<Lum8u>>);
    Lum8u pixel = 9;
    const View<const Lum8u> view = View(&pixel, LumiSize{1, 1});
    EXPECT_EQ(view.at(0, 0), 9);
}

TEST(BitView, ReadsAndWritesSinglePixels)
{
    std::vector<Lum8u> bytes(3 * 4, 0);
    const BitView<Lum8u> image(bytes.data(), 4, 6, {20, 3});
    image.set(0, 0, true);
    image.set(3, 1, true);
    EXPECT_EQ(bytes[0], 1 << 6);
    EXPECT_EQ(bytes[4 + 1], 1 << 1);
    EXPECT_TRUE(image.at(3, 1));
    EXPECT_FALSE(image.at(4, 1));
    const BitView<Lum8u> part = image.part({3, 1, 10, 2});
    EXPECT_EQ(part.pixels(), bytes.data() + 5);
    EXPECT_EQ(part.bitOffset(), 1);
    EXPECT_TRUE(part.at(0, 0));
    bytes.assign(bytes.size(), 0xFF);
    image.set(3, 1, false);
    EXPECT_EQ(bytes[5], 0xFF - 2);
}

TEST(Block, GrowsAndMoves)
{
    static_assert(!std::is_copy_constructible_v<Block> && !std::is_copy_assignable_v<Block>);
    Block block;
    EXPECT_EQ(block.data(), nullptr);
    block.fit(10);
    Lum8u* const place = block.data();
    block.fit(3);
    EXPECT_EQ(block.size(), 10U);
    EXPECT_EQ(block.data(), place);
    block.fit(100);
    EXPECT_EQ(block.size(), 100U);
    Lum8u* const larger = block.data();
    Block moved = std::move(block);
    EXPECT_EQ(moved.data(), larger);
    EXPECT_EQ(moved.size(), 100U);
    EXPECT_EQ(block.data(), nullptr);
    EXPECT_EQ(block.size(), 0U);
    block = std::move(moved);
    EXPECT_EQ(block.data(), larger);
    EXPECT_EQ(moved.data(), nullptr);
}

TEST(Record, MovesWithItsMemory)
{
    using Pyramid = Record<LumiPyramidRecord>;
    static_assert(!std::is_copy_constructible_v<Pyramid> && std::is_nothrow_move_constructible_v<Pyramid>);
    Pyramid record;
    EXPECT_EQ(record.get(), nullptr);
    record.fit(400);
    *record.address() = reinterpret_cast<LumiPyramidRecord*>(record.data() + 8);
    record->level = 5;
    LumiPyramidRecord* const place = record.get();
    Pyramid moved = std::move(record);
    EXPECT_EQ(moved.get(), place);
    EXPECT_EQ(std::as_const(moved)->level, 5);
    EXPECT_EQ(record.get(), nullptr);
    EXPECT_EQ(record.data(), nullptr);
    record = std::move(moved);
    EXPECT_EQ(record.get(), place);
    EXPECT_EQ(record.size(), 400U);
}

}  // namespace
