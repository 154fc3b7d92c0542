// The host serving the real module, driven by wbemcli, checked with zpo.
// Each test has its own state directory, port and queue. With CDR_E2E_URL
// set, the same tests address that object manager and its state directory
// instead (HostProcess.hpp); the caller gives each test a fresh one.
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

class CdrHost : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("ZPO_ROOT", external ? external->zpoRoot.c_str() : state.path().c_str(), 1);
        for (const std::string& entry : deviceSeed()) ASSERT_EQ(zpo("reg " + entry).exitCode, 0) << entry;
        if (external) {
            base = external->url;
            url = base + "/root/cimv2";
            return;
        }
        startHost({});
    }
    void TearDown() override {
        host.reset();
        if (listenerPid > 0) runCommand("kill " + std::to_string(listenerPid) + " 2>/dev/null; true", scratch);
        zpo("queue remove CDRService");
    }

    // Over HTTPS with a self-signed certificate when `tls`.
    void startHost(std::vector<std::string> extra, bool tls = false) {
        host.reset();
        overTls = tls;
        scheme = tls ? "https" : "http";
        std::vector<std::string> args{"--provider", CDR_PROVIDER, "--mof", CDR_MOF};
        if (overTls) {
            if (!std::filesystem::exists(state.file("cert.pem"))) {
                ASSERT_EQ(runCommand("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes "
                                     "-days 2 -subj /CN=127.0.0.1 -keyout " + state.file("key.pem") + " -out " +
                                     state.file("cert.pem"), scratch).exitCode, 0);
            }
            args.insert(args.end(), {"--tls-cert", state.file("cert.pem"), "--tls-key", state.file("key.pem")});
        }
        args.insert(args.end(), extra.begin(), extra.end());
        host = std::make_unique<HostProcess>(CIMHOST_BINARY, args,
                                             state.file("host" + std::to_string(++hostsStarted) + ".log"));
        ASSERT_TRUE(host->running()) << host->log();
        base = scheme + "://127.0.0.1:" + std::to_string(host->port());
        url = base + "/root/cimv2";
    }


    // Listens on the CDR service's queue until `count` messages arrived.
    void listenToCdrService(int count) {
        CommandResult started = runCommand(zpoCommand() + " queue listen CDRService --count " +
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

    CommandResult wbemcli(const std::string& arguments) {
        return runCommand(std::string("wbemcli ") + (overTls ? "-noverify " : "") + arguments, scratch);
    }
    CommandResult zpo(const std::string& arguments) { return runCommand(zpoCommand() + " " + arguments, scratch); }
    CommandResult curl(const std::string& method, const std::string& body, const std::string& extra = "") {
        std::ofstream(scratch.file("body.xml")) << body;
        return runCommand("curl -s -k -o " + scratch.file("response.xml") + " -D - -H 'Content-Type: application/xml' "
                          "-H 'Accept: application/xml' -H 'CIMOperation: MethodCall' -H 'CIMMethod: " + method + "' " + extra +
                          " --data-binary @" + scratch.file("body.xml") + " " + base + "/cimom", scratch);
    }

    const ExternalServer* const external = externalServer();
    bool overTls = false;
    std::string scheme = "http";
    TempDir state;
    TempDir scratch;
    std::unique_ptr<HostProcess> host;
    std::string base;  // scheme, credentials, host and port
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

// A CIM error's description: OpenWBEM 3.0 (and cimhost) give the code's
// text, then the message in parentheses, or the code's text alone when
// there is no message; 3.2 gives the message alone.
std::string described(const std::string& codeText, const std::string& message) {
    if (answersAs32()) return message;
    return message.empty() ? codeText : codeText + " (" + message + ")";
}

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
    EXPECT_NE(refused.err.find("Cim: (4) CIM_ERR_INVALID_PARAMETER: " +
                               described("invalid parameter passed to method", "DigitsLimit must be <= 24")),
              std::string::npos)
        << refused.err;
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 10\n");
    if (external) GTEST_SKIP() << "checks cimhost's own log";
    EXPECT_NE(host->log().find("CDR/CDROAM/src/QTX_CDRServiceProvider:"), std::string::npos);
}

TEST_F(CdrHost, PushTimeChangeRearmsTheScheduledTransfer) {
    ASSERT_EQ(zpo("reg set-binary CDR CDRPush TransferType 00").exitCode, 0);
    // wbemcli sends every property it read back; the day of month does not
    // apply to a daily push and comes back empty, which the module refuses
    // after the earlier properties were applied.
    CommandResult modified = wbemcli("mi \"" + url + ":" + kPushSetting + "\" 'TransferTime=\"10:30\"'");
    EXPECT_EQ(modified.exitCode, 16);
    EXPECT_NE(modified.err.find("Cim: (1) CIM_ERR_FAILED: " + described("general error", "301")), std::string::npos)
        << modified.err;
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
    const std::string notFound = "Cim: (6) CIM_ERR_NOT_FOUND: " + described("requested object could not be found", "");
    const std::string notSupported =
        "Cim: (7) CIM_ERR_NOT_SUPPORTED: " + described("requested operation is not supported", "");
    const std::string noMethod = "Cim: (17) CIM_ERR_METHOD_NOT_FOUND: " + described("extrinsic method does not exist", "");
    const std::pair<std::string, std::string> cases[] = {
        {"gi '" + url + ":QTX_CDRPushSetting.InstanceID=\"nope\"'", notFound + "\n"},
        {"di \"" + url + ":" + kPushSetting + "\"", notSupported + "\n"},
        {"ci '" + url + ":QTX_CDRServicePrefixBin.InstanceID=\"x\"' 'InstanceID=\"x\"'", notSupported + "\n"},
        {"cm \"" + url + ":" + kService + "\" refresh", noMethod + "\n"},
        {"cm \"" + url + ":" + kPushSetting + "\" pushfilenow", noMethod + "\n"},
        // Operations on one instance pass the class name as the client
        // spelled it; the module's own rule answers.
        {"gi '" + url + ":qtx_cdrpushsetting.InstanceID=\"CDRPushSetting\"'",
         "Cim: (5) CIM_ERR_INVALID_CLASS: " + described("class does not exist", "") + "\n"},
        {"ei '" + url + ":QTX_NoSuchClass'",
         "Cim: (5) CIM_ERR_INVALID_CLASS: " + described("class does not exist", "/root/cimv2:QTX_NoSuchClass") + "\n"},
        {"ecn '" + base + "/root/other'",
         "Cim: (3) CIM_ERR_INVALID_NAMESPACE: " + described("namespace does not exist", "root/other") + "\n"},
    };
    for (const auto& [command, expected] : cases) {
        CommandResult result = wbemcli(command);
        EXPECT_EQ(result.exitCode, 16) << command;
        EXPECT_NE(result.err.find(expected), std::string::npos) << command << "\n" << result.err;
    }
}

// As in owcimomd: an enumeration reaches the module under the class's own
// spelling, association requests find no association class and answer
// empty, and enumerated instances are named by Key-qualified properties,
// which the module's instances do not carry.
TEST_F(CdrHost, ObjectManagerAnswersWhereTheModuleIsNotAsked) {
    CommandResult lower = wbemcli("ei -nl '" + url + ":qtx_cdrservice'");
    EXPECT_EQ(lower.exitCode, 0) << lower.err;
    EXPECT_NE(lower.out.find("-DigitsLimit=16"), std::string::npos) << lower.out;
    for (const char* op : {"ai", "ain", "ri", "rin"}) {
        CommandResult empty = wbemcli(std::string(op) + " \"" + url + ":" + kPushSetting + "\"");
        EXPECT_EQ(empty.exitCode, 0) << op << empty.err;
        EXPECT_EQ(empty.out, "") << op;
    }
    std::string body = intrinsicBody(
        "EnumerateInstances", "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"QTX_CDRPushSetting\"/></IPARAMVALUE>");
    ASSERT_EQ(curl("EnumerateInstances", body).exitCode, 0);
    EXPECT_TRUE(std::regex_search(readFile(scratch.file("response.xml")),
                                  std::regex("<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"QTX_CDRPushSetting\">\\s*"
                                             "</INSTANCENAME>")))
        << readFile(scratch.file("response.xml"));
}

// The push statistics hold no transfer time yet: the module reports the
// empty date-time, which the 3.0 series writes as a zero date (3.2 with
// ":000" for the offset).
TEST_F(CdrHost, EmptyDateTimeIsWrittenAsOpenWbem30WritesIt) {
    CommandResult statistics = wbemcli("ei -nl '" + url + ":QTX_CDRPushStatistics'");
    ASSERT_EQ(statistics.exitCode, 0) << statistics.err;
    const std::string zero = answersAs32() ? "00000000000000.000000:000" : "00000000000000.000000+000";
    EXPECT_NE(statistics.out.find("-LastTransferTime=" + zero), std::string::npos) << statistics.out;
}

// owcimomd converts each property of a modified instance to the class's
// type before the module sees it; a value that does not convert is its
// CIM_ERR_FAILED, and nothing is written. The PropertyList names the keys
// too: 3.2 keeps only the listed properties, and the module finds the
// object by its key properties.
TEST_F(CdrHost, ModifiedValuesAreConvertedToTheClassTypes) {
    std::string before = zpo("reg list").out;
    auto modify = [&](const std::string& type, const std::string& value) {
        std::string body = intrinsicBody(
            "ModifyInstance",
            "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"QTX_CDRService\">"
            "</INSTANCENAME><INSTANCE CLASSNAME=\"QTX_CDRService\"><PROPERTY NAME=\"systemcreationclassname\" "
            "TYPE=\"string\"><VALUE>QTX_System</VALUE></PROPERTY><PROPERTY NAME=\"SystemName\" TYPE=\"string\"><VALUE>"
            "QTX</VALUE></PROPERTY><PROPERTY NAME=\"CreationClassName\" TYPE=\"string\"><VALUE>QTX_CDRService</VALUE>"
            "</PROPERTY><PROPERTY NAME=\"Name\" TYPE=\"string\"><VALUE>CDRService</VALUE></PROPERTY><PROPERTY "
            "NAME=\"digitslimit\" TYPE=\"" + type + "\"><VALUE>" + value + "</VALUE></PROPERTY></INSTANCE>"
            "</VALUE.NAMEDINSTANCE></IPARAMVALUE><IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY><VALUE>"
            "SystemCreationClassName</VALUE><VALUE>SystemName</VALUE><VALUE>CreationClassName</VALUE><VALUE>Name"
            "</VALUE><VALUE>DigitsLimit</VALUE></VALUE.ARRAY></IPARAMVALUE>");
        curl("ModifyInstance", body);
        return readFile(scratch.file("response.xml"));
    };
    EXPECT_NE(modify("string", "abc").find("<ERROR CODE=\"1\" DESCRIPTION=\"" +
                                           described("general error", "Unable to convert &quot;abc&quot; into UInt16") +
                                           "\""),
              std::string::npos);
    EXPECT_EQ(zpo("reg list").out, before);
    std::string changed = modify("string", "20");
    EXPECT_EQ(changed.find("ERROR"), std::string::npos) << changed;
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 14\n");
}

TEST_F(CdrHost, CredentialsAreCheckedWhenAnAuthFileIsGiven) {
    if (external) GTEST_SKIP() << "starts cimhost with its own --auth-file";
    crypt_data data{};
    std::string hash = crypt_r("s3cret", "$6$cimhosttest$", &data);
    std::ofstream(state.file("users")) << "# users\nalice:" << hash << "\n";
    startHost({"--auth-file", state.file("users")});
    std::string hostPort = "127.0.0.1:" + std::to_string(host->port());
    CommandResult none = wbemcli("ecn '" + scheme + "://" + hostPort + "/root/cimv2'");
    EXPECT_EQ(none.exitCode, 16);
    EXPECT_NE(none.err.find("Username/password required"), std::string::npos) << none.err;
    CommandResult wrong = wbemcli("ecn '" + scheme + "://alice:guess@" + hostPort + "/root/cimv2'");
    EXPECT_EQ(wrong.exitCode, 16);
    EXPECT_NE(wrong.err.find("Invalid username/password"), std::string::npos) << wrong.err;
    CommandResult right = wbemcli("ei '" + scheme + "://alice:s3cret@" + hostPort + "/root/cimv2:QTX_CDRServicePrefixBin'");
    EXPECT_EQ(right.exitCode, 0) << right.err;
    EXPECT_EQ(lineCount(right.out), 8u);
}

// One pass over HTTPS: credentials, an enumeration, a modify reaching the
// registry and a method call; the rest of the suite runs over HTTP.
TEST_F(CdrHost, ServesTheModuleOverHttpsWithCredentials) {
    if (external) GTEST_SKIP() << "starts cimhost with its own certificate";
    crypt_data data{};
    std::ofstream(state.file("users")) << "alice:" << crypt_r("s3cret", "$6$cimhosttest$", &data) << "\n";
    startHost({"--auth-file", state.file("users")}, true);
    const std::string hostPort = "127.0.0.1:" + std::to_string(host->port());
    CommandResult plain = runCommand("curl -s -o /dev/null -w '%{http_code}' http://" + hostPort + "/cimom", scratch);
    EXPECT_NE(plain.out, "200") << "plain HTTP on the HTTPS port";
    CommandResult none = wbemcli("ecn 'https://" + hostPort + "/root/cimv2'");
    EXPECT_EQ(none.exitCode, 16);
    EXPECT_NE(none.err.find("Username/password required"), std::string::npos) << none.err;
    const std::string secured = "https://alice:s3cret@" + hostPort + "/root/cimv2";
    CommandResult classes = wbemcli("ecn '" + secured + "'");
    ASSERT_EQ(classes.exitCode, 0) << classes.err;
    EXPECT_EQ(lineCount(classes.out), 6u);
    CommandResult rows = wbemcli("ei '" + secured + ":QTX_CDRServicePrefixBin'");
    EXPECT_EQ(lineCount(rows.out), 8u) << rows.err;
    CommandResult modified = wbemcli("mi \"" + secured + ":" + kService + "\" 'DigitsLimit=20'");
    ASSERT_EQ(modified.exitCode, 0) << modified.err;
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 14\n");
    CommandResult refresh = wbemcli("cm \"" + secured + ":" + kService + "\" Refresh");
    EXPECT_NE(refresh.out.find("Refresh: 1\n"), std::string::npos) << refresh.out << refresh.err;
}

TEST_F(CdrHost, MalformedRequestsAreRefusedWithoutHarm) {
    std::string before = zpo("reg list").out;
    std::string modify = intrinsicBody(
        "ModifyInstance",
        "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"QTX_CDRServicePrefixBin\">"
        "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE VALUETYPE=\"string\">CDRServicePrefixBin_0</KEYVALUE></KEYBINDING></INSTANCENAME>"
        "<INSTANCE CLASSNAME=\"QTX_CDRServicePrefixBin\"><PROPERTY NAME=\"InstanceID\" TYPE=\"string\"><VALUE>"
        "CDRServicePrefixBin_0</VALUE></PROPERTY><PROPERTY NAME=\"PrefixBin\" TYPE=\"string\"><VALUE>123</VALUE>"
        "</PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE>");
    // A body broken after its start and one over the size limit are
    // cimhost's own answers (owcimomd parses as it runs the operation, and
    // takes any size).
    if (!external) {
        CommandResult truncated = curl("ModifyInstance", modify.substr(0, modify.size() - 40));
        EXPECT_NE(truncated.out.find("HTTP/1.1 400"), std::string::npos) << truncated.out;
        EXPECT_NE(truncated.out.find("CIMError: request-not-well-formed"), std::string::npos) << truncated.out;
    }
    std::string wrongShape = modify;
    wrongShape.replace(wrongShape.find("<VALUE.NAMEDINSTANCE>"), 21, "<VALUE.OBJECT>");
    wrongShape.replace(wrongShape.find("</VALUE.NAMEDINSTANCE>"), 22, "</VALUE.OBJECT>");
    // A parameter of the wrong form is CIM error 4, as owcimomd reads it.
    CommandResult invalid = curl("ModifyInstance", wrongShape);
    EXPECT_NE(invalid.out.find("HTTP/1.1 200"), std::string::npos) << invalid.out;
    EXPECT_NE(readFile(scratch.file("response.xml"))
                  .find(std::string("<ERROR CODE=\"4\" DESCRIPTION=\"") +
                        (answersAs32() ? "" : "invalid parameter passed to method (") +
                        "Parameter ModifiedInstance is the wrong type.  Expected &lt;VALUE.NAMEDINSTANCE&gt; tag."),
              std::string::npos)
        << readFile(scratch.file("response.xml"));
    if (!external) {
        std::string oversize = modify;
        oversize.insert(oversize.find("</CIM>"), std::string(5 * 1024 * 1024, ' '));
        CommandResult tooLarge = curl("ModifyInstance", oversize);
        EXPECT_NE(tooLarge.out.find("HTTP/1.1 413"), std::string::npos) << tooLarge.out;
    }
    EXPECT_EQ(zpo("reg list").out, before);
    // 3.0 refuses a DOCTYPE; 3.2 reads past it and runs the operation.
    CommandResult doctype = curl("ModifyInstance", "<?xml version=\"1.0\"?><!DOCTYPE CIM [<!ENTITY a \"b\">]>" +
                                                       modify.substr(modify.find("<CIM ")));
    if (answersAs32()) {
        EXPECT_NE(doctype.out.find("HTTP/1.1 200"), std::string::npos) << doctype.out;
        EXPECT_NE(zpo("reg list").out, before);
    } else {
        EXPECT_NE(doctype.out.find("HTTP/1.1 400"), std::string::npos) << doctype.out;
        EXPECT_NE(doctype.out.find("CIMError: request-not-well-formed"), std::string::npos) << doctype.out;
        EXPECT_EQ(zpo("reg list").out, before);
    }
    // Still serving, and the complete request does change the bin.
    CommandResult complete = curl("ModifyInstance", modify);
    EXPECT_NE(complete.out.find("HTTP/1.1 200"), std::string::npos);
    EXPECT_NE(zpo("reg list").out, before);
}

// OpenWBEM leaves IncludeQualifiers to the provider, and the module sends
// its qualifiers whatever the flag says.
TEST_F(CdrHost, InstancesCarryApplicableAndValidValueMap) {
    std::string service = intrinsicBody(
        "GetInstance",
        "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>TRUE</VALUE></IPARAMVALUE><IPARAMVALUE NAME=\"InstanceName\">"
        "<INSTANCENAME CLASSNAME=\"QTX_CDRService\"><KEYBINDING NAME=\"SystemCreationClassName\"><KEYVALUE VALUETYPE=\"string\">QTX_System"
        "</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"SystemName\"><KEYVALUE VALUETYPE=\"string\">QTX</KEYVALUE></KEYBINDING><KEYBINDING "
        "NAME=\"CreationClassName\"><KEYVALUE VALUETYPE=\"string\">QTX_CDRService</KEYVALUE></KEYBINDING><KEYBINDING NAME=\"Name\">"
        "<KEYVALUE VALUETYPE=\"string\">CDRService</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE>");
    ASSERT_EQ(curl("GetInstance", service).exitCode, 0);
    std::string response = readFile(scratch.file("response.xml"));
    // OpenWBEM writes a blank before the end of these start tags; either form reads the same.
    EXPECT_TRUE(std::regex_search(response, std::regex("<PROPERTY NAME=\"ReportType\" TYPE=\"uint8\" ?><QUALIFIER "
                                                       "NAME=\"ValidValueMap\" TYPE=\"uint32\" ?><VALUE.ARRAY><VALUE>0"
                                                       "</VALUE><VALUE>1</VALUE><VALUE>2</VALUE><VALUE>3</VALUE>"
                                                       "</VALUE.ARRAY></QUALIFIER>")))
        << response;
    std::string pull = intrinsicBody(
        "EnumerateInstances", "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"QTX_CDRPullStatistics\"/></IPARAMVALUE>"
                              "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>TRUE</VALUE></IPARAMVALUE>");
    ASSERT_EQ(curl("EnumerateInstances", pull).exitCode, 0);
    response = readFile(scratch.file("response.xml"));
    EXPECT_TRUE(std::regex_search(response, std::regex("<QUALIFIER NAME=\"Applicable\" TYPE=\"boolean\" ?><VALUE>")))
        << response;
    ASSERT_EQ(curl("EnumerateInstances", intrinsicBody("EnumerateInstances",
                   "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"QTX_CDRPullStatistics\"/></IPARAMVALUE>")).exitCode, 0);
    EXPECT_NE(readFile(scratch.file("response.xml")).find("<QUALIFIER NAME=\"Applicable\""), std::string::npos);
}

}  // namespace
}  // namespace cimhost::test
