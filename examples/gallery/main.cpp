// The gallery: runs the library's operations on one picture and writes the results as PNG files with a contact sheet.
//
//     gallery [IMAGE.png] --out FOLDER [--only NAME,NAME...] [--width PIXELS]
//
// Without an image it draws a scene itself. --only makes the named pictures and no others; a picture's name is that of
// its file. --width makes small pictures of few levels, at most so wide, which the pages of the documentation show. The
// exit status is 0 on success, 1 if a file cannot be read or written or a call fails, and 2 for a wrong command line.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "page.hpp"
#include "png_file.hpp"
#include "scene.hpp"
#include "section.hpp"
#include "thumbnail.hpp"
#include "words.hpp"

namespace gallery {
namespace {

constexpr const char* usage = "usage: gallery [IMAGE.png] --out FOLDER [--only NAME,NAME...] [--width PIXELS]\n";

// The largest kernel of the gallery is 63 pixels wide, and filters that read around their region need a margin of 31.
constexpr int leastSide = 96;

struct Arguments
{
    std::optional<std::filesystem::path> image;
    std::filesystem::path folder;
    std::vector<std::string> only;  // none: all
    int widest = 0;                 // 0: as wide as they are
};

std::vector<std::string> namesIn(std::string_view list)
{
    std::vector<std::string> names;
    while (!list.empty()) {
        const std::size_t length = std::min(list.find(','), list.size());
        names.emplace_back(list.substr(0, length));
        list.remove_prefix(std::min(length + 1, list.size()));
    }
    return names;
}

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--out" && i + 1 < argc && arguments.folder.empty()) {
            arguments.folder = argv[++i];
        } else if (word == "--only" && i + 1 < argc && arguments.only.empty()) {
            arguments.only = namesIn(argv[++i]);
            if (arguments.only.empty()) {
                return std::nullopt;
            }
        } else if (word == "--width" && i + 1 < argc && arguments.widest == 0) {
            if (!take(argv[++i], 1, 65535, arguments.widest)) {
                return std::nullopt;
            }
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

struct Choice
{
    const Section* section;
    const Exhibit* exhibit;
};

// In the order of the page, whatever the order of the names.
std::vector<Choice> chosen(const std::vector<std::string>& names)
{
    std::vector<Choice> choices;
    std::vector<std::string> unknown = names;
    for (const Section* section : allSections()) {
        for (const Exhibit& exhibit : section->exhibits) {
            if (names.empty() || std::find(names.begin(), names.end(), exhibit.file) != names.end()) {
                choices.push_back({section, &exhibit});
                std::erase(unknown, exhibit.file);
            }
        }
    }
    if (!unknown.empty()) {
        throw Failure("there is no picture '" + unknown.front() + "'");
    }
    return choices;
}

void run(const Arguments& arguments)
{
    const std::vector<Choice> choices = chosen(arguments.only);
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

    std::printf("lumcv gallery of %s, %d x %d pixels\n", sourceName.c_str(), gray.width(), gray.height());

    std::vector<Card> cards;
    for (const auto& [section, exhibit] : choices) {
        std::printf("[%2zu/%zu] %-56s", cards.size() + 1, choices.size(), exhibit->title.c_str());
        std::fflush(stdout);
        Shot shot;
        Picture picture = exhibit->run(source, shot);
        if (shot.runs() > 0) {
            std::printf("%9.3f ms", shot.milliseconds());
        }
        std::printf("\n");
        // the page tells the size of what was computed
        cards.push_back({section, exhibit, picture.width(), picture.height(), std::move(shot)});
        if (arguments.widest > 0) {
            picture = thumbnail(picture, arguments.widest);
        }
        writePng(arguments.folder / (exhibit->file + ".png"), picture);
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
