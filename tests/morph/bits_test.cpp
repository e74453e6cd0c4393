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

// A 3x3 square between equal offsets, over more rows than are worked on at a time, with each kind of row end.
TEST(MorphBits, ManyRows)
{
    int number = 0;
    for (const int height : {31, 32, 33, 34, 97}) {
        for (int offset = 0; offset < 8; ++offset) {
            for (const int width : {128 - offset, 129 - offset, 141, 160 - offset, 384}) {
                for (const LumiBorderType sides : {0, 16, 32, 64, 128, 48, 192, 240}) {
                    BitSetting s = bitsInTurn(rectangle(3, 3), width, height, number);
                    s.operation = number % 5 < 2 ? Operation::Erode : Operation::Dilate;
                    s.border = sides | (number % 3 == 0 ? lumBorderConstant : lumBorderReplicate);
                    s.srcBitOffset = offset;
                    s.dstBitOffset = offset;
                    ++number;
                    expectBits(s);
                    if (::testing::Test::HasFailure()) {
                        return;
                    }
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
