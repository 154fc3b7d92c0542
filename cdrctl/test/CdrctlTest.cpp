// cdrctl against cimhost serving the real module; the registry, the crontab
// and the module's answers checked with zpo. Each test has its own state
// directory and port.
#include <arpa/inet.h>
#include <crypt.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <atomic>
#include <memory>
#include <optional>
#include <nlohmann/json.hpp>
#include <regex>

#include "CimClient.hpp"
#include "LoadSupport.hpp"
#include "Objects.hpp"

namespace cdrctl::test {
namespace {

using cimhost::test::CommandResult;
using cimhost::test::HostProcess;
using cimhost::test::runCommand;
using cimhost::test::TempDir;
using nlohmann::json;

// Beside the configured service of the host's tests: the bins empty, and a
// push server entered while no push is scheduled.
const char* const kPushSeed[] = {
    "set-binary CDR CDRService 'PREFIX BIN' "
    "0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c0c",
    "set-binary CDR CDRService 'ACCESS BIN' 0c0c0c0c0c000c0c0c0c0c000c0c0c0c0c000c0c0c0c0c000c0c0c0c0c00",
    "set-binary CDR CDRPush TransferType 04",       "set-string CDR CDRPush IpAddr 192.0.2.10",
    "set-string CDR CDRPush UserName cdr",          "set-string CDR CDRPush Password s3cret",
    "set-string CDR CDRPush DestFolder /cdr/in",    "set-binary CDR CDRPush NumRetry 03",
    "set-binary CDR CDRPush CompressFlag 00",       "set-binary CDR CDRPush DeleteFlag 01",
    "set-binary CDR CDRPush IncludeMetricsFlag 00", "set-string CDR CDRPush TranTime 08:00",
};

class Cdrctl : public ::testing::Test {
protected:
    void SetUp() override {
        unsetenv("CDRCTL_USER");
        unsetenv("CDRCTL_PASSWORD");
        setenv("ZPO_ROOT", external ? external->zpoRoot.c_str() : state.path().c_str(), 1);
        for (const std::string& entry : cimhost::test::deviceSeed()) ASSERT_EQ(zpo("reg " + entry).exitCode, 0);
        for (const char* entry : kPushSeed) ASSERT_EQ(zpo(std::string("reg ") + entry).exitCode, 0) << entry;
        if (!external) return startHost({});
        setenv("CDRCTL_URL", external->address.c_str(), 1);
        if (!external->user.empty()) setenv("CDRCTL_USER", external->user.c_str(), 1);
        if (!external->password.empty()) setenv("CDRCTL_PASSWORD", external->password.c_str(), 1);
    }

    void startHost(std::vector<std::string> extra) {
        host.reset();
        std::vector<std::string> args{"--provider", CDR_PROVIDER, "--mof", CDR_MOF};
        args.insert(args.end(), extra.begin(), extra.end());
        host = std::make_unique<HostProcess>(CIMHOST_BINARY, args,
                                             state.file("host" + std::to_string(++hostsStarted) + ".log"));
        ASSERT_TRUE(host->running()) << host->log();
        setenv("CDRCTL_URL", ("http://127.0.0.1:" + std::to_string(host->port())).c_str(), 1);
    }

    // Standard input is not a terminal, so cdrctl never asks for anything.
    CommandResult cdrctl(const std::string& arguments) {
        return runCommand(std::string(CDRCTL_BINARY) + " " + arguments + " </dev/null", scratch);
    }
    json cdrctlJson(const std::string& arguments, int expectedExit = 0) {
        CommandResult result = cdrctl("--json " + arguments);
        EXPECT_EQ(result.exitCode, expectedExit) << arguments << "\n" << result.err;
        return json::parse(result.out);
    }
    CommandResult zpo(const std::string& arguments) {
        return runCommand(cimhost::test::zpoCommand() + " " + arguments, scratch);
    }
    std::string entry(const std::string& section, const std::string& key) {
        return zpo("reg get CDR " + section + " '" + key + "'").out;
    }
    std::string registry() { return zpo("reg list CDR").out; }
    std::string crontab() { return zpo("sched list").out; }

