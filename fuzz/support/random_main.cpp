// Runs a fixed number of cases, the same ones each time, for machines without a coverage-guided fuzzer.
//
//   --cases=N   how many (default 10000)
//   --first=N   number of the first (default 0); a failing case is repeated with --first=ITS_NUMBER --cases=1
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "fuzz/support/call.hpp"
#include "fuzz/support/fault_report.hpp"

namespace {

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
    lumcv::fuzz::reportFaults();

    for (long current = first; current < first + cases; ++current) {
        lumcv::fuzz::nameCase("case " + std::to_string(current));
        lumcv::fuzz::Choices choices(std::uint64_t(current) + 1);
        lumcv::fuzz::runOne(choices);
    }
    std::printf("%ld cases\n", cases);
    return 0;
}
