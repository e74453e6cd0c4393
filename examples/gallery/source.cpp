// Gallery: the picture itself, as the operations get it.
#include "section.hpp"

namespace gallery {
namespace {

const Section section{
    0,
    "The source",
    "What every operation below starts from.",
    {{"source-rgb", "Source, RGB", "Three bytes a pixel.", [](const Source& source, Shot&) { return source.colour; }},
     {"source-gray", "Source, gray", "One byte a pixel.", [](const Source& source, Shot&) { return source.gray; }}},
};

}  // namespace
}  // namespace gallery
