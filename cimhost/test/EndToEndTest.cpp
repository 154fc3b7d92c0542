// The host serving the real module, driven by wbemcli, checked with zpo.
// Each test has its own state directory, port and queue.
#include <crypt.h>
#include <gtest/gtest.h>

#include <memory>
#include <regex>

#include "HostProcess.hpp"

namespace cimhost::test {
namespace {

const std::string kService =
    "QTX_CDRService.SystemCreationClassName=\\\"QTX_System\\\",SystemName=\\\"QTX\\\","
    "CreationClassName=\\\"QTX_CDRService\\\",Name=\\\"CDRService\\\"";
const std::string kPushSetting = "QTX_CDRPushSetting.InstanceID=\\\"CDRPushSetting\\\"";

// Settings a configured device holds; without them the module leaves the
// unreadable properties out and wbemcli mi cannot name them.
const char* const kSeed[] = {
    "set-binary CDR CDRService FORMAT 01",         "set-binary CDR CDRService TYPE 00",
    "set-binary CDR CDRService LANG 00",           "set-binary CDR CDRService FILTER 00",
    "set-binary CDR CDRService 'FEATURE CODE' f912", "set-binary CDR CDRService DATE 00",
    "set-binary CDR CDRService HEADER 00",         "set-binary CDR CDRService DNIS 00",
    "set-binary CDR CDRService CONNECT 00",        "set-binary CDR CDRService DIGITSSUPP 00",
    "set-binary CDR CDRService DIGITSLIMIT 0010",  "set-binary CDR CDRService SCHEDULE 00",
    "set-binary CDR CDRService FILESIZE 0a",       "set-int CDR CDRService DISKLIMIT 100",
    "set-binary CDR CDRService NAME 00",           "set-binary CDR CDRService LONGID 00",
    "set-binary CDR CDRService CALLTYPE 00",       "set-binary CDR CDRService CHARGE 00",
    "set-binary CDR CDRService SUPERVISE 00",      "set-binary CDR CDRService TIME 00",
    "set-binary CDR CDRService HOSPITAL 00",
};

class CdrHost : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("ZPO_ROOT", state.path().c_str(), 1);
        for (const char* entry : kSeed) ASSERT_EQ(zpo(std::string("reg ") + entry).exitCode, 0) << entry;
        startHost({});
    }
    void TearDown() override {
        host.reset();
        if (listenerPid > 0) runCommand("kill " + std::to_string(listenerPid) + " 2>/dev/null; true", scratch);
        zpo("queue remove CDRService");
    }

    void startHost(std::vector<std::string> extra) {
        host.reset();
        std::vector<std::string> args{"--provider", CDR_PROVIDER, "--mof", CDR_MOF};
        args.insert(args.end(), extra.begin(), extra.end());
        host = std::make_unique<HostProcess>(CIMHOST_BINARY, args,
                                             state.file("host" + std::to_string(++hostsStarted) + ".log"));
        ASSERT_TRUE(host->running()) << host->log();
        url = "http://127.0.0.1:" + std::to_string(host->port()) + "/root/cimv2";
    }

    // Listens on the CDR service's queue until `count` messages arrived.
    void listenToCdrService(int count) {
        CommandResult started = runCommand(std::string(ZPO_BINARY) + " queue listen CDRService --count " +
                                               std::to_string(count) + " --timeout 30 >" + state.file("queue.out") +
                                               " 2>&1 & echo $!",
                                           scratch);
        listenerPid = std::atoi(started.out.c_str());
        // The module looks the queue up on every change; give the listener
        // time to create it.
        usleep(300000);
    }
    std::string queueMessages(int expectedLines) {
        for (int i = 0; i < 200; ++i) {
            std::string out = readFile(state.file("queue.out"));
            if (std::count(out.begin(), out.end(), '\n') >= expectedLines) return out;
            usleep(20000);
        }
        return readFile(state.file("queue.out"));
    }

    CommandResult wbemcli(const std::string& arguments) { return runCommand("wbemcli " + arguments, scratch); }
    CommandResult zpo(const std::string& arguments) { return runCommand(std::string(ZPO_BINARY) + " " + arguments, scratch); }
    CommandResult curl(const std::string& method, const std::string& body, const std::string& extra = "") {
        std::ofstream(scratch.file("body.xml")) << body;
        return runCommand("curl -s -o " + scratch.file("response.xml") + " -D - -H 'Content-Type: application/xml' "
                          "-H 'CIMOperation: MethodCall' -H 'CIMMethod: " + method + "' " + extra +
                          " --data-binary @" + scratch.file("body.xml") + " http://127.0.0.1:" +
                          std::to_string(host->port()) + "/cimom", scratch);
    }

