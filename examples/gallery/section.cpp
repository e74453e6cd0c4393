// The register of sections, and the clock of the exhibits.
#include "section.hpp"

#include <time.h>

#include <algorithm>

namespace gallery {
namespace {

std::vector<const Section*>& sections()
{
    static std::vector<const Section*> list;
    return list;
}

// "lumiName(a,\n   b)" in one line, and only the name for messages
std::string nameOf(const char* text)
{
    const std::string call(text);
    return call.substr(0, call.find('('));
}

void check(const char* text, LumStatus status)
{
    if (status != lumOk) {
        throw Failure(nameOf(text) + " returned the status " + std::to_string(status));
    }
}

// The processor time of this thread, not the time of the wall: on a busy machine another program's share of the
// processor would otherwise count as the call's.
double threadMilliseconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double run(const char* text, const std::function<LumStatus()>& call)
{
    const double start = threadMilliseconds();
    const LumStatus status = call();
    const double end = threadMilliseconds();
    check(text, status);
    return end - start;
}

}  // namespace

Section::Section(int place_, std::string title_, std::string note_, std::vector<Exhibit> exhibits_)
    : place(place_), title(std::move(title_)), note(std::move(note_)), exhibits(std::move(exhibits_))
{
    sections().push_back(this);
}

std::vector<const Section*> allSections()
{
    std::vector<const Section*> ordered = sections();
    std::sort(ordered.begin(), ordered.end(), [](const Section* a, const Section* b) { return a->place < b->place; });
    return ordered;
}

void Shot::show(const char* text)
{
    if (std::find(calls_.begin(), calls_.end(), text) == calls_.end()) {
        calls_.emplace_back(text);
    }
}

void Shot::prepare(const char* text, const std::function<LumStatus()>& call)
{
    show(text);
    check(text, call());
}

void Shot::time(const char* text, const std::function<LumStatus()>& call)
{
    constexpr int fewestRuns = 5;
    constexpr int mostRuns = 31;
    constexpr double enoughMilliseconds = 100.0;

    show(text);
    double total = run(text, call);
    for (int i = 0; i < mostRuns && (i < fewestRuns || total < enoughMilliseconds); ++i) {
        milliseconds_.push_back(run(text, call));
        total += milliseconds_.back();
    }
}

void Shot::timeOnce(const char* text, const std::function<LumStatus()>& call)
{
    show(text);
    milliseconds_.push_back(run(text, call));
}

double Shot::milliseconds() const
{
    if (milliseconds_.empty()) {
        return 0.0;
    }
    std::vector<double> ordered = milliseconds_;
    const auto middle = ordered.begin() + static_cast<std::ptrdiff_t>(ordered.size() / 2);
    std::nth_element(ordered.begin(), middle, ordered.end());
    return *middle;
}

}  // namespace gallery
