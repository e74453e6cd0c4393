// Tells what moves in a film from a camera that stands.
//
//     watch [--from FOLDER] [--frames COUNT] [--plain FOLDER] FOLDER
//
// How the library is called is in watcher.cpp. The exit status is 0 on success, 1 if a file cannot be read or written
// or a call fails, and 2 for a wrong command line.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "busy_scene.hpp"
#include "frames.hpp"
#include "png_file.hpp"
#include "program.hpp"
#include "scene.hpp"
#include "watcher.hpp"
#include "words.hpp"

namespace {

using gallery::Picture;
using gallery::take;

constexpr const char* usage =
    "usage: watch [--from FOLDER] [--frames COUNT] [--plain FOLDER] FOLDER\n"
    "Learns the background of a film from a camera that stands, and writes for each frame into the folder:\n"
    "  classes-0000.png     white what is in front of the background, gray its shadow\n"
    "  background-0000.png  the background as it is known by then\n"
    "  history-0000.png     what has moved lately: white now, then yellow to red to violet\n"
    "Prints for each frame its number, and which part of it is foreground and shadow, in percent; for the drawn scene\n"
    "also the part of the pixels that are told right.\n"
    "  --from FOLDER   the frames are the PNG files of a folder, in the order of their names; without this option the\n"
    "                  program draws a scene\n"
    "  --frames COUNT  at most so many frames; 60 without this option\n"
    "  --plain FOLDER  also write the frames as they are\n";

struct Arguments
{
    std::string from, plain, to;
    int frames = 60;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        bool isGood = false, hasValue = true;
        if (word == "--from") {
            isGood = take(next, arguments.from);
        } else if (word == "--plain") {
            isGood = take(next, arguments.plain);
        } else if (word == "--frames") {
            isGood = take(next, 1, 10000, arguments.frames);
        } else {
            hasValue = false;
            isGood = !word.starts_with("-") && arguments.to.empty() && take(word, arguments.to);
        }
        if (!isGood) {
            return std::nullopt;
        }
        i += hasValue;
    }
    if (arguments.to.empty()) {
        return std::nullopt;
    }
    return arguments;
}

Picture colourOf(const Picture& picture)
{
    if (picture.channels() == 3) {
        return picture;
    }
    Picture colour(picture.width(), picture.height(), 3);
    for (std::size_t i = 0; i < colour.elements().size(); ++i) {
        colour.elements()[i] = picture.elements()[i / 3];
    }
    return colour;
}

double percentOf(const Picture& classes, Lum8u which)
{
    const auto count = std::count(classes.elements().begin(), classes.elements().end(), which);
    return 100.0 * static_cast<double>(count) / static_cast<double>(classes.elements().size());
}

double percentRight(const Picture& classes, const watch::BusyScene& scene, int frame)
{
    double right = 0;
    for (int y = 0; y < classes.height(); ++y) {
        for (int x = 0; x < classes.width(); ++x) {
            const watch::Shown shown = scene.shown(frame, x, y);
            const Lum8u expected = shown == watch::Shown::Ball     ? watch::foregroundClass
                                   : shown == watch::Shown::Shadow ? watch::shadowClass
                                                                   : Lum8u{0};
            right += classes.at(x, y) == expected;
        }
    }
    return 100.0 * right / static_cast<double>(classes.elements().size());
}

void run(const Arguments& arguments)
{
    int count = arguments.frames;
    std::function<Picture(int)> frameAt;
    std::optional<watch::BusyScene> scene;
    if (arguments.from.empty()) {
        scene.emplace(watch::middleOf(gallery::drawScene(), 400, 300));
        frameAt = [&scene](int i) { return scene->frame(i); };
    } else {
        const auto files = gallery::framesOf(arguments.from);
        count = std::min(count, static_cast<int>(files.size()));
        frameAt = [files](int i) { return colourOf(gallery::readPng(files[static_cast<std::size_t>(i)])); };
    }

    Picture frame = frameAt(0);
    const LumiSize size = frame.size();
    watch::Watcher watcher(size);
    gallery::makeFolder(arguments.to);
    if (!arguments.plain.empty()) {
        gallery::makeFolder(arguments.plain);
    }
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            frame = frameAt(i);
        }
        if (frame.width() != size.width || frame.height() != size.height) {
            throw gallery::Failure("frame " + std::to_string(i) + " has another size than the first one");
        }
        watcher.take(frame);
        if (!arguments.plain.empty()) {
            gallery::writePng(gallery::frameFile(arguments.plain, "frame", i), frame);
        }
        gallery::writePng(gallery::frameFile(arguments.to, "classes", i), watcher.classes());
        gallery::writePng(gallery::frameFile(arguments.to, "background", i), watcher.background());
        gallery::writePng(gallery::frameFile(arguments.to, "history", i),
                          watch::historyPicture(frame, watcher.history(), watcher.now(), watch::Watcher::duration));
        std::printf("%d %.2f %.2f", i, percentOf(watcher.classes(), watch::foregroundClass),
                    percentOf(watcher.classes(), watch::shadowClass));
        if (scene) {
            std::printf(" %.2f", percentRight(watcher.classes(), *scene, i));
        }
        std::printf("\n");
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("watch", usage, argc, argv, parse, run);
}
