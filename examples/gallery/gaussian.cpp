// Gallery: Gaussian blurs of every element type, of several sizes, with each border mode.
#include <algorithm>
#include <cstdio>
#include <string>

#include "section.hpp"

namespace gallery {
namespace {

// A filter made ready in the caller's memory: the record and the scratch block, each of exactly the queried size.
class Gaussian
{
  public:
    Gaussian(Shot& shot, LumiSize roiSize, Lum32s kernelSize, Lum32f sigma, LumiBorderType border, LumDataType type,
             Lum32s channels)
    {
        Lum32s specSize = 0;
        Lum32s bufferSize = 0;
        shot.prepare(
            GALLERY_CALL(lumiFilterGaussianGetBufferSize(roiSize, kernelSize, type, channels, &specSize, &bufferSize)));
        spec_.resize(static_cast<std::size_t>(specSize));
        buffer_.resize(static_cast<std::size_t>(bufferSize));
        shot.prepare(
            GALLERY_CALL(lumiFilterGaussianInit(roiSize, kernelSize, sigma, border, type, channels, spec(), buffer())));
    }

    LumFilterGaussianSpec* spec()
    {
        return reinterpret_cast<LumFilterGaussianSpec*>(spec_.data());
    }
    Lum8u* buffer()
    {
        return buffer_.data();
    }

