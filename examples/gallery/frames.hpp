// Films as folders of PNG files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace gallery {

/// The PNG files of a folder in the order of their names.
std::vector<std::filesystem::path> framesOf(const std::filesystem::path& folder);

/// Makes a folder, and those above it, where there is none.
void makeFolder(const std::filesystem::path& folder);

/// The file of a frame: its number behind the kind of picture that it is.
std::filesystem::path frameFile(const std::filesystem::path& folder, const std::string& kind, int frame);

}  // namespace gallery
