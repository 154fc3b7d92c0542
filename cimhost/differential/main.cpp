// cimdiff: sends the same generated CIM-XML requests to two object managers
// serving the CDR module, one at a time, and reports every difference a
// client or the device state could show.
//
//   cimdiff generate --mof FILE --seed N --count N
//   cimdiff compare  --mof FILE --seed N --count N --accepted FILE --series S
//                    --reference PORT,ZPO,ROOT --candidate PORT,ZPO,ROOT
//                    [--report FILE] [--sample FILE --sample-count N] [--scratch DIR]
//   cimdiff replay   SAMPLE --candidate PORT,ZPO,ROOT
//
// The reference is owcimomd, the candidate cimhost: where they differ the
// reference is right. compare exits 1 when a difference is not on the
// accepted list, replay when an answer differs from the recorded one.
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <stdexcept>

#include "Differences.hpp"
#include "Exchange.hpp"
#include "MofParser.hpp"

namespace cimdiff {
namespace {

struct Options {
    std::map<std::string, std::string> values;
    std::vector<std::string> positional;
    std::string get(const std::string& name, const std::string& fallback = "\x01") const {
        auto found = values.find(name);
        if (found != values.end()) return found->second;
        if (fallback == "\x01") throw std::runtime_error("missing --" + name);
        return fallback;
    }
};

Options parseOptions(int argc, char** argv) {
    Options options;
    for (int i = 2; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg.rfind("--", 0) == 0) {
            if (i + 1 >= argc) throw std::runtime_error(arg + " needs a value");
            options.values[arg.substr(2)] = argv[++i];
        } else {
            options.positional.push_back(arg);
        }
    }
    return options;
}

Target parseTarget(const std::string& name, const std::string& text) {
    Target target;
    target.name = name;
    std::size_t first = text.find(',');
    std::size_t second = text.find(',', first == std::string::npos ? first : first + 1);
    if (first == std::string::npos || second == std::string::npos) {
        throw std::runtime_error("--" + name + " wants PORT,ZPO,ROOT, not " + text);
    }
    target.port = std::stoi(text.substr(0, first));
    target.zpo = text.substr(first + 1, second - first - 1);
    target.zpoRoot = text.substr(second + 1);
    return target;
}

std::vector<Request> requestsFrom(const Options& options) {
    cimhost::ClassRepository classes;
    cimhost::loadMofFile(options.get("mof"), classes);
    return generateRequests(classes, static_cast<uint32_t>(std::stoul(options.get("seed"))),
                            std::stoul(options.get("count")));
}

int generate(const Options& options) {
    for (const Request& request : requestsFrom(options)) writeRequest(std::cout, request);
    return 0;
}

// Whether `target` answers a request within a minute.
bool awaitAnswer(const Target& target) {
    Request probe{"probe", false,
                  "POST /cimom HTTP/1.1\r\nHost: " + std::string(kHostPlaceholder) + "\r\nConnection: close\r\n"
                  "Content-Length: 0\r\n\r\n"};
    for (int attempt = 0; attempt < 120; ++attempt) {
        if (!exchange(target, probe, 5).empty()) return true;
        usleep(500 * 1000);
    }
    return false;
}

int compare(const Options& options) {
    Target reference = parseTarget("reference", options.get("reference"));
    Target candidate = parseTarget("candidate", options.get("candidate"));
    AcceptedList accepted = AcceptedList::load(options.get("accepted"), options.get("series"));
    // cimhost words as the 3.0 series does; against 3.2 the known wording
    // differences of the series are read past.
    const bool series32 = options.get("series") == "3.2";
    std::vector<Request> requests = requestsFrom(options);
    std::string scratch = options.get("scratch", "/tmp") + "/cimdiff-registry.bak";
    std::size_t sampleCount = std::stoul(options.get("sample-count", "0"));
    std::ofstream sample;
    if (sampleCount > 0) sample.open(options.get("sample"), std::ios::binary);

    Differences differences(accepted);
    // What a request changed is compared, so that an earlier difference
    // shows once, not again after every later write.
    StateTracker referenceState(reference), candidateState(candidate);
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const Request& request = requests[i];
        Observation seen;
        seen.reference = canonicalAnswer(exchange(reference, request));
        // owcimomd 3.0 re-executes itself after a crash: the run goes on
        // once it answers again.
        if (seen.reference == "no answer\n" && !awaitAnswer(reference)) {
            std::cerr << "cimdiff: the reference stopped answering after request #" << i << " (" << request.kind << ")\n";
            return 2;
        }
        seen.candidate = canonicalAnswer(exchange(candidate, request));
        if (series32) {
            seen.reference = withoutReturnValueType(seen.reference);
            seen.candidate = withoutReturnValueType(inSeries32Words(seen.candidate));
        }
        if (request.writes) {
            seen.referenceState = referenceState.changeSinceLast();
            seen.candidateState = candidateState.changeSinceLast();
        }
        const Difference* found = differences.record(i, request, seen);
        // Later requests start from the same registry again.
        if (seen.referenceState != seen.candidateState) {
            copyRegistry(reference, candidate, scratch);
            candidateState.rebase();
        }
        if (i < sampleCount) writeSampleEntry(sample, request, seen, found);
        if ((i + 1) % 500 == 0) std::cerr << "cimdiff: " << (i + 1) << " of " << requests.size() << " sent\n";
    }
    std::ofstream reportFile;
    std::ostream* report = &std::cout;
    if (!options.get("report", "").empty()) {
        reportFile.open(options.get("report"));
        report = &reportFile;
    }
    differences.print(*report, requests.size());
    if (report != &std::cout) differences.printSummary(std::cout, requests.size());
    return differences.unaccepted() == 0 ? 0 : 1;
}

int replay(const Options& options) {
    if (options.positional.size() != 1) throw std::runtime_error("replay wants one sample file");
    Target candidate = parseTarget("candidate", options.get("candidate"));
    std::ifstream in(options.positional[0], std::ios::binary);
    if (!in) throw std::runtime_error("cannot read " + options.positional[0]);
    return replaySample(in, candidate, std::cout);
}

}  // namespace
}  // namespace cimdiff

int main(int argc, char** argv) {
    using namespace cimdiff;
    std::string command = argc > 1 ? argv[1] : "";
    try {
        Options options = parseOptions(argc, argv);
        if (command == "generate") return generate(options);
        if (command == "compare") return compare(options);
        if (command == "replay") return replay(options);
        std::cerr << "usage: cimdiff generate|compare|replay ... (see the comment at the top of main.cpp "
                     "or docs/openwbem.md, Differential run)\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "cimdiff: " << error.what() << "\n";
        return 2;
    }
}
