// The module lives as long as the object manager's process: it idles past
// the object manager's provider time-to-live without being unloaded, a
// registry restore afterwards still reaches it and re-arms the push schedule
// once, and a restart of the object manager on the same device state serves
// the same settings with one schedule.
//
// Against cimhost the test starts the host itself with an idle unloader that
// polls every second and a time-to-live of 0. Against another object manager
// (CDR_E2E_URL, see HostProcess.hpp) it needs three more variables, else it
// skips: CDR_E2E_PID_FILE (a file holding the object manager's process id),
// CDR_E2E_RESTART (a command that stops it and starts it again on the same
// state and port, updating that file) and CDR_E2E_IDLE_SECONDS (how long to
// idle: past the time-to-live and the unloader's next poll).
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "HostProcess.hpp"

namespace cimhost::test {
namespace {

const char* const kServicePath =
    "QTX_CDRService.SystemCreationClassName=\"QTX_System\",SystemName=\"QTX\","
    "CreationClassName=\"QTX_CDRService\",Name=\"CDRService\"";
const char* const kPullStatistics = "QTX_CDRPullStatistics.Name=\"CDRPullStatistic\"";
const char* const kArmedLine = "push task scheduled successfully";

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

class ModuleLifecycle : public ::testing::Test {
protected:
    void SetUp() override {
        if (external) {
            pidFile = environment("CDR_E2E_PID_FILE");
            restartCommand = environment("CDR_E2E_RESTART");
            idleSeconds = std::atoi(environment("CDR_E2E_IDLE_SECONDS").c_str());
            if (pidFile.empty() || restartCommand.empty() || idleSeconds <= 0)
                GTEST_SKIP() << "needs CDR_E2E_PID_FILE, CDR_E2E_RESTART and CDR_E2E_IDLE_SECONDS";
            setenv("ZPO_ROOT", external->zpoRoot.c_str(), 1);
            base = external->url;
        } else {
            setenv("ZPO_ROOT", state.path().c_str(), 1);
        }
        // A configured service and a daily push at 02:30.
        for (const char* entry : {"set-binary CDR CDRService DIGITSLIMIT 0010", "set-binary CDR CDRPush TransferType 00",
                                  "set-string CDR CDRPush TranTime 02:30"})
            ASSERT_EQ(zpo(std::string("reg ") + entry).exitCode, 0) << entry;
        if (!external) startHost();
    }
    void TearDown() override { host.reset(); }

    // cimhost with an unloader that would take any provider that lets it
    // after one second of idling.
    void startHost() {
        host = std::make_unique<HostProcess>(
            CIMHOST_BINARY,
            std::vector<std::string>{"--provider", CDR_PROVIDER, "--mof", CDR_MOF, "--provider-ttl", "0",
                                     "--unload-poll", "1"},
            state.file("host" + std::to_string(++hostsStarted) + ".log"));
        ASSERT_TRUE(host->running()) << host->log();
        base = "http://127.0.0.1:" + std::to_string(host->port());
    }
    void restart() {
        if (!external) {
            host.reset();
            startHost();
            return;
        }
        CommandResult restarted = runCommand(restartCommand, scratch);
        ASSERT_EQ(restarted.exitCode, 0) << restarted.out << restarted.err;
    }
    // The object manager's process id, 0 when it is gone.
    long serverProcess() const {
        long pid = external ? std::atol(readFile(pidFile).c_str()) : 0;
        if (!external && host && host->running()) pid = host->pid();
        return pid > 0 && kill(static_cast<pid_t>(pid), 0) == 0 ? pid : 0;
    }
    // The module counts the Refresh calls of each class from 1 after it was
    // loaded: the count shows whether the module of the start still serves.
    std::string refreshPullStatistics() {
        CommandResult called = wbemcli("cm '" + base + "/root/cimv2:" + kPullStatistics + "' Refresh");
        EXPECT_EQ(called.exitCode, 0) << called.err;
        // wbemcli prints the object's path, a blank and "Refresh: <count>".
        return called.out.substr(called.out.rfind(' ', called.out.rfind(':')) + 1);
    }

    CommandResult zpo(const std::string& arguments) {
        return runCommand(zpoCommand() + " " + arguments, scratch);
    }
    CommandResult wbemcli(const std::string& arguments) { return runCommand("wbemcli " + arguments, scratch); }
    std::string diagnosticLog() { return readFile(environment("ZPO_ROOT") + "/log/CdrOAM.log"); }
    std::vector<std::string> scheduledTransfers() {
        std::vector<std::string> lines;
        std::istringstream crontab(zpo("sched list").out);
        for (std::string line; std::getline(crontab, line);)
            if (line.find("/qv/bin/CDRTransfer") != std::string::npos) lines.push_back(line);
        return lines;
    }

