// Runs inputs that were found before, and then a fixed number of cases, the same ones each time, for machines without a
// coverage-guided fuzzer.
//
//   --cases=N   how many (default 10000)
//   --first=N   number of the first (default 0); a failing case is repeated with --first=ITS_NUMBER --cases=1
//   PATH        an input, or a folder of inputs
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/support/call.hpp"
#include "fuzz/support/fault_report.hpp"

namespace {

using namespace lumcv::fuzz;

long numberAfter(const char* argument, const char* name, long otherwise)
{
    const std::size_t length = std::strlen(name);
    return std::strncmp(argument, name, length) == 0 ? std::atol(argument + length) : otherwise;
}

// The files of a folder in the order of their names, or the file itself.
std::vector<std::filesystem::path> inputsAt(const std::filesystem::path& path)
{
    if (!std::filesystem::is_directory(path))
        return {path};
    std::vector<std::filesystem::path> inputs;
    for (const auto& entry : std::filesystem::directory_iterator(path))
        inputs.push_back(entry.path());
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}

void runInput(const std::filesystem::path& path)
{
    nameCase(path.string());
    std::ifstream file(path, std::ios::binary);
    if (!file)
        fail("cannot be read");
    const std::vector<char> bytes(std::istreambuf_iterator<char>{file}, {});
    Choices choices(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    runOne(choices);
}

}  // namespace

int main(int argc, char** argv)
{
    long cases = 10000, first = 0, inputs = 0;
    reportFaults();
    for (int i = 1; i < argc; ++i) {
        cases = numberAfter(argv[i], "--cases=", cases);
        first = numberAfter(argv[i], "--first=", first);
        if (argv[i][0] == '-')
            continue;
        for (const std::filesystem::path& input : inputsAt(argv[i])) {
            runInput(input);
            ++inputs;
        }
    }
    for (long current = first; current < first + cases; ++current) {
        nameCase("case " + std::to_string(current));
        Choices choices(std::uint64_t(current) + 1);
        runOne(choices);
    }
    std::printf("%ld inputs, %ld cases\n", inputs, cases);
    return 0;
}
