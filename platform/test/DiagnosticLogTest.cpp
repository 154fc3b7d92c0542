#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// "2026-11-21T10:15:02.123 ": local time with milliseconds and a blank.
bool startsWithTimestamp(const std::string& line) {
  const std::string shape = "dddd-dd-ddTdd:dd:dd.ddd ";
  if (line.size() < shape.size()) return false;
  for (std::size_t i = 0; i < shape.size(); ++i) {
    const bool digit = std::isdigit(static_cast<unsigned char>(line[i])) != 0;
    if (shape[i] == 'd' ? !digit : line[i] != shape[i]) return false;
  }
  return true;
}

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
  EXPECT_TRUE(startsWithTimestamp(lines[0])) << lines[0];
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
  std::set<std::string> seen;
  for (const std::string& line : lines) {
    ASSERT_TRUE(startsWithTimestamp(line)) << line.substr(0, 80);
    const std::size_t textStart = line.find(' ', line.find(" id=") + 1);
    ASSERT_NE(std::string::npos, textStart) << line.substr(0, 80);
    const std::string fields = line.substr(24, textStart - 24);  // "W1 cat=2 level=4 id=17"
    ASSERT_EQ("W", fields.substr(0, 1));
    ASSERT_EQ(" cat=2 level=4 id=", fields.substr(2, 18)) << fields;
    ASSERT_EQ(" " + filler, line.substr(textStart)) << fields;
    seen.insert(fields);
  }
  EXPECT_EQ(static_cast<std::size_t>(kWriters * kEntries), seen.size());
}

}  // namespace