    // An object manager started by someone else (CDR_E2E_URL, see
    // HostProcess.hpp), or else cimhost started per test.
    const cimhost::test::ExternalServer* const external = cimhost::test::externalServer();
    TempDir state;
    TempDir scratch;
    std::unique_ptr<HostProcess> host;
    int hostsStarted = 0;
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

TEST_F(Cdrctl, ShowsEveryObjectAndMarksWhatDoesNotApply) {
    CommandResult push = cdrctl("show push");
    ASSERT_EQ(push.exitCode, 0) << push.err;
    EXPECT_TRUE(std::regex_search(push.out, std::regex("TransferType +4 \\(no scheduled push\\)"))) << push.out;
    EXPECT_TRUE(std::regex_search(push.out, std::regex("IPAddress +not applicable"))) << push.out;

    json all = cdrctlJson("show");
    ASSERT_EQ(all["objects"].size(), 6u);
    std::map<std::string, json> byName;
    for (const json& object : all["objects"]) byName[object["object"]] = object;
    EXPECT_EQ(byName["prefix-bins"]["instances"].size(), 8u);
    EXPECT_EQ(byName["access-bins"]["instances"].size(), 5u);
    EXPECT_EQ(byName["access-bins"]["instances"][4]["row"], 4);
    EXPECT_EQ(byName["access-bins"]["instances"][4]["properties"]["SuppressBin"], "0");
    json service = byName["service"]["instances"][0];
    EXPECT_EQ(service["properties"]["DigitsLimit"], 16);
    EXPECT_EQ(service["properties"]["FeatureCode"], "12");
    EXPECT_EQ(service["properties"]["DNISInfo"], false);
    EXPECT_EQ(service["keys"]["Name"], "CDRService");
    json pushSetting = byName["push"]["instances"][0];
    EXPECT_EQ(pushSetting["properties"]["TransferType"], 4);
    EXPECT_EQ(pushSetting["properties"]["IPAddress"], nullptr);
    EXPECT_EQ(pushSetting["notApplicable"].size(), 11u);
    // With a daily push the server settings apply; the password stays hidden.
    ASSERT_EQ(zpo("reg set-binary CDR CDRPush TransferType 00").exitCode, 0);
    pushSetting = cdrctlJson("show push")["objects"][0]["instances"][0];
    EXPECT_EQ(pushSetting["properties"]["IPAddress"], "192.0.2.10");
    EXPECT_EQ(pushSetting["properties"]["NumRetry"], 3);
    EXPECT_EQ(pushSetting["properties"]["Password"], "********");
    EXPECT_EQ(pushSetting["notApplicable"], json::array({"TransferDayOfMonth", "TransferDayOfWeek"}));
    EXPECT_EQ(cdrctlJson("show push --show-secrets")["objects"][0]["instances"][0]["properties"]["Password"],
              "s3cret");
}

// The first data loss: a full-instance modify while no push is scheduled
// wrote the empty values of the settings that did not apply. cdrctl's
// request names the keys and exactly the property it sets, so the object
// manager neither adds the other properties nor loses the instance.
TEST_F(Cdrctl, FlagChangeWhilePushIsOffKeepsTheServerSettings) {
    std::string before = registry();
    CommandResult set = cdrctl("set push CompressFlag=true");
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(set.out, "push: wrote CompressFlag=true\n");
    std::string expected = std::regex_replace(before, std::regex("CompressFlag\tbinary 00"), "CompressFlag\tbinary 01");
    EXPECT_NE(expected, before);
    EXPECT_EQ(registry(), expected);
}

// The second: while a weekly push is set, a modify carried the day of month
// back empty and failed with 301 after writing what came before.
TEST_F(Cdrctl, TimeChangeOfAWeeklyPushKeepsItsDay) {
    ASSERT_EQ(cdrctl("set push TransferType=weekly TransferDayOfWeek=3").exitCode, 0);
    std::string before = registry();
    CommandResult set = cdrctl("set push TransferTime=10:30");
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(registry(), std::regex_replace(before, std::regex("TranTime\tstring 08:00"), "TranTime\tstring 10:30"));
    EXPECT_EQ(crontab(), "30 10 * * 3 /qv/bin/CDRTransfer\n");
}

TEST_F(Cdrctl, MonthlySwitchWorksInOneCommandWhateverTheOrder) {
    CommandResult set = cdrctl("set push TransferType=2 TransferTime=02:30 TransferDayOfMonth=15");
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(set.out, "push: wrote TransferTime=02:30, TransferDayOfMonth=15, TransferType=2\n");
    EXPECT_EQ(entry("CDRPush", "TransferType"), "binary 02\n");
    EXPECT_EQ(entry("CDRPush", "TranDateOfMonth"), "string 15\n");
    EXPECT_EQ(crontab(), "30 2 15 * * /qv/bin/CDRTransfer\n");
    // Back to no push removes the schedule; the server settings stay.
    ASSERT_EQ(cdrctl("set push TransferType=4 TransferTime=03:00").exitCode, 0);
    EXPECT_EQ(crontab(), "");
    EXPECT_EQ(entry("CDRPush", "IpAddr"), "string 192.0.2.10\n");
}

TEST_F(Cdrctl, ScheduleThatNeedsAnUnreadableDayIsRefused) {
    std::string before = registry();
    CommandResult set = cdrctl("set push TransferType=monthly");
    EXPECT_EQ(set.exitCode, 3);
    EXPECT_TRUE(contains(set.err, "TransferType 2 (monthly) needs TransferDayOfMonth=... in the same command"))
        << set.err;
    EXPECT_TRUE(contains(set.err, "nothing was written")) << set.err;
    EXPECT_EQ(registry(), before);
}

// The limits themselves pass, and reach the registry as the device keeps them.
TEST_F(Cdrctl, ValuesAtTheLimitsAreWritten) {
    ASSERT_EQ(cdrctl("set service DigitsLimit=24 ClipFileSize_100K=255").exitCode, 0);
    ASSERT_EQ(cdrctl("set access-bins --row 2 AccessBin=123 SuppressBin=16").exitCode, 0);
    EXPECT_EQ(entry("CDRService", "DIGITSLIMIT"), "binary 00 18\n");
    EXPECT_EQ(entry("CDRService", "FILESIZE"), "binary ff\n");
    EXPECT_EQ(entry("CDRService", "ACCESS BIN"),
              "binary 0c 0c 0c 0c 0c 00 0c 0c 0c 0c 0c 00 01 02 03 0c 0c 10 0c 0c 0c 0c 0c 00 0c 0c 0c 0c 0c 00\n");
}

// Values around each writable property's limits, by its rule.
std::vector<std::string> probeValues(const PropertySpec& property) {
    auto number = [](unsigned long n) { return std::to_string(n); };
    switch (property.rule) {
        case Rule::None: return {};
        case Rule::Number: {
            std::vector<std::string> values{number(property.min), "007", number(property.max), "",
                                            "x", "-1", number(property.max + 1), "99999999999"};
            if (property.min > 0) values.push_back(number(property.min - 1));
            return values;
        }
        case Rule::Boolean: return {"true", "FALSE", "yes", "off", "1", "0", "maybe", ""};
        case Rule::Text:
            return {"", "cdr", "a\tb", "M\xc3\xbcller", std::string(property.max, 'a'),
                    std::string(property.max + 1, 'a')};
        case Rule::Digits:
            return {"", "0", std::string(property.max, '9'), std::string(property.max + 1, '9'), "9a", "1 2"};
        case Rule::SuppressCount: return {"0", "16", "17", "99", "100", "a", ""};
        case Rule::Time:
            return {"0:00", "07:05", "23:59", "7:5", "24:00", "12:60", "0700", "", "ab:cd", "12:", "7:05x", ":30"};
        case Rule::Day:
            return {number(property.min), "07", number(property.max), number(property.min - 1),
                    number(property.max + 1), "", "x", "3x", "100", "-1"};
        case Rule::TransferType: return {"daily", "weekly", "monthly", "0", "3", "4", "5", "255", "256", "x", ""};
    }
    return {};
}

const char* ifSentText(IfSent ifSent) {
    switch (ifSent) {
        case IfSent::NotWritable: return "not writable";
        case IfSent::ModuleRefuses: return "refused with the module's message";
        case IfSent::ModuleRefuses301: return "refused with status 301";
        case IfSent::NotConvertible: return "not convertible";
        case IfSent::StoredOtherwise: return "stored otherwise";
    }
    return "?";
}

// The CIM error the module answers a modify of one property with, if any.
std::optional<CimError> sendToModule(CimClient& client, const InstanceName& name, const PropertySpec& property,
                                     const std::string& text) {
    try {
        client.modifyInstance(name, {{property.name, property.cimType, CimValue::scalar(text), {}}});
    } catch (const CimError& error) {
        return error;
    }
    return std::nullopt;
}

// Whether the module did with a value what cdrctl's verdict on it says.
bool moduleAgrees(const std::optional<ValueRefused>& refused, const std::optional<CimError>& error) {
    if (!refused) return !error;
    switch (refused->ifSent) {
        case IfSent::NotWritable: return false;
        case IfSent::ModuleRefuses: return error && contains(error->description(), refused->reason);
        case IfSent::ModuleRefuses301: {
            const char* meaning = error && error->code() == 1 ? statusMeaning(error->description()) : nullptr;
            return meaning && contains(meaning, "status 301");
        }
        case IfSent::NotConvertible: return error && contains(error->description(), "nable to convert");
        case IfSent::StoredOtherwise: return !error;
    }
    return false;
}

// Every value rule of cdrctl, tried on the module: a value cdrctl accepts
// the module accepts; a value cdrctl refuses the module refuses as cdrctl
// says it would (with the same message, with status 301, or the object
// manager cannot convert it), or takes and stores as something else.
TEST_F(Cdrctl, EveryValueRuleAgreesWithTheModule) {
    ASSERT_EQ(zpo("reg set-binary CDR CDRPush TransferType 00").exitCode, 0);
    Connection connection;
    connection.url = std::getenv("CDRCTL_URL");
    if (const char* user = std::getenv("CDRCTL_USER")) connection.user = user;
    if (const char* password = std::getenv("CDRCTL_PASSWORD")) connection.password = password;
    CimClient client(connection);
    const std::string backup = state.file("registry.backup");
    int tried = 0;
    for (const ObjectSpec& object : objects()) {
        std::vector<InstanceName> names = client.enumerateInstanceNames(object.className);
        ASSERT_FALSE(names.empty()) << object.className;
        // Days and time before the transfer type that reads them, as cdrctl writes.
        std::vector<const PropertySpec*> properties;
        for (const PropertySpec& property : object.properties) properties.push_back(&property);
        std::stable_sort(properties.begin(), properties.end(),
                         [](auto* a, auto* b) { return a->writeRank < b->writeRank; });
        for (const PropertySpec* property : properties) {
            bool backedUp = false;  // the device as the values cdrctl accepted left it
            for (const std::string& value : probeValues(*property)) {
                std::optional<std::string> accepted;
                std::optional<ValueRefused> refused;
                try {
                    accepted = checkedValue(*property, value);
                } catch (const ValueRefused& refusal) {
                    refused = refusal;
                }
                const bool takenOtherwise = refused && refused->ifSent == IfSent::StoredOtherwise;
                if (takenOtherwise && !backedUp) {
                    ASSERT_EQ(zpo("reg backup " + backup).exitCode, 0);
                    backedUp = true;
                }
                std::optional<CimError> error =
                    sendToModule(client, names.front(), *property, accepted.value_or(value));
                ++tried;
                EXPECT_TRUE(moduleAgrees(refused, error))
                    << object.name << " " << property->name << "=\"" << value << "\": cdrctl "
                    << (accepted ? "accepts" : "refuses (" + std::string(ifSentText(refused->ifSent)) + ": " +
                                                   refused->reason + ")")
                    << ", the module "
                    << (error ? "answers CIM error " + std::to_string(error->code()) + " " + error->description()
                              : std::string("accepts"));
                // The device goes back to what the accepted values left: a text of 512
                // characters, for one, leaves the push settings unreadable.
                if (takenOtherwise) { ASSERT_EQ(zpo("reg restore " + backup).exitCode, 0); }
            }
        }
    }
    EXPECT_GT(tried, 200);
}

TEST_F(Cdrctl, CommandLineMistakesAreNamed) {
    const std::pair<const char*, const char*> cases[] = {
        {"set nothing X=1", "nothing not in"},
        {"set service Colour=red", "service has no property \"Colour\"; it can set: Format, ReportType"},
        {"set service DigitsLimit", "\"DigitsLimit\" is not of the form NAME=VALUE"},
        {"set service DigitsLimit=20 digitslimit=21", "DigitsLimit is given twice"},
        {"set prefix-bins PrefixBin=1", "prefix-bins has rows: name one with --row N"},
        {"set prefix-bins --row 9 PrefixBin=1", "prefix-bins has no row 9 (rows: 0 to 7)"},
        {"set push --row 1 NumRetry=1", "push has no rows"},
        {"call push Explode", "push has no method \"Explode\"; it has: PushFileNow"},
        {"call prefix-bins Refresh --row 0", "prefix-bins has no method \"Refresh\"; it has none"},
        {"", "A subcommand is required"},
    };
    for (const auto& [arguments, message] : cases) {
        CommandResult result = cdrctl(arguments);
        EXPECT_EQ(result.exitCode, 2) << arguments;
        EXPECT_TRUE(contains(result.err, message)) << arguments << "\n" << result.err;
    }
    CommandResult help = cdrctl("set --help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(contains(help.out, "301 the device refused the value as invalid")) << help.out;
    EXPECT_TRUE(contains(help.out, "3  a value failed the checks; nothing was sent")) << help.out;
}

TEST_F(Cdrctl, DeviceFailureNamesWhatWasWrittenBeforeIt) {
    ASSERT_EQ(zpo("fault set reg-write CDR CDRService LANG 0x200011").exitCode, 0);
    CommandResult set = cdrctl("set service DigitsLimit=20 Language=1 Format=2");
    EXPECT_EQ(set.exitCode, 5);
    // OpenWBEM 3.0 words the code before the module's message: "general error (101)".
    EXPECT_TRUE(std::regex_match(set.err, std::regex(
                    "cdrctl: service: Language=1 was not written: CIM error 1 \\(CIM_ERR_FAILED\\): (.*\\()?101\\)? "
                    "\\(status 101: the device could not write the value to its registry\\)\n"
                    "  written before it: Format=2\n"
                    "  not written: DigitsLimit=20\n")))
        << set.err;
    EXPECT_EQ(entry("CDRService", "FORMAT"), "binary 02\n");
    EXPECT_EQ(entry("CDRService", "DIGITSLIMIT"), "binary 00 10\n");
    json failed = cdrctlJson("set service Format=3 Language=1", 5);
    EXPECT_EQ(failed["error"]["written"], json::array({"Format"}));
    EXPECT_EQ(failed["error"]["failed"], "Language");
    EXPECT_EQ(failed["error"]["cause"]["code"], 1);
    EXPECT_TRUE(contains(failed["error"]["cause"]["meaning"], "status 101")) << failed;
    // A read failure leaves the property out; show says so.
    ASSERT_EQ(zpo("fault set reg-read CDR CDRService DATE 0x200011").exitCode, 0);
    CommandResult show = cdrctl("show service");
    EXPECT_TRUE(std::regex_search(show.out, std::regex("DateFormat +could not be read"))) << show.out;
    EXPECT_EQ(cdrctlJson("show service")["objects"][0]["instances"][0]["unreadable"], json::array({"DateFormat"}));
}

TEST_F(Cdrctl, MethodsAnswerWithTheirResults) {
    CommandResult push = cdrctl("call push pushfilenow");
    ASSERT_EQ(push.exitCode, 0) << push.err;
    EXPECT_EQ(push.out, "push PushFileNow: 1\n");
    EXPECT_EQ(cdrctl("refresh pull-stats").out, "pull-stats Refresh: 1\n");
    EXPECT_EQ(cdrctlJson("refresh pull-stats")["returnValue"], 2);
    EXPECT_EQ(cdrctl("refresh push-stats").out, "push-stats Refresh: 1\n");
    EXPECT_EQ(cdrctl("clip").out, "service ClipFile: 1\n");
}

int freePort() {
    int fd = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
    socklen_t length = sizeof address;
    getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
    close(fd);
    return ntohs(address.sin_port);
}

TEST_F(Cdrctl, TransportAndCredentialErrorsAreNamed) {
    const std::string nowhere = "http://127.0.0.1:" + std::to_string(freePort());
    CommandResult refused = cdrctl("show push --url " + nowhere);
    EXPECT_EQ(refused.exitCode, 4);
    EXPECT_EQ(refused.err, "cdrctl: no answer from " + nowhere + ": connection refused\n");
    CommandResult namespaceError = cdrctl("show push --namespace root/elsewhere");
    EXPECT_EQ(namespaceError.exitCode, 5);
    EXPECT_TRUE(contains(namespaceError.err, "CIM error 3 (CIM_ERR_INVALID_NAMESPACE)")) << namespaceError.err;
    CommandResult badUrl = cdrctl("show push --url ftp://x");
    EXPECT_EQ(badUrl.exitCode, 4);
    EXPECT_TRUE(contains(badUrl.err, "is not of the form http[s]://HOST[:PORT][/PATH]")) << badUrl.err;

    std::string user = "admin", password = "letmein";
    if (external) {
        if (external->user.empty()) GTEST_SKIP() << "the object manager asks for no credentials";
        user = external->user;
        password = external->password;
    } else {
        struct crypt_data data {};
        std::ofstream(state.file("auth")) << user << ":" << crypt_r(password.c_str(), "$6$cdrctltest$", &data) << "\n";
        startHost({"--auth-file", state.file("auth")});
    }
    unsetenv("CDRCTL_USER");
    unsetenv("CDRCTL_PASSWORD");
    CommandResult anonymous = cdrctl("show push");
    EXPECT_EQ(anonymous.exitCode, 4);
    EXPECT_TRUE(contains(anonymous.err, "the object manager asks for a user name and password; give the user with "
                                        "--user or CDRCTL_USER and the password in CDRCTL_PASSWORD"))
        << anonymous.err;
    EXPECT_EQ(cdrctlJson("show push", 4)["error"]["kind"], "authentication");
    setenv("CDRCTL_USER", user.c_str(), 1);
    setenv("CDRCTL_PASSWORD", "wrong", 1);
    EXPECT_TRUE(contains(cdrctl("show push").err, "refused the user name or password"));
    setenv("CDRCTL_PASSWORD", password.c_str(), 1);
    CommandResult allowed = cdrctl("set push NumRetry=5");
    EXPECT_EQ(allowed.exitCode, 0) << allowed.err;
    EXPECT_EQ(entry("CDRPush", "NumRetry"), "binary 05\n");
}

}  // namespace
}  // namespace cdrctl::test
