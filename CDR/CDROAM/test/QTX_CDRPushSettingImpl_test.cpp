// The push settings and their scheduled transfer, against the real platform:
// registry entries, diagnostic log lines and the scheduler's crontab.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <thread>

#include "CDRTestSupport.hpp"
#include "QTX_CDRPushSettingImpl.h"

namespace {

namespace OW = OW_NAMESPACE;
typedef OW::Array<OW::CIMQualifier> Qualifiers;
typedef QTX_CDRPushSettingImpl P;

const char* const kTask = " /qv/bin/CDRTransfer";

class PushSettingTest : public cdrtest::ModuleTest {
 protected:
  PushSettingTest() : push(new QTX_CDRPushSettingImpl("CDRPushSetting")) {}
  ~PushSettingTest() override { push.reset(); }

  void setText(const char* key, const char* text) { ZpoSetRegEntryString("CDR", "CDRPush", key, text); }
  void setByte(const char* key, uint8_t value) { ZpoSetRegEntryBinary("CDR", "CDRPush", key, &value, 1); }
  std::vector<uint8_t> byteEntry(const char* key) const { return entry("CDRPush", key); }
  bool has(const char* key) const { return root.hasEntry("CDR", "CDRPush", key); }
  std::string text(const char* key) const {
    char buffer[512] = {0};
    if (ZpoGetRegEntryString("CDR", "CDRPush", key, buffer, sizeof buffer) != 0) return "<absent>";
    return buffer;
  }

  // Diagnostic entries as "<level> <text>".
  std::vector<std::string> entries() const {
    std::vector<std::string> result;
    for (const std::string& line : log()) {
      size_t level = line.find(" level=");
      size_t id = line.find(" id=-1 ");
      if (level == std::string::npos || id == std::string::npos) continue;
      result.push_back(line.substr(level + 7, id - level - 7) + " " + line.substr(id + 7));
    }
    return result;
  }

  // Adds a task for the transfer program, as an earlier arming left it.
  void addStaleTask(uint16_t hour, uint16_t minute) {
    ZpoScheduledTask task = {};
    snprintf(task.path, sizeof task.path, "/qv/bin/CDRTransfer");
    task.hour = hour;
    task.minute = minute;
    task.dayOfMonth = task.dayOfWeek = task.month = ZPO_SCHED_ANY;
    ASSERT_EQ(0u, ZpoSetScheduledTask(task, 1000, 1000, 1000));
  }

  unsigned char transferType() {
    unsigned char type = 0xEE;
    Qualifiers q;
    push->getTransferType(type, q);
    return type;
  }