  private:
    Block spec_;
    Block buffer_;
};

// A sixth of the kernel: its ends then fall to about a hundredth of its middle.
float sigmaFor(int kernelSize)
{
    return static_cast<float>(kernelSize) / 6.0f;
}

std::string kernelNote(int kernelSize)
{
    char text[64];
    std::snprintf(text, sizeof text, "Kernel size %d, sigma %.2f.", kernelSize, sigmaFor(kernelSize));
    return text;
}

std::string sizeTitle(int kernelSize, const char* what)
{
    const std::string side = std::to_string(kernelSize);
    return "Gaussian " + side + " x " + side + ", " + what;
}

Exhibit grayOfSize(int kernelSize)
{
    return {"gaussian-8u-c1-" + std::to_string(kernelSize), sizeTitle(kernelSize, "8-bit gray"), kernelNote(kernelSize),
            [kernelSize](const Source& source, Shot& shot) {
                const Picture& gray = source.gray;
                Picture result(gray.width(), gray.height(), 1);
                Gaussian gaussian(shot, gray.size(), kernelSize, sigmaFor(kernelSize), lumBorderReplicate, lumType8u,
                                  1);
                shot.time(GALLERY_CALL(lumiFilterGaussian_8u_C1R(gray.pixels(), gray.step(), result.pixels(),
                                                                 result.step(), result.size(), lumBorderReplicate,
                                                                 nullptr, gaussian.spec(), gaussian.buffer())));
                return result;
            }};
}

Exhibit colourOfSize(int kernelSize)
{
    return {"gaussian-8u-c3-" + std::to_string(kernelSize), sizeTitle(kernelSize, "8-bit RGB"), kernelNote(kernelSize),
            [kernelSize](const Source& source, Shot& shot) {
                const Picture& colour = source.colour;
                Picture result(colour.width(), colour.height(), 3);
                Gaussian gaussian(shot, colour.size(), kernelSize, sigmaFor(kernelSize), lumBorderReplicate, lumType8u,
                                  3);
                shot.time(GALLERY_CALL(lumiFilterGaussian_8u_C3R(colour.pixels(), colour.step(), result.pixels(),
                                                                 result.step(), result.size(), lumBorderReplicate,
                                                                 nullptr, gaussian.spec(), gaussian.buffer())));
                return result;
            }};
}

Picture wide16(const Source& source, Shot& shot)
{
    const Image<Lum16u> wide = mapped<Lum16u>(source.gray, [](Lum8u v) { return static_cast<Lum16u>(v * 257); });
    Image<Lum16u> result(wide.width(), wide.height(), 1);
    Gaussian gaussian(shot, wide.size(), 5, sigmaFor(5), lumBorderReplicate, lumType16u, 1);
    shot.time(GALLERY_CALL(lumiFilterGaussian_16u_C1R(wide.pixels(), wide.step(), result.pixels(), result.step(),
                                                      result.size(), lumBorderReplicate, nullptr, gaussian.spec(),
                                                      gaussian.buffer())));
    return mapped<Lum8u>(result, [](Lum16u v) { return static_cast<Lum8u>((v + 128) / 257); });
}

Picture signed16(const Source& source, Shot& shot)
{
    const Image<Lum16s> centred =
        mapped<Lum16s>(source.gray, [](Lum8u v) { return static_cast<Lum16s>((v - 128) * 256); });
    Image<Lum16s> result(centred.width(), centred.height(), 1);
    Gaussian gaussian(shot, centred.size(), 7, sigmaFor(7), lumBorderReplicate, lumType16s, 1);
    shot.time(GALLERY_CALL(lumiFilterGaussian_16s_C1R(centred.pixels(), centred.step(), result.pixels(), result.step(),
                                                      result.size(), lumBorderReplicate, nullptr, gaussian.spec(),
                                                      gaussian.buffer())));
    return mapped<Lum8u>(result, [](Lum16s v) { return static_cast<Lum8u>((v + 32768) / 256); });
}

Picture floats(const Source& source, Shot& shot)
{
    const Image<Lum32f> light = mapped<Lum32f>(source.gray, [](Lum8u v) { return static_cast<float>(v) / 255.0f; });
    Image<Lum32f> result(light.width(), light.height(), 1);
    Gaussian gaussian(shot, light.size(), 15, sigmaFor(15), lumBorderReplicate, lumType32f, 1);
    shot.time(GALLERY_CALL(lumiFilterGaussian_32f_C1R(light.pixels(), light.step(), result.pixels(), result.step(),
                                                      result.size(), lumBorderReplicate, nullptr, gaussian.spec(),
                                                      gaussian.buffer())));
    return mapped<Lum8u>(result, [](Lum32f v) { return toByte(v * 255.0f); });
}

// A wide blur of a window within the picture. What lies outside the window is there, and the border says whether the
// filter may look at it; `margin` keeps half a kernel of real pixels around the window.
constexpr int windowKernel = 63;
constexpr int windowMargin = windowKernel / 2;

Exhibit windowWithBorder(const char* file, const char* title, const char* note, LumiBorderType border)
{
    return {std::string("gaussian-border-") + file, title, note, [border](const Source& source, Shot& shot) {
                const Picture& colour = source.colour;
                const int width = std::min(colour.width() - 2 * windowMargin, 420);
                const int height = std::min(colour.height() - 2 * windowMargin, 300);
                Picture result(width, height, 3);
                const Lum8u* window = &colour.at((colour.width() - width) / 2, (colour.height() - height) / 2);
                const Lum8u orange[3] = {255, 120, 0};
                Gaussian gaussian(shot, result.size(), windowKernel, sigmaFor(windowKernel), border, lumType8u, 3);
                shot.time(GALLERY_CALL(lumiFilterGaussian_8u_C3R(window, colour.step(), result.pixels(), result.step(),
                                                                 result.size(), border, orange, gaussian.spec(),
                                                                 gaussian.buffer())));
                return result;
            }};
}

const Section sizes{
    30,
    "Gaussian blur: sizes and types",
    "Three stages: ask for the sizes of the record and of the scratch block, lay the record, filter. Edge pixels are "
    "repeated outside the picture.",
    {grayOfSize(3),
     grayOfSize(5),
     grayOfSize(7),
     grayOfSize(15),
     grayOfSize(31),
     colourOfSize(5),
     colourOfSize(15),
     {"gaussian-16u-c1-5", sizeTitle(5, "16-bit gray"), kernelNote(5), wide16},
     {"gaussian-16s-c1-7", sizeTitle(7, "signed 16-bit gray"), kernelNote(7), signed16},
     {"gaussian-32f-c1-15", sizeTitle(15, "float gray"), kernelNote(15), floats}},
};

const Section borders{
    31,
    "Gaussian blur: border modes",
    "A window in the middle of the picture, blurred with a kernel of 63 pixels: look at its edges.",
    {windowWithBorder("replicate", "lumBorderReplicate", "Outside the window, its edge pixels are repeated.",
                      lumBorderReplicate),
     windowWithBorder("mirror", "lumBorderMirror", "Outside the window, it is reflected about its edge pixels.",
                      lumBorderMirror),
     windowWithBorder("constant", "lumBorderConstant", "Outside the window everything is orange.", lumBorderConstant),
     windowWithBorder("in-memory", "lumBorderInMem",
                      "Outside the window, the filter reads the picture that is really there.", lumBorderInMem),
     windowWithBorder("mixed", "lumBorderConstant, left and top in memory",
                      "The picture goes on at the left and at the top; at the right and below everything is orange.",
                      lumBorderConstant | lumBorderInMemLeft | lumBorderInMemTop)},
};

}  // namespace
}  // namespace gallery
