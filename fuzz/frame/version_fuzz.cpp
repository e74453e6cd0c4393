// Calls for the version record, which is always the same one.
#include <cstring>

#include "fuzz/support/call.hpp"

namespace {

using namespace lumcv::fuzz;

const LumLibraryVersion* const loaded = lumcvGetLibVersion();

void version(Choices& choices, const std::string& name)
{
    Call call;
    call.function = name;
    call.ignoresSize = true;
    call.blocks = {{Role::Written, sizeof(LumLibraryVersion), Element::U8, true}};
    call.violations.push_back({"nothing", {lumOk}, [](Arguments&) {}});
    call.call = [](const Arguments& a) {
        const LumLibraryVersion* const record = lumcvGetLibVersion();
        if (record != loaded || !record->Name || !record->Version || !record->BuildDate)
            fail("another record");
        std::memcpy(a.blocks[0], record, sizeof *record);
        return LumStatus{lumOk};
    };
    tryCall(choices, std::move(call));
}

const Targets targets{{
    {"lumcvGetLibVersion", version},
}};

}  // namespace
