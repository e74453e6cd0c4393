// Rows of inpainting: twelve strokes, three pixels wide, are repaired, with the distance image, Init and all. The rows
// of the largest table are measured on 512x512 pixels, which is a size that pictures are repaired in.
#include <algorithm>
#include <cmath>

#include "bench/support/row.hpp"

namespace {

using namespace lumcv::bench;

constexpr Lum32f radius = 5;

View<const Lum8u> strokes(Job& job)
{
    const auto mask = job.mask();
    const LumiSize size = job.size();
    const auto row = [&](int y) { return const_cast<Lum8u*>(mask.row(y)); };
    for (int y = 0; y < size.height; ++y)
        std::fill_n(row(y), size.width, Lum8u{0});
    std::mt19937 random{7};
    const auto place = [&](int length) { return 1 + int(random() % unsigned(length - 2)); };
    for (int stroke = 0; stroke < 12; ++stroke) {
        const int x0 = place(size.width), y0 = place(size.height), x1 = place(size.width), y1 = place(size.height);
        const int steps = std::max({std::abs(x1 - x0), std::abs(y1 - y0), 1});
        for (int i = 0; i <= steps; ++i) {
            const int x = x0 + (x1 - x0) * i / steps, y = y0 + (y1 - y0) * i / steps;
            for (int v = -1; v <= 1; ++v)
                std::fill_n(row(y + v) + x - 1, 3, Lum8u{255});
        }
    }
    return mask;
}

View<const Lum8u> picture(Job& job, int channels)
{
    const auto image = job.source<Lum8u>(channels);
    const LumiSize size = job.size();
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < channels; ++c)
                const_cast<Lum8u*>(image.row(y))[channels * x + c] = Lum8u(
                    128 + 60 * std::sin(x / (9.0 + c)) * std::cos(y / 13.0) + image.row(y)[channels * x + c] % 16);
    return image;
}

auto repair(LumiInpaintMethod method, int channels)
{
    return [=](Job& job) -> Call {
        if (job.size().width > 512)
            job.workOn({512, 512});
        const LumiSize size = job.size();
        const auto s = picture(job, channels);
        const auto d = job.destination<Lum8u>(channels);
        const auto m = strokes(job);
        Lum32s marchingBytes = 0, specBytes = 0, bufferBytes = 0;
        lumiFastMarchingGetBufferSize_8u32f_C1R(size, &marchingBytes);
        lumiInpaintGetSize(m.pixels, m.step, size, radius, method, channels, &specBytes, &bufferBytes);
        auto* const spec = job.block<Lum8u>(std::size_t(specBytes));
        auto* const buffer = job.block<Lum8u>(std::size_t(std::max(bufferBytes, marchingBytes)));
        const Lum32s distStep = size.width * Lum32s(sizeof(Lum32f));
        auto* const dist = job.block<Lum32f>(std::size_t(size.width) * std::size_t(size.height));
        const auto init = channels == 1 ? lumiInpaintInit_8u_C1R : lumiInpaintInit_8u_C3R;
        const auto apply = channels == 1 ? lumiInpaint_8u_C1R : lumiInpaint_8u_C3R;
        return [=] {
            LumiInpaintState* state = nullptr;
            LumStatus status = lumiFastMarching_8u32f_C1R(m.pixels, m.step, dist, distStep, size, 0, buffer);
            if (status == lumOk)
                status = init(&state, dist, distStep, m.pixels, m.step, size, radius, method, spec, buffer);
            if (status == lumOk)
                status = apply(s.pixels, s.step, d.pixels, d.step, size, state, buffer);
            return status;
        };
    };
}

const Rows rows{{
    {"lumiInpaint_8u_C1R", "front 512", {42000, 12000}, repair(lumInpaintByFront, 1)},
    {"lumiInpaint_8u_C1R", "isophote 512", {22000, 8000}, repair(lumInpaintByIsophote, 1)},
    {"lumiInpaint_8u_C3R", "front 512", {}, repair(lumInpaintByFront, 3)},
    {"lumiInpaint_8u_C3R", "isophote 512", {}, repair(lumInpaintByIsophote, 3)},
}};

}  // namespace
