// What an analysed element's record says: the fields in their order, in a block aligned to a cache line.
#include <cstddef>
#include <cstring>
#include <vector>

#include "morph/morph_fixture.hpp"

namespace lumcv::test::morph {
namespace {

/// The fields of a record; sides are 32-bit numbers in the ordinary one and 64-bit numbers in the large one.
template <class Side>
struct MaskRecord
{
    const Lum8u* pMask;
    Side maskWidth;
    Side maskHeight;
    Lum32s anchorX;
    Lum32s anchorY;
    Side maskWidthAgain;
    Side maskHeightAgain;
    const Lum16u* pRowLists;
    Lum32s isRowRuns;
    const Lum16s* pRowRuns;
    Lum32u shapeFlags;
    Lum32s isCross;
    Lum32s isDisc;
};

/// The element at its odd size, the empty row and column at the top and on the left.
struct Normalised
{
    explicit Normalised(const StructuringElement& element) : width(element.width | 1), height(element.height | 1)
    {
        set.resize(static_cast<std::size_t>(width * height));
        for (int y = 0; y < element.height; ++y) {
            for (int x = 0; x < element.width; ++x) {
                const int row = y + height - element.height;
                const int column = x + width - element.width;
                set[static_cast<std::size_t>(row * width + column)] = element.isSet(x, y);
            }
        }
    }
    bool at(int x, int y) const
    {
        return set[static_cast<std::size_t>(y * width + x)];
    }
    int inRow(int y) const
    {
        int count = 0;
        for (int x = 0; x < width; ++x) {
            count += at(x, y);
        }
        return count;
    }
    int inColumn(int x) const
    {
        int count = 0;
        for (int y = 0; y < height; ++y) {
            count += at(x, y);
        }
        return count;
    }
    int count() const
    {
        int sum = 0;
        for (int y = 0; y < height; ++y) {
            sum += inRow(y);
        }
        return sum;
    }
    bool hasEmptyEdge() const
    {
        return inRow(0) == 0 || inRow(height - 1) == 0 || inColumn(0) == 0 || inColumn(width - 1) == 0;
    }
    bool isRowRuns() const
    {
        for (int y = 0; y < height; ++y) {
            int runs = 0;
            for (int x = 0; x < width; ++x) {
                runs += at(x, y) && (x == 0 || !at(x - 1, y));
            }
            if (runs > 1) {
                return false;
            }
        }
        return true;
    }
    /// The row and the column of a cross; the lengths are compared with the other side, so that only squares can pass.
    bool isCross(int& crossRow, int& crossColumn) const
    {
        int fullRows = 0;
        int fullColumns = 0;
        for (int y = 0; y < height; ++y) {
            if (inRow(y) == height) {
                ++fullRows;
                crossRow = y;
            } else if (inRow(y) > 1) {
                return false;
            }
        }
        for (int x = 0; x < width; ++x) {
            if (inColumn(x) == width) {
                ++fullColumns;
                crossColumn = x;
            } else if (inColumn(x) > 1) {
                return false;
            }
        }
        return width > 1 && height > 1 && fullRows == 1 && fullColumns == 1;
    }
    /// 0, or the size of the disc that this is.
    int discSize() const
    {
        for (const int size : {3, 5, 7}) {
            if (width == size && height == size) {
                const StructuringElement element = disc(size);
                for (int y = 0; y < size; ++y) {
                    for (int x = 0; x < size; ++x) {
                        if (at(x, y) != element.isSet(x, y)) {
                            return 0;
                        }
                    }
                }
                return size;
            }
        }
        return 0;
    }

