// Finds the straight lines of a picture: prints them and draws them into a PNG file.
//
//     lines [options] PHOTO.png RESULT.png
//
// How the library is called is told in find_lines.cpp. The exit status is 0 on success, also if nothing has been found,
// 1 if a file cannot be read or written or a call fails, and 2 for a wrong command line.
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "find_lines.hpp"
#include "png_file.hpp"
#include "program.hpp"
#include "scene.hpp"
#include "shapes.hpp"
#include "words.hpp"

namespace {

constexpr const char* usage =
    "usage: lines [options] PHOTO.png RESULT.png\n"
    "Prints what it finds among the edges of the picture, and writes the picture, dimmed, with it: segments with the\n"
    "columns and rows of both ends, 'segment x y x y', and whole lines with the distance of the top left pixel and\n"
    "the angle of their normal in degrees, 'line distance angle'.\n"
    "  --low GRADIENT     an edge is followed as long as its gradient is above this; 40 without this option\n"
    "  --high GRADIENT    an edge begins above this gradient; 100 without this option\n"
    "  --votes PIXELS     a line has at least so many edge pixels; 25 without this option\n"
    "  --length PIXELS    a segment is at least so wide or high; 30 without this option\n"
    "  --gap PIXELS       so many pixels may be missing between two of a segment; 5 without this option\n"
    "  --strongest COUNT  how many whole lines, at most; 8 without this option\n";

struct Arguments
{
    std::string files[2];
    lines::EdgeOptions edges;
    lines::SegmentOptions segments;
    int strongest = 8;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    const struct
    {
        std::string_view name;
        int least;
        int& value;
    } options[] = {{"--low", 1, arguments.edges.low},        {"--high", 1, arguments.edges.high},
                   {"--votes", 1, arguments.segments.votes}, {"--length", 0, arguments.segments.length},
                   {"--gap", 0, arguments.segments.gap},     {"--strongest", 0, arguments.strongest}};
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (!word.starts_with("-") && files < std::size(arguments.files)) {
            arguments.files[files++] = word;
            continue;
        }
        bool good = false;
        for (const auto& option : options) {
            if (word == option.name && i + 1 < argc) {
                good = gallery::take(argv[++i], option.least, 10000, option.value);
                break;
            }
        }
        if (!good) {
            return std::nullopt;
        }
    }
    if (files < std::size(arguments.files) || arguments.edges.low > arguments.edges.high) {
        return std::nullopt;
    }
    return arguments;
}

void run(const Arguments& arguments)
{
    const gallery::Picture photo = gallery::readPng(arguments.files[0]);
    const gallery::Picture edges = lines::findEdges(gallery::grayOf(photo), arguments.edges);
    const auto segments = lines::findSegments(edges, arguments.segments);
    const auto strongest = lines::findStrongest(edges, arguments.strongest, arguments.segments.votes);

    gallery::Picture result = gallery::mapped<Lum8u>(photo, [](Lum8u value) { return static_cast<Lum8u>(value / 2); });
    for (const LumiPointPolar& line : strongest) {
        gallery::drawLine(result, std::cos(line.theta), std::sin(line.theta), line.rho, 1.0f, {80, 170, 255});
    }
    for (const auto& [from, to] : segments) {
        std::printf("segment %d %d %d %d\n", from.x, from.y, to.x, to.y);
        gallery::drawStroke(result, static_cast<float>(from.x), static_cast<float>(from.y), static_cast<float>(to.x),
                            static_cast<float>(to.y), 2.0f, {255, 150, 40});
    }
    for (const LumiPointPolar& line : strongest) {
        std::printf("line %.0f %.0f\n", static_cast<double>(line.rho), static_cast<double>(line.theta) * 57.29577951);
    }
    gallery::writePng(arguments.files[1], result);
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("lines", usage, argc, argv, parse, run);
}