    // Sets the push time through the module, as cdrctl does: the key and the
    // one property, named in a PropertyList too.
    void setTransferTime(const std::string& time) {
        std::ofstream(scratch.file("modify.xml"))
            << "<?xml version=\"1.0\" encoding=\"utf-8\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
               "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"ModifyInstance\"><LOCALNAMESPACEPATH>"
               "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>"
               "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"QTX_CDRPushSetting\">"
               "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE VALUETYPE=\"string\">CDRPushSetting</KEYVALUE></KEYBINDING>"
               "</INSTANCENAME><INSTANCE CLASSNAME=\"QTX_CDRPushSetting\"><PROPERTY NAME=\"InstanceID\" TYPE=\"string\">"
               "<VALUE>CDRPushSetting</VALUE></PROPERTY><PROPERTY NAME=\"TransferTime\" TYPE=\"string\"><VALUE>"
            << time
            << "</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE><IPARAMVALUE NAME=\"PropertyList\">"
               "<VALUE.ARRAY><VALUE>InstanceID</VALUE><VALUE>TransferTime</VALUE></VALUE.ARRAY></IPARAMVALUE>"
               "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
        CommandResult sent = runCommand(
            "curl -s -S -H 'Accept: application/xml' -H 'Content-Type: application/xml; charset=utf-8' "
            "-H 'CIMOperation: MethodCall' "
            "-H 'CIMMethod: ModifyInstance' -H 'CIMProtocolVersion: 1.0' --data-binary @" +
                scratch.file("modify.xml") + " '" + base + "/cimom'",
            scratch);
        ASSERT_EQ(sent.exitCode, 0) << sent.err;
        EXPECT_NE(sent.out.find("<IMETHODRESPONSE NAME=\"ModifyInstance\">"), std::string::npos) << sent.out;
        EXPECT_EQ(sent.out.find("<ERROR"), std::string::npos) << sent.out;
    }

    // Every class answers with its instances, 17 in all, and the settings
    // read back as expected.
    void expectServed(const std::string& digitsLimit, const std::string& transferTime) {
        const std::string url = base + "/root/cimv2";
        size_t total = 0;
        for (const char* cls : {"QTX_CDRService", "QTX_CDRServicePrefixBin", "QTX_CDRServiceAccessBin",
                                "QTX_CDRPushSetting", "QTX_CDRPushStatistics", "QTX_CDRPullStatistics"}) {
            CommandResult names = wbemcli("ein '" + url + ":" + cls + "'");
            EXPECT_EQ(names.exitCode, 0) << cls << names.err;
            total += std::count(names.out.begin(), names.out.end(), '\n');
        }
        EXPECT_EQ(total, 17u);
        CommandResult service = wbemcli("gi -nl '" + url + ":" + kServicePath + "'");
        EXPECT_NE(service.out.find("-DigitsLimit=" + digitsLimit + "\n"), std::string::npos) << service.out << service.err;
        CommandResult push = wbemcli("gi -nl '" + url + ":QTX_CDRPushSetting.InstanceID=\"CDRPushSetting\"'");
        EXPECT_NE(push.out.find("-TransferTime=\"" + transferTime + "\"\n"), std::string::npos) << push.out << push.err;
    }

    const ExternalServer* const external = externalServer();
    TempDir state;
    TempDir scratch;
    std::unique_ptr<HostProcess> host;
    std::string base;
    std::string pidFile, restartCommand;
    int idleSeconds = 3;  // cimhost's unloader polls every second
    int hostsStarted = 0;
};

TEST_F(ModuleLifecycle, IdleBeyondTheUnloaderThenRestoreReachesTheSameModule) {
    const std::string backup = scratch.file("registry.backup");
    ASSERT_EQ(zpo("reg backup " + backup).exitCode, 0);
    // Settings that the restore takes back, written through the module.
    CommandResult modified = wbemcli("mi '" + base + "/root/cimv2:" + kServicePath + "' 'DigitsLimit=20'");
    ASSERT_EQ(modified.exitCode, 0) << modified.err;
    setTransferTime("10:30");
    expectServed("20", "10:30");
    ASSERT_EQ(scheduledTransfers(), std::vector<std::string>{"30 10 * * * /qv/bin/CDRTransfer"});
    const long process = serverProcess();
    ASSERT_NE(process, 0);
    EXPECT_EQ(refreshPullStatistics(), "Refresh: 1\n");
    const size_t armedBefore = occurrences(diagnosticLog(), kArmedLine);

    sleep(static_cast<unsigned>(idleSeconds));
    ASSERT_EQ(serverProcess(), process) << "the object manager did not survive the idle time";

    ASSERT_EQ(zpo("reg restore " + backup).exitCode, 0);
    // The platform tells the module on a thread of its own.
    for (int i = 0; i < 100 && scheduledTransfers() != std::vector<std::string>{"30 2 * * * /qv/bin/CDRTransfer"}; ++i)
        usleep(100000);
    EXPECT_EQ(scheduledTransfers(), std::vector<std::string>{"30 2 * * * /qv/bin/CDRTransfer"});
    EXPECT_EQ(occurrences(diagnosticLog(), kArmedLine), armedBefore + 1) << diagnosticLog();
    expectServed("16", "02:30");

    EXPECT_EQ(serverProcess(), process);
    // The same module: neither unloaded and loaded again nor started anew
    // (a 3.0 owcimomd that crashed runs itself again under the same PID).
    EXPECT_EQ(refreshPullStatistics(), "Refresh: 2\n");
    if (!external) {
        EXPECT_EQ(host->log().find("Unloading Provider"), std::string::npos) << host->log();
    }
}

TEST_F(ModuleLifecycle, RestartOnTheSameStateServesTheSameSettingsWithOneSchedule) {
    CommandResult modified = wbemcli("mi '" + base + "/root/cimv2:" + kServicePath + "' 'DigitsLimit=20'");
    ASSERT_EQ(modified.exitCode, 0) << modified.err;
    setTransferTime("10:30");
    const long process = serverProcess();
    ASSERT_NE(process, 0);

    restart();
    const long restarted = serverProcess();
    ASSERT_NE(restarted, 0);
    EXPECT_NE(restarted, process);
    expectServed("20", "10:30");
    EXPECT_EQ(scheduledTransfers(), std::vector<std::string>{"30 10 * * * /qv/bin/CDRTransfer"});
    EXPECT_EQ(zpo("reg get CDR CDRService DIGITSLIMIT").out, "binary 00 14\n");
}

}  // namespace
}  // namespace cimhost::test
