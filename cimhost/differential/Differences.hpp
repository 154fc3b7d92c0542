// What the differential run makes of two answers: differences classified by
// the request's kind and the aspect that differs, the list of accepted ones,
// and the recorded sample CI replays.
#pragma once

#include <istream>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "Exchange.hpp"
#include "Requests.hpp"

namespace cimdiff {

// The two object managers' answers to one request and, when it writes, what
// it changed in each device state (stateChange).
struct Observation {
    std::string reference;
    std::string candidate;
    std::string referenceState;
    std::string candidateState;
};

// The lines of `after` that `before` lacks, marked "+ ", and those of
// `before` that `after` lacks, marked "- ".
std::string stateChange(const std::string& before, const std::string& after);

// What each write changes in one device state: the registry and task lines
// it added and removed, and the messages it queued.
class StateTracker {
public:
    explicit StateTracker(const Target& target);
    std::string changeSinceLast();
    // After the state was set from elsewhere.
    void rebase();

private:
    const Target& target_;
    std::string before_;
};

// The first aspect in which two canonical answers differ: "status",
// "error-code", "description", "result"; "state" when only the device
// states do; "" when nothing does.
std::string differingAspect(const Observation& seen);

// Differences a reviewer agreed to keep. Lines of the list file:
//   KIND-PATTERN | ASPECT | SERIES | reason
// KIND-PATTERN and ASPECT are shell patterns (fnmatch) matched against the
// request's kind and the differing aspect; SERIES is 3.0, 3.2 or *.
class AcceptedList {
public:
    static AcceptedList load(const std::string& path, const std::string& series);
    // The reason a difference is accepted, or null. `reference` is the
    // reference's answer in canonical form.
    const std::string* reasonFor(const std::string& kind, const std::string& aspect,
                                 const std::string& reference) const;

private:
    struct Entry {
        std::string kind;
        std::string aspect;
        std::string reference;
        std::string reason;
    };
    std::vector<Entry> entries_;
};

struct Difference {
    std::string kind;
    std::string aspect;
    std::string acceptedBecause;  // empty: not accepted
};

class Differences {
public:
    explicit Differences(const AcceptedList& accepted) : accepted_(accepted) {}
    // Null when the answers agree.
    const Difference* record(std::size_t index, const Request& request, const Observation& seen);
    std::size_t unaccepted() const;
    // Every group of differences with its first request and both answers.
    void print(std::ostream& out, std::size_t sent) const;
    void printSummary(std::ostream& out, std::size_t sent) const;

private:
    struct Group {
        Difference difference;
        std::size_t count = 0;
        std::size_t firstIndex = 0;
        Request firstRequest;
        Observation firstSeen;
    };
    const AcceptedList& accepted_;
    std::map<std::string, Group> groups_;  // by "kind | aspect"
    Difference last_;
};

// The sample: each request with the reference's answer (and state change),
// and, where the two differed, the candidate's as well, which replaying then
// expects.
void writeSampleEntry(std::ostream& out, const Request& request, const Observation& seen, const Difference* found);
// Sends every request of the sample to `candidate` in order; prints each
// answer that is not the recorded one. Returns 0 when none differs.
int replaySample(std::istream& sample, const Target& candidate, std::ostream& out);

}  // namespace cimdiff
