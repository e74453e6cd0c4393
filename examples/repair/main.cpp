// Repairs what is damaged in a photograph, and writes what it has made of it as PNG files.
//
//     repair [--mask MASK.png] [--radius PIXELS] PHOTO.png FOLDER
//
// With a mask, what is not black in it is damaged in the photograph. Without one the program scratches the photograph
// itself, and tells how far the repair is from the original. How the library is called is in repair.cpp. The exit
// status is 0 on success, 1 if a file cannot be read or written or a call fails, and 2 for a wrong command line.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "png_file.hpp"
#include "program.hpp"
#include "repair.hpp"
#include "scene.hpp"

namespace {

using gallery::Failure;
using gallery::Image;
using gallery::Picture;

constexpr const char* usage =
    "usage: repair [--mask MASK.png] [--radius PIXELS] PHOTO.png FOLDER\n"
    "Fills damaged pixels from those around them, by two methods, and writes into the folder: mask.png, before.png,\n"
    "distance.png, and for each method the picture and its difference from what was given.\n"
    "  --mask MASK.png    a picture of the same size, not black where the photograph is damaged; without it the\n"
    "                     program scratches the photograph\n"
    "  --radius PIXELS    how far known pixels are looked for, 1 to 100; 5 without this option\n";

struct Arguments
{
    std::optional<std::string> mask;
    float radius = 5.0f;
    std::string files[2];
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        if (word == "--mask" && !next.empty() && !arguments.mask) {
            arguments.mask = next;
            ++i;
        } else if (word == "--radius") {
            const char* const last = next.data() + next.size();
            const auto [end, error] = std::from_chars(next.data(), last, arguments.radius);
            // written so that it refuses what is not a number
            if (error != std::errc{} || end != last || !(arguments.radius >= 1.0f && arguments.radius <= 100.0f)) {
                return std::nullopt;
            }
            ++i;
        } else if (!word.starts_with("-") && files < std::size(arguments.files)) {
            arguments.files[files++] = word;
        } else {
            return std::nullopt;
        }
    }
    if (files < std::size(arguments.files)) {
        return std::nullopt;
    }
    return arguments;
}

Picture readMask(const std::string& file, const Picture& photo)
{
    const Picture colour = gallery::readPng(file);
    if (colour.width() != photo.width() || colour.height() != photo.height()) {
        throw Failure("the mask '" + file + "' is not as large as the photograph");
    }
    Picture mask(colour.width(), colour.height(), 1);
    for (int y = 0; y < mask.height(); ++y) {
        for (int x = 0; x < mask.width(); ++x) {
            const bool isBlack = colour.at(x, y, 0) == 0 && colour.at(x, y, 1) == 0 && colour.at(x, y, 2) == 0;
            mask.at(x, y) = isBlack ? Lum8u{0} : Lum8u{255};
        }
    }
    return mask;
}

// Distances as levels: black outside the mask, then brighter by a third with each doubling.
Picture shown(const Image<Lum32f>& depths)
{
    return gallery::mapped<Lum8u>(depths, [](Lum32f depth) {
        return depth > 0.0f ? gallery::toByte(110.0f + 36.0f * std::log2(1.0f + depth)) : Lum8u{0};
    });
}

void run(const Arguments& arguments)
{
    const Picture photo = gallery::readPng(arguments.files[0]);
    const Picture mask = arguments.mask ? readMask(*arguments.mask, photo) : repair::drawScratches(photo.size(), 9);
    const Picture before = arguments.mask ? photo : repair::painted(photo, mask, 255);

    const std::filesystem::path folder = arguments.files[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error || !std::filesystem::is_directory(folder)) {
        throw Failure("cannot make the folder '" + folder.string() + "'");
    }
    const Image<Lum32f> depths = repair::depths(mask);
    gallery::writePng(folder / "mask.png", mask);
    gallery::writePng(folder / "before.png", before);
    gallery::writePng(folder / "distance.png", shown(depths));
    std::printf("%d of %d pixels are damaged\n", repair::countMasked(mask), mask.width() * mask.height());
    if (!arguments.mask) {
        std::printf("scratched: %.2f levels from the photograph\n",
                    repair::meanWhereMasked(repair::difference(photo, before), mask));
    }

    const struct
    {
        const char* name;
        LumiInpaintMethod method;
    } methods[] = {{"front", lumInpaintByFront}, {"isophote", lumInpaintByIsophote}};
    for (const auto& [name, method] : methods) {
        repair::Repairer repairer(mask, depths, arguments.radius, method, photo.channels());
        const Picture after = repairer.repaired(before);
        const Picture change = repair::difference(photo, after);
        gallery::writePng(folder / (std::string("by-") + name + ".png"), after);
        gallery::writePng(folder / (std::string("difference-") + name + ".png"), change);
        std::printf("by %s: %.2f levels from the photograph\n", name, repair::meanWhereMasked(change, mask));
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("repair", usage, argc, argv, parse, run);
}
