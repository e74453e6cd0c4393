// The contact sheet: one HTML page that shows every picture with its operation, its calls and its time.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "section.hpp"

namespace gallery {

/// What the page says about one finished exhibit.
struct Card
{
    const Section* section;
    const Exhibit* exhibit;
    int width;
    int height;
    Shot shot;
};

void writePage(const std::filesystem::path& path, const std::string& sourceName, const std::vector<Card>& cards);

}  // namespace gallery
