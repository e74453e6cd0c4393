// Reconstruction in two ways: as it is defined, by unit dilations until nothing changes, and with a queue.
#pragma once

#include <queue>
#include <utility>
#include <vector>

#include "lumcv/lumcv.h"
#include "support/image.hpp"

namespace lumcv::test::reconstruct {

enum class Form
{
    Dilate,
    Erode
};

/// Whether a value spreads to where the other one stands, as far as the mask lets it.
template <class T>
bool spreadsOver(Form form, T value, T other)
{
    return form == Form::Dilate ? value > other : value < other;
}

/// The value, or the mask where it stops the value.
template <class T>
T limited(Form form, T value, T mask)
{
    return spreadsOver(form, value, mask) ? mask : value;
}

/// Calls f(x, y) for each neighbour within the image: four of them, or eight in the chessboard measure.
template <class T, class F>
void forEachNeighbour(const Image<T>& image, LumiDistanceNorm norm, int x, int y, F f)
{
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const bool itself = dx == 0 && dy == 0;
            const bool corner = dx != 0 && dy != 0;
            const bool inside = x + dx >= 0 && x + dx < image.width() && y + dy >= 0 && y + dy < image.height();
            if (!itself && inside && (!corner || norm == lumDistanceNormInf)) {
                f(x + dx, y + dy);
            }
        }
    }
}

/// As it is defined; the marker becomes the result. Takes as many rounds over the image as the longest way has pixels.
template <class T>
void byUnitSteps(Form form, LumiDistanceNorm norm, const Image<T>& mask, Image<T>& marker)
{
    marker.forEach(Area::Roi, [&](T& pixel, int x, int y, int) { pixel = limited(form, pixel, mask.at(x, y)); });
    for (bool changed = true; changed;) {
        changed = false;
        const Image<T> before = marker;
        marker.forEach(Area::Roi, [&](T& pixel, int x, int y, int) {
            T best = pixel;
            forEachNeighbour(before, norm, x, y, [&](int nx, int ny) {
                best = spreadsOver(form, before.at(nx, ny), best) ? before.at(nx, ny) : best;
            });
            best = limited(form, best, mask.at(x, y));
            changed = changed || spreadsOver(form, best, pixel);
            pixel = best;
        });
    }
}

/// With a queue from which the value that spreads farthest comes first, so that what comes out is final.
template <class T>
void byQueue(Form form, LumiDistanceNorm norm, const Image<T>& mask, Image<T>& marker)
{
    struct Entry
    {
        T value;
        int x, y;
    };
    const auto comesLater = [form](const Entry& a, const Entry& b) { return spreadsOver(form, b.value, a.value); };
    std::priority_queue<Entry, std::vector<Entry>, decltype(comesLater)> queue(comesLater);
    marker.forEach(Area::Roi, [&](T& pixel, int x, int y, int) {
        pixel = limited(form, pixel, mask.at(x, y));
        queue.push({pixel, x, y});
    });
    while (!queue.empty()) {
        const Entry entry = queue.top();
        queue.pop();
        if (spreadsOver(form, marker.at(entry.x, entry.y), entry.value)) {
            continue;  // a better value has come to this pixel since
        }
        forEachNeighbour(marker, norm, entry.x, entry.y, [&](int x, int y) {
            const T value = limited(form, entry.value, mask.at(x, y));
            if (spreadsOver(form, value, marker.at(x, y))) {
                marker.at(x, y) = value;
                queue.push({value, x, y});
            }
        });
    }
}

}  // namespace lumcv::test::reconstruct
