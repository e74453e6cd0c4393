// Follows the corners of the first frame of a film through all others and draws their ways into PNG files.
//
//     track [--from FOLDER] [--frames COUNT] [--corners COUNT] [--window PIXELS] [--plain FOLDER] FOLDER
//
// How the library is called is in tracker.cpp. The exit status is 0 on success, 1 if a file cannot be read or written
// or a call fails, and 2 for a wrong command line.
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "film.hpp"
#include "frames.hpp"
#include "png_file.hpp"
#include "program.hpp"
#include "scene.hpp"
#include "shapes.hpp"
#include "tracker.hpp"
#include "words.hpp"

namespace {

using gallery::Picture;
using gallery::take;

constexpr const char* usage =
    "usage: track [--from FOLDER] [--frames COUNT] [--corners COUNT] [--window PIXELS] [--plain FOLDER] FOLDER\n"
    "Follows the corners of the first frame through a film and writes its frames into the folder, with their ways "
    "drawn\n"
    "in and a cross where a corner was lost. Prints x and y of each corner in the first frame and where it was seen\n"
    "last, and in how many frames it was followed.\n"
    "  --from FOLDER    the frames are the PNG files of a folder, in the order of their names; without this option "
    "the\n"
    "                   program draws a scene\n"
    "  --frames COUNT   at most so many frames; 24 without this option\n"
    "  --corners COUNT  at most so many corners, the strongest ones; 150 without this option\n"
    "  --window PIXELS  side of the window that is compared, 3 to 99; 15 without this option\n"
    "  --plain FOLDER   also write the frames as they are\n";

struct Arguments
{
    std::string from, plain, to;
    int frames = 24;
    track::TrackOptions options;
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
        } else if (word == "--corners") {
            isGood = take(next, 1, 100000, arguments.options.mostCorners);
        } else if (word == "--window") {
            isGood = take(next, 3, 99, arguments.options.window);
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

// A colour of its own for each of a few neighbours in the list; lost ones are gray with a red cross.
void draw(Picture& frame, const std::vector<track::Track>& tracks)
{
    constexpr gallery::Colour colours[] = {{255, 200, 40}, {90, 230, 90}, {80, 200, 255}, {255, 130, 220}};
    constexpr gallery::Colour gray = {150, 150, 150}, red = {255, 40, 30};
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const track::Track& track = tracks[i];
        const gallery::Colour& colour = track.isLost ? gray : colours[i % std::size(colours)];
        for (std::size_t k = 1; k < track.path.size(); ++k) {
            const track::Point a = track.path[k - 1], b = track.path[k];
            gallery::drawStroke(frame, a.x, a.y, b.x, b.y, 1.2f, colour);
        }
        const track::Point end = track.path.back();
        if (track.isLost) {
            gallery::drawStroke(frame, end.x - 3, end.y - 3, end.x + 3, end.y + 3, 1.4f, red);
            gallery::drawStroke(frame, end.x - 3, end.y + 3, end.x + 3, end.y - 3, 1.4f, red);
        } else {
            gallery::drawRing(frame, end.x, end.y, 1.5f, 3.0f, colour);
        }
    }
}

void run(const Arguments& arguments)
{
    int count = arguments.frames;
    std::function<Picture(int)> frameAt;
    if (arguments.from.empty()) {
        frameAt = [scene = track::MovingScene(count)](int i) { return scene.frame(i); };
    } else {
        const auto files = gallery::framesOf(arguments.from);
        count = std::min(count, static_cast<int>(files.size()));
        frameAt = [files](int i) { return gallery::readPng(files[static_cast<std::size_t>(i)]); };
    }

    Picture frame = frameAt(0);
    const LumiSize size = frame.size();
    track::Tracker tracker(gallery::grayOf(frame), arguments.options);
    gallery::makeFolder(arguments.to);
    if (!arguments.plain.empty()) {
        gallery::makeFolder(arguments.plain);
    }
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            frame = frameAt(i);
            if (frame.width() != size.width || frame.height() != size.height) {
                throw gallery::Failure("frame " + std::to_string(i) + " has another size than the first one");
            }
            tracker.follow(gallery::grayOf(frame));
        }
        if (!arguments.plain.empty()) {
            gallery::writePng(gallery::frameFile(arguments.plain, "frame", i), frame);
        }
        draw(frame, tracker.tracks());
        gallery::writePng(gallery::frameFile(arguments.to, "frame", i), frame);
    }
    for (const track::Track& track : tracker.tracks()) {
        const track::Point first = track.path.front(), last = track.path.back();
        std::printf("%.2f %.2f %.2f %.2f %d%s\n", static_cast<double>(first.x), static_cast<double>(first.y),
                    static_cast<double>(last.x), static_cast<double>(last.y), static_cast<int>(track.path.size()),
                    track.isLost ? " lost" : "");
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("track", usage, argc, argv, parse, run);
}
