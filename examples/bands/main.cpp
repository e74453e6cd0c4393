// Works on a large picture in bands, on all cores, and tells whether the bytes are those of the whole picture.
//
//     bands [options] [PHOTO.png]
//
// How the picture is cut and how the library is called is in bands.cpp. The exit status is 0 on success, 1 if a file
// cannot be read or written, a call fails or a byte differs, and 2 for a wrong command line.
#include <oneapi/tbb/global_control.h>
#include <oneapi/tbb/info.h>
#include <oneapi/tbb/task_arena.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "bands.hpp"
#include "png_file.hpp"
#include "program.hpp"
#include "scene.hpp"
#include "words.hpp"

namespace {

using gallery::Picture;

constexpr const char* usage =
    "usage: bands [options] [PHOTO.png]\n"
    "Smooths a picture, takes its gradient and opens that: first by one call each, then in bands on all cores. Prints\n"
    "how long it takes on one core and on all, and compares the results byte for byte. Without a photo, a large "
    "picture\n"
    "is drawn.\n"
    "  --rows ROWS        rows of a band; 64 without this option\n"
    "  --threads COUNT    how many threads; as many as there are cores without this option\n"
    "  --result FILE.png  writes the result\n";

struct Arguments
{
    int rows = 64;
    int threads = oneapi::tbb::info::default_concurrency();
    std::string photo, result;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        if (word == "--rows" && gallery::take(next, 1, 1000000, arguments.rows)) {
            ++i;
        } else if (word == "--threads" && gallery::take(next, 1, 1000, arguments.threads)) {
            ++i;
        } else if (word == "--result" && !next.empty()) {
            arguments.result = next;
            ++i;
        } else if (!word.starts_with("-") && arguments.photo.empty()) {
            arguments.photo = word;
        } else {
            return std::nullopt;
        }
    }
    return arguments;
}

// The least of several times, in milliseconds: what the others have more is other programs' share of the cores.
template <class Work>
double leastTime(const Work& work)
{
    double least = 1e300;
    for (int i = 0; i < 5; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        least = std::min(least, time.count());
    }
    return least;
}

void run(const Arguments& arguments)
{
    const Picture gray = gallery::grayOf(arguments.photo.empty() ? gallery::tiledUpTo(gallery::drawScene(), 4000)
                                                                 : gallery::readPng(arguments.photo));
    const bands::Chain chain(gray.size());
    Picture whole = gray, inBands = gray;
    const double one = leastTime([&] { whole = chain.whole(gray); });

    // more threads than cores are of no use, but they are what was asked for
    const auto count = static_cast<std::size_t>(arguments.threads);
    const oneapi::tbb::global_control limit(oneapi::tbb::global_control::max_allowed_parallelism, count);
    oneapi::tbb::task_arena arena(arguments.threads);
    const double all = leastTime([&] { arena.execute([&] { inBands = chain.inBands(gray, arguments.rows); }); });

    std::printf("%d x %d pixels in bands of %d rows\n", gray.width(), gray.height(), arguments.rows);
    std::printf("by one call each on one core: %.1f ms\n", one);
    std::printf("in bands on %d threads: %.1f ms, %.1f times as fast\n", arguments.threads, all, one / all);
    if (whole.elements() != inBands.elements()) {
        throw gallery::Failure("the bands differ from the whole picture");
    }
    std::printf("the same bytes\n");
    if (!arguments.result.empty()) {
        gallery::writePng(arguments.result, inBands);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return gallery::runProgram("bands", usage, argc, argv, parse, run);
}
