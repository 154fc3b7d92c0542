#include "Differences.hpp"

#include <fnmatch.h>

#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace cimdiff {
namespace {

std::string trim(const std::string& text) {
    std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return "";
    std::size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

// The line of `answer` that starts with `prefix`, or "".
std::string lineOf(const std::string& answer, const std::string& prefix) {
    std::istringstream lines(answer);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind(prefix, 0) == 0) return line;
    }
    return "";
}

// The request's body for a reader: the XML after the head.
std::string shownRequest(const Request& request) {
    std::size_t head = request.raw.find("\r\n\r\n");
    std::string firstLines;
    std::istringstream lines(request.raw.substr(0, head));
    std::string line;
    while (std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        firstLines += "    " + line + "\n";
    }
    return firstLines + "    " + (head == std::string::npos ? "" : request.raw.substr(head + 4)) + "\n";
}

std::string indented(const std::string& text, std::size_t maxLines = 60) {
    std::istringstream lines(text);
    std::string line, out;
    std::size_t n = 0;
    while (std::getline(lines, line)) {
        if (++n > maxLines) {
            out += "    ...\n";
            break;
        }
        out += "    " + line + "\n";
    }
    return out;
}

}  // namespace

std::string stateChange(const std::string& before, const std::string& after) {
    auto lines = [](const std::string& text) {
        std::multiset<std::string> set;
        std::istringstream in(text);
        std::string line;
        while (std::getline(in, line)) set.insert(line);
        return set;
    };
    std::multiset<std::string> a = lines(before), b = lines(after);
    std::string out;
    for (const std::string& line : a) {
        if (b.count(line) < a.count(line) && out.find("- " + line + "\n") == std::string::npos) out += "- " + line + "\n";
    }
    for (const std::string& line : b) {
        if (a.count(line) < b.count(line) && out.find("+ " + line + "\n") == std::string::npos) out += "+ " + line + "\n";
    }
    return out;
}

StateTracker::StateTracker(const Target& target) : target_(target) { rebase(); }

void StateTracker::rebase() {
    before_ = deviceState(target_);
    takeQueuedMessages(target_);
}

std::string StateTracker::changeSinceLast() {
    std::string after = deviceState(target_);
    std::string change = stateChange(before_, after);
    before_ = after;
    std::string messages = takeQueuedMessages(target_);
    return messages.empty() ? change : change + "queued\n" + messages;
}

std::string differingAspect(const Observation& seen) {
    if (seen.reference != seen.candidate) {
        if (lineOf(seen.reference, "status") != lineOf(seen.candidate, "status")) return "status";
        if (lineOf(seen.reference, "error") != lineOf(seen.candidate, "error")) return "error-code";
        if (lineOf(seen.reference, "description") != lineOf(seen.candidate, "description")) return "description";
        return "result";
    }
    return seen.referenceState != seen.candidateState ? "state" : "";
}

AcceptedList AcceptedList::load(const std::string& path, const std::string& series) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read the accepted differences in " + path);
    AcceptedList list;
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (trim(line).empty() || trim(line)[0] == '#') continue;
        std::vector<std::string> fields;
        std::size_t start = 0;
        for (int i = 0; i < 4; ++i) {
            std::size_t bar = line.find('|', start);
            if (bar == std::string::npos) break;
            fields.push_back(trim(line.substr(start, bar - start)));
            start = bar + 1;
        }
        fields.push_back(trim(line.substr(start)));
        if (fields.size() != 5 || fields[4].empty()) {
            throw std::runtime_error(path + ":" + std::to_string(number) +
                                     ": wants KIND-PATTERN | ASPECT | SERIES | ANSWER-PATTERN | reason");
        }
        if (fields[2] == "*" || fields[2] == series) {
            list.entries_.push_back({fields[0], fields[1], fields[3], fields[4]});
        }
    }
    return list;
}

const std::string* AcceptedList::reasonFor(const std::string& kind, const std::string& aspect,
                                           const std::string& reference) const {
    for (const Entry& entry : entries_) {
        if (fnmatch(entry.kind.c_str(), kind.c_str(), 0) == 0 && fnmatch(entry.aspect.c_str(), aspect.c_str(), 0) == 0 &&
            fnmatch(entry.reference.c_str(), reference.c_str(), 0) == 0) {
            return &entry.reason;
        }
    }
    return nullptr;
}

