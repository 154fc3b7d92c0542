#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// Each test has its own state directory.
class RegistryContract : public ::testing::Test {
 protected:
  zpotest::TempZpoRoot root;
};
using RegistrySharing = RegistryContract;
using RegistryFaults = RegistryContract;

TEST_F(RegistryContract, AbsentEntryIsNotFoundForEveryKind) {
  unsigned char byte = 0;
  char text[8];
  uint32_t number = 0;
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryBinary("CDR", "CDRPush", "TransferType", &byte, 1));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryString("CDR", "CDRPush", "IpAddr", text, sizeof text));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &number));
}

TEST_F(RegistryContract, BinaryRoundTripKeepsEveryByteValue) {
  std::vector<unsigned char> bytes(256);
  for (int i = 0; i < 256; ++i) bytes[i] = static_cast<unsigned char>(i);
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryBinary("CDR", "CDRService", "PREFIX", bytes.data(), 256));
  std::vector<unsigned char> read(256, 0xAA);
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryBinary("CDR", "CDRService", "PREFIX", read.data(), 256));
  EXPECT_EQ(bytes, read);
  EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.end()), root.binary("CDR", "CDRService", "PREFIX"));
}

TEST_F(RegistryContract, BinaryReadOfAnotherLengthFailsWithoutTouchingTheBuffer) {
  const unsigned char stored[2] = {0xf9, 0x90};
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryBinary("CDR", "CDRService", "FORMAT", stored, 2));
  unsigned char buffer[3] = {0x11, 0x22, 0x33};
  EXPECT_EQ(ZPO_ERR_SIZE_MISMATCH, ZpoGetRegEntryBinary("CDR", "CDRService", "FORMAT", buffer, 1));
  EXPECT_EQ(ZPO_ERR_SIZE_MISMATCH, ZpoGetRegEntryBinary("CDR", "CDRService", "FORMAT", buffer, 3));
  EXPECT_EQ(0x11, buffer[0]);
  EXPECT_EQ(0x22, buffer[1]);
  EXPECT_EQ(0x33, buffer[2]);
}

TEST_F(RegistryContract, ReadOfAnotherKindFails) {
  const unsigned char byte = 7;
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryBinary("C", "S", "binary", &byte, 1));
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("C", "S", "int", 7));
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("C", "S", "string", "7"));
  for (const char* key : {"binary", "int", "string"}) {
    SCOPED_TRACE(key);
    unsigned char readByte = 0;
    uint32_t number = 0;
    char text[16] = "untouched";
    const std::string stored = key;
    EXPECT_EQ(stored == "binary" ? ZPO_OK : ZPO_ERR_KIND_MISMATCH, ZpoGetRegEntryBinary("C", "S", key, &readByte, 1));
    EXPECT_EQ(stored == "int" ? ZPO_OK : ZPO_ERR_KIND_MISMATCH, ZpoGetRegEntryInt("C", "S", key, &number));
    EXPECT_EQ(stored == "string" ? ZPO_OK : ZPO_ERR_KIND_MISMATCH, ZpoGetRegEntryString("C", "S", key, text, 16));
    if (stored != "string") {
      EXPECT_STREQ("untouched", text);
    }
  }
}

TEST_F(RegistryContract, StringMustFitWithItsNul) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("CDR", "CDRPush", "UserName", "abcd"));
  char small[4];
  std::memset(small, 'x', sizeof small);
  EXPECT_EQ(ZPO_ERR_BUFFER_TOO_SMALL, ZpoGetRegEntryString("CDR", "CDRPush", "UserName", small, 4));
  EXPECT_EQ(std::string(4, 'x'), std::string(small, 4));
  char exact[5];
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryString("CDR", "CDRPush", "UserName", exact, 5));
  EXPECT_STREQ("abcd", exact);
}

TEST_F(RegistryContract, StringBytesAreKeptAsGiven) {
  const char latin1[] = "Caf\xe9 \x01\x7f\xff";
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("CDR", "CDRPush", "Folder", latin1));
  char read[512];
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryString("CDR", "CDRPush", "Folder", read, sizeof read));
  EXPECT_STREQ(latin1, read);
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("CDR", "CDRPush", "Empty", ""));
  read[0] = 'x';
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryString("CDR", "CDRPush", "Empty", read, 1));
  EXPECT_EQ('\0', read[0]);
}

TEST_F(RegistryContract, IntKeepsTheFullUnsignedRange) {
  for (uint32_t value : {0u, 1u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
    ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPull", "Pull-Count", value));
    uint32_t read = 12345;
    ASSERT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &read));
    EXPECT_EQ(value, read);
  }
}

TEST_F(RegistryContract, SetReplacesValueAndKind) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("CDR", "CDRPush", "Port", "21"));
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "Port", 21));
  uint32_t port = 0;
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPush", "Port", &port));
  EXPECT_EQ(21u, port);
  char text[8];
  EXPECT_EQ(ZPO_ERR_KIND_MISMATCH, ZpoGetRegEntryString("CDR", "CDRPush", "Port", text, sizeof text));
}

TEST_F(RegistryContract, NamesAreCaseSensitive) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "IpAddr", 1));
  uint32_t value = 0;
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryInt("CDR", "CDRPush", "IPADDR", &value));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryInt("cdr", "CDRPush", "IpAddr", &value));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryInt("CDR", "cdrpush", "IpAddr", &value));
}

