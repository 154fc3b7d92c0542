// cdrctl's checks of values before anything is sent, without an object
// manager: what each rule refuses and why, what it sends for what it takes.
// Whether the module agrees is Cdrctl.EveryValueRuleAgreesWithTheModule.
#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "Commands.hpp"
#include "Objects.hpp"

namespace cdrctl::test {
namespace {

// The value cdrctl sends for NAME=VALUE of `object`, or the reason it refuses.
std::string verdict(const char* object, const char* assignment) {
    std::string text = assignment;
    size_t equals = text.find('=');
    const PropertySpec* property = findProperty(*findObject(object), text.substr(0, equals));
    if (!property) return "no such property";
    try {
        return "sends " + checkedValue(*property, text.substr(equals + 1));
    } catch (const ValueRefused& refused) {
        return refused.reason;
    }
}

bool startsWith(const std::string& text, const std::string& start) { return text.rfind(start, 0) == 0; }

TEST(ValueRules, RefuseWhatTheDeviceWouldRefuseOrStoreOtherwiseAndSayWhy) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"service", "DigitsLimit=25", "DigitsLimit must be <= 24"},
        {"service", "DigitsLimit=2", "DigitsLimit must be >= 3"},
        {"service", "DigitsLimit=", "DigitsLimit must be >= 3"},
        {"service", "FeatureCode=1234", "FeatureCode length must be must be <= 3"},
        {"service", "FeatureCode=9a", "FeatureCode takes digits only: the device stores any other character as 0"},
        {"service", "ClipFileSize_100K=300", "ClipFileSize_100K must be <= 255: the device keeps one byte"},
        {"service", "Format=x", "Format must be a whole number from 0 to 255"},
        {"service", "Format=256", "Format must be <= 255"},
        {"service", "Format=", "Format is empty: the object manager would store 0"},
        {"service", "DNISInfo=maybe", "DNISInfo must be true or false"},
        {"service", "DNISInfo=", "DNISInfo is empty: the object manager would store false"},
        {"prefix-bins", "PrefixBin=123456789", "PrefixBin length must be must be <= 8"},
        {"prefix-bins", "PrefixBin=12a", "PrefixBin takes the digits 0-9 only; the device refuses anything else"},
        {"access-bins", "SuppressBin=100", "SuppressBin length must be must be <= 2"},
        {"access-bins", "SuppressBin=17", "SuppressBin must be a number from 0 to 16"},
        {"access-bins", "SuppressBin=", "SuppressBin is empty: the device would store 0"},
        {"push", "TransferTime=24:00", "TransferTime must be HH:MM with hour 0-23 and minute 00-59; the device "
                                       "refuses anything else (status 301)"},
        {"push", "TransferTime=0700", "TransferTime must be HH:MM with hour 0-23 and minute 00-59; the device "
                                      "refuses"},
        {"push", "TransferTime=", "TransferTime must be HH:MM with hour 0-23 and minute 00-59: the device would read "
                                  "\"\" as 00:00"},
        {"push", "TransferTime=12:", "TransferTime must be HH:MM with hour 0-23 and minute 00-59: the device would "
                                     "read \"12:\" as 12:00"},
        {"push", "TransferDayOfWeek=7", "TransferDayOfWeek must be a number from 0 to 6; the device refuses"},
        {"push", "TransferDayOfWeek=x", "TransferDayOfWeek must be a number from 0 to 6: the device would read \"x\" "
                                        "as 0"},
        {"push", "TransferDayOfMonth=0", "TransferDayOfMonth must be a number from 1 to 31; the device refuses"},
        {"push", "TransferDayOfMonth=x", "TransferDayOfMonth must be a number from 1 to 31; the device refuses"},
        {"push", "TransferType=5", "TransferType must be 0 or daily, 1 or weekly, 2 or monthly, 3 or 4 (no scheduled "
                                   "push): the device would store 5 and push daily"},
        {"push", "TransferType=256", "TransferType must be 0 or daily"},
        {"push", "NumRetry=300", "NumRetry must be <= 255"},
        {"push", "UserName=a\tb", "UserName holds a control character: the device reads such a text back as empty"},
        {"push", "UserName=M\xc3\xbcller", "UserName holds a non-ASCII character: the device stores text as ISO "
                                           "8859-1"},
        {"push", "InstanceID=x", "InstanceID is read only"},
    };
    for (const auto& [object, assignment, reason] : cases)
        EXPECT_PRED2(startsWith, verdict(object, assignment), reason) << object << " " << assignment;
    std::string longText = "DestFolder=" + std::string(512, 'a');
    EXPECT_EQ(verdict("push", longText.c_str()),
              "DestFolder must be at most 511 characters: the device reads texts into 512 bytes");
}