  std::unique_ptr<QTX_CDRPushSettingImpl> push;
};

// ---- Reading -----------------------------------------------------------------

// One read cycle in the order the provider uses; a property whose getter
// leaves its value alone reads "untouched". Also collects "Applicable".
struct ReadCycle {
  std::map<std::string, std::string> values;
  std::map<std::string, std::string> applicable;
};

template <class T>
std::string shown(const T& v) { return std::to_string(v); }
std::string shown(const std::string& v) { return v; }

ReadCycle readAll(const QTX_CDRPushSettingImpl& push) {
  ReadCycle cycle;
  auto take = [&](const char* name, auto getter, auto untouched) {
    auto value = untouched;
    Qualifiers q;
    EXPECT_EQ(0, (push.*getter)(value, q)) << name;
    cycle.values[name] = value == untouched ? "untouched" : shown(value);
    if (q.size() == 1) cycle.applicable[name] = q[0].getValue().toBool() ? "true" : "false";
  };
  const std::string sentinel = "untouched";
  take("TransferType", &QTX_CDRPushSettingImpl::getTransferType, (unsigned char)0xEE);
  take("IPAddress", &QTX_CDRPushSettingImpl::getIPAddress, sentinel);
  take("UserName", &QTX_CDRPushSettingImpl::getUserName, sentinel);
  take("Password", &QTX_CDRPushSettingImpl::getPassword, sentinel);
  take("DestFolder", &QTX_CDRPushSettingImpl::getDestFolder, sentinel);
  take("NumRetry", &QTX_CDRPushSettingImpl::getNumRetry, 0xEEEEu);
  take("TransferTime", &QTX_CDRPushSettingImpl::getTransferTime, sentinel);
  take("TransferDayOfMonth", &QTX_CDRPushSettingImpl::getTransferDayOfMonth, sentinel);
  take("TransferDayOfWeek", &QTX_CDRPushSettingImpl::getTransferDayOfWeek, sentinel);
  return cycle;
}

TEST_F(PushSettingTest, FirstReadWithoutEntriesCreatesOnlyTheTransferType) {
  ReadCycle cycle = readAll(*push);
  bool flag = true;
  Qualifiers q;
  EXPECT_EQ(0, push->getDeleteFlag(flag, q));
  EXPECT_TRUE(flag);  // not applicable: left alone

  EXPECT_EQ("4", cycle.values["TransferType"]);
  EXPECT_EQ(0u, cycle.applicable.count("TransferType"));
  for (const char* name : {"IPAddress", "UserName", "Password", "DestFolder", "NumRetry",
                           "TransferTime", "TransferDayOfMonth", "TransferDayOfWeek"}) {
    EXPECT_EQ("untouched", cycle.values[name]) << name;
    EXPECT_EQ("false", cycle.applicable[name]) << name;
  }
  EXPECT_EQ((std::vector<uint8_t>{4}), byteEntry("TransferType"));
  for (const char* key : {"IpAddr", "UserName", "Password", "DestFolder", "NumRetry", "DeleteFlag",
                          "CompressFlag", "IncludeMetricsFlag", "TranTime", "TranDateOfMonth",
                          "TranDateOfWeek"}) {
    EXPECT_FALSE(has(key)) << key;
  }
  EXPECT_TRUE(entries().empty());
}

TEST_F(PushSettingTest, MissingEntriesAreCreatedWithTheirDefaults) {
  setByte("TransferType", 0);
  ReadCycle cycle = readAll(*push);
  Qualifiers q;
  for (auto getter : {&P::getDeleteFlag, &P::getCompressFlag, &P::getIncludeMetricsFlag}) {
    bool flag = true;
    (push.get()->*getter)(flag, q);
    EXPECT_FALSE(flag);
  }

  EXPECT_EQ("", cycle.values["IPAddress"]);
  EXPECT_EQ("00:00", cycle.values["TransferTime"]);
  EXPECT_EQ("0", cycle.values["NumRetry"]);
  EXPECT_EQ("true", cycle.applicable["TransferTime"]);
  EXPECT_EQ("false", cycle.applicable["TransferDayOfMonth"]);
  EXPECT_EQ("untouched", cycle.values["TransferDayOfWeek"]);
  EXPECT_EQ("", text("IpAddr"));
  EXPECT_EQ("", text("DestFolder"));
  EXPECT_EQ("00:00", text("TranTime"));
  EXPECT_EQ((std::vector<uint8_t>{0}), byteEntry("NumRetry"));
  for (const char* key : {"DeleteFlag", "CompressFlag", "IncludeMetricsFlag"}) {
    EXPECT_EQ((std::vector<uint8_t>{0}), byteEntry(key)) << key;
  }
  EXPECT_FALSE(has("TranDateOfMonth"));
  EXPECT_TRUE(entries().empty());

  // A stored empty text counts as holding control characters on every read.
  readAll(*push);
  std::vector<std::string> lines = entries();
  EXPECT_EQ(4u, lines.size());
  EXPECT_EQ("2 ControlCharacters Found in PDR:Push-IpAddr", lines.at(0));
}

TEST_F(PushSettingTest, ControlCharactersReadAsTheDefaultAndAreReported) {
  struct Row { uint8_t type; const char* key; const char* property; const char* stored; const char* read; }
  rows[] = {
      {0, "IpAddr", "IPAddress", "10.0.0.1\t", ""},
      {0, "UserName", "UserName", "bob\n", ""},
      {0, "Password", "Password", "\x7f", ""},
      {0, "DestFolder", "DestFolder", "/cdr\x1b", ""},
      {0, "TranTime", "TransferTime", "10:\x01" "00", "00:00"},
      {2, "TranDateOfMonth", "TransferDayOfMonth", "1\r", ""},
      {1, "TranDateOfWeek", "TransferDayOfWeek", "\x02" "3", ""},
  };
  for (const Row& row : rows) {
    setByte("TransferType", row.type);
    setText(row.key, row.stored);
    EXPECT_EQ(row.read, readAll(*push).values[row.property]) << row.key;
    std::vector<std::string> lines = entries();
    EXPECT_NE(lines.end(), std::find(lines.begin(), lines.end(),
                                     std::string("2 ControlCharacters Found in PDR:Push-") + row.key));
    EXPECT_EQ(row.stored, text(row.key));  // the registry keeps the bad value
  }
}

// Every setting: its registry key, the transfer type under which it
// applies, a value written through its setter and read back, and what its
// getter leaves after a failed read.
struct Setting {
  const char* property;
  const char* key;
  bool isText;
  uint8_t type;
  std::function<int(QTX_CDRPushSettingImpl&)> write;
  std::function<std::string(const QTX_CDRPushSettingImpl&)> read;  // "threw <value>" on CFG_ReadError
  const char* written;
  const char* afterFailedRead;
};

template <class T>
std::function<int(QTX_CDRPushSettingImpl&)> writing(int (QTX_CDRPushSettingImpl::*setter)(T), T value) {
  return [=](QTX_CDRPushSettingImpl& push) { return (push.*setter)(value); };
}
template <class T>
std::function<std::string(const QTX_CDRPushSettingImpl&)> reading(
    int (QTX_CDRPushSettingImpl::*getter)(T&, Qualifiers&) const, T start) {
  return [=](const QTX_CDRPushSettingImpl& push) {
    T value = start;
    Qualifiers q;
    try {
      EXPECT_EQ(0, (push.*getter)(value, q));
    } catch (const CFG_ReadError&) {
      return "threw " + shown(value);
    }
    return shown(value);
  };
}

const Setting kSettings[] = {
    {"TransferType", "TransferType", false, 0, writing(&P::setTransferType, (unsigned char)1),
     reading(&P::getTransferType, (unsigned char)0xEE), "1", "threw 4"},
    {"IPAddress", "IpAddr", true, 0, writing(&P::setIPAddress, std::string("10.0.0.1")),
     reading(&P::getIPAddress, std::string("x")), "10.0.0.1", "threw "},
    {"UserName", "UserName", true, 0, writing(&P::setUserName, std::string("bob")),
     reading(&P::getUserName, std::string("x")), "bob", "threw "},
    {"Password", "Password", true, 0, writing(&P::setPassword, std::string("secret")),
     reading(&P::getPassword, std::string("x")), "secret", "threw "},
    {"DestFolder", "DestFolder", true, 0, writing(&P::setDestFolder, std::string("/cdr/out")),
     reading(&P::getDestFolder, std::string("x")), "/cdr/out", "threw "},
    {"NumRetry", "NumRetry", false, 0, writing(&P::setNumRetry, 5u), reading(&P::getNumRetry, 7u), "5",
     "threw 1"},
    {"DeleteFlag", "DeleteFlag", false, 0, writing(&P::setDeleteFlag, true),
     reading(&P::getDeleteFlag, true), "1", "threw 0"},
    {"CompressFlag", "CompressFlag", false, 0, writing(&P::setCompressFlag, true),
     reading(&P::getCompressFlag, true), "1", "threw 0"},
    {"IncludeMetricsFlag", "IncludeMetricsFlag", false, 0, writing(&P::setIncludeMetricsFlag, true),
     reading(&P::getIncludeMetricsFlag, true), "1", "threw 0"},
    {"TransferTime", "TranTime", true, 0, writing(&P::setTransferTime, std::string("7:05")),
     reading(&P::getTransferTime, std::string("x")), "7:05", "threw "},
    {"TransferDayOfMonth", "TranDateOfMonth", true, 2, writing(&P::setTransferDayOfMonth, std::string("15")),
     reading(&P::getTransferDayOfMonth, std::string("x")), "15", "threw "},
    {"TransferDayOfWeek", "TranDateOfWeek", true, 1, writing(&P::setTransferDayOfWeek, std::string("3")),
     reading(&P::getTransferDayOfWeek, std::string("x")), "3", "threw "},
};

TEST_F(PushSettingTest, EverySettingIsStoredUnderItsKeyAndReadBack) {
  for (const Setting& s : kSettings) {
    setByte("TransferType", s.type);
    transferType();
    EXPECT_EQ(0, s.write(*push)) << s.property;
    std::vector<uint8_t> bytes = byteEntry(s.key);
    EXPECT_EQ(s.written, s.isText ? text(s.key) : bytes.empty() ? "<absent>" : std::to_string(bytes[0]))
        << s.property;
    EXPECT_EQ(s.written, s.read(*push)) << s.property;
  }
  // A flag set false is stored as 0.
  for (auto setter : {&P::setDeleteFlag, &P::setCompressFlag, &P::setIncludeMetricsFlag}) {
    EXPECT_EQ(0, (push.get()->*setter)(false));
  }
  for (const char* key : {"DeleteFlag", "CompressFlag", "IncludeMetricsFlag"}) {
    EXPECT_EQ((std::vector<uint8_t>{0}), byteEntry(key)) << key;
  }
}

TEST_F(PushSettingTest, FailedReadsAreLoggedGiveTheirFallbackAndThrow) {
  const uint32_t kFault = 0x200011;
  std::vector<std::string> expected;
  for (const Setting& s : kSettings) {
    setByte("TransferType", s.type);
    transferType();
    s.write(*push);
    root.setFault("reg-read", "CDR", "CDRPush", s.key, kFault);
    EXPECT_EQ(s.afterFailedRead, s.read(*push)) << s.property;
    root.clearFaults();
    expected.push_back(std::string("4 get") + s.property + " error = 2097169");
    // Nothing is written back.
    EXPECT_EQ(s.written, s.read(*push)) << s.property;
  }
  std::vector<std::string> failures;
  for (const std::string& line : entries()) {
    if (line.find(" error = ") != std::string::npos) failures.push_back(line);
  }
  EXPECT_EQ(expected, failures);
}

TEST_F(PushSettingTest, FailedWritesAreLoggedAndThrow) {
  root.setFault("reg-write", "CDR", "CDRPush", "", 0x200011);
  std::vector<std::string> expected;
  for (const Setting& s : kSettings) {
    EXPECT_THROW(s.write(*push), CFG_WriteError) << s.property;
    // A refused transfer type is logged at the schedule's failure level.
    expected.push_back((std::string(s.key) == "TransferType" ? "1 set" : "4 set") + std::string(s.property) +
                       " error = 2097169");
  }
  EXPECT_EQ(expected, entries());
  EXPECT_TRUE(root.crontabLines().empty());  // a refused write arms nothing
}

// Texts are read into a 512-byte buffer: a longer stored text is a failed read.
TEST_F(PushSettingTest, TextsAreReadIntoTheir512ByteBuffer) {
  setByte("TransferType", 0);
  transferType();
  Qualifiers q;
  std::string value;
  setText("DestFolder", std::string(511, 'd').c_str());
  EXPECT_EQ(0, push->getDestFolder(value, q));
  EXPECT_EQ(std::string(511, 'd'), value);
  setText("DestFolder", std::string(512, 'd').c_str());
  EXPECT_THROW(push->getDestFolder(value, q), CFG_ReadError);
}

// ---- Writing -----------------------------------------------------------------

TEST_F(PushSettingTest, TransferTimeAcceptsHourAndMinuteInRangeStoredAsGiven) {
  struct Row { const char* time; int status; } rows[] = {
      {"7:5", 0}, {"00:00", 0}, {"23:59", 0}, {"0:0", 0}, {"", 0}, {"10:20:30", 0}, {"7::5", 0},
      {"24:00", 301}, {"12:60", 301}, {"ab:10", 301}, {"12:x", 301}, {"000", 301},
      {"-1:10", 301}};
  for (const Row& row : rows) {
    setText("TranTime", "keep");
    EXPECT_EQ(row.status, push->setTransferTime(row.time)) << row.time;
    EXPECT_EQ(row.status == 0 ? row.time : "keep", text("TranTime")) << row.time;
  }
}

TEST_F(PushSettingTest, DaysAreValidatedByTheirLeadingNumberAndStoredAsGiven) {
  // Nothing read yet: the first arming runs daily at midnight.
  EXPECT_EQ(0, push->setTransferDayOfWeek("3"));
  EXPECT_EQ((std::vector<std::string>{std::string("0 0 * * *") + kTask}), root.crontabLines());
  struct Row { bool month; const char* day; int status; } rows[] = {
      {true, "1", 0}, {true, "31", 0}, {true, "15th", 0}, {true, "0", 301}, {true, "32", 301},
      {true, "", 301}, {false, "0", 0}, {false, "6", 0}, {false, "7", 301}, {false, "-1", 301}};
  for (const Row& row : rows) {
    const char* key = row.month ? "TranDateOfMonth" : "TranDateOfWeek";
    setText(key, "keep");
    int status = row.month ? push->setTransferDayOfMonth(row.day) : push->setTransferDayOfWeek(row.day);
    EXPECT_EQ(row.status, status) << key << " " << row.day;
    EXPECT_EQ(row.status == 0 ? row.day : "keep", text(key)) << key << " " << row.day;
  }
}

TEST_F(PushSettingTest, NumRetryKeepsOnlyItsLowByte) {
  setByte("TransferType", 0);
  EXPECT_EQ(0, push->setNumRetry(300));
  EXPECT_EQ((std::vector<uint8_t>{44}), byteEntry("NumRetry"));
  EXPECT_EQ("44", readAll(*push).values["NumRetry"]);
  setByte("NumRetry", 0xFF);
  EXPECT_EQ("255", readAll(*push).values["NumRetry"]);
}

// ---- The schedule ------------------------------------------------------------

TEST_F(PushSettingTest, EachTransferTypeArmsOrRemovesTheOneTask) {
  setText("TranTime", "7:5");
  setText("TranDateOfWeek", "0");
  setText("TranDateOfMonth", "31");
  struct Row { uint8_t type; const char* cron; const char* scheduled; } rows[] = {
      {0, "5 7 * * *", "PUSH_DAILY: Time=07:05 "},
      {1, "5 7 * * 7", "PUSH_WEEKLY: DayOfWeek=7, Time=07:05 "},
      {2, "5 7 31 * *", "PUSH_MONTHLY: DayOfMonth=31, Time=07:05 "},
      {3, nullptr, nullptr},
      {4, nullptr, nullptr},
      {9, "5 7 * * *", " Time=07:05 "},
  };
  for (const Row& row : rows) {
    addStaleTask(1, 0);
    size_t before = entries().size();
    EXPECT_EQ(0, push->setTransferType(row.type)) << int(row.type);
    std::vector<std::string> lines = entries();
    std::vector<std::string> added(lines.begin() + before, lines.end());
    std::vector<std::string> expected{"4 CDR: push task deleted successfully"};
    if (row.scheduled) {
      expected.push_back(std::string("4 CDR: push task scheduled successfully, ") + row.scheduled);
      EXPECT_EQ((std::vector<std::string>{std::string(row.cron) + kTask}), root.crontabLines());
    } else {
      EXPECT_TRUE(root.crontabLines().empty()) << int(row.type);
    }
    EXPECT_EQ(expected, added) << int(row.type);
    if (row.scheduled) push->removePushSchedule();
  }
}

TEST_F(PushSettingTest, RemovingDeletesEveryStaleTaskAndLogsNothingWithoutOne) {
  EXPECT_EQ(0, push->removePushSchedule());
  EXPECT_TRUE(entries().empty());
  addStaleTask(1, 0);
  addStaleTask(2, 30);
  EXPECT_EQ(0, push->setTransferType(4));
  EXPECT_TRUE(root.crontabLines().empty());
  EXPECT_EQ((std::vector<std::string>{"4 CDR: push task deleted successfully",
                                      "4 CDR: push task deleted successfully"}),
            entries());
}

TEST_F(PushSettingTest, RefusedCreationThrowsWithTheOldTaskAlreadyGone) {
  setText("TranTime", "10:00");
  addStaleTask(1, 0);
  root.setFault("sched-set", "", "", "", 0x200011);
  EXPECT_THROW(push->setTransferType(0), CFG_WriteError);
  EXPECT_TRUE(root.crontabLines().empty());
  EXPECT_EQ((std::vector<uint8_t>{0}), byteEntry("TransferType"));
  EXPECT_EQ((std::vector<std::string>{
                "4 CDR: push task deleted successfully",
                "1 CDR: schedule push task failed, PUSH_DAILY: Time=10:00 , rc=2097169"}),
            entries());
}

TEST_F(PushSettingTest, RefusedLastDeletionThrowsAndKeepsTheTask) {
  addStaleTask(1, 0);
  root.setFault("sched-delete", "", "", "", 0x200011);
  EXPECT_THROW(push->setTransferType(3), CFG_WriteError);
  EXPECT_EQ((std::vector<std::string>{std::string("0 1 * * *") + kTask}), root.crontabLines());
  std::vector<std::string> lines = entries();
  ASSERT_EQ(2u, lines.size());
  // Only the first sentence of the failure line is written.
  EXPECT_EQ(0u, lines[0].find("1 CDR: delete push task failed, rc="));
  EXPECT_EQ(',', lines[0].back());
  EXPECT_EQ(std::string::npos, lines[0].find("Time="));
  EXPECT_EQ("4 CDR: push task Unsuccessful delete", lines[1]);
}

TEST_F(PushSettingTest, PushFileNowCountsEveryRun) {
  unsigned int first = push->PushFileNow();
  EXPECT_EQ(first + 1, push->PushFileNow());
  EXPECT_EQ(first + 2, push->PushFileNow());
}

// ---- Registry restore ----------------------------------------------------------

// Runs the zpo command on this test's state directory.
int zpo(const zpotest::TempZpoRoot& root, const std::string& arguments) {
  std::string command = root.zpoCommand() + " --root " + root.path() + " " + arguments + " >/dev/null 2>&1";
  return std::system(command.c_str());
}

bool waitFor(const std::function<bool()>& condition) {
  for (int i = 0; i < 500; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return condition();
}

TEST_F(PushSettingTest, RestoreReArmsTheScheduleFromTheRestoredSettings) {
  setByte("TransferType", 1);
  setText("TranDateOfWeek", "3");
  setText("TranTime", "8:30");
  std::string backup = root.path() + "/push-backup.db";
  ASSERT_EQ(0, zpo(root, "reg backup " + backup));

  EXPECT_EQ(0, push->setTransferType(0));
  EXPECT_EQ(0, push->setTransferTime("9:15"));
  ASSERT_EQ((std::vector<std::string>{std::string("15 9 * * *") + kTask}), root.crontabLines());

  ASSERT_EQ(0, zpo(root, "reg restore " + backup));
  const std::string weekly = std::string("30 8 * * 3") + kTask;
  ASSERT_TRUE(waitFor([&] { return root.crontabLines() == std::vector<std::string>{weekly}; }));
  ASSERT_TRUE(waitFor([&] {
    return !entries().empty() &&
           entries().back() == "4 CDR: push task scheduled successfully, PUSH_WEEKLY: DayOfWeek=3, Time=08:30 ";
  }));
  EXPECT_EQ(1, transferType());
}

// After a restore the restored type decides: 0-2 re-arm from the restored
// time and day (a missing day is created empty, a missing time as "00:00"),
// 3 and 4 remove the scheduled run. Only the type's own day is touched.
TEST_F(PushSettingTest, RestoreArmsOrRemovesByTheRestoredType) {
  struct Row { uint8_t type; const char* time; const char* day; const char* cron; } rows[] = {
      {3, nullptr, nullptr, nullptr},
      {4, nullptr, nullptr, nullptr},
      {0, nullptr, nullptr, "0 0 * * *"},
      {2, "8:30", "12", "30 8 12 * *"},
      {1, nullptr, nullptr, "30 8 * * 7"},
  };
  for (const Row& row : rows) {
    addStaleTask(1, 0);
    setByte("TransferType", row.type);
    if (row.time) setText("TranTime", row.time);
    if (row.day) setText("TranDateOfMonth", row.day);
    EXPECT_EQ(0, push->RestoreCallBackHdlr(2)) << int(row.type);
    std::vector<std::string> expected;
    if (row.cron) expected.push_back(std::string(row.cron) + kTask);
    EXPECT_EQ(expected, root.crontabLines()) << int(row.type);
    EXPECT_EQ(row.type, transferType());
    if (row.type >= 3) {
      EXPECT_FALSE(has("TranTime"));
    } else if (row.type == 0) {
      EXPECT_EQ("00:00", text("TranTime"));
      EXPECT_FALSE(has("TranDateOfMonth"));
      EXPECT_FALSE(has("TranDateOfWeek"));
    } else if (row.type == 2) {
      EXPECT_FALSE(has("TranDateOfWeek"));
    } else {
      EXPECT_EQ("", text("TranDateOfWeek"));
    }
    if (row.cron) push->removePushSchedule();
  }
}

// The restored time is read leniently: a part that is no number counts as 0,
// and a time that cannot be read counts as empty, that is midnight, whatever
// was read before it.
TEST_F(PushSettingTest, RestoreReadsTheTimeLeniently) {
  setByte("TransferType", 1);
  setText("TranDateOfWeek", "3");
  setText("TranTime", "x:30");
  EXPECT_EQ(0, push->RestoreCallBackHdlr(2));
  EXPECT_EQ((std::vector<std::string>{std::string("30 0 * * 3") + kTask}), root.crontabLines());
  root.setFault("reg-read", "CDR", "CDRPush", "TranTime", 0x200011);
  EXPECT_EQ(0, push->RestoreCallBackHdlr(2));
  EXPECT_EQ((std::vector<std::string>{std::string("0 0 * * 3") + kTask}), root.crontabLines());
  push->removePushSchedule();
}

TEST_F(PushSettingTest, RestoreWithoutTransferTypeReturnsTheReadStatusAndKeepsTheTask) {
  addStaleTask(1, 0);
  EXPECT_EQ(0x20000D, push->RestoreCallBackHdlr(2));
  EXPECT_EQ(1u, root.crontabLines().size());
  EXPECT_TRUE(entries().empty());
  EXPECT_FALSE(has("TransferType"));
}

}  // namespace