TEST_F(RegistryContract, MissingNamesAndBuffersAreRefused) {
  unsigned char byte = 1;
  char text[4];
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoSetRegEntryBinary(nullptr, "S", "K", &byte, 1));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoSetRegEntryBinary("C", "", "K", &byte, 1));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoSetRegEntryBinary("C", "S", "K", &byte, 0));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoSetRegEntryString("C", "S", "K", nullptr));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoGetRegEntryInt("C", "S", "K", nullptr));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoGetRegEntryString("C", "S", "K", text, 0));
  EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoGetRegEntryBinary("C", "S", nullptr, &byte, 1));
  EXPECT_FALSE(root.hasEntry("C", "S", "K"));
}

// ---- Durability and concurrency ---------------------------------------------

TEST_F(RegistrySharing, WriteThatReturnedSurvivesAKilledProcess) {
  int ready[2];
  ASSERT_EQ(0, pipe(ready));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const unsigned char value[2] = {0x12, 0x34};
    const char done = ZpoSetRegEntryBinary("CDR", "CDRService", "DIGITSLIMIT", value, 2) == ZPO_OK ? 'y' : 'n';
    (void)!write(ready[1], &done, 1);
    for (;;) pause();
  }
  char done = 0;
  ASSERT_EQ(1, read(ready[0], &done, 1));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_EQ('y', done);
  ZpoDevReset();
  unsigned char value[2] = {0, 0};
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryBinary("CDR", "CDRService", "DIGITSLIMIT", value, 2));
  EXPECT_EQ(0x12, value[0]);
  EXPECT_EQ(0x34, value[1]);
}

TEST_F(RegistrySharing, TwoProcessesWritingAtOnceLoseNoWrite) {
  const int kWrites = 60;
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "Shared", "Warm", 0));  // the database exists before the race
  std::vector<pid_t> children;
  for (int writer = 0; writer < 2; ++writer) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      int failures = 0;
      for (int i = 0; i < kWrites; ++i) {
        const std::string own = "Writer" + std::to_string(writer) + "-" + std::to_string(i);
        failures += ZpoSetRegEntryInt("CDR", "Own", own.c_str(), static_cast<uint32_t>(i)) != ZPO_OK;
        failures += ZpoSetRegEntryInt("CDR", "Shared", "Last", static_cast<uint32_t>(writer * 1000 + i)) != ZPO_OK;
      }
      _exit(failures > 100 ? 100 : failures);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status)) << "failed writes in a writer";
  }
  for (int writer = 0; writer < 2; ++writer) {
    for (int i = 0; i < kWrites; ++i) {
      const std::string own = "Writer" + std::to_string(writer) + "-" + std::to_string(i);
      uint32_t value = 9999;
      ASSERT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "Own", own.c_str(), &value)) << own;
      EXPECT_EQ(static_cast<uint32_t>(i), value);
    }
  }
  uint32_t last = 0;
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "Shared", "Last", &last));
  EXPECT_TRUE(last == kWrites - 1 || last == 1000 + kWrites - 1) << last;
}

TEST_F(RegistrySharing, ThreadsOfOneProcessShareTheRegistry) {
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 25; ++i) {
        const std::string key = "T" + std::to_string(t) + "-" + std::to_string(i);
        uint32_t read = 0;
        if (ZpoSetRegEntryInt("CDR", "Threads", key.c_str(), static_cast<uint32_t>(i)) != ZPO_OK ||
            ZpoGetRegEntryInt("CDR", "Threads", key.c_str(), &read) != ZPO_OK || read != static_cast<uint32_t>(i)) {
          ++failures[t];
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(std::vector<int>(4, 0), failures);
}

// ---- Fault injection ----------------------------------------------------------

TEST_F(RegistryFaults, ReadFaultHitsOnlyItsEntryAndLeavesTheBuffer) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "Port", 21));
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "Other", 22));
  root.setFault("reg-read", "CDR", "CDRPush", "Port", 0x200099);
  uint32_t value = 7;
  EXPECT_EQ(0x200099u, ZpoGetRegEntryInt("CDR", "CDRPush", "Port", &value));
  EXPECT_EQ(7u, value);
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPush", "Other", &value));
  EXPECT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "Port", 23));  // writes are not affected
  root.clearFaults();
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPush", "Port", &value));
  EXPECT_EQ(23u, value);
}

TEST_F(RegistryFaults, WriteFaultChangesNothing) {
  const unsigned char before = 1, after = 2;
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryBinary("CDR", "CDRService", "FORMAT", &before, 1));
  root.setFault("reg-write", "CDR", "CDRService", "FORMAT", 5);
  EXPECT_EQ(5u, ZpoSetRegEntryBinary("CDR", "CDRService", "FORMAT", &after, 1));
  EXPECT_EQ(5u, ZpoSetRegEntryString("CDR", "CDRService", "FORMAT", "x"));
  EXPECT_EQ(std::vector<uint8_t>{1}, root.binary("CDR", "CDRService", "FORMAT"));
}

TEST_F(RegistryFaults, EmptyNamesMatchEveryEntry) {
  root.setFault("reg-read", "CDR", "", "", 9);
  uint32_t value = 0;
  EXPECT_EQ(9u, ZpoGetRegEntryInt("CDR", "CDRPush", "Anything", &value));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoGetRegEntryInt("OTHER", "CDRPush", "Anything", &value));
}

TEST_F(RegistryFaults, FaultSetByAnotherProcessTakesEffectAtOnce) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPull", "Pull-Count", 3));
  uint32_t value = 0;
  ASSERT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &value));  // rules now cached
  const std::string zpo = "ZPO_ROOT='" + root.path() + "' '" + root.zpoCommand() + "' ";
  ASSERT_EQ(0, std::system((zpo + "fault set reg-read CDR CDRPull Pull-Count 0x200011").c_str()));
  EXPECT_EQ(ZPO_ERR_STORAGE, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &value));
  ASSERT_EQ(0, std::system((zpo + "fault clear").c_str()));
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPull", "Pull-Count", &value));
}

}  // namespace