TEST(ValueRules, SendWhatTheyTakeInTheDevicesForm) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"service", "DigitsLimit=024", "sends 24"},      {"service", "DigitsLimit=3", "sends 3"},
        {"service", "DNISInfo=Yes", "sends true"},       {"service", "HospitalityRecords=off", "sends false"},
        {"service", "CDRDiskSpaceLimit_MB=4294967295", "sends 4294967295"},
        {"service", "FeatureCode=123", "sends 123"},     {"prefix-bins", "PrefixBin=", "sends "},
        {"access-bins", "SuppressBin=16", "sends 16"},   {"push", "TransferTime=7:5", "sends 7:5"},
        {"push", "TransferTime=23:59", "sends 23:59"},   {"push", "TransferDayOfMonth=07", "sends 7"},
        {"push", "TransferDayOfWeek=0", "sends 0"},      {"push", "TransferType=monthly", "sends 2"},
        {"push", "TransferType=4", "sends 4"},           {"push", "IPAddress=", "sends "},
    };
    for (const auto& [object, assignment, sent] : cases) EXPECT_EQ(verdict(object, assignment), sent) << assignment;
    std::string longest = "DestFolder=" + std::string(511, 'a');
    EXPECT_EQ(verdict("push", longest.c_str()), "sends " + std::string(511, 'a'));
}

// cdrctl run in this process; standard output and error captured.
struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};
Outcome runCdrctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "cdrctl");
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    std::ostringstream out, err;
    std::streambuf* savedOut = std::cout.rdbuf(out.rdbuf());
    std::streambuf* savedErr = std::cerr.rdbuf(err.rdbuf());
    int exitCode = run(static_cast<int>(argv.size()), argv.data());
    std::cout.rdbuf(savedOut);
    std::cerr.rdbuf(savedErr);
    return {exitCode, out.str(), err.str()};
}

// Nothing listens at the URL: had cdrctl tried to send, it would fail with 4.
TEST(SetCommand, NamesEveryRefusedValueAndSendsNothing) {
    const std::string nowhere = "http://127.0.0.1:1";
    Outcome two = runCdrctl({"--url", nowhere, "set", "service", "Format=2", "DigitsLimit=30", "FeatureCode=12345"});
    EXPECT_EQ(two.exitCode, kValueRefused);
    EXPECT_EQ(two.err, "cdrctl: DigitsLimit must be <= 24\nFeatureCode length must be must be <= 3\n"
                       "nothing was written\n");
    Outcome json = runCdrctl({"--url", nowhere, "--json", "set", "push", "DestFolder=/tmp/\xc3\xa9"});
    EXPECT_EQ(json.exitCode, kValueRefused);
    EXPECT_NE(json.out.find("\"kind\": \"refused\""), std::string::npos) << json.out;
    EXPECT_NE(json.out.find("\"property\": \"DestFolder\""), std::string::npos) << json.out;
    EXPECT_EQ(runCdrctl({"--url", nowhere, "set", "service", "DigitsLimit=20"}).exitCode, kNoAnswer);
}

}  // namespace
}  // namespace cdrctl::test
