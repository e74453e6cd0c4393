// Structuring elements of every shape for which there is a kernel, and which pixels each of them weighs.
#pragma once

#include <lumcv/lumcv.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include "support/random.hpp"

namespace lumcv::test::morph {

/// Where a weighed pixel lies, seen from the pixel that is computed.
struct Offset
{
    int x;
    int y;
};

struct Offsets
{
    std::vector<Offset> list;
    bool isIdentity = false;  ///< the element is empty or a single pixel: the image is copied and no border looked at
};

struct StructuringElement
{
    std::string name;
    int width = 1;
    int height = 1;
    std::vector<Lum8u> bytes;  ///< as the caller gives them, row by row; any byte but 0 is a set position

    bool isSet(int column, int row) const
    {
        return bytes[static_cast<std::size_t>(row * width + column)] != 0;
    }
    bool isEmpty() const
    {
        for (const Lum8u byte : bytes) {
            if (byte != 0) {
                return false;
            }
        }
        return true;
    }
    /// The element's centre lies on the pixel; an even side has one position more behind it than before it.
    Offsets offsets() const
    {
        return place(1);
    }
    /// Of the element rotated by 180 degrees about its centre.
    Offsets rotatedOffsets() const
    {
        return place(-1);
    }
    /// How far the record's element reaches on each side, its padding included.
    int radiusX() const
    {
        return isIdentity() ? 0 : width / 2;
    }
    int radiusY() const
    {
        return isIdentity() ? 0 : height / 2;
    }
    bool isIdentity() const
    {
        return isEmpty() || (width == 1 && height == 1);
    }

  private:
    Offsets place(int sign) const
    {
        Offsets result;
        result.isIdentity = isIdentity();
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column) {
                if (isSet(column, row)) {
                    result.list.push_back({sign * (column - (width - 1) / 2), sign * (row - (height - 1) / 2)});
                }
            }
        }
        if (sign < 0) {
            std::reverse(result.list.begin(), result.list.end());  // row by row again
        }
        return result;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const StructuringElement& element)
{
    return stream << element.name << " " << element.width << " x " << element.height;
}

/// The element that a picture shows, one text for each row; a dot is no position.
inline StructuringElement picture(const std::string& name, const std::vector<std::string>& rows)
{
    StructuringElement element{name, static_cast<int>(rows[0].size()), static_cast<int>(rows.size()), {}};
    int next = 1;  // all kinds of non-zero bytes
    for (const std::string& row : rows) {
        for (const char position : row) {
            element.bytes.push_back(position == '.' ? Lum8u{0} : static_cast<Lum8u>(next++ % 255 + 1));
        }
    }
    return element;
}

inline StructuringElement rectangle(int width, int height)
{
    return picture("rectangle", std::vector<std::string>(static_cast<std::size_t>(height),
                                                         std::string(static_cast<std::size_t>(width), '#')));
}

inline StructuringElement emptyElement(int width, int height)
{
    return picture("empty", std::vector<std::string>(static_cast<std::size_t>(height),
                                                     std::string(static_cast<std::size_t>(width), '.')));
}

inline StructuringElement disc(int size)
{
    switch (size) {
        case 3:
            return picture("disc", {".#.", "###", ".#."});
        case 5:
            return picture("disc", {"..#..", ".###.", "#####", ".###.", "..#.."});
        default:
            return picture("disc", {"...#...", ".#####.", ".#####.", "#######", ".#####.", ".#####.", "...#..."});
    }
}

/// A full row and a full column that meet at any position.
inline StructuringElement cross(int width, int height, int column, int row)
{
    StructuringElement element = emptyElement(width, height);
    element.name = "cross";
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (x == column || y == row) {
                element.bytes[static_cast<std::size_t>(y * width + x)] = 255;
            }
        }
    }
    return element;
}

/// The element with one position set that was not, or the other way round.
inline StructuringElement changed(StructuringElement element, int column, int row)
{
    Lum8u& byte = element.bytes[static_cast<std::size_t>(row * element.width + column)];
    byte = byte == 0 ? Lum8u{1} : Lum8u{0};
    element.name = "changed " + element.name;
    return element;
}

/// A filled ellipse: each row is one run.
inline StructuringElement ellipse(int width, int height)
{
    StructuringElement element = emptyElement(width, height);
    element.name = "ellipse";
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = (2.0 * x + 1 - width) / width;
            const double v = (2.0 * y + 1 - height) / height;
            if (u * u + v * v <= 1.0) {
                element.bytes[static_cast<std::size_t>(y * width + x)] = 1;
            }
        }
    }
    return element;
}

