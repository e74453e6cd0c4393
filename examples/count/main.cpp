// Counts and measures the objects of a picture, and writes a table and a coloured picture of them.
//
//     count --threshold LEVEL [options] PHOTO.png FOLDER
//
// How the library is called is in count_objects.cpp. The exit status is 0 on success, also if there are no objects, 1
// if a file cannot be read or written or a call fails, and 2 for a wrong command line.
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "count_objects.hpp"
#include "png_file.hpp"
#include "program.hpp"
#include "scene.hpp"

namespace {

using gallery::Failure;
using gallery::Picture;

constexpr const char* usage =
    "usage: count --threshold LEVEL [options] PHOTO.png FOLDER\n"
    "Counts the objects that are brighter than the level, prints how many there are, and writes into the folder:\n"
    "objects.csv with the area and the box of each, objects.png with each in a colour of its own, and mask.png.\n"
    "  --threshold LEVEL  an object's pixels are brighter than this, 0 to 255\n"
    "  --dark             they are not brighter, but as dark as this or darker\n"
    "  --smooth TAPS      taps of the Gaussian filter before the threshold, odd, 1 to 99; 5 without this option\n"
    "  --least PIXELS     smaller areas are no objects; 20 without this option\n"
    "  --four             pixels that share only a corner do not belong together\n";

struct Arguments
{
    std::optional<int> threshold;
    count::Options options;
    std::string files[2];
};

bool take(std::string_view word, int least, int most, int& value)
{
    const char* const last = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), last, value);
    return error == std::errc{} && end == last && value >= least && value <= most;
}

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        if (word == "--dark") {
            arguments.options.dark = true;
        } else if (word == "--four") {
            arguments.options.diagonal = false;
        } else if (word == "--threshold" && take(next, 0, 255, arguments.options.threshold)) {
            arguments.threshold = arguments.options.threshold;
            ++i;
        } else if (word == "--smooth" && take(next, 1, 99, arguments.options.smoothing) &&
                   arguments.options.smoothing % 2 == 1) {
            ++i;
        } else if (word == "--least" && take(next, 1, 1000000, arguments.options.leastArea)) {
            ++i;
        } else if (!word.starts_with("-") && files < std::size(arguments.files)) {
            arguments.files[files++] = word;
        } else {
            return std::nullopt;
        }
    }
    if (files < std::size(arguments.files) || !arguments.threshold) {
        return std::nullopt;
    }
    return arguments;
}

void writeText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw Failure("cannot write '" + path.string() + "'");
    }
}

void run(const Arguments& arguments)
{
    const Picture gray = gallery::grayOf(gallery::readPng(arguments.files[0]));
    const Picture smooth = count::smoothed(gray, arguments.options.smoothing);
    const Picture mask = count::objectMask(smooth, arguments.options);
    const count::Count count = count::measured(mask, arguments.options.diagonal);

    const std::filesystem::path folder = arguments.files[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error || !std::filesystem::is_directory(folder)) {
        throw Failure("cannot make the folder '" + folder.string() + "'");
    }
    gallery::writePng(folder / "mask.png", mask);
    gallery::writePng(folder / "objects.png", count::coloured(gray, count));
    writeText(folder / "objects.csv", count::table(count));
    std::printf("%zu objects\n", count.objects.size());
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("count", usage, argc, argv, parse, run);
}
