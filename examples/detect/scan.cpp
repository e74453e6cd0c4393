#include "scan.hpp"

#include <algorithm>
#include <cmath>

#include "stage_record.hpp"

namespace detect {
namespace {

using gallery::Image;
using gallery::Picture;
using lumcv::call;
using Region = lumcv::View<const Lum8u>;

// Marks the places in a region where the window passes all stages, and returns their number.
int runStages(Region region, LumiSize window, int stride, float leastDeviation, std::vector<StageRecord>& stages,
              Image<Lum8u>& mask)
{
    // sums and squares have one row and one column more than the region
    const LumiSize size = region.size();
    Image<Lum32f> sums(size.width + 1, size.height + 1, 1);
    Image<Lum64f> squares(size.width + 1, size.height + 1, 1);
    call<lumiSqrIntegral_8u32f64f_C1R>(region, sums.view(), squares.view(), size, 0.0f, 0.0).throwIfError();

    // the norm of a window is the deviation of its pixels
    Image<Lum32f> norms(mask.width(), mask.height(), 1);
    call<lumiRectStdDev_32f_C1R>(sums.view(), squares.view(), norms.view(), norms.size(),
                                 LumiRect{0, 0, window.width, window.height})
        .throwIfError();

    // candidates are the places of a grid that are not flat
    int positive = 0;
    for (int y = 0; y < mask.height(); y += stride) {
        for (int x = 0; x < mask.width(); x += stride) {
            if (norms.at(x, y) >= leastDeviation) {
                mask.at(x, y) = 255;
                ++positive;
            }
        }
    }

    // Each stage clears the places that fail it. It takes the count that the stage before has left for an estimate of
    // how many candidates are still there, and goes through the rows as that suits best.
    for (StageRecord& stage : stages) {
        if (positive == 0) {
            break;
        }
        call<lumiApplyHaarClassifier_32f_C1R>(sums.view(), norms.view(), mask.view(), mask.size(), &positive,
                                              stage.threshold(), stage.record())
            .throwIfError();
    }
    return positive;
}

// Adds the places of one window size.
void scanAt(const Picture& gray, const Cascade& cascade, LumiSize window, std::vector<LumiRect>& found)
{
    // A float holds integers exactly up to 2 to the 24, which is what 256 x 256 pixels add up to at most. So the
    // picture is taken in tiles of that size, whatever its own is; only windows over 128 pixels need larger ones, and
    // are large enough not to mind. Neighbouring tiles overlap, for each holds whole windows.
    const int tileSide = std::max(256, 2 * std::max(window.width, window.height));
    const LumiSize tile = {std::min(tileSide, gray.width()), std::min(tileSide, gray.height())};
    const LumiSize places = {tile.width - window.width + 1, tile.height - window.height + 1};

    // a window twice as large is moved by twice as much, so an object is found in as many windows, large or small
    const int stride = std::max(1, window.width / cascade.windowWidth);
    std::vector<StageRecord> stages;
    for (const Stage& stage : cascade.stages) {
        stages.emplace_back(stage, cascade, window, places);
    }
    // the grid goes on from tile to tile
    const int right = (places.width + stride - 1) / stride * stride;
    const int down = (places.height + stride - 1) / stride * stride;
    for (int top = 0; top + window.height <= gray.height(); top += down) {
        for (int left = 0; left + window.width <= gray.width(); left += right) {
            const LumiSize size = {std::min(tile.width, gray.width() - left),
                                   std::min(tile.height, gray.height() - top)};
            const Region region = gray.view().part({left, top, size.width, size.height});
            Image<Lum8u> mask(size.width - window.width + 1, size.height - window.height + 1, 1);
            if (runStages(region, window, stride, cascade.leastDeviation, stages, mask) == 0) {
                continue;
            }
            for (int y = 0; y < mask.height(); ++y) {
                for (int x = 0; x < mask.width(); ++x) {
                    if (mask.at(x, y) != 0) {
                        found.push_back({left + x, top + y, window.width, window.height});
                    }
                }
            }
        }
    }
}

double area(const LumiRect& r)
{
    return 1.0 * r.width * r.height;
}

// What two rectangles have in common, in pixels.
double common(const LumiRect& a, const LumiRect& b)
{
    const int width = std::min(a.x + a.width, b.x + b.width) - std::max(a.x, b.x);
    const int height = std::min(a.y + a.height, b.y + b.height) - std::max(a.y, b.y);
    return width > 0 && height > 0 ? 1.0 * width * height : 0.0;
}

// Windows that are taken for one object, and their mean.
struct Group
{
    LumiRect mean;
    int windows;
    double x, y, width, height;  // summed up

