// Shrinks pictures by whole numbers. Few levels make PNG files a third as large, and take less away than it seems.
#include "thumbnail.hpp"

namespace gallery {
namespace {

Lum8u toLevel(int value)
{
    constexpr int last = 23;
    const int level = (value * last + 127) / 255;
    return static_cast<Lum8u>((level * 255 + last / 2) / last);
}

bool isGray(const Picture& picture)
{
    if (picture.channels() != 3) {
        return false;
    }
    const auto& elements = picture.elements();
    for (std::size_t i = 0; i < elements.size(); i += 3) {
        if (elements[i] != elements[i + 1] || elements[i] != elements[i + 2]) {
            return false;
        }
    }
    return true;
}

}  // namespace

Picture thumbnail(const Picture& picture, int widest)
{
    const int factor = std::min((picture.width() + widest - 1) / widest, std::min(picture.width(), picture.height()));
    const int area = factor * factor;
    Picture small(picture.width() / factor, picture.height() / factor, isGray(picture) ? 1 : picture.channels());
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            for (int c = 0; c < small.channels(); ++c) {
                int sum = 0;
                for (int j = 0; j < factor; ++j) {
                    for (int i = 0; i < factor; ++i) {
                        sum += picture.at(x * factor + i, y * factor + j, c);
                    }
                }
                small.at(x, y, c) = toLevel((sum + area / 2) / area);
            }
        }
    }
    return small;
}

}  // namespace gallery
