// same_pictures FOLDER FOLDER: whether both hold PNG files of the same names and pixels, whatever compressed them.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <set>
#include <string>

#include "png_file.hpp"

namespace {

using gallery::Picture;

std::set<std::string> picturesOf(const std::filesystem::path& folder)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".png") {
            names.insert(entry.path().filename().string());
        }
    }
    return names;
}

bool isSame(const std::string& name, const Picture& first, const Picture& second)
{
    if (first.width() != second.width() || first.height() != second.height()) {
        std::printf("%s: %d x %d pixels and %d x %d\n", name.c_str(), first.width(), first.height(), second.width(),
                    second.height());
        return false;
    }
    for (int y = 0; y < first.height(); ++y) {
        for (int x = 0; x < first.width(); ++x) {
            for (int c = 0; c < first.channels(); ++c) {
                if (first.at(x, y, c) != second.at(x, y, c)) {
                    std::printf("%s: channel %d of pixel (%d, %d) is %d and %d\n", name.c_str(), c, x, y,
                                first.at(x, y, c), second.at(x, y, c));
                    return false;
                }
            }
        }
    }
    return true;
}

bool areSame(const std::filesystem::path& first, const std::filesystem::path& second)
{
    const auto names = picturesOf(first);
    if (names.empty() || names != picturesOf(second)) {
        std::printf("the folders do not hold pictures of the same names\n");
        return false;
    }
    bool same = true;
    for (const std::string& name : names) {
        // a PNG arrives as RGB, of however many channels its file is
        same = isSame(name, gallery::readPng(first / name), gallery::readPng(second / name)) && same;
    }
    return same;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fputs("usage: same_pictures FOLDER FOLDER\n", stderr);
        return 2;
    }
    try {
        return areSame(argv[1], argv[2]) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "same_pictures: %s\n", failure.what());
        return 1;
    }
}
