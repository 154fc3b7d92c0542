// The host is killed with SIGKILL in the middle of a stream of
// modifications; after a restart every modification it answered with success
// is in the registry, and no entry is torn.
#include <gtest/gtest.h>

#include <atomic>
#include <random>

#include "LoadSupport.hpp"

namespace cimhost::test {
namespace {

// One setting the stream changes, how to change it and how to read it back
// from the registry as the text the client sent.
struct Target {
    std::string name;
    std::function<CimCall(const std::string&)> modify;
    std::function<std::string(std::mt19937&)> randomValue;
    std::function<std::optional<std::string>(const TempDir&)> stored;
};

std::string digits(std::mt19937& random, int maxLength) {
    std::string text(1 + random() % maxLength, '0');
    for (char& c : text) c = static_cast<char>('0' + random() % 10);
    return text;
}

std::vector<Target> targets() {
    std::vector<Target> all;
    all.push_back({"DigitsLimit",
                   [](const std::string& v) {
                       return modifyInstance("QTX_CDRService", serviceKeys(), "DigitsLimit", "uint16", v);
                   },
                   [](std::mt19937& r) { return std::to_string(3 + r() % 22); },
                   [](const TempDir& scratch) -> std::optional<std::string> {
                       auto bytes = registryBinary("CDRService", "DIGITSLIMIT", scratch);
                       if (!bytes || bytes->size() != 2) return std::nullopt;
                       return std::to_string((*bytes)[0] * 256 + (*bytes)[1]);
                   }});
    for (int row : {0, 3, 7}) {
        all.push_back({"PrefixBin_" + std::to_string(row),
                       [row](const std::string& v) {
                           return modifyInstance("QTX_CDRServicePrefixBin", rowKeys("CDRServicePrefixBin_", row),
                                                 "PrefixBin", "string", v);
                       },
                       [](std::mt19937& r) { return digits(r, 8); },
                       [row](const TempDir& scratch) -> std::optional<std::string> {
                           auto table = registryBinary("CDRService", "PREFIX BIN", scratch);
                           if (!table || table->size() != 64) return std::nullopt;
                           return binRowText(*table, row, 8, 8);
                       }});
    }
    for (int row : {1, 4}) {
        all.push_back({"AccessBin_" + std::to_string(row),
                       [row](const std::string& v) {
                           return modifyInstance("QTX_CDRServiceAccessBin", rowKeys("CDRServiceAccessBin_", row),
                                                 "AccessBin", "string", v);
                       },
                       [](std::mt19937& r) { return digits(r, 5); },
                       [row](const TempDir& scratch) -> std::optional<std::string> {
                           auto table = registryBinary("CDRService", "ACCESS BIN", scratch);
                           if (!table || table->size() != 30) return std::nullopt;
                           return binRowText(*table, row, 6, 5);
                       }});
    }
    all.push_back({"TransferTime",
                   [](const std::string& v) {
                       return modifyInstance("QTX_CDRPushSetting", {{"InstanceID", "CDRPushSetting"}}, "TransferTime",
                                             "string", v);
                   },
                   [](std::mt19937& r) {
                       char text[6];
                       std::snprintf(text, sizeof text, "%02u:%02u", static_cast<unsigned>(r() % 24),
                                     static_cast<unsigned>(r() % 60));
                       return std::string(text);
                   },
                   [](const TempDir& scratch) -> std::optional<std::string> {
                       CommandResult got = runCommand(std::string(ZPO_BINARY) + " reg get CDR CDRPush TranTime", scratch);
                       if (got.exitCode != 0 || got.out.rfind("string ", 0) != 0) return std::nullopt;
                       return got.out.substr(7, got.out.size() - 8);
                   }});
    return all;
}

class CrashDurability : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("ZPO_ROOT", state.path().c_str(), 1);
        for (const std::string& entry : deviceSeed())
            ASSERT_EQ(runCommand(std::string(ZPO_BINARY) + " reg " + entry, scratch).exitCode, 0) << entry;
    }

    TempDir state;
    TempDir scratch;
};

TEST_F(CrashDurability, AnsweredModificationsSurviveSigkillAndNoEntryIsTorn) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("random seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::vector<Target> all = targets();
    // Per target: the last value answered with success, and the value of a
    // request that got no answer because the host died under it.
    std::vector<std::optional<std::string>> acknowledged(all.size());
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        auto host = std::make_unique<KillableHost>(state.path(), round);
        ASSERT_GT(host->port(), 0) << host->log();
        std::optional<size_t> inFlightTarget;
        std::string inFlightValue;
        std::atomic<int> answered{0};
        std::mt19937 clientRandom(random());
        std::thread client([&] {
            CimClient connection(host->port());
            for (size_t i = 0;; ++i) {
                size_t t = clientRandom() % all.size();
                std::string value = all[t].randomValue(clientRandom);
                inFlightTarget = t;
                inFlightValue = value;
                CimAnswer answer = connection.call("ModifyInstance", all[t].modify(value).body);
                if (answer.httpStatus == 0) return;  // the host is gone
                inFlightTarget.reset();
                ASSERT_TRUE(answer.wellFormed) << answer.body;
                ASSERT_EQ(answer.cimError, 0) << all[t].name << "=" << value << "\n" << answer.body;
                acknowledged[t] = value;
                ++answered;
            }
        });
        // Kill after a random number of answered requests, once at least a
        // few went through.
        const int killAfter = 5 + static_cast<int>(random() % 60);
        for (int wait = 0; wait < 3000 && answered < killAfter; ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        host->stop(SIGKILL);
        client.join();
        ASSERT_FALSE(HasFatalFailure());
        EXPECT_GE(answered, 5);

        auto prefix = registryBinary("CDRService", "PREFIX BIN", scratch);
        auto access = registryBinary("CDRService", "ACCESS BIN", scratch);
        auto limit = registryBinary("CDRService", "DIGITSLIMIT", scratch);
        if (prefix) { EXPECT_EQ(prefix->size(), 64u); }
        if (access) { EXPECT_EQ(access->size(), 30u); }
        ASSERT_TRUE(limit);
        EXPECT_EQ(limit->size(), 2u);
        for (size_t t = 0; t < all.size(); ++t) {
            std::optional<std::string> stored = all[t].stored(scratch);
            if (inFlightTarget == t && stored == inFlightValue) {
                acknowledged[t] = inFlightValue;  // applied, just not answered
                continue;
            }
            if (acknowledged[t]) { EXPECT_EQ(stored, acknowledged[t]) << all[t].name; }
        }

        // The restarted host reads every setting it had before.
        KillableHost restarted(state.path(), 10 + round);
        ASSERT_GT(restarted.port(), 0) << restarted.log();
        CimClient reader(restarted.port());
        for (const char* cls : {"QTX_CDRService", "QTX_CDRServicePrefixBin", "QTX_CDRServiceAccessBin", "QTX_CDRPushSetting"}) {
            CimAnswer answer = reader.call("EnumerateInstances", enumerateInstances(cls).body);
            EXPECT_TRUE(answer.wellFormed && answer.cimError == 0) << cls << "\n" << answer.body;
        }
        restarted.stop(SIGTERM);
    }
}

}  // namespace
}  // namespace cimhost::test
