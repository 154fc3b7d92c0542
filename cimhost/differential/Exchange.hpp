// Sending a request of the differential run to one object manager and
// reducing its answer, and the device state behind it, to text in which two
// object managers' answers are equal exactly when a client could not tell
// them apart.
#pragma once

#include <string>

#include "Requests.hpp"

namespace cimdiff {

struct Target {
    std::string name;     // "cimhost", "owcimomd"
    int port = 0;         // on 127.0.0.1
    std::string zpo;      // the zpo command of its device state ("" : none)
    std::string zpoRoot;  // its device state
};

// The answer's bytes as they arrived: the request is sent on a connection of
// its own, which is read until the answer is complete, the server closes
// it, or `timeoutSeconds` pass.
std::string exchange(const Target& target, const Request& request, int timeoutSeconds = 30);

// The answer as lines: "status N", the CIM headers, then either
// "error CODE DESCRIPTION" or the returned XML, one element per line with
// its attributes sorted, properties, qualifiers and key bindings sorted by
// name, the HOST element's text left out. An answer that is not HTTP, or
// whose body is not XML, is shown as such.
std::string canonicalAnswer(const std::string& response);

// A canonical answer of cimhost, which words what the OpenWBEM series
// word differently as 3.0 does, as a 3.2 object manager words it: an error
// description is the message alone (empty without one), the empty
// date-time is a zero interval. The type a 3.2 RETURNVALUE names is left
// out (from either answer: cimhost cannot know it).
std::string inSeries32Words(const std::string& canonical);
std::string withoutReturnValueType(const std::string& canonical);

// The device state as the module left it: the registry and the scheduled
// tasks.
std::string deviceState(const Target& target);
// The messages waiting in the service queue, one a line, taken from it.
std::string takeQueuedMessages(const Target& target);

// Makes `to`'s registry the same as `from`'s (a backup restored, which the
// module is told of as on the device).
void copyRegistry(const Target& from, const Target& to, const std::string& scratchFile);

}  // namespace cimdiff
