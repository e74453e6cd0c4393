// The body of a coverage-guided fuzzer: one input is one case.
#include <cstddef>
#include <cstdint>

#include "fuzz/support/call.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size)
{
    lumcv::fuzz::Choices choices(input, size);
    lumcv::fuzz::runOne(choices);
    return 0;
}