const Difference* Differences::record(std::size_t index, const Request& request, const Observation& seen) {
    std::string aspect = differingAspect(seen);
    if (aspect.empty()) return nullptr;
    const std::string* reason = accepted_.reasonFor(request.kind, aspect, seen.reference);
    // Requests of one kind whose difference is accepted for some answers
    // only are two groups.
    Group& group = groups_[request.kind + " | " + aspect + (reason ? " | accepted" : "")];
    if (group.count++ == 0) {
        group.difference = {request.kind, aspect, reason ? *reason : ""};
        group.firstIndex = index;
        group.firstRequest = request;
        group.firstSeen = seen;
    }
    last_ = group.difference;
    return &last_;
}

std::size_t Differences::unaccepted() const {
    std::size_t n = 0;
    for (const auto& entry : groups_) {
        if (entry.second.difference.acceptedBecause.empty()) n += entry.second.count;
    }
    return n;
}

void Differences::printSummary(std::ostream& out, std::size_t sent) const {
    std::size_t total = 0, accepted = 0, kinds = 0;
    for (const auto& entry : groups_) {
        total += entry.second.count;
        if (!entry.second.difference.acceptedBecause.empty()) accepted += entry.second.count;
        else ++kinds;
    }
    out << sent << " requests, " << total << " answered differently: " << accepted << " accepted, "
        << total - accepted << " not accepted in " << kinds << " kinds\n";
    for (const auto& entry : groups_) {
        const Group& group = entry.second;
        out << (group.difference.acceptedBecause.empty() ? "DIFF     " : "accepted ") << group.difference.kind << " | "
            << group.difference.aspect << " ("
            << group.count << "x, first #" << group.firstIndex << ")\n";
    }
}

void Differences::print(std::ostream& out, std::size_t sent) const {
    printSummary(out, sent);
    for (const auto& entry : groups_) {
        const Group& group = entry.second;
        out << "\n== " << group.difference.kind << " | " << group.difference.aspect << ": " << group.count << " requests";
        if (!group.difference.acceptedBecause.empty()) out << " (accepted: " << group.difference.acceptedBecause << ")";
        out << "\n  request #" << group.firstIndex << ":\n" << shownRequest(group.firstRequest);
        if (group.difference.aspect == "state") {
            out << "  reference's device state change:\n" << indented(group.firstSeen.referenceState)
                << "  candidate's device state change:\n" << indented(group.firstSeen.candidateState);
        } else {
            out << "  reference answer:\n" << indented(group.firstSeen.reference) << "  candidate answer:\n"
                << indented(group.firstSeen.candidate);
        }
    }
}

void writeSampleEntry(std::ostream& out, const Request& request, const Observation& seen, const Difference* found) {
    writeRequest(out, request);
    writeBlock(out, "answer", seen.reference);
    writeBlock(out, "state", seen.referenceState);
    // Where the two differ (accepted or still open), replaying expects
    // cimhost's own answer, so that any change to it shows.
    writeBlock(out, "candidate-answer", found ? seen.candidate : "");
    writeBlock(out, "candidate-state", found ? seen.candidateState : "");
}

int replaySample(std::istream& sample, const Target& candidate, std::ostream& out) {
    Request request;
    std::size_t index = 0, failures = 0;
    StateTracker tracker(candidate);
    while (readRequest(sample, request)) {
        std::string answer = readBlock(sample, "answer");
        std::string state = readBlock(sample, "state");
        std::string candidateAnswer = readBlock(sample, "candidate-answer");
        std::string candidateState = readBlock(sample, "candidate-state");
        std::string expectedAnswer = candidateAnswer.empty() ? answer : candidateAnswer;
        std::string expectedState = candidateAnswer.empty() ? state : candidateState;
        std::string got = canonicalAnswer(exchange(candidate, request));
        std::string gotState = request.writes ? tracker.changeSinceLast() : "";
        if (got != expectedAnswer || gotState != expectedState) {
            ++failures;
            out << "request #" << index << " (" << request.kind << ") answered otherwise than recorded\n"
                << shownRequest(request) << "  recorded:\n" << indented(expectedAnswer + expectedState)
                << "  now:\n" << indented(got + gotState) << "\n";
        }
        ++index;
    }
    out << index << " recorded requests replayed, " << failures << " answered otherwise\n";
    return failures == 0 ? 0 : 1;
}

}  // namespace cimdiff
