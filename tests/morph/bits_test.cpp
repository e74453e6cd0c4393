// 1-bit morphology compared with the reference: offsets and strides of every kind, all shapes, borders and operations.
#include "morph/bits_fixture.hpp"

namespace lumcv::test::morph {
namespace {

TEST(MorphBitsQuick, MatchTheReference)
{
    int number = 0;
    for (const StructuringElement& element :
         {rectangle(3, 3), rectangle(5, 5), rectangle(4, 2), disc(5), cross(3, 3, 1, 1), scattered(5, 4, 40, 3),
          rectangle(17, 1), emptyElement(3, 3), rectangle(1, 1)}) {
        for (const LumiSize size :
             {LumiSize{1, 1}, LumiSize{8, 3}, LumiSize{37, 12}, LumiSize{70, 9}, LumiSize{129, 5}, LumiSize{300, 4}}) {
            expectBits(bitsInTurn(element, size.width, size.height, number++));
        }
    }
}

TEST(MorphBits, EveryElement)
{
    int number = 0;
    for (const StructuringElement& element : elementsOfEveryShape()) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{3, 9}, LumiSize{18, 14}, LumiSize{67, 11},
                                    LumiSize{141, 37}, LumiSize{40, 40}}) {
            for (int i = 0; i < 2; ++i) {
                expectBits(bitsInTurn(element, size.width, size.height, number));
                number += 3;
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MorphBits, EveryWidth)
{
    int number = 0;
    for (int width = 1; width <= 140; ++width) {
        for (const StructuringElement& element :
             {rectangle(3, 3), rectangle(2, 2), rectangle(9, 1), disc(5), scattered(5, 3, 50, 7), rectangle(1, 4)}) {
            expectBits(bitsInTurn(element, width, 1 + number % 5, number));
            number += 3;
            if (::testing::Test::HasFailure()) {
                return;
            }
        }
    }
    for (const int width : {191, 192, 193, 255, 256, 257, 258, 259, 260, 511, 512, 513, 1023, 1025, 1100}) {
        for (const StructuringElement& element :
             {rectangle(3, 3), rectangle(15, 15), rectangle(65, 1), disc(7), scattered(9, 9, 20, 8)}) {
            for (int i = 0; i < 3; ++i) {
                expectBits(bitsInTurn(element, width, 1 + number % 5, number));
                number += 3;
            }
        }
    }
}

void expectBits(const StructuringElement& element, const LumiSize& size, int srcBitOffset, int dstBitOffset,
                LumiBorderType sides, int number)
{
    BitSetting s = bitsInTurn(element, size.width, size.height, number);
    s.operation = number % 5 < 2 ? Operation::Erode : Operation::Dilate;
    s.percentSet = s.operation == Operation::Dilate ? 10 : 90;
    s.border = sides | (number % 3 == 0 ? lumBorderConstant : lumBorderReplicate);
    s.srcBitOffset = srcBitOffset;
    s.dstBitOffset = dstBitOffset;
    expectBits(s);
}

// The small elements that have a kernel of their own, between all offsets, over more rows than are worked on at a time,
// with each kind of row end.
TEST(MorphBits, ManyRows)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), cross(3, 3, 1, 1)}) {
        for (int src = 0; src < 8; ++src) {
            for (int dst = 0; dst < 8; ++dst) {
                for (const int height : {1, 2, 31, 32, 33, 34, 97}) {
                    for (const int width : {128 - dst, 129 - dst, 141, 160 - dst, 384, 512 - dst, 520 - dst, 700}) {
                        expectBits(element, {width, height}, src, dst, 16 * (number * 7 % 16), number);
                        ++number;
                        if (::testing::Test::HasFailure()) {
                            return;
                        }
                    }
                }
            }
        }
    }
}