/// At most one run in each row, of any length at any place.
inline StructuringElement rowRuns(int width, int height, std::uint64_t seed)
{
    StructuringElement element = emptyElement(width, height);
    element.name = "row runs";
    Random random(seed);
    for (int y = 0; y < height; ++y) {
        const auto begin = static_cast<int>(random.between(0, width));
        const auto end = static_cast<int>(random.between(begin, width));
        for (int x = begin; x < end; ++x) {
            element.bytes[static_cast<std::size_t>(y * width + x)] = static_cast<Lum8u>(random.between(1, 255));
        }
    }
    return element;
}

/// Any positions, a share of the given percent.
inline StructuringElement scattered(int width, int height, int percent, std::uint64_t seed)
{
    StructuringElement element = emptyElement(width, height);
    element.name = "scattered";
    Random random(seed);
    for (Lum8u& byte : element.bytes) {
        byte = random.between(1, 100) <= percent ? static_cast<Lum8u>(random.between(1, 255)) : Lum8u{0};
    }
    return element;
}

/// A single position anywhere: the image moved.
inline StructuringElement singlePosition(int width, int height, int column, int row)
{
    StructuringElement element = emptyElement(width, height);
    element.name = "single position";
    element.bytes[static_cast<std::size_t>(row * width + column)] = 128;
    return element;
}

/// At least one element for each way of computing, of odd and of even sizes, symmetric ones and others.
inline std::vector<StructuringElement> elementsOfEveryShape()
{
    std::vector<StructuringElement> elements;
    for (const LumiSize size : std::initializer_list<LumiSize>{
             {3, 3}, {5, 5}, {15, 15}, {1, 3}, {3, 1}, {1, 7}, {9, 1},  {3, 5},  {7, 3},  {2, 2}, {2, 1},
             {1, 2}, {4, 4}, {6, 3},   {3, 4}, {8, 7}, {1, 1}, {33, 1}, {1, 31}, {21, 3}, {1, 4}, {6, 1}}) {
        elements.push_back(rectangle(size.width, size.height));
    }
    for (const int size : {3, 5, 7}) {
        elements.push_back(disc(size));
        // one position less is no disc, and one position more neither
        elements.push_back(changed(disc(size), size / 2, size / 2));
        elements.push_back(changed(disc(size), 0, 0));
    }
    for (const LumiRect c : std::initializer_list<LumiRect>{{1, 1, 3, 3},
                                                            {0, 2, 3, 3},
                                                            {2, 2, 5, 5},
                                                            {4, 0, 5, 5},
                                                            {1, 3, 5, 5},
                                                            {3, 3, 7, 7},
                                                            {1, 2, 4, 4},
                                                            {4, 4, 9, 9},
                                                            {0, 0, 6, 6},
                                                            {2, 1, 5, 3},
                                                            {1, 3, 3, 7},
                                                            {3, 0, 7, 4}}) {
        elements.push_back(cross(c.width, c.height, c.x, c.y));
    }
    elements.push_back(ellipse(9, 9));
    elements.push_back(ellipse(11, 5));
    elements.push_back(ellipse(6, 8));
    elements.push_back(ellipse(13, 13));
    for (const LumiSize size : std::initializer_list<LumiSize>{{5, 4}, {8, 3}, {3, 9}, {17, 5}, {2, 5}}) {
        const auto seed = static_cast<std::uint64_t>(size.width * 100 + size.height);
        elements.push_back(rowRuns(size.width, size.height, seed));
        elements.push_back(scattered(size.width, size.height, 50, seed));
    }
    elements.push_back(scattered(9, 9, 10, 1));
    elements.push_back(scattered(7, 7, 90, 2));
    elements.push_back(picture("ring", {"#####", "#...#", "#...#", "#...#", "#####"}));
    elements.push_back(picture("two dots in a row", {"#.......#"}));
    elements.push_back(picture("two dots in a column", {"#", ".", ".", ".", "#"}));
    elements.push_back(picture("diagonal", {"#....", ".#...", "..#..", "...#.", "....#"}));
    elements.push_back(picture("corner", {"####", "#...", "#...", "#..."}));
    for (const LumiRect c : std::initializer_list<LumiRect>{
             {0, 0, 5, 5}, {4, 4, 5, 5}, {2, 2, 5, 5}, {3, 0, 4, 3}, {0, 3, 2, 4}, {6, 0, 7, 1}, {0, 8, 1, 9}}) {
        elements.push_back(singlePosition(c.width, c.height, c.x, c.y));
    }
    for (const LumiSize size : std::initializer_list<LumiSize>{{1, 1}, {3, 3}, {4, 2}, {9, 5}}) {
        elements.push_back(emptyElement(size.width, size.height));
    }
    return elements;
}

}  // namespace lumcv::test::morph
