// Eight clients at once against one host, mixing enumerations, gets,
// modifies and method calls on every class: every answer is well-formed
// CIM-XML and the same as the request gets alone, the registry ends with
// values the clients set, and the host's memory stays flat.
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>

#include "LoadSupport.hpp"

namespace cimhost::test {
namespace {

constexpr int kClients = 8;

// CONCURRENT_CLIENTS_SECONDS shortens or lengthens the run.
int runSeconds() {
    const char* text = std::getenv("CONCURRENT_CLIENTS_SECONDS");
    return text ? std::max(1, std::atoi(text)) : 10;
}

bool sanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

// The read-only requests and method calls of the mix, on all six classes.
std::vector<CimCall> sharedCalls() {
    std::vector<CimCall> calls = enumerationsAndGets();
    calls.push_back(invokeMethod("QTX_CDRService", serviceKeys(), "Refresh"));
    calls.push_back(invokeMethod("QTX_CDRPushStatistics", {{"Name", "CDRPushStatistic"}}, "Refresh"));
    calls.push_back(invokeMethod("QTX_CDRPullStatistics", {{"Name", "CDRPullStatistic"}}, "Refresh"));
    return calls;
}

// Each client owns one prefix row and one transfer-time minute, and shares
// DigitsLimit with the others.
std::string prefixDigits(int client, int iteration) { return std::to_string(client) + std::to_string(iteration % 1000); }
std::string digitsLimit(int client, int iteration) { return std::to_string(3 + client * 2 + iteration % 2); }

class ConcurrentClients : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("ZPO_ROOT", state.path().c_str(), 1);
        for (const std::string& entry : deviceSeed())
            ASSERT_EQ(runCommand(std::string(ZPO_BINARY) + " reg " + entry, scratch).exitCode, 0) << entry;
        host = std::make_unique<KillableHost>(state.path(), 0);
        ASSERT_GT(host->port(), 0) << host->log();
    }

    TempDir state;
    TempDir scratch;
    std::unique_ptr<KillableHost> host;
};

TEST_F(ConcurrentClients, EightClientsGetTheAnswersEachGetsAloneAndMemoryStaysFlat) {
    // What each request answers alone: its CIM error code (0 for success).
    std::vector<CimCall> calls = sharedCalls();
    std::vector<int> aloneError;
    {
        CimClient alone(host->port());
        for (const CimCall& call : calls) {
            CimAnswer answer = alone.call(call.method, call.body);
            ASSERT_TRUE(answer.wellFormed) << call.body << "\n" << answer.body;
            aloneError.push_back(answer.cimError);
        }
        ASSERT_EQ(alone.call("ModifyInstance", modifyInstance("QTX_CDRService", serviceKeys(), "DigitsLimit", "uint16",
                                                                "7").body).cimError, 0);
    }
    EXPECT_EQ(aloneError[0], 0) << "enumerating the service";

    std::atomic<bool> stopClients{false};
    std::atomic<long> requests{0};
    std::mutex failuresMutex;
    std::vector<std::string> failures;
    std::vector<std::set<std::string>> prefixesSet(kClients);
    std::vector<std::set<std::string>> limitsSet(kClients);
    auto fail = [&](const std::string& what) {
        std::lock_guard<std::mutex> lock(failuresMutex);
        if (failures.size() < 20) failures.push_back(what);
    };

    std::vector<std::thread> clients;
    for (int c = 0; c < kClients; ++c) {
        clients.emplace_back([&, c] {
            CimClient connection(host->port());
            for (int i = 0; !stopClients; ++i) {
                size_t pick = static_cast<size_t>(i * kClients + c) % (calls.size() + 2);
                CimCall call;
                int expectedError = 0;
                if (pick < calls.size()) {
                    call = calls[pick];
                    expectedError = aloneError[pick];
                } else if (pick == calls.size()) {
                    call = modifyInstance("QTX_CDRServicePrefixBin", rowKeys("CDRServicePrefixBin_", c), "PrefixBin",
                                          "string", prefixDigits(c, i));
                } else {
                    call = modifyInstance("QTX_CDRService", serviceKeys(), "DigitsLimit", "uint16", digitsLimit(c, i));
                }
                CimAnswer answer = connection.call(call.method, call.body);
                ++requests;
                if (!answer.wellFormed || answer.httpStatus != 200) {
                    fail("HTTP " + std::to_string(answer.httpStatus) + " for " + call.body + "\n" + answer.body);
                } else if (answer.cimError != expectedError) {
                    fail("CIM error " + std::to_string(answer.cimError) + " (alone " + std::to_string(expectedError) +
                         ") for " + call.body + "\n" + answer.body);
                } else if (pick == calls.size()) {
                    prefixesSet[c].insert(prefixDigits(c, i));
                } else if (pick == calls.size() + 1) {
                    limitsSet[c].insert(digitsLimit(c, i));
                }
            }
        });
    }

    // Memory is taken once the worker threads and caches are warm.
    std::this_thread::sleep_for(std::chrono::seconds(2));
    long warmKiB = host->residentKiB();
    std::this_thread::sleep_for(std::chrono::seconds(runSeconds()));
    long endKiB = host->residentKiB();
    stopClients = true;
    for (std::thread& client : clients) client.join();

    for (const std::string& failure : failures) ADD_FAILURE() << failure;
    EXPECT_GT(requests, kClients * 10);
    std::cout << requests << " requests in " << runSeconds() + 2 << " s; resident " << warmKiB << " KiB warm, "
              << endKiB << " KiB at the end\n";
    // Under AddressSanitizer the quarantine holds freed memory on purpose;
    // ThreadSanitizer keeps its shadow and history memory.
    if (!sanitized()) { EXPECT_LE(endKiB - warmKiB, 1024) << "resident memory grew"; }

    // Each client's row holds one of its own values; DigitsLimit one that
    // some client set.
    auto prefix = registryBinary("CDRService", "PREFIX BIN", scratch);
    ASSERT_TRUE(prefix);
    ASSERT_EQ(prefix->size(), 64u);
    std::set<std::string> anyLimit;
    for (int c = 0; c < kClients; ++c) {
        if (!prefixesSet[c].empty()) { EXPECT_EQ(prefixesSet[c].count(binRowText(*prefix, c, 8, 8)), 1u) << "row " << c; }
        anyLimit.insert(limitsSet[c].begin(), limitsSet[c].end());
    }
    auto limit = registryBinary("CDRService", "DIGITSLIMIT", scratch);
    ASSERT_TRUE(limit);
    ASSERT_EQ(limit->size(), 2u);
    if (!anyLimit.empty()) { EXPECT_EQ(anyLimit.count(std::to_string((*limit)[0] * 256 + (*limit)[1])), 1u); }
    EXPECT_EQ(host->stop(SIGTERM), 0);
}

}  // namespace
}  // namespace cimhost::test
