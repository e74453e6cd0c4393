// Bit-for-bit comparison of images and rows of elements; a failure names the pixel and both values.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <ios>
#include <sstream>
#include <string>

#include "support/image.hpp"

namespace lumcv::test {

/// Whether two elements are the same bits; the sign and the payload of a not-a-number do not count.
template <class T>
bool sameElement(const T& a, const T& b)
{
    if constexpr (std::floating_point<T>) {
        if (std::isnan(a) || std::isnan(b)) {
            return std::isnan(a) && std::isnan(b);
        }
    }
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// An element as text; a float in decimal and as exact hexadecimal fraction.
template <class T>
std::string elementText(T value)
{
    std::ostringstream text;
    if constexpr (std::floating_point<T>) {
        text << value << " (" << std::hexfloat << value << ")";
    } else {
        text << +value;
    }
    return text.str();
}

/// Compares the ROIs of two images of the same size; their strides and places may differ.
template <class T>
testing::AssertionResult sameImage(const Image<T>& expected, const Image<T>& actual)
{
    if (expected.width() != actual.width() || expected.height() != actual.height() ||
        expected.channels() != actual.channels()) {
        return testing::AssertionFailure() << "the images differ in size";
    }
    std::string first;
    long different = 0;
    for (int y = 0; y < expected.height(); ++y) {
        const T* const expectedRow = expected.row(y);
        const T* const actualRow = actual.row(y);
        const auto elements =
            static_cast<std::size_t>(expected.width()) * static_cast<std::size_t>(expected.channels());
        if (std::memcmp(expectedRow, actualRow, elements * sizeof(T)) == 0) {
            continue;
        }
        for (int i = 0; i < expected.width() * expected.channels(); ++i) {
            if (!sameElement(expectedRow[i], actualRow[i]) && ++different == 1) {
                std::ostringstream text;
                text << "pixel x " << i / expected.channels() << ", y " << y << ", channel " << i % expected.channels()
                     << ": got " << elementText(actualRow[i]) << ", expected " << elementText(expectedRow[i]);
                first = text.str();
            }
        }
    }
    if (different == 0) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << first << "; " << different << " of "
                                       << static_cast<long>(expected.width()) * expected.height() * expected.channels()
                                       << " elements differ";
}

/// Whether every byte of two images of the same layout is the same, gaps and margins included.
template <class T>
testing::AssertionResult sameBytes(const Image<T>& expected, const Image<T>& actual)
{
    if (expected.byteCount() != actual.byteCount()) {
        return testing::AssertionFailure() << "the images differ in size";
    }
    for (std::size_t i = 0; i < expected.byteCount(); ++i) {
        if (expected.bytes()[i] != actual.bytes()[i]) {
            return testing::AssertionFailure()
                   << "byte " << i << " of " << expected.byteCount() << " (row stride " << expected.step() << "): got "
                   << int{actual.bytes()[i]} << ", expected " << int{expected.bytes()[i]};
        }
    }
    return testing::AssertionSuccess();
}

/// Compares elements that lie in a row.
template <class T>
testing::AssertionResult sameElements(const T* expected, const T* actual, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!sameElement(expected[i], actual[i])) {
            return testing::AssertionFailure() << "element " << i << " of " << count << ": got "
                                               << elementText(actual[i]) << ", expected " << elementText(expected[i]);
        }
    }
    return testing::AssertionSuccess();
}

}  // namespace lumcv::test
