// What the library computes, as one number for each export: the digest of what a fixed set of calls returns and writes.
// It is the same with every library, on every processor, with every compiler, and however many threads call at once.
//
//   digests                    prints the record: a line for each export, its name and its digest
//   digests RECORD             compares with a record; names the exports that differ and fails
//   digests --case-by-case=EXPORT   prints the calls of one export, each with its status and digest: for a look at
//   where
//                              two libraries part ways
//   --threads=N                N threads at once, each of which calls every export; and each call that succeeds is made
//                              twice at the same time, on the same sources and records
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "fuzz/support/call.hpp"
#include "fuzz/support/fault_report.hpp"

namespace {

using namespace lumcv::fuzz;

constexpr int kCases = 24;

using Digests = std::map<std::string, std::uint64_t>;

std::uint64_t seedOf(const std::string& function, int number)
{
    std::uint64_t seed = 0xcbf29ce484222325u + std::uint64_t(number);
    for (const char c : function)
        seed = (seed ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return seed;
}

// Makes a case of an export, for a recorder to take down.
void runCase(const Target& target, int number)
{
    nameCase(target.function + ", case " + std::to_string(number));
    // filters write large images past the caches; a case of that for the others would take more time than all the rest
    const bool isLarge = number == 0 && target.function.starts_with("lumiFilter");
    Choices choices(seedOf(target.function, number), isLarge ? Choices::Rarities::All : Choices::Rarities::None);
    target.run(choices, target.function);
}

// The cases that are one thread's share: it calls every export, and begins with another one than the others do. The
// digests of an export's cases are added up, so that it does not matter who makes them and when.
Digests runShare(int thread, int threads)
{
    const std::vector<Target>& targets = Targets::all();
    const Recorder::Mode mode = threads > 1 ? Recorder::Mode::WithTwins : Recorder::Mode::Alone;
    Digests digests;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const Target& target =
            targets[(i + targets.size() * std::size_t(thread) / std::size_t(threads)) % targets.size()];
        for (int number = thread; number < kCases; number += threads) {
            Recorder recorder(mode);
            runCase(target, number);
            digests[target.function] += recorder.digest();
        }
    }
    return digests;
}

Digests runAll(int threads)
{
    std::vector<Digests> shares(static_cast<std::size_t>(threads));
    std::vector<std::thread> running;
    for (int thread = 0; thread < threads; ++thread)
        running.emplace_back([&shares, thread, threads] { shares[std::size_t(thread)] = runShare(thread, threads); });
    for (std::thread& thread : running)
        thread.join();
    Digests sum;
    for (const Digests& share : shares)
        for (const auto& [function, digest] : share)
            sum[function] += digest;
    return sum;
}

void print(const Digests& digests)
{
    for (const auto& [function, digest] : digests)
        std::printf("%s %016" PRIx64 "\n", function.c_str(), digest);
}

int printCases(const std::string& function)
{
    for (const Target& target : Targets::all())
        if (target.function == function) {
            for (int number = 0; number < kCases; ++number) {
                Recorder recorder(Recorder::Mode::Alone);
                runCase(target, number);
                std::printf("%2d %016" PRIx64 " %s\n", number, recorder.digest(), recorder.text().c_str());
            }
            return EXIT_SUCCESS;
        }
    std::printf("no target calls %s\n", function.c_str());
    return EXIT_FAILURE;
}

int compare(const Digests& digests, const char* path)
{
    std::ifstream file(path);
    Digests record;
    std::string name, number;
    while (file >> name >> number)
        record[name] = std::strtoull(number.c_str(), nullptr, 16);
    int same = 0, wrong = 0;
    const auto complain = [&](const std::string& function, const char* complaint) {
        std::printf("%s: %s\n", function.c_str(), complaint);
        ++wrong;
    };
    for (const auto& [function, digest] : digests)
        if (!record.contains(function))
            complain(function, "not in the record");
        else if (record[function] != digest)
            complain(function, "other results than the record has");
        else
            ++same;
    for (const auto& [function, digest] : record)
        if (!digests.contains(function))
            complain(function, "no target calls it");
    std::printf("%d exports as recorded, %d not\n", same, wrong);
    return wrong == 0 && same > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

const char* after(const char* argument, const char* option)
{
    const std::size_t length = std::strlen(option);
    return std::strncmp(argument, option, length) == 0 ? argument + length : nullptr;
}

}  // namespace

int main(int argc, char** argv)
{
    const char* record = nullptr;
    int threads = 1;
    reportFaults();
    for (int i = 1; i < argc; ++i)
        if (const char* const count = after(argv[i], "--threads="))
            threads = std::clamp(std::atoi(count), 1, kCases);
        else if (const char* const function = after(argv[i], "--case-by-case="))
            return printCases(function);
        else
            record = argv[i];

    const Digests digests = runAll(threads);
    if (record)
        return compare(digests, record);
    print(digests);
    return EXIT_SUCCESS;
}
