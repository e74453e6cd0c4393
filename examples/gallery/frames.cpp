#include "frames.hpp"

#include <algorithm>
#include <cstdio>

#include "image.hpp"

namespace gallery {

std::vector<std::filesystem::path> framesOf(const std::filesystem::path& folder)
{
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (auto entry = std::filesystem::directory_iterator(folder, error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        if (entry->path().extension() == ".png") {
            files.push_back(entry->path());
        }
    }
    if (error) {
        throw Failure("cannot read the folder '" + folder.string() + "': " + error.message());
    }
    if (files.empty()) {
        throw Failure("the folder '" + folder.string() + "' holds no PNG files");
    }
    std::sort(files.begin(), files.end());
    return files;
}

void makeFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw Failure("cannot make the folder '" + folder.string() + "': " + error.message());
    }
}

std::filesystem::path frameFile(const std::filesystem::path& folder, const std::string& kind, int frame)
{
    char number[32];
    std::snprintf(number, sizeof number, "-%04d.png", frame);
    return folder / (kind + number);
}

}  // namespace gallery
