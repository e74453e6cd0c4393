// Pictures of every PNG colour type arrive with the colours that were put in.
#include "png_file.hpp"

#include <gtest/gtest.h>
#include <png.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using gallery::Picture;

struct Format
{
    std::string name;
    int colourType;
    int bits;
    bool interlaced;
    std::vector<png_byte> row;               // as it stands in the file
    std::vector<std::array<int, 3>> pixels;  // as it should arrive
    std::vector<png_color> palette = {};
    std::vector<png_byte> transparency = {};  // of the palette's colours
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.name;
}

// Three equal rows of the format.
void write(const std::string& path, const Format& format)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, file);
    png_set_IHDR(png, info, static_cast<png_uint_32>(format.pixels.size()), 3, format.bits, format.colourType,
                 format.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (!format.palette.empty()) {
        png_set_PLTE(png, info, format.palette.data(), static_cast<int>(format.palette.size()));
    }
    if (!format.transparency.empty()) {
        png_set_tRNS(png, info, format.transparency.data(), static_cast<int>(format.transparency.size()), nullptr);
    }
    png_write_info(png, info);
    std::vector<png_byte> row = format.row;
    std::vector<png_bytep> rows(3, row.data());
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(file);
}

class PngColourType : public testing::TestWithParam<Format>
{
};

TEST_P(PngColourType, ArrivesAsRgb)
{
    const Format& format = GetParam();
    const std::string path = testing::TempDir() + "lumcv_png_" + format.name + ".png";
    write(path, format);

    const Picture picture = gallery::readPng(path);
    std::remove(path.c_str());

    ASSERT_EQ(picture.width(), static_cast<int>(format.pixels.size()));
    ASSERT_EQ(picture.height(), 3);
    ASSERT_EQ(picture.channels(), 3);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            for (int c = 0; c < 3; ++c) {
                EXPECT_EQ(int{picture.at(x, y, c)},
                          format.pixels[static_cast<std::size_t>(x)][static_cast<std::size_t>(c)])
                    << "pixel " << x << ", " << y << ", channel " << c;
            }
        }
    }
}

constexpr std::array<int, 3> black{0, 0, 0};
constexpr std::array<int, 3> white{255, 255, 255};

const std::vector<Format> formats{
    {"gray_1_bit", PNG_COLOR_TYPE_GRAY, 1, false, {0b10100000}, {white, black, white}},
    {"gray_4_bits", PNG_COLOR_TYPE_GRAY, 4, false, {0x0F, 0x30}, {black, white, {51, 51, 51}}},
    {"gray_8_bits", PNG_COLOR_TYPE_GRAY, 8, false, {0, 100, 255}, {black, {100, 100, 100}, white}},
    {"gray_8_bits_interlaced", PNG_COLOR_TYPE_GRAY, 8, true, {0, 100, 255}, {black, {100, 100, 100}, white}},
    {"gray_16_bits", PNG_COLOR_TYPE_GRAY, 16, false, {0, 0, 100, 100, 255, 255}, {black, {100, 100, 100}, white}},
    {"gray_and_alpha", PNG_COLOR_TYPE_GRAY_ALPHA, 8, false, {77, 255, 77, 0}, {{77, 77, 77}, white}},
    {"gray_and_alpha_16_bits",
     PNG_COLOR_TYPE_GRAY_ALPHA,
     16,
     false,
     {77, 77, 255, 255, 9, 9, 0, 0},
     {{77, 77, 77}, white}},
    {"palette",
     PNG_COLOR_TYPE_PALETTE,
     8,
     false,
     {2, 0, 1},
     {{7, 8, 9}, {1, 2, 3}, {4, 5, 6}},
     {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
    {"palette_2_bits",
     PNG_COLOR_TYPE_PALETTE,
     2,
     false,
     {0b10000100},
     {{7, 8, 9}, {1, 2, 3}, {4, 5, 6}},
     {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}},
    {"palette_with_transparency",
     PNG_COLOR_TYPE_PALETTE,
     8,
     false,
     {0, 1},
     {white, {4, 5, 6}},
     {{1, 2, 3}, {4, 5, 6}},
     {0, 255}},
    {"rgb", PNG_COLOR_TYPE_RGB, 8, false, {1, 2, 3, 250, 251, 252}, {{1, 2, 3}, {250, 251, 252}}},
    {"rgb_16_bits", PNG_COLOR_TYPE_RGB, 16, false, {1, 1, 2, 2, 3, 3}, {{1, 2, 3}}},
    {"rgb_and_alpha", PNG_COLOR_TYPE_RGB_ALPHA, 8, false, {1, 2, 3, 255, 1, 2, 3, 0}, {{1, 2, 3}, white}},
    {"rgb_and_alpha_16_bits", PNG_COLOR_TYPE_RGB_ALPHA, 16, false, {1, 1, 2, 2, 3, 3, 255, 255}, {{1, 2, 3}}},
};

INSTANTIATE_TEST_SUITE_P(All, PngColourType, testing::ValuesIn(formats),
                         [](const auto& test) { return test.param.name; });

TEST(PngFile, ComesBackAsItWasWritten)
{
    const std::string path = testing::TempDir() + "lumcv_png_round_trip.png";
    Picture picture(5, 4, 3);
    for (std::size_t i = 0; i < picture.elements().size(); ++i) {
        picture.elements()[i] = static_cast<Lum8u>(i * 37 + 11);
    }
    gallery::writePng(path, picture);
    EXPECT_EQ(gallery::readPng(path).elements(), picture.elements());
    std::remove(path.c_str());
}

TEST(PngFile, GrayPicturesAreWrittenAsGray)
{
    const std::string path = testing::TempDir() + "lumcv_png_gray.png";
    Picture picture(2, 1, 1);
    picture.at(0, 0) = 5;
    picture.at(1, 0) = 200;
    gallery::writePng(path, picture);
    const std::vector<Lum8u> expected{5, 5, 5, 200, 200, 200};
    EXPECT_EQ(gallery::readPng(path).elements(), expected);
    std::remove(path.c_str());
}

}  // namespace
