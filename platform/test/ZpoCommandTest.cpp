#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"
#include "osa.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <vector>

namespace {

struct Outcome {
  int exitCode;
  std::string out, err;
};

class ZpoCommand : public ::testing::Test {
 protected:
  // Runs zpo with shell-quoted `arguments` on this test's state directory.
  Outcome run(const std::string& arguments) const {
    const std::string out = root.path() + "/out.txt", err = root.path() + "/err.txt";
    const std::string command = "'" + root.zpoCommand() + "' --root '" + root.path() + "' " + arguments + " >'" +
                                out + "' 2>'" + err + "'";
    const int status = std::system(command.c_str());
    return Outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, slurp(out), slurp(err)};
  }
  static std::string slurp(const std::string& file) {
    std::ifstream in(file);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  zpotest::TempZpoRoot root;
};

TEST_F(ZpoCommand, GetPrintsTheFormOfEachKind) {
  struct Case {
    const char* set;
    const char* printed;
  };
  const Case cases[] = {
      {"set-binary C S K f990", "binary f9 90\n"},
      {"set-binary C S K 'f9 90 0A'", "binary f9 90 0a\n"},
      {"set-int C S K 4294967295", "int 4294967295\n"},
      {"set-string C S K 'two words'", "string two words\n"},
      {"set-string C S K ''", "string \n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.set);
    ASSERT_EQ(0, run(std::string("reg ") + c.set).exitCode);
    const Outcome got = run("reg get C S K");
    EXPECT_EQ(0, got.exitCode);
    EXPECT_EQ(c.printed, got.out);
  }
}

TEST_F(ZpoCommand, ValuesAreSharedWithTheLibrary) {
  ASSERT_EQ(0, run("reg set-int CDR CDRPull Pull-Count 17").exitCode);
  uint32_t count = 0;
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &count));
  EXPECT_EQ(17u, count);
  const unsigned char bytes[2] = {0x00, 0xff};
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryBinary("CDR", "CDRService", "FORMAT", bytes, 2));
  EXPECT_EQ("binary 00 ff\n", run("reg get CDR CDRService FORMAT").out);
}

TEST_F(ZpoCommand, AbsentEntryPrintsAbsentAndExits1) {
  for (const char* form : {"reg get C S K", "reg delete C S K"}) {
    const Outcome got = run(form);
    EXPECT_EQ(1, got.exitCode) << form;
    EXPECT_EQ("absent\n", got.err) << form;
    EXPECT_EQ("", got.out) << form;
  }
}

TEST_F(ZpoCommand, ListShowsEntriesOfTheChosenComponentAndSection) {
  ASSERT_EQ(0, run("reg set-int CDR CDRPush B 2").exitCode);
  ASSERT_EQ(0, run("reg set-string CDR CDRPull A x").exitCode);
  ASSERT_EQ(0, run("reg set-binary OTHER S K 01").exitCode);
  EXPECT_EQ("CDR\tCDRPull\tA\tstring x\nCDR\tCDRPush\tB\tint 2\nOTHER\tS\tK\tbinary 01\n", run("reg list").out);
  EXPECT_EQ("CDR\tCDRPull\tA\tstring x\nCDR\tCDRPush\tB\tint 2\n", run("reg list CDR").out);
  EXPECT_EQ("CDR\tCDRPush\tB\tint 2\n", run("reg list CDR CDRPush").out);
  ASSERT_EQ(0, run("reg delete CDR CDRPush B").exitCode);
  EXPECT_EQ("CDR\tCDRPull\tA\tstring x\n", run("reg list CDR").out);
}

TEST_F(ZpoCommand, BadArgumentsExit2AndChangeNothing) {
  const char* const bad[] = {
      "",
      "reg",
      "reg get C S",
      "reg set-binary C S K f9g0",
      "reg set-binary C S K f99",
      "reg set-binary C S K ''",
      "reg set-int C S K -1",
      "reg set-int C S K 4294967296",
      "reg set-int C S K 12x",
      "reg set-string C S K",
      "reg list C S extra",
      "fault set reg-read C S K",
      "fault set reg-read C S K 0",
      "fault set reg-read C S K zz",
      "fault set no-such-op 5",
      "fault set sched-set C 5",
      "fault clear no-such-op",
      "sched",
      "queue listen",
      "queue listen Q --count 0",
      "queue listen Q --timeout soon",
      "queue listen Q --bogus 1",
      "log",
      "log CdrOAM.log --lines many",
      "frobnicate",
  };
  for (const char* arguments : bad) {
    const Outcome got = run(arguments);
    EXPECT_EQ(2, got.exitCode) << arguments;
    EXPECT_EQ(0u, got.err.rfind("usage:", 0)) << arguments << ": " << got.err;
  }
  EXPECT_EQ("", run("reg list").out);
  EXPECT_EQ("", run("fault list").out);
}

