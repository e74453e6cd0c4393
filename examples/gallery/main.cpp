// The gallery: runs the library's operations on one picture and writes the results as PNG files with a contact sheet.
//
//     gallery [IMAGE.png] --out FOLDER
//
// Without an image it draws a scene itself. The exit status is 0 on success, 1 if a file cannot be read or written or a
// call fails, and 2 for a wrong command line.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "page.hpp"
#include "png_file.hpp"
#include "scene.hpp"
#include "section.hpp"

namespace gallery {
namespace {

constexpr const char* usage = "usage: gallery [IMAGE.png] --out FOLDER\n";

// The largest kernel of the gallery is 63 pixels wide, and filters that read around their region need a margin of 31.
constexpr int leastSide = 96;

struct Arguments
{
    std::optional<std::filesystem::path> image;
    std::filesystem::path folder;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--out" && i + 1 < argc && arguments.folder.empty()) {
            arguments.folder = argv[++i];
        } else if (!word.starts_with("-") && !arguments.image) {
            arguments.image = word;
        } else {
            return std::nullopt;
        }
    }
    if (arguments.folder.empty()) {
        return std::nullopt;
    }
    return arguments;
}

void makeFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error || !std::filesystem::is_directory(folder)) {
        throw Failure("cannot make the folder '" + folder.string() +
                      "': " + (error ? error.message() : "a file of that name stands there"));
    }
}

void run(const Arguments& arguments)
{
    std::string sourceName = "a scene that the program draws itself";
    Picture colour = arguments.image ? readPng(*arguments.image) : drawScene();
    if (arguments.image) {
        sourceName = arguments.image->filename().string();
    }
    if (colour.width() < leastSide || colour.height() < leastSide) {
        sourceName += " (small, so repeated like tiles)";
        colour = tiledUpTo(colour, leastSide);
    }
    const Picture gray = grayOf(colour);
    const Source source{std::move(colour), gray};

    makeFolder(arguments.folder);

    std::size_t total = 0;
    for (const Section* section : allSections()) {
        total += section->exhibits.size();
    }
    std::printf("lumcv gallery of %s, %d x %d pixels\n", sourceName.c_str(), gray.width(), gray.height());

    std::vector<Card> cards;
    for (const Section* section : allSections()) {
        for (const Exhibit& exhibit : section->exhibits) {
            std::printf("[%2zu/%zu] %-56s", cards.size() + 1, total, exhibit.title.c_str());
            std::fflush(stdout);
            Shot shot;
            const Picture picture = exhibit.run(source, shot);
            if (shot.runs() > 0) {
                std::printf("%9.3f ms", shot.milliseconds());
            }
            std::printf("\n");
            writePng(arguments.folder / (exhibit.file + ".png"), picture);
            cards.push_back({section, &exhibit, picture.width(), picture.height(), std::move(shot)});
        }
    }
    writePage(arguments.folder / "index.html", sourceName, cards);
    std::printf("%zu pictures and %s\n", cards.size(), (arguments.folder / "index.html").c_str());
}

}  // namespace
}  // namespace gallery

int main(int argc, char** argv)
{
    const auto arguments = gallery::parse(argc, argv);
    if (!arguments) {
        std::fputs(gallery::usage, stderr);
        return 2;
    }
    try {
        gallery::run(*arguments);
        return 0;
    } catch (const std::bad_alloc&) {
        std::fputs("\ngallery: not enough memory for this picture\n", stderr);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "\ngallery: %s\n", failure.what());
    }
    return 1;
}
