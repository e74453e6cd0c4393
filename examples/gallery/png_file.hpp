// Pictures from and to PNG files. Whatever a file's colour type is, it arrives as 8-bit RGB.
#pragma once

#include <filesystem>

#include "image.hpp"

namespace gallery {

/// Reads any PNG: palettes are resolved, 16 bits become 8, transparent pixels are laid on white, gray becomes RGB.
Picture readPng(const std::filesystem::path& path);

/// Writes a picture of one channel as gray, of three as RGB.
void writePng(const std::filesystem::path& path, const Picture& picture);

}  // namespace gallery
