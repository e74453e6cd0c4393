// Runs a fixed number of cases, the same ones each time, for machines without a coverage-guided fuzzer.
//
//   --cases=N   how many (default 10000)
//   --first=N   number of the first (default 0); a failing case is repeated with --first=ITS_NUMBER --cases=1
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

long current = 0;

// Says which case ended in a fault or failed, and leaves the rest to whoever handled the signal before.
extern "C" void reportCase(int signal)
{
    char text[64];
    const int length = std::snprintf(text, sizeof text, "case %ld\n", current);
    static_cast<void>(!write(STDERR_FILENO, text, std::size_t(length)));
    if (signal != SIGABRT)  // a failed expectation has told already
        lumcv::fuzz::printAnnouncement();
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    sigaction(signal, &standard, nullptr);
    raise(signal);
}

long numberAfter(const char* argument, const char* name, long otherwise)
{
    const std::size_t length = std::strlen(name);
    return std::strncmp(argument, name, length) == 0 ? std::atol(argument + length) : otherwise;
}

}  // namespace

int main(int argc, char** argv)
{
    long cases = 10000, first = 0;
    for (int i = 1; i < argc; ++i) {
        cases = numberAfter(argv[i], "--cases=", cases);
        first = numberAfter(argv[i], "--first=", first);
    }
    struct sigaction report = {};
    report.sa_handler = reportCase;
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        sigaction(signal, &report, nullptr);

    for (current = first; current < first + cases; ++current) {
        lumcv::fuzz::Choices choices(std::uint64_t(current) + 1);
        lumcv::fuzz::runOne(choices);
    }
    std::printf("%ld cases\n", cases);
    return 0;
}
