// Calls for the version record, which is always the same one.
#include <cstddef>
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

const LumLibraryVersion* const loaded = lumcvGetLibVersion();

struct Told
{
    unsigned char numbers[offsetof(LumLibraryVersion, targetCpu)];
    char version[64], date[64];
};

void version(Choices& choices, const std::string& name)
{
    Call call;
    call.function = name;
    call.ignoresSize = true;
    call.blocks = {{Role::Written, sizeof(Told), Element::U8, true}};
    call.violations.push_back({"nothing", {lumOk}, [](Arguments&) {}});
    call.call = [](const Arguments& a) {
        const LumLibraryVersion* const record = lumcvGetLibVersion();
        if (record != loaded || !record->Name || !record->Version || !record->BuildDate)
            fail("another record");
        // the numbers and the texts themselves, since no one knows where the library will stand; the processor code and
        // the name are each build's own
        Told told = {};
        std::memcpy(told.numbers, record, sizeof told.numbers);
        std::strncpy(told.version, record->Version, sizeof told.version - 1);
        std::strncpy(told.date, record->BuildDate, sizeof told.date - 1);
        std::memcpy(a.blocks[0], &told, sizeof told);
        return LumStatus{lumOk};
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumcvGetLibVersion", version},
}};

}  // namespace
