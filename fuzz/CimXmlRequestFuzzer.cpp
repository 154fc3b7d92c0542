// Any request body through parse, typing and dispatch into the real module.
#include <cstddef>
#include <cstdint>

#include "ModuleHarness.hpp"

// The module is loaded before the first input, so that what it keeps
// for the whole run is not taken for a leak of one input.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    cimhost::fuzz::harness();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string body(reinterpret_cast<const char*>(data), size);
    // PushFileNow starts the transfer program; a process per input would
    // only slow the run down.
    if (body.find("PushFileNow") != std::string::npos) return -1;
    cimhost::fuzz::harness().serve(body);
    return 0;
}
