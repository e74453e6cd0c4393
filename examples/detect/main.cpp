// Finds the objects of a boosted cascade in a photograph: prints their places and draws them into a PNG file.
//
//     detect [--smallest PIXELS] [--growth FACTOR] [--windows COUNT] CASCADE PHOTO.png RESULT.png
//
// The format of the cascade is told in cascade.hpp, how the library is called in scan.cpp. The exit status is 0 on
// success, also if nothing has been found, 1 if a file cannot be read or written or a call fails, and 2 for a wrong
// command line.
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "png_file.hpp"
#include "program.hpp"
#include "scan.hpp"
#include "scene.hpp"
#include "words.hpp"

namespace {

constexpr const char* usage =
    "usage: detect [--smallest PIXELS] [--growth FACTOR] [--windows COUNT] CASCADE PHOTO.png RESULT.png\n"
    "Prints x, y, width and height of what the cascade finds in the photograph, and in how many windows it did, one\n"
    "object a line, and writes the photograph with frames around the objects.\n"
    "  --smallest PIXELS  width of the smallest window, if it is more than the cascade's own\n"
    "  --growth FACTOR    how much wider the next window is, 1.01 to 2; 1.1 without this option\n"
    "  --windows COUNT    an object is found in at least so many overlapping windows; 50 without this option\n";

struct Arguments
{
    std::string files[3];
    detect::ScanOptions options;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        bool good = true;
        if (word == "--smallest") {
            good = gallery::take(next, 1, 1 << 20, arguments.options.smallest);
            ++i;
        } else if (word == "--growth") {
            good = gallery::take(next, 1.01, 2.0, arguments.options.growth);
            ++i;
        } else if (word == "--windows") {
            good = gallery::take(next, 1, 1 << 20, arguments.options.fewestWindows);
            ++i;
        } else if (!word.starts_with("-") && files < std::size(arguments.files)) {
            arguments.files[files++] = word;
        } else {
            good = false;
        }
        if (!good) {
            return std::nullopt;
        }
    }
    if (files < std::size(arguments.files)) {
        return std::nullopt;
    }
    return arguments;
}

void run(const Arguments& arguments)
{
    const detect::Cascade cascade = detect::readCascade(arguments.files[0]);
    gallery::Picture photo = gallery::readPng(arguments.files[1]);
    const auto objects = detect::findObjects(gallery::grayOf(photo), cascade, arguments.options);
    constexpr Lum8u colour[3] = {255, 64, 48};
    for (const detect::Found& object : objects) {
        const LumiRect& r = object.place;
        std::printf("%d %d %d %d %d\n", r.x, r.y, r.width, r.height, object.windows);
        detect::drawFrame(photo, r, colour);
    }
    gallery::writePng(arguments.files[2], photo);
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("detect", usage, argc, argv, parse, run);
}