TEST_F(ZpoCommand, FaultsAreSetListedAndCleared) {
  ASSERT_EQ(0, run("fault set reg-read CDR CDRPush IpAddr 0x200011").exitCode);
  ASSERT_EQ(0, run("fault set reg-write CDR CDRPush IpAddr 7").exitCode);
  ASSERT_EQ(0, run("fault set queue-send 0x30004").exitCode);
  ASSERT_EQ(0, run("fault set queue-send 0x30002").exitCode);  // replaces the rule
  EXPECT_EQ("reg-read\tCDR\tCDRPush\tIpAddr\t0x200011\nreg-write\tCDR\tCDRPush\tIpAddr\t0x7\n"
            "queue-send\t\t\t\t0x30002\n",
            run("fault list").out);
  char text[16];
  EXPECT_EQ(0x200011u, ZpoGetRegEntryString("CDR", "CDRPush", "IpAddr", text, sizeof text));
  ASSERT_EQ(0, run("fault clear reg-read CDR CDRPush IpAddr").exitCode);
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryString("CDR", "CDRPush", "IpAddr", text, sizeof text));
  ASSERT_EQ(0, run("fault clear queue-send").exitCode);
  EXPECT_EQ("reg-write\tCDR\tCDRPush\tIpAddr\t0x7\n", run("fault list").out);
  ASSERT_EQ(0, run("fault clear").exitCode);
  EXPECT_EQ("", run("fault list").out);
}

TEST_F(ZpoCommand, SchedListPrintsTheCrontabLines) {
  ZpoScheduledTask task = {};
  std::snprintf(task.path, sizeof task.path, "/qv/bin/CDRTransfer");
  task.minute = 30;
  task.hour = 8;
  task.dayOfMonth = ZPO_SCHED_ANY;
  task.dayOfWeek = 3;
  task.month = ZPO_SCHED_ANY;
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task, 1000, 1000, 1000));
  EXPECT_EQ("30 8 * * 3 /qv/bin/CDRTransfer\n", run("sched list").out);
  EXPECT_EQ(std::vector<std::string>{"30 8 * * 3 /qv/bin/CDRTransfer"}, root.crontabLines());
}

TEST_F(ZpoCommand, QueueListenPrintsEachMessageAndStopsAfterTheCount) {
  const std::string command = "'" + root.zpoCommand() + "' --root '" + root.path() +
                              "' queue listen CDRService --count 2 --timeout 10";
  FILE* listener = popen(command.c_str(), "r");
  ASSERT_NE(nullptr, listener);
  uint32_t id = 0;
  for (int i = 0; i < 500 && osQueueGetId("CDRService", &id) != OSA_OK; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_EQ(OSA_OK, osQueueSend(id, "0", 1));
  char line[16] = {};
  ASSERT_NE(nullptr, fgets(line, sizeof line, listener));  // printed at once, before the second message
  EXPECT_STREQ("0\n", line);
  ASSERT_EQ(OSA_OK, osQueueSend(id, "1", 1));
  ASSERT_NE(nullptr, fgets(line, sizeof line, listener));
  EXPECT_STREQ("1\n", line);
  const int status = pclose(listener);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  EXPECT_EQ(0, run("queue remove CDRService").exitCode);
  EXPECT_EQ(OSA_ERR_NO_QUEUE, osQueueGetId("CDRService", &id));
}

TEST_F(ZpoCommand, QueueListenExits1AtTheTimeout) {
  const Outcome got = run("queue listen Quiet --timeout 0.2");
  EXPECT_EQ(1, got.exitCode);
  EXPECT_EQ("", got.out);
  EXPECT_EQ(0, run("queue remove Quiet").exitCode);
  EXPECT_EQ(1, run("queue remove Quiet").exitCode);
}

TEST_F(ZpoCommand, LogPrintsTheLastLines) {
  uint32_t handle = 0;
  ASSERT_EQ(ZPO_OK, ZpoDiagRegisterModule("CDRProvider.so", "CDR", "CDROAM", "CdrOAM.log", &handle));
  for (int i = 1; i <= 12; ++i) ASSERT_EQ(ZPO_OK, ZpoDiagAddLogEntry(handle, 2, 4, -1, std::to_string(i).c_str()));
  const Outcome lastTwo = run("log CdrOAM.log --lines 2");
  ASSERT_EQ(0, lastTwo.exitCode);
  ASSERT_EQ(2, std::count(lastTwo.out.begin(), lastTwo.out.end(), '\n'));
  EXPECT_NE(std::string::npos, lastTwo.out.find("id=-1 11\n"));
  EXPECT_NE(std::string::npos, lastTwo.out.find("id=-1 12\n"));
  const std::string defaultLines = run("log CdrOAM.log").out;
  EXPECT_EQ(10, std::count(defaultLines.begin(), defaultLines.end(), '\n'));
  EXPECT_EQ(1, run("log Missing.log").exitCode);
}

TEST_F(ZpoCommand, BackupAndRestoreRoundTrip) {
  ASSERT_EQ(0, run("reg set-string CDR CDRPush TranTime 08:30").exitCode);
  ASSERT_EQ(0, run("reg backup '" + root.path() + "/saved.db'").exitCode);
  ASSERT_EQ(0, run("reg set-string CDR CDRPush TranTime 09:45").exitCode);
  ASSERT_EQ(0, run("reg restore '" + root.path() + "/saved.db'").exitCode);
  EXPECT_EQ("string 08:30\n", run("reg get CDR CDRPush TranTime").out);
  EXPECT_EQ(1, run("reg restore '" + root.path() + "/missing.db'").exitCode);
  EXPECT_EQ("string 08:30\n", run("reg get CDR CDRPush TranTime").out);
}

}  // namespace