    int width;
    int height;
    std::vector<bool> set;
};

template <class Side>
void expectRecord(const StructuringElement& element, const MaskRecord<Side>& record, const PlacedBlock& block)
{
    SCOPED_TRACE(testing::Message() << element);
    const Normalised normalised(element);
    const auto inBlock = [&](const void* begin, std::size_t bytes) {
        const auto* const first = static_cast<const unsigned char*>(begin);
        return first >= block.data() && first + bytes <= block.data() + block.size();
    };
    const auto positions = static_cast<std::size_t>(normalised.width * normalised.height);
    EXPECT_EQ(record.maskWidth, normalised.width);
    EXPECT_EQ(record.maskHeight, normalised.height);
    EXPECT_EQ(record.maskWidthAgain, normalised.width);
    EXPECT_EQ(record.maskHeightAgain, normalised.height);
    EXPECT_EQ(record.anchorX, element.width / 2);
    EXPECT_EQ(record.anchorY, element.height / 2);
    ASSERT_TRUE(inBlock(record.pMask, positions));
    for (std::size_t i = 0; i < positions; ++i) {
        ASSERT_EQ(record.pMask[i], normalised.set[i] ? 255 : 0) << "position " << i;
    }

    const auto slot = static_cast<std::size_t>(normalised.width) + 1;
    ASSERT_TRUE(inBlock(record.pRowLists, slot * static_cast<std::size_t>(normalised.height) * sizeof(Lum16u)));
    for (int y = 0; y < normalised.height; ++y) {
        const Lum16u* list = record.pRowLists + static_cast<std::size_t>(y) * slot;
        ASSERT_EQ(*list++, normalised.inRow(y)) << "row " << y;
        for (int x = 0; x < normalised.width; ++x) {
            if (normalised.at(x, y)) {
                ASSERT_EQ(*list++, x) << "row " << y;
            }
        }
    }

    int crossRow = 0;
    int crossColumn = 0;
    const bool isCross = normalised.isCross(crossRow, crossColumn);
    const bool isRowRuns = normalised.isRowRuns();
    const int discSize = normalised.discSize();
    EXPECT_EQ(record.isRowRuns != 0, isRowRuns);
    EXPECT_EQ(record.isCross != 0, isCross);
    EXPECT_EQ(record.isDisc != 0, discSize != 0);
    ASSERT_TRUE(inBlock(record.pRowRuns, 2 * static_cast<std::size_t>(normalised.height) * sizeof(Lum16s)));
    for (int y = isCross ? 1 : 0; isRowRuns && y < normalised.height; ++y) {
        int first = -1;
        for (int x = normalised.width - 1; x >= 0; --x) {
            first = normalised.at(x, y) ? x : first;
        }
        EXPECT_EQ(record.pRowRuns[2 * y], normalised.inRow(y)) << "row " << y;
        EXPECT_EQ(record.pRowRuns[2 * y + 1], first) << "row " << y;
    }
    if (isCross) {
        EXPECT_EQ(record.pRowRuns[0], crossRow);
        EXPECT_EQ(record.pRowRuns[1], crossColumn);
    }

    const int count = normalised.count();
    Lum32u flags = 0;
    flags |= count == normalised.width * normalised.height ? 0x02 : 0;
    flags |= count == 0 ? 0x04 : 0;
    flags |= normalised.hasEmptyEdge() ? 0x08 : 0;
    flags |= isRowRuns ? 0x10 : 0;
    flags |= isCross ? 0x20 : 0;
    flags |= discSize == 3 ? 0x100 : discSize == 5 ? 0x300 : discSize == 7 ? 0x500 : 0;
    // an element without positions needs no word on its edges
    const Lum32u compared = count == 0 ? ~Lum32u{0x08} : ~Lum32u{0};
    EXPECT_EQ(record.shapeFlags & compared, flags & compared);
}

std::vector<StructuringElement> elements()
{
    std::vector<StructuringElement> result = elementsOfEveryShape();
    // crosses that are none: one position more, an arm too short, two rows
    result.push_back(changed(cross(5, 5, 2, 2), 0, 0));
    result.push_back(changed(cross(5, 5, 2, 2), 0, 2));
    result.push_back(picture("two rows", {"###", "###", ".#."}));
    result.push_back(picture("odd one", {"#.#", "###", "#.#"}));
    return result;
}

/// Aligned so that the record needs no room before it.
Setting settingFor(const StructuringElement& element, Generation generation)
{
    Setting s;
    s.generation = generation;
    s.element = element;
    s.width = 20;
    s.height = 20;
    s.guard = Guard::Before;
    return s;
}

TEST(MorphRecordQuick, OrdinaryRecordTellsTheShape)
{
    for (const StructuringElement& element : elements()) {
        const PlacedBlock block = makeRecord<Form8uC1>(settingFor(element, Generation::Ordinary));
        MaskRecord<Lum32s> record;
        std::memcpy(&record, block.data(), sizeof record);
        expectRecord(element, record, block);
    }
}

TEST(MorphRecordQuick, LargeRecordPointsToTheSame)
{
    for (const StructuringElement& element : elements()) {
        const PlacedBlock block = makeRecord<Form8uC1>(settingFor(element, Generation::Large));
        const MaskRecord<Lum64s>* pRecord;
        std::memcpy(&pRecord, block.data(), sizeof pRecord);
        MaskRecord<Lum64s> record;
        std::memcpy(&record, pRecord, sizeof record);
        expectRecord(element, record, block);
    }
}

TEST(MorphRecordQuick, LargeCompoundRecordFollowsTheMode)
{
    struct CompoundRecord
    {
        const void* pFirst;
        const void* pSecond;
        const void* pRotated;
        Lum32s keepNegative;
    };
    Setting s = settingFor(scattered(5, 4, 40, 3), Generation::Large);
    s.operation = Operation::Open;
    const PlacedBlock block = makeRecord<Form8uC1>(s);
    const auto read = [&] {
        CompoundRecord record;
        std::memcpy(&record, block.data(), sizeof record);
        return record;
    };
    const CompoundRecord initial = read();
    EXPECT_EQ(static_cast<const unsigned char*>(initial.pFirst) - block.data(), 64);
    EXPECT_EQ(initial.pSecond, initial.pRotated);
    EXPECT_NE(initial.pSecond, initial.pFirst);
    EXPECT_EQ(initial.keepNegative, 0);
    for (const int mode : {1, 4, 5, 0, 5, 1}) {
        EXPECT_EQ(lumiMorphSetMode_L(mode, AnyRecord{block.data()}), lumOk);
        const CompoundRecord record = read();
        EXPECT_EQ(record.pFirst, initial.pFirst);
        EXPECT_EQ(record.pRotated, initial.pRotated);
        EXPECT_EQ(record.pSecond, mode % 2 == 1 ? initial.pFirst : initial.pRotated) << "mode " << mode;
        EXPECT_EQ(record.keepNegative, mode >= 4 ? 1 : 0) << "mode " << mode;
    }
}

// The record is complete in its block: the same element gives the same picture, whatever lay in the block and scratch.
TEST(MorphRecordQuick, InitReadsNothingFromItsBlocks)
{
    for (const Generation generation : kGenerations) {
        for (const Operation operation : {Operation::Dilate, Operation::Open}) {
            Setting s = settingFor(scattered(6, 5, 40, 3), generation);
            s.operation = operation;
            s.width = 33;
            Image<Lum8u> source(s.layout<Form8uC1>());
            fillPixels<Lum8u>(source, s, Area::Roi);
            const Image<Lum8u> expected = reference<Form8uC1>(s, source, nullptr);
            for (const int byte : {0x00, 0xff, 0x55}) {
                const PlacedBlock record(recordBytes<Form8uC1>(s));
                std::memset(record.data(), byte, record.size());
                ASSERT_EQ(layRecord<Form8uC1>(s, record), lumOk);
                const PlacedBlock scratch(scratchBytes<Form8uC1>(s));
                Image<Lum8u> destination(s.layout<Form8uC1>());
                const auto arguments = argumentsFor<Form8uC1>(s, source, destination, record, scratch);
                EXPECT_EQ(arguments.call(operation, generation), lumOk);
                EXPECT_TRUE(sameImage(expected, destination)) << "block of bytes " << byte;
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
