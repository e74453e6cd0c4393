// How the programs of the examples begin and end.
#pragma once

#include <cstdio>
#include <exception>
#include <new>

namespace gallery {

/// Runs a program on what `parse` makes of its arguments; returns its exit status: 2, after the usage, for arguments
/// that cannot be understood, and 1, after the reason, for a failure.
template <class Parse, class Run>
int runProgram(const char* name, const char* usage, int argc, char** argv, Parse parse, Run run)
{
    const auto arguments = parse(argc, argv);
    if (!arguments) {
        std::fputs(usage, stderr);
        return 2;
    }
    try {
        run(*arguments);
        return 0;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: not enough memory for these pictures\n", name);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s: %s\n", name, failure.what());
    }
    return 1;
}

}  // namespace gallery
