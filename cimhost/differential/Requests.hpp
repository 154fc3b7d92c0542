// The requests of the differential run: CIM-XML requests generated from a
// seed, each a complete HTTP request whose Host header is filled in when it
// is sent, so that the same request goes to every object manager compared.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "ClassDefinition.hpp"

namespace cimdiff {

// Written in place of host:port in a request's head.
constexpr const char* kHostPlaceholder = "@HOST@";
// Credentials every request carries unless its kind is about them.
constexpr const char* kUser = "owuser";
constexpr const char* kPassword = "owpass";

struct Request {
    // What the request tries, "Operation/variant"; differences are grouped
    // by it.
    std::string kind;
    // True when the request may change the device state: the state is
    // compared after it.
    bool writes = false;
    // The whole HTTP request, head and body.
    std::string raw;
};

// The requests of a run: the same seed and count give the same requests,
// on every machine (the generator's random numbers are std::mt19937's,
// which the standard fixes, reduced without library distributions).
std::vector<Request> generateRequests(const cimhost::ClassRepository& classes, uint32_t seed, std::size_t count);

// Length-prefixed records, so that any byte of a request or answer survives:
//   request <kind> <writes 0|1> <size>\n<size bytes>\n
void writeRequest(std::ostream& out, const Request& request);
// False at the end of the input; throws std::runtime_error on a broken one.
bool readRequest(std::istream& in, Request& request);

// A block of `size` bytes after a line "<label> <size>".
void writeBlock(std::ostream& out, const std::string& label, const std::string& bytes);
std::string readBlock(std::istream& in, const std::string& label);

}  // namespace cimdiff
