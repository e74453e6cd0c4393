// What a family puts into the gallery: a section with one exhibit for each picture.
//
// A file of this folder joins in by defining one Section; nothing else has to be changed:
//
//     Picture threshold(const Source& source, Shot& shot)
//     {
//         Picture result(source.gray.width(), source.gray.height(), 1);
//         shot.time(GALLERY_CALL(lumiSomething_8u_C1R(source.gray.pixels(), ..., source.gray.size())));
//         return result;
//     }
//
//     const Section section{30, "Thresholds", "One sentence about the family.",
//                           {{"threshold", "Threshold at 128", "One sentence about the picture.", threshold}}};
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "image.hpp"

/// A call of the library, as it runs and as the page prints it: one cannot say what the other does not do.
#define GALLERY_CALL(call) #call, [&]() -> LumStatus { return call; }

namespace gallery {

/// The picture that all exhibits are made of.
struct Source
{
    Picture colour;
    Picture gray;
};

/// The last argument of every GALLERY_CALL that needs scratch: a block of exactly the queried size.
using Block = std::vector<Lum8u>;

/// Runs the calls of one exhibit, measures them, and keeps their text for the page.
class Shot
{
  public:
    /// Runs a call that gives the same result each time: once to warm up, then several times under the clock.
    void time(const char* text, const std::function<LumStatus()>& call);

    /// Runs a call once under the clock, for calls that add to what the last one left. Repeat it with the same text.
    void timeOnce(const char* text, const std::function<LumStatus()>& call);

    /// Runs a call that only prepares (a size query, an Init): not measured, and shown above the measured one.
    void prepare(const char* text, const std::function<LumStatus()>& call);

    const std::vector<std::string>& calls() const
    {
        return calls_;
    }
    /// How many runs have been measured.
    int runs() const
    {
        return static_cast<int>(milliseconds_.size());
    }
    /// The median of the measured runs; 0 without any.
    double milliseconds() const;

  private:
    void show(const char* text);

    std::vector<std::string> calls_;
    std::vector<double> milliseconds_;
};

struct Exhibit
{
    std::string file;  ///< name of the picture's file without its ending, and of the place on the page
    std::string title;
    std::string note;
    std::function<Picture(const Source&, Shot&)> run;
};

struct Section
{
    Section(int place, std::string title, std::string note, std::vector<Exhibit> exhibits);

    int place;  ///< sections stand on the page in the order of this number
    std::string title;
    std::string note;
    std::vector<Exhibit> exhibits;
};

/// All sections that the program was built with, in the order of the page.
std::vector<const Section*> allSections();

}  // namespace gallery