    TempDir state;
    TempDir scratch;
    std::unique_ptr<HostProcess> host;
    std::string url;
    int listenerPid = -1;
    int hostsStarted = 0;
};

std::string intrinsicBody(const std::string& name, const std::string& params) {
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" + name + "\"><LOCALNAMESPACEPATH><NAMESPACE "
           "NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" + params +
           "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

size_t lineCount(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }

TEST_F(CdrHost, EnumeratesSixClassesWithSeventeenInstances) {
    CommandResult classes = wbemcli("ecn '" + url + "'");
    ASSERT_EQ(classes.exitCode, 0) << classes.err;
    EXPECT_EQ(lineCount(classes.out), 6u);
    const std::pair<const char*, size_t> expected[] = {
        {"QTX_CDRService", 1}, {"QTX_CDRServicePrefixBin", 8}, {"QTX_CDRServiceAccessBin", 5},
        {"QTX_CDRPushSetting", 1}, {"QTX_CDRPushStatistics", 1}, {"QTX_CDRPullStatistics", 1}};
    size_t total = 0;
    for (const auto& [cls, count] : expected) {
        CommandResult names = wbemcli("ein '" + url + ":" + cls + "'");
        ASSERT_EQ(names.exitCode, 0) << names.err;
        EXPECT_EQ(lineCount(names.out), count) << cls;
        CommandResult instances = wbemcli("ei '" + url + ":" + cls + "'");
        ASSERT_EQ(instances.exitCode, 0) << instances.err;
        EXPECT_EQ(lineCount(instances.out), count) << cls;
        total += count;
        // Every name the enumeration gave can be read back by its keys.
        std::istringstream lines(names.out);
        std::string path;
        while (std::getline(lines, path)) {
            std::string keys = path.substr(path.find(':', path.find('/')) + 1);
            CommandResult one = wbemcli("gi '" + url + ":" + keys + "'");
            EXPECT_EQ(one.exitCode, 0) << keys << one.err;
            EXPECT_EQ(lineCount(one.out), 1u) << keys;
        }
    }
    EXPECT_EQ(total, 17u);
    CommandResult service = wbemcli("ei -nl '" + url + ":QTX_CDRService'");
    EXPECT_NE(service.out.find("-DigitsLimit=16"), std::string::npos) << service.out;
    EXPECT_NE(service.out.find("-FeatureCode=\"12\""), std::string::npos) << service.out;
}

TEST_F(CdrHost, ModifiedSettingReachesRegistryAndCdrService) {
    listenToCdrService(1);
    CommandResult modified = wbemcli("mi \"" + url + ":" + kService + "\" 'DigitsLimit=20'");
    ASSERT_EQ(modified.exitCode, 0) << modified.err;
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 14\n");
    EXPECT_NE(queueMessages(1).find("0\n"), std::string::npos);
    CommandResult read = wbemcli("gi -nl \"" + url + ":" + kService + "\"");
    EXPECT_NE(read.out.find("-DigitsLimit=20"), std::string::npos) << read.out;
}

TEST_F(CdrHost, RefusedSettingIsCimError4WithTheModulesMessage) {
    CommandResult refused = wbemcli("mi \"" + url + ":" + kService + "\" 'DigitsLimit=25'");
    EXPECT_EQ(refused.exitCode, 16);
    EXPECT_NE(refused.err.find("Cim: (4) CIM_ERR_INVALID_PARAMETER: DigitsLimit must be <= 24"), std::string::npos)
        << refused.err;
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 10\n");
    EXPECT_NE(host->log().find("CDR/CDROAM/src/QTX_CDRServiceProvider:"), std::string::npos);
}

TEST_F(CdrHost, PushTimeChangeRearmsTheScheduledTransfer) {
    ASSERT_EQ(zpo("reg set-binary CDR CDRPush TransferType 00").exitCode, 0);
    // wbemcli sends every property it read back; the day of month does not
    // apply to a daily push and comes back empty, which the module refuses
    // after the earlier properties were applied.
    CommandResult modified = wbemcli("mi \"" + url + ":" + kPushSetting + "\" 'TransferTime=\"10:30\"'");
    EXPECT_EQ(modified.exitCode, 16);
    EXPECT_NE(modified.err.find("Cim: (1) CIM_ERR_FAILED: 301"), std::string::npos) << modified.err;
    EXPECT_EQ(zpo("reg get CDR CDRPush TranTime").out, "string 10:30\n");
    std::string crontab = zpo("sched list").out;
    EXPECT_NE(crontab.find("30 10 * * * /qv/bin/CDRTransfer"), std::string::npos) << crontab;
}

TEST_F(CdrHost, MethodsAnswerWithTheirCounters) {
    listenToCdrService(1);
    CommandResult refresh = wbemcli("cm \"" + url + ":" + kService + "\" Refresh");
    ASSERT_EQ(refresh.exitCode, 0) << refresh.err;
    EXPECT_NE(refresh.out.find("Refresh: 1\n"), std::string::npos) << refresh.out;
    CommandResult clip = wbemcli("cm \"" + url + ":" + kService + "\" ClipFile");
    ASSERT_EQ(clip.exitCode, 0) << clip.err;
    EXPECT_NE(clip.out.find("ClipFile: 1\n"), std::string::npos) << clip.out;
    EXPECT_NE(queueMessages(1).find("1\n"), std::string::npos);
    CommandResult push = wbemcli("cm \"" + url + ":" + kPushSetting + "\" PushFileNow");
    ASSERT_EQ(push.exitCode, 0) << push.err;
    EXPECT_NE(push.out.find("PushFileNow: 1\n"), std::string::npos) << push.out;
    // Each class counts its own calls, from 1 in a freshly loaded module.
    for (const char* statistics : {"QTX_CDRPullStatistics.Name=\"CDRPullStatistic\"",
                                   "QTX_CDRPushStatistics.Name=\"CDRPushStatistic\""}) {
        CommandResult refreshed = wbemcli("cm '" + url + ":" + statistics + "' Refresh");
        EXPECT_NE(refreshed.out.find("Refresh: 1\n"), std::string::npos) << refreshed.out << refreshed.err;
    }
}

TEST_F(CdrHost, ModuleErrorsReachTheClientAsWbemcliPrintsThem) {
    const std::pair<std::string, std::string> cases[] = {
        {"gi '" + url + ":QTX_CDRPushSetting.InstanceID=\"nope\"'", "Cim: (6) CIM_ERR_NOT_FOUND: \n"},
        {"di \"" + url + ":" + kPushSetting + "\"", "Cim: (7) CIM_ERR_NOT_SUPPORTED: \n"},
        {"ci '" + url + ":QTX_CDRServicePrefixBin.InstanceID=\"x\"' 'InstanceID=\"x\"'", "Cim: (7) CIM_ERR_NOT_SUPPORTED: \n"},
        {"cm \"" + url + ":" + kService + "\" refresh", "Cim: (17) CIM_ERR_METHOD_NOT_FOUND: \n"},
        {"cm \"" + url + ":" + kPushSetting + "\" pushfilenow", "Cim: (17) CIM_ERR_METHOD_NOT_FOUND: \n"},
        {"ei '" + url + ":qtx_cdrservice'", "Cim: (5) CIM_ERR_INVALID_CLASS: \n"},
        {"ain \"" + url + ":" + kPushSetting + "\"", "Cim: (5) CIM_ERR_INVALID_CLASS: \n"},
        {"ri \"" + url + ":" + kPushSetting + "\"", "Cim: (5) CIM_ERR_INVALID_CLASS: \n"},
        {"ei '" + url + ":QTX_NoSuchClass'", "Cim: (5) CIM_ERR_INVALID_CLASS: QTX_NoSuchClass\n"},
        {"ecn 'http://127.0.0.1:" + std::to_string(host->port()) + "/root/other'",
         "Cim: (3) CIM_ERR_INVALID_NAMESPACE: root/other\n"},
    };
    for (const auto& [command, expected] : cases) {
        CommandResult result = wbemcli(command);
        EXPECT_EQ(result.exitCode, 16) << command;
        EXPECT_NE(result.err.find(expected), std::string::npos) << command << "\n" << result.err;
    }
}

TEST_F(CdrHost, CredentialsAreCheckedWhenAnAuthFileIsGiven) {
    crypt_data data{};
    std::string hash = crypt_r("s3cret", "$6$cimhosttest$", &data);
    std::ofstream(state.file("users")) << "# users\nalice:" << hash << "\n";
    startHost({"--auth-file", state.file("users")});
    std::string hostPort = "127.0.0.1:" + std::to_string(host->port());
    CommandResult none = wbemcli("ecn 'http://" + hostPort + "/root/cimv2'");
    EXPECT_EQ(none.exitCode, 16);
    EXPECT_NE(none.err.find("Username/password required"), std::string::npos) << none.err;
    CommandResult wrong = wbemcli("ecn 'http://alice:guess@" + hostPort + "/root/cimv2'");
    EXPECT_EQ(wrong.exitCode, 16);
    EXPECT_NE(wrong.err.find("Invalid username/password"), std::string::npos) << wrong.err;
    CommandResult right = wbemcli("ei 'http://alice:s3cret@" + hostPort + "/root/cimv2:QTX_CDRServicePrefixBin'");
    EXPECT_EQ(right.exitCode, 0) << right.err;
    EXPECT_EQ(lineCount(right.out), 8u);
}

TEST_F(CdrHost, MalformedRequestsAreRefusedWithoutHarm) {
    std::string before = zpo("reg list").out;
    std::string modify = intrinsicBody(
        "ModifyInstance",
        "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"QTX_CDRServicePrefixBin\">"
        "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE>CDRServicePrefixBin_0</KEYVALUE></KEYBINDING></INSTANCENAME>"
        "<INSTANCE CLASSNAME=\"QTX_CDRServicePrefixBin\"><PROPERTY NAME=\"InstanceID\" TYPE=\"string\"><VALUE>"
        "CDRServicePrefixBin_0</VALUE></PROPERTY><PROPERTY NAME=\"PrefixBin\" TYPE=\"string\"><VALUE>123</VALUE>"
        "</PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE>");
    CommandResult truncated = curl("ModifyInstance", modify.substr(0, modify.size() - 40));
    EXPECT_NE(truncated.out.find("HTTP/1.1 400"), std::string::npos) << truncated.out;
    EXPECT_NE(truncated.out.find("CIMError: request-not-well-formed"), std::string::npos) << truncated.out;
    std::string wrongShape = modify;
    wrongShape.replace(wrongShape.find("<VALUE.NAMEDINSTANCE>"), 21, "<VALUE.OBJECT>");
    wrongShape.replace(wrongShape.find("</VALUE.NAMEDINSTANCE>"), 22, "</VALUE.OBJECT>");
    CommandResult invalid = curl("ModifyInstance", wrongShape);
    EXPECT_NE(invalid.out.find("CIMError: request-not-valid"), std::string::npos) << invalid.out;
    std::string oversize = modify;
    oversize.insert(oversize.find("</CIM>"), std::string(5 * 1024 * 1024, ' '));
    CommandResult tooLarge = curl("ModifyInstance", oversize);
    EXPECT_NE(tooLarge.out.find("HTTP/1.1 413"), std::string::npos) << tooLarge.out;
    CommandResult doctype = curl("ModifyInstance", "<?xml version=\"1.0\"?><!DOCTYPE CIM [<!ENTITY a \"b\">]>" +
                                                       modify.substr(modify.find("<CIM ")));
    EXPECT_NE(doctype.out.find("HTTP/1.1 400"), std::string::npos) << doctype.out;
    EXPECT_EQ(zpo("reg list").out, before);
    // Still serving, and the complete request does change the bin.
    CommandResult complete = curl("ModifyInstance", modify);
    EXPECT_NE(complete.out.find("HTTP/1.1 200"), std::string::npos);
    EXPECT_NE(zpo("reg list").out, before);
}

TEST_F(CdrHost, IncludeQualifiersShowsApplicableAndValidValueMap) {
    std::string service = intrinsicBody(
        "GetInstance",
        "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>TRUE</VALUE></IPARAMVALUE><IPARAMVALUE NAME=\"InstanceName\">"
        "<INSTANCENAME CLASSNAME=\"QTX_CDRService\"><KEYBINDING NAME=\"SystemCreationClassName\"><KEYVALUE>QTX_System"
        "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"SystemName\"><KEYVALUE>QTX</KEYVALUE></KEYBINDING><KEYBINDING "
        "NAME=\"CreationClassName\"><KEYVALUE>QTX_CDRService</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"Name\">"
        "<KEYVALUE>CDRService</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE>");
    ASSERT_EQ(curl("GetInstance", service).exitCode, 0);
    std::string response = readFile(scratch.file("response.xml"));
    EXPECT_NE(response.find("<PROPERTY NAME=\"ReportType\" TYPE=\"uint8\"><QUALIFIER NAME=\"ValidValueMap\" "
                            "TYPE=\"uint32\"><VALUE.ARRAY><VALUE>0</VALUE><VALUE>1</VALUE><VALUE>2</VALUE>"
                            "<VALUE>3</VALUE></VALUE.ARRAY></QUALIFIER>"),
              std::string::npos)
        << response;
    std::string pull = intrinsicBody(
        "EnumerateInstances", "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"QTX_CDRPullStatistics\"/></IPARAMVALUE>"
                              "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>TRUE</VALUE></IPARAMVALUE>");
    ASSERT_EQ(curl("EnumerateInstances", pull).exitCode, 0);
    response = readFile(scratch.file("response.xml"));
    EXPECT_NE(response.find("<QUALIFIER NAME=\"Applicable\" TYPE=\"boolean\"><VALUE>"), std::string::npos) << response;
    // Without IncludeQualifiers the same instances carry none.
    ASSERT_EQ(curl("EnumerateInstances", intrinsicBody("EnumerateInstances",
                   "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"QTX_CDRPullStatistics\"/></IPARAMVALUE>")).exitCode, 0);
    EXPECT_EQ(readFile(scratch.file("response.xml")).find("QUALIFIER"), std::string::npos);
}

}  // namespace
}  // namespace cimhost::test
