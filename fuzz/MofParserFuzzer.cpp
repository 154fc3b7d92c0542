// Any text through the MOF parser: it either fills the repository or throws
// MofError.
#include <cstddef>
#include <cstdint>

#include "MofParser.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cimhost::ClassRepository repository;
    try {
        cimhost::parseMof(std::string(reinterpret_cast<const char*>(data), size), "fuzz.mof", repository);
    } catch (const cimhost::MofError&) {
    }
    return 0;
}
