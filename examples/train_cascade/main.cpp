// Trains the cascade that examples/detect finds coins with, from pictures that it draws itself.
//
//     train_cascade [--samples FILE.png] COINS.cascade
//
// The same file comes out on every machine. With --samples, a sheet of what it learns from is written as well. The exit
// status is 0 on success, 1 if a file cannot be written, and 2 for a wrong command line.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "boosting.hpp"
#include "png_file.hpp"
#include "program.hpp"

namespace train {
namespace {

using gallery::Failure;
using gallery::Picture;
using gallery::Random;

constexpr const char* usage =
    "usage: train_cascade [--samples FILE.png] COINS.cascade\n"
    "Learns to tell coins from other things on tables that it draws, and writes the cascade.\n"
    "  --samples FILE.png  also writes windows that it learnt from: coins above, others below\n";

constexpr const char* remark =
    "# Coins that are brighter than what they lie on. Written by train_cascade; detect/cascade.hpp tells the format.\n";

constexpr std::uint32_t seed = 5;
constexpr std::size_t coinCount = 1500;
constexpr std::size_t windowsOfCoin = 2;
// The rarer the windows that pass become, the more tables they are looked for on; but not without end.
constexpr int mostTables = 160;
constexpr int windowsOfTable = 1500;
// Many from few tables would teach those tables only.
constexpr std::size_t learntOfTable = 60;

// Eight stages that each let a third through leave one window of five thousand.
constexpr train::Goals goals = {
    .mostStages = 8, .mostClassifiers = 18, .keptCoins = 995, .passedOthers = 350, .others = 2500, .fewestOthers = 150};

struct Arguments
{
    std::string cascade;
    std::string samples;
};

std::optional<Arguments> parse(int argc, char** argv)
{
    Arguments arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word == "--samples" && i + 1 < argc && arguments.samples.empty()) {
            arguments.samples = argv[++i];
        } else if (!word.starts_with("-") && arguments.cascade.empty()) {
            arguments.cascade = word;
        } else {
            return std::nullopt;
        }
    }
    if (arguments.cascade.empty()) {
        return std::nullopt;
    }
    return arguments;
}

// The file that is written at the end. It is opened at the beginning, so that nobody waits for a file that cannot be.
class TextFile
{
  public:
    explicit TextFile(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb"), std::fclose)
    {
        if (!file_) {
            throw fail();
        }
    }

    void write(const std::string& text)
    {
        if (std::fwrite(text.data(), 1, text.size(), file_.get()) != text.size() || std::fclose(file_.release()) != 0) {
            throw fail();
        }
    }

  private:
    Failure fail() const
    {
        return Failure("cannot write '" + path_ + "': " + std::strerror(errno));
    }

    std::string path_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

// Windows side by side, each enlarged twice.
Picture sheet(const std::vector<Sample>& coins, const std::vector<Sample>& others)
{
    constexpr int columns = 24;
    constexpr int rowsOfEach = 8;
    constexpr int cell = 2 * window + 2;
    Picture picture(columns * cell, 2 * rowsOfEach * cell, 1, 255);
    for (int i = 0; i < 2 * rowsOfEach * columns; ++i) {
        const bool isCoin = i < rowsOfEach * columns;
        const std::vector<Sample>& samples = isCoin ? coins : others;
        const std::size_t number = static_cast<std::size_t>(isCoin ? i : i - rowsOfEach * columns);
        if (number >= samples.size()) {
            continue;
        }
        const auto& sums = samples[number].sums;
        for (int y = 0; y < 2 * window; ++y) {
            for (int x = 0; x < 2 * window; ++x) {
                const int u = x / 2, v = y / 2;
                picture.at(i % columns * cell + x, i / columns * cell + y) =
                    static_cast<Lum8u>(sums[v + 1][u + 1] - sums[v + 1][u] - sums[v][u + 1] + sums[v][u]);
            }
        }
    }
    return picture;
}

void run(const Arguments& arguments)
{
    TextFile file(arguments.cascade);
    Random random(seed);
    std::vector<Sample> coins;
    while (coins.size() < coinCount) {
        const Cutter cutter(drawTable(random));
        for (std::size_t i = 0; i < windowsOfCoin * cutter.coins(); ++i) {
            if (const auto sample = cutter.coin(i / windowsOfCoin, random)) {
                coins.push_back(*sample);
            }
        }
    }

    std::vector<Sample> firstOthers;
    const auto findOthers = [&](const Passes& passes, std::size_t wanted) {
        std::vector<Sample> others;
        for (int i = 0; i < mostTables && others.size() < wanted; ++i) {
            const Cutter cutter(drawTable(random));
            const std::size_t enough = std::min(others.size() + learntOfTable, wanted);
            for (int j = 0; j < windowsOfTable && others.size() < enough; ++j) {
                const auto sample = cutter.other(random);
                if (sample && passes(*sample)) {
                    others.push_back(*sample);
                }
            }
        }
        if (firstOthers.empty()) {
            firstOthers = others;
        }
        return others;
    };
    const auto report = [](std::size_t classifiers, std::size_t kept, std::size_t ofCoins, std::size_t passed,
                           std::size_t ofOthers) {
        std::printf("a stage of %2zu classifiers: %zu of %zu coins pass, %zu of %zu other windows\n", classifiers, kept,
                    ofCoins, passed, ofOthers);
        std::fflush(stdout);
    };
    const detect::Cascade cascade = boost(coins, findOthers, goals, report);
    file.write(remark + detect::cascadeText(cascade));
    if (!arguments.samples.empty()) {
        gallery::writePng(arguments.samples, sheet(coins, firstOthers));
    }
}

}  // namespace
}  // namespace train

int main(int argc, char** argv)
{
    return gallery::runProgram("train_cascade", train::usage, argc, argv, train::parse, train::run);
}
