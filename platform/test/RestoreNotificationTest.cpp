#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

// Set in the child of the exit test, which leaks its parent's connection
// (a child of fork forgets it on purpose): no leak check there.
static bool gExitingChild = false;
extern "C" int __lsan_is_turned_off() { return gExitingChild ? 1 : 0; }

namespace {

std::atomic<unsigned long> gRestoreEvent{0};
std::atomic<int> gOtherEventCalls{0};
int gReportFd = -1;
std::atomic<bool> gCallbackStarted{false};

void recordRestore(unsigned long event) { gRestoreEvent = event; }
void recordOther(unsigned long) { ++gOtherEventCalls; }
void reportToParent(unsigned long event) {
  const char byte = static_cast<char>(event);
  (void)!write(gReportFd, &byte, 1);
}

// Reports "s" when it starts and "f" when it finishes, a while later.
void reportStartAndFinish(unsigned long) {
  gCallbackStarted = true;
  (void)!write(gReportFd, "s", 1);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  (void)!write(gReportFd, "f", 1);
}

class RestoreNotification : public ::testing::Test {
 protected:
  void SetUp() override {
    gRestoreEvent = 0;
    gOtherEventCalls = 0;
    ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "TransferType", 1));
    ASSERT_EQ(0, zpo("reg backup " + backupFile()));
  }
  std::string backupFile() const { return root.path() + "/backup.db"; }
  int zpo(const std::string& arguments) const {
    return std::system(("ZPO_ROOT='" + root.path() + "' '" + root.zpoCommand() + "' " + arguments).c_str());
  }
  bool waitFor(const std::atomic<unsigned long>& value) const {
    for (int i = 0; i < 200 && value == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return value != 0;
  }
  zpotest::TempZpoRoot root;
};

TEST_F(RestoreNotification, RestoreReplacesEveryEntry) {
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryInt("CDR", "CDRPush", "TransferType", 4));
  ASSERT_EQ(ZPO_OK, ZpoSetRegEntryString("CDR", "CDRPush", "IpAddr", "10.1.1.1"));
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  uint32_t type = 0;
  EXPECT_EQ(ZPO_OK, ZpoGetRegEntryInt("CDR", "CDRPush", "TransferType", &type));
  EXPECT_EQ(1u, type);
  EXPECT_FALSE(root.hasEntry("CDR", "CDRPush", "IpAddr"));
}

TEST_F(RestoreNotification, CallbacksOfTheRestoreMaskRunWithTheEvent) {
  ASSERT_EQ(ZPO_OK, ZpoNotifyRegBackupAndRestore("CDROAMProvider", recordRestore, ZPO_EVENT_RESTORE));
  ASSERT_EQ(ZPO_OK, ZpoNotifyRegBackupAndRestore("Other", recordOther, 1));
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  ASSERT_TRUE(waitFor(gRestoreEvent));
  EXPECT_EQ(static_cast<unsigned long>(ZPO_EVENT_RESTORE), gRestoreEvent.load());
  EXPECT_EQ(0, gOtherEventCalls.load());
}

TEST_F(RestoreNotification, ResetWithdrawsTheRegistrations) {
  ASSERT_EQ(ZPO_OK, ZpoNotifyRegBackupAndRestore("CDROAMProvider", recordRestore, ZPO_EVENT_RESTORE));
  ZpoDevReset();
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_EQ(0ul, gRestoreEvent.load());
}

TEST_F(RestoreNotification, RestoreReachesACallbackInAnotherProcess) {
  int ready[2], report[2];
  ASSERT_EQ(0, pipe(ready));
  ASSERT_EQ(0, pipe(report));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    gReportFd = report[1];
    const char registered = ZpoNotifyRegBackupAndRestore("CDROAMProvider", reportToParent, 2) == ZPO_OK ? 'y' : 'n';
    (void)!write(ready[1], &registered, 1);
    sleep(10);
    _exit(0);
  }
  char registered = 0;
  ASSERT_EQ(1, read(ready[0], &registered, 1));
  ASSERT_EQ('y', registered);
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  pollfd wait = {report[0], POLLIN, 0};
  const int answered = poll(&wait, 1, 3000);
  char event = 0;
  const bool eventRead = answered == 1 && read(report[0], &event, 1) == 1;
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_TRUE(eventRead) << "no callback ran in the other process";
  EXPECT_EQ(ZPO_EVENT_RESTORE, event);
}

// The event crosses between processes as 4 bytes on every architecture.
TEST_F(RestoreNotification, EventTravelsAsFourBytes) {
  const int fd = socket(AF_UNIX, SOCK_DGRAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s/notify/%d.sock", root.path().c_str(),
                static_cast<int>(getpid()));
  ASSERT_EQ(0, bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address));
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  unsigned char datagram[16] = {};
  const ssize_t received = recv(fd, datagram, sizeof datagram, MSG_DONTWAIT);
  close(fd);
  ASSERT_EQ(4, received);
  uint32_t event = 0;
  std::memcpy(&event, datagram, 4);
  EXPECT_EQ(static_cast<uint32_t>(ZPO_EVENT_RESTORE), event);
}

TEST_F(RestoreNotification, SocketOfADeadProcessIsRemoved) {
  const std::string stale = root.path() + "/notify/999999.sock";
  const int fd = socket(AF_UNIX, SOCK_DGRAM, 0);
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s", stale.c_str());
  ASSERT_EQ(0, bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address));
  close(fd);  // the file stays, nobody listens
  ASSERT_EQ(0, zpo("reg restore " + backupFile()));
  EXPECT_FALSE(std::filesystem::exists(stale));
}

TEST_F(RestoreNotification, ExitWaitsForARunningCallbackToFinish) {
  int report[2];
  ASSERT_EQ(0, pipe(report));
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    close(report[0]);
    gReportFd = report[1];
    gExitingChild = true;
    if (ZpoNotifyRegBackupAndRestore("CDROAMProvider", reportStartAndFinish, 2) != ZPO_OK) _exit(1);
    if (zpo("reg restore " + backupFile()) != 0) _exit(1);
    for (int i = 0; i < 300 && !gCallbackStarted; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    std::exit(0);  // while the callback sleeps
  }
  close(report[1]);
  std::string reported;
  pollfd wait = {report[0], POLLIN, 0};
  char byte = 0;
  while (poll(&wait, 1, 5000) == 1 && read(report[0], &byte, 1) == 1) reported += byte;
  close(report[0]);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ("sf", reported);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
