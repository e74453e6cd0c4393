// Pictures from and to PNG files, by the simplified interface of libpng.
#include "png_file.hpp"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace gallery {
namespace {

// The accumulators of the gallery take four bytes a pixel and more: this keeps the whole run below 2 GB.
constexpr long long largestPicture = 64LL << 20;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// libpng's control structure, which must be freed on every way out.
struct PngImage : png_image
{
    PngImage() : png_image{}
    {
        version = PNG_IMAGE_VERSION;
    }
    ~PngImage()
    {
        png_image_free(this);
    }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
};

}  // namespace

Picture readPng(const std::filesystem::path& path)
{
    const auto fail = [&](const std::string& why) { return Failure("cannot read '" + path.string() + "': " + why); };

    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw fail("it is a folder");
    }
    const File file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file) {
        throw fail(std::strerror(errno));
    }

    unsigned char signature[8];
    const std::size_t length = std::fread(signature, 1, sizeof signature, file.get());
    if (length == 0) {
        throw fail("the file is empty");
    }
    if (png_sig_cmp(signature, 0, length) != 0 || length < sizeof signature) {
        throw fail("it is not a PNG file");
    }
    std::rewind(file.get());

    PngImage png;
    if (!png_image_begin_read_from_stdio(&png, file.get())) {
        throw fail(png.message);
    }
    if (static_cast<long long>(png.width) * png.height > largestPicture) {
        throw fail("its " + std::to_string(png.width) + " x " + std::to_string(png.height) +
                   " pixels are too many; the gallery takes up to " + std::to_string(largestPicture));
    }

    // without a gamma chunk, 16-bit samples are taken to be encoded like 8-bit ones
    png.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    png.format = PNG_FORMAT_RGB;
    Picture picture(static_cast<int>(png.width), static_cast<int>(png.height), 3);
    const png_color white{255, 255, 255};
    if (!png_image_finish_read(&png, &white, picture.pixels(), picture.step(), nullptr)) {
        throw fail(png.message);
    }
    return picture;
}

void writePng(const std::filesystem::path& path, const Picture& picture)
{
    PngImage png;
    png.width = static_cast<png_uint_32>(picture.width());
    png.height = static_cast<png_uint_32>(picture.height());
    png.format = picture.channels() == 1 ? PNG_FORMAT_GRAY : PNG_FORMAT_RGB;
    png.flags = PNG_IMAGE_FLAG_FAST;
    if (!png_image_write_to_file(&png, path.c_str(), 0, picture.pixels(), picture.step(), nullptr)) {
        throw Failure("cannot write '" + path.string() + "': " + png.message);
    }
}

}  // namespace gallery
