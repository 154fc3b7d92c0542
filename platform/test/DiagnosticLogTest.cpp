#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const std::regex kLinePrefix(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} )");

class DiagnosticLog : public ::testing::Test {
 protected:
  uint32_t registerModule() {
    uint32_t handle = 0;
    EXPECT_EQ(ZPO_OK, ZpoDiagRegisterModule("CDRProvider.so", "CDR", "CDROAM", "CdrOAM.log", &handle));
    return handle;
  }
  zpotest::TempZpoRoot root;
};

TEST_F(DiagnosticLog, EntryIsOneLineWithTimeModuleCategoryLevelIdAndText) {
  const uint32_t handle = registerModule();
  ASSERT_EQ(ZPO_OK, ZpoDiagAddLogEntry(handle, 2, 4, -1, "getFormat error = 1234"));
  const auto lines = root.logLines("CdrOAM.log");
  ASSERT_EQ(1u, lines.size());
  EXPECT_TRUE(std::regex_search(lines[0], kLinePrefix)) << lines[0];
  EXPECT_EQ("CDROAM cat=2 level=4 id=-1 getFormat error = 1234", lines[0].substr(24));
}

TEST_F(DiagnosticLog, LineEndsInsideTheTextDoNotSplitTheEntry) {
  const uint32_t handle = registerModule();
  ASSERT_EQ(ZPO_OK, ZpoDiagAddLogEntry(handle, 2, 1, -1, "first\nsecond\r"));
  const auto lines = root.logLines("CdrOAM.log");
  ASSERT_EQ(1u, lines.size());
  EXPECT_EQ("CDROAM cat=2 level=1 id=-1 first second ", lines[0].substr(24));
}

TEST_F(DiagnosticLog, HandlesAreNonZeroAndDistinct) {
  const uint32_t first = registerModule();
  const uint32_t second = registerModule();
  EXPECT_NE(0u, first);
  EXPECT_NE(0u, second);
  EXPECT_NE(first, second);
}

TEST_F(DiagnosticLog, UnknownOrDeregisteredHandleWritesNothing) {
  EXPECT_EQ(ZPO_ERR_NOT_REGISTERED, ZpoDiagAddLogEntry(0, 2, 4, -1, "never"));
  const uint32_t handle = registerModule();
  ASSERT_EQ(ZPO_OK, ZpoDiagDeregisterModule(handle));
  EXPECT_EQ(ZPO_ERR_NOT_REGISTERED, ZpoDiagAddLogEntry(handle, 2, 4, -1, "never"));
  EXPECT_EQ(ZPO_ERR_NOT_REGISTERED, ZpoDiagDeregisterModule(handle));
  EXPECT_TRUE(root.logLines("CdrOAM.log").empty());
}

TEST_F(DiagnosticLog, ResetForgetsRegistrations) {
  const uint32_t handle = registerModule();
  ZpoDevReset();
  EXPECT_EQ(ZPO_ERR_NOT_REGISTERED, ZpoDiagAddLogEntry(handle, 2, 4, -1, "never"));
}

TEST_F(DiagnosticLog, LogFileNameMustNotLeaveTheLogFolder) {
  uint32_t handle = 0;
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoDiagRegisterModule("m.so", "CDR", "CDROAM", "../escape.log", &handle));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoDiagRegisterModule("m.so", "CDR", "CDROAM", "CdrOAM.log", nullptr));
}

TEST_F(DiagnosticLog, ConcurrentWritersNeverMixLines) {
  const int kWriters = 3, kEntries = 150;
  const std::string filler(3000, 'x');  // long lines would interleave if split into several writes
  std::vector<pid_t> children;
  for (int writer = 0; writer < kWriters; ++writer) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      uint32_t handle = 0;
      const std::string moduleName = "W" + std::to_string(writer);
      if (ZpoDiagRegisterModule("m.so", "CDR", moduleName.c_str(), "Shared.log", &handle) != ZPO_OK) {
        _exit(1);
      }
      for (int i = 0; i < kEntries; ++i) {
        if (ZpoDiagAddLogEntry(handle, 2, 4, i, filler.c_str()) != ZPO_OK) _exit(1);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  const auto lines = root.logLines("Shared.log");
  ASSERT_EQ(static_cast<std::size_t>(kWriters * kEntries), lines.size());
  const std::regex whole(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3} W[0-2] cat=2 level=4 id=\d+ x{3000}$)");
  std::set<std::string> seen;
  for (const std::string& line : lines) {
    ASSERT_TRUE(std::regex_match(line, whole)) << line.substr(0, 80);
    seen.insert(line.substr(24, line.find(" cat") - 24) + line.substr(line.find(" id="), 10));
  }
  EXPECT_EQ(static_cast<std::size_t>(kWriters * kEntries), seen.size());
}

}  // namespace
