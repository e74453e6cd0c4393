// Says which case failed, in a signal handler too.
#include "fuzz/support/fault_report.hpp"

#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace lumcv::fuzz {

namespace {

thread_local std::string caseName, announced = "no case yet";

// async-signal-safe
void printLine(const std::string& text)
{
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
    static_cast<void>(!write(STDERR_FILENO, "\n", 1));
}

extern "C" void reportFault(int signal)
{
    printLine(caseName);
    if (signal != SIGABRT)  // a failed expectation has told already
        printLine(announced);
    struct sigaction standard = {};
    standard.sa_handler = SIG_DFL;
    sigaction(signal, &standard, nullptr);
    raise(signal);
}

}  // namespace

void nameCase(const std::string& name)
{
    caseName = name;
}

void announce(const std::string& text)
{
    announced = text;
}

void fail(const std::string& complaint)
{
    printLine(announced);
    std::fprintf(stderr, "%s\n", complaint.c_str());
    std::abort();
}

void reportFaults()
{
    struct sigaction report = {};
    report.sa_handler = reportFault;
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        sigaction(signal, &report, nullptr);
}

}  // namespace lumcv::fuzz