// Every side alone and with others in memory, where the offsets are equal.
TEST(MorphBits, ManyRowsWithEverySide)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), cross(3, 3, 1, 1)}) {
        for (int offset = 0; offset < 8; ++offset) {
            for (const int width : {128 - offset, 129 - offset, 160 - offset, 384, 512 - offset, 520 - offset}) {
                for (LumiBorderType sides = 0; sides < 256; sides += 16) {
                    for (const int height : {1, 33, 34}) {
                        expectBits(element, {width, height}, offset, offset, sides, number++);
                    }
                    if (::testing::Test::HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

// Runs of every length, which are taken in pieces where they are long, and elements of more runs than are worked on at
// a time, over more rows than are.
TEST(MorphBits, EveryRun)
{
    int number = 0;
    for (int length = 1; length <= 90; ++length) {
        for (const StructuringElement& element :
             {rectangle(length, 1), rectangle(length, 5), changed(rectangle(length + 4, 3), 1, 1)}) {
            for (const LumiSize size : {LumiSize{30, 9}, LumiSize{150, 3}, LumiSize{611, 2}}) {
                BitSetting s = bitsInTurn(element, size.width, size.height, number);
                s.operation = number % 3 == 0 ? Operation::Dilate : Operation::Erode;
                s.percentSet = s.operation == Operation::Dilate ? 3 : 97;
                ++number;
                expectBits(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
    for (const StructuringElement& element :
         {scattered(40, 12, 50, 1), scattered(9, 60, 40, 2), scattered(70, 5, 60, 3), scattered(31, 31, 10, 4)}) {
        for (const LumiSize size : {LumiSize{50, 70}, LumiSize{130, 90}, LumiSize{530, 64}}) {
            for (int i = 0; i < 6; ++i) {
                BitSetting s = bitsInTurn(element, size.width, size.height, number++);
                s.percentSet = i % 2 == 0 ? 1 : 99;
                s.operation = i % 2 == 0 ? Operation::Dilate : Operation::Erode;
                expectBits(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Every pair of offsets modulo 8, with strides where rows share a byte and others.
TEST(MorphBits, EveryOffset)
{
    int number = 0;
    for (int srcBitOffset = 0; srcBitOffset < 17; ++srcBitOffset) {
        for (int dstBitOffset = 0; dstBitOffset < 17; ++dstBitOffset) {
            for (const int width : {1, 8, 13, 16, 24, 37, 64, 71}) {
                BitSetting s = bitsInTurn(rectangle(3, 3), width, 4, number);
                if (number % 7 == 0) {
                    s.element = emptyElement(3, 3);
                }
                s.srcBitOffset = srcBitOffset;
                s.dstBitOffset = dstBitOffset;
                s.dstGap = number / 2 % 2;
                ++number;
                expectBits(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MorphBits, EveryBorder)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), scattered(6, 4, 40, 5), rectangle(5, 1)}) {
        for (LumiBorderType border = 0; border < 4096; border += border < 256 ? 1 : 5) {
            for (const Operation operation : {Operation::Dilate, Operation::Erode, Operation::Open, Operation::Close,
                                              Operation::Tophat, Operation::Blackhat, Operation::Gradient}) {
                const int mode = border & 15;
                const bool allInMemory = (border & lumBorderInMem) == lumBorderInMem;
                BitSetting s = bitsInTurn(element, 1 + number * 7 % 40, 1 + number % 11, number);
                ++number;
                s.operation = operation;
                s.border = border;
                const bool large = s.generation == Generation::Large;
                bool takes = isMorphMode(mode, true);
                if (isSinglePass(operation)) {
                    takes = takes || border == lumBorderInMem;
                } else if (operation == Operation::Gradient && !large) {
                    takes = border < 256 && ((takes && mode != lumBorderNeutral) || border == lumBorderInMem);
                } else {
                    takes = takes || (allInMemory && mode != lumBorderMirror);
                }
                if (border > 255 && number % 4 != 0) {
                    continue;
                }
                if (takes) {
                    expectBits(s);
                }
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MorphBits, ElementsLargerThanTheImage)
{
    int number = 0;
    for (const StructuringElement& element :
         {rectangle(21, 21), rectangle(140, 3), rectangle(3, 50), ellipse(30, 23), scattered(19, 25, 3, 13),
          cross(17, 17, 4, 12), rectangle(80, 1), rectangle(1, 70), scattered(70, 2, 5, 3)}) {
        for (const LumiSize size : {LumiSize{1, 1}, LumiSize{2, 3}, LumiSize{17, 5}, LumiSize{20, 20}, LumiSize{22, 22},
                                    LumiSize{5, 90}, LumiSize{64, 3}}) {
            for (int i = 0; i < 6; ++i) {
                expectBits(bitsInTurn(element, size.width, size.height, number));
                number += 5;
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// The scratch does not grow with the height: the sides of a tall image go through the same block.
TEST(MorphBits, TallImages)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), rectangle(3, 1), rectangle(9, 2), rectangle(1, 3),
                                              disc(7), scattered(12, 3, 30, 5), rectangle(40, 3)}) {
        for (const int width : {1, 2, 4, 10, 20, 45, 70}) {
            for (const int height : {100, 301}) {
                expectBits(bitsInTurn(element, width, height, number));
                number += 3;
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

TEST(MorphBits, SmallerRoiInTheSameBlocks)
{
    int number = 0;
    for (const StructuringElement& element : {rectangle(3, 3), rectangle(9, 5), rectangle(15, 1), rectangle(1, 15),
                                              rectangle(8, 8), disc(7), scattered(9, 9, 20, 17)}) {
        for (const LumiSize queried : {LumiSize{50, 40}, LumiSize{element.width | 1, 60}, LumiSize{200, 9},
                                       LumiSize{30, element.height | 1}, LumiSize{(element.width | 1) + 1, 90}}) {
            for (const LumiSize size :
                 {LumiSize{1, 1}, LumiSize{queried.width, 1}, LumiSize{1, queried.height}, LumiSize{3, 2},
                  LumiSize{queried.width, element.height}, LumiSize{element.width, queried.height},
                  LumiSize{queried.width - 1, queried.height - 1}, LumiSize{queried.width / 2, queried.height}}) {
                const int width = std::clamp(size.width, 1, queried.width);
                const int height = std::clamp(size.height, 1, queried.height);
                BitSetting s = bitsInTurn(element, width, height, number);
                number += 3;
                s.queriedBeyondRoi = {queried.width - width, queried.height - height};
                expectBits(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

// Records and scratch of exactly the queried sizes at every byte address.
TEST(MorphBits, BlocksStandAnywhere)
{
    int number = 0;
    for (std::size_t distance = 0; distance < 64; ++distance) {
        for (const Guard guard : {Guard::After, Guard::Before}) {
            for (const StructuringElement& element :
                 {rectangle(3, 3), rectangle(3, 1), rectangle(1, 2), scattered(5, 4, 40, 3)}) {
                BitSetting s = bitsInTurn(element, 1 + number * 7 % 90, 1 + number % 13, number);
                s.guard = guard;
                s.distance = distance;
                number += 3;
                expectBits(s);
                if (::testing::Test::HasFailure()) {
                    return;
                }
            }
        }
    }
}

}  // namespace
}  // namespace lumcv::test::morph
