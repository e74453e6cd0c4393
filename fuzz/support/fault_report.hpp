// Which case it was, if one fails or ends in a fault.
#pragma once

#include <string>

namespace lumcv::fuzz {

// What this thread is about to do: how to repeat the case, and the call that it has become.
void nameCase(const std::string& name);
void announce(const std::string& text);

// Ends the process with a message that names the case.
[[noreturn]] void fail(const std::string& complaint);

// From here on a fault names the case of its thread, and then ends the process as it would have.
void reportFaults();

}  // namespace lumcv::fuzz