    void add(const LumiRect& window)
    {
        x += window.x;
        y += window.y;
        width += window.width;
        height += window.height;
        ++windows;
        mean = {static_cast<int>(std::lround(x / windows)), static_cast<int>(std::lround(y / windows)),
                static_cast<int>(std::lround(width / windows)), static_cast<int>(std::lround(height / windows))};
    }
};

}  // namespace

std::vector<LumiRect> passingWindows(const Picture& gray, const Cascade& cascade, const ScanOptions& options)
{
    std::vector<LumiRect> found;
    const double start = std::max(1.0, 1.0 * options.smallest / cascade.windowWidth);
    int lastWidth = 0;
    for (double scale = start;; scale *= options.growth) {
        const double width = std::round(scale * cascade.windowWidth);
        const double height = std::round(scale * cascade.windowHeight);
        if (width > gray.width() || height > gray.height()) {
            return found;
        }
        const LumiSize window = {static_cast<int>(width), static_cast<int>(height)};
        if (window.width > lastWidth) {
            scanAt(gray, cascade, window, found);
            lastWidth = window.width;
        }
    }
}

std::vector<Found> mergeOverlapping(const std::vector<LumiRect>& windows, const ScanOptions& options)
{
    // each window joins the group whose mean it overlaps most, or founds one
    std::vector<Group> groups;
    for (const LumiRect& window : windows) {
        Group* nearest = nullptr;
        double most = options.overlap;
        for (Group& group : groups) {
            const double shared = common(window, group.mean);
            const double overlap = shared / (area(window) + area(group.mean) - shared);
            if (overlap >= most) {
                most = overlap;
                nearest = &group;
            }
        }
        if (nearest == nullptr) {
            groups.push_back({});
            nearest = &groups.back();
        }
        nearest->add(window);
    }
    std::stable_sort(groups.begin(), groups.end(),
                     [](const Group& a, const Group& b) { return a.windows > b.windows; });

    // of two groups of which one covers half of the other, the larger one is the object
    std::vector<Found> objects;
    for (const Group& group : groups) {
        const bool covered = std::any_of(objects.begin(), objects.end(), [&](const Found& object) {
            return common(group.mean, object.place) > 0.5 * std::min(area(group.mean), area(object.place));
        });
        if (group.windows >= options.fewestWindows && !covered) {
            objects.push_back({group.mean, group.windows});
        }
    }
    return objects;
}

std::vector<Found> findObjects(const Picture& gray, const Cascade& cascade, const ScanOptions& options)
{
    return mergeOverlapping(passingWindows(gray, cascade, options), options);
}

void drawFrame(Picture& picture, const LumiRect& place, const Lum8u* colour)
{
    constexpr int thickness = 2;
    for (int y = std::max(place.y, 0); y < std::min(place.y + place.height, picture.height()); ++y) {
        for (int x = std::max(place.x, 0); x < std::min(place.x + place.width, picture.width()); ++x) {
            const int fromEdge =
                std::min({x - place.x, place.x + place.width - 1 - x, y - place.y, place.y + place.height - 1 - y});
            for (int c = 0; c < picture.channels() && fromEdge < thickness; ++c) {
                picture.at(x, y, c) = colour[c];
            }
        }
    }
}

}  // namespace detect
