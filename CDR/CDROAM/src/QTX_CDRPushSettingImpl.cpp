#include "QTX_CDRPushSettingImpl.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "CDROAMWrap.h"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRPushSettingImpl* gCDRPushInstance = 0;

namespace {

// Immediate pushes run so far.
unsigned int PushFileNowReturn = 0;

const char* const kTransferProgram = "/qv/bin/CDRTransfer";
// Passed to every scheduler call, as the device has always done.
const uint32_t kSchedulerArg = 1000;
// Levels of the schedule's log lines: completed changes, failures.
const int kScheduleDoneLevel = CDR_LOG_ERROR;
const int kScheduleFailedLevel = CDR_LOG_NOTICE;

// Transfer types: daily, weekly, monthly; 3 and 4 mean no scheduled push.
const unsigned char kDaily = 0;
const unsigned char kWeekly = 1;
const unsigned char kMonthly = 2;
const unsigned char kNoPush = 3;
const unsigned char kNoPushDefault = 4;

// A text setting: its key, the accessor names its failure lines carry, the
// entry name of its control-character warning and the text it falls back to.
struct PushText {
  const char* key;
  const char* getter;
  const char* setter;
  const char* controlEntry;
  const char* defaultText;
};

const PushText kIPAddress = {"IpAddr", "getIPAddress", "setIPAddress", "Push-IpAddr", ""};
const PushText kUserName = {"UserName", "getUserName", "setUserName", "Push-UserName", ""};
const PushText kPassword = {"Password", "getPassword", "setPassword", "Push-Password", ""};
const PushText kDestFolder = {"DestFolder", "getDestFolder", "setDestFolder", "Push-DestFolder",
                              ""};
const PushText kTransferTime = {"TranTime", "getTransferTime", "setTransferTime", "Push-TranTime",
                                "00:00"};
const PushText kDayOfMonth = {"TranDateOfMonth", "getTransferDayOfMonth", "setTransferDayOfMonth",
                              "Push-TranDateOfMonth", ""};
const PushText kDayOfWeek = {"TranDateOfWeek", "getTransferDayOfWeek", "setTransferDayOfWeek",
                             "Push-TranDateOfWeek", ""};

// A one-byte setting: its key, the accessor names its failure lines carry
// and the byte written back when the entry is missing.
struct PushByte {
  const char* key;
  const char* getter;
  const char* setter;
  unsigned char defaultByte;
};

const PushByte kTransferType = {"TransferType", "getTransferType", "setTransferType",
                                kNoPushDefault};
const PushByte kNumRetry = {"NumRetry", "getNumRetry", "setNumRetry", 0};
const PushByte kDeleteFlag = {"DeleteFlag", "getDeleteFlag", "setDeleteFlag", 0};
const PushByte kCompressFlag = {"CompressFlag", "getCompressFlag", "setCompressFlag", 0};
const PushByte kIncludeMetricsFlag = {"IncludeMetricsFlag", "getIncludeMetricsFlag",
                                      "setIncludeMetricsFlag", 0};

void setField(char* field, const char* text) { snprintf(field, CDR_TEXT_SIZE, "%s", text); }

// Puts the default into `field` and creates the entry with it (the result of
// that write is not examined).
void writeDefaultText(const PushText& setting, char* field) {
  setField(field, setting.defaultText);
  ZpoSetRegEntryString(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, setting.key, field);
}

// Reads a text setting into `field` and hands it to `value`. A missing entry
// is created with the default; a text with control characters reads as the
// default. Any other failure is logged, empties `value` and throws.
void getText(const PushText& setting, char* field, std::string& value) {
  uint32_t status = cdrReadText(CDR_REG_SECTION_PUSH, setting.key, field);
  if (status == CDR_REG_ENTRY_ABSENT) {
    writeDefaultText(setting, field);
  } else if (status != 0) {
    writeError(setting.getter, status);
    value = "";
    throw CFG_ReadError();
  } else {
    cdrCheckText(field, setting.controlEntry, setting.defaultText);
  }
  value = field;
}

// Re-reads a text setting the schedule needs; a missing entry is created
// with the default, other failures leave whatever the read left.
void refreshText(const PushText& setting, char* field) {
  if (cdrReadText(CDR_REG_SECTION_PUSH, setting.key, field) == CDR_REG_ENTRY_ABSENT) {
    writeDefaultText(setting, field);
  }
}

void writeText(const PushText& setting, const std::string& text) {
  uint32_t status =
      ZpoSetRegEntryString(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, setting.key, text.c_str());
  if (status != 0) {
    writeError(setting.setter, status);
    throw CFG_WriteError();
  }
}

// Reads a one-byte setting into `cache` and `value` (a flag is true for any
// non-zero byte). A missing entry is created with the default byte. Any
// other failure is logged, sets `value` to `failedValue` and throws.
template <class Cache, class Value>
void getByte(const PushByte& setting, Cache& cache, Value& value, Value failedValue) {
  unsigned char byte = 0;
  uint32_t status =
      ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, setting.key, &byte, 1);
  if (status == CDR_REG_ENTRY_ABSENT) {
    byte = setting.defaultByte;
    ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, setting.key, &byte, 1);
  } else if (status != 0) {
    writeError(setting.getter, status);
    value = failedValue;
    throw CFG_ReadError();
  }
  cache = byte;
  value = static_cast<Value>(byte);
}

void writeByte(const PushByte& setting, unsigned char byte, int failureLevel) {
  uint32_t status =
      ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, setting.key, &byte, 1);
  if (status != 0) {
    cdrLogError(failureLevel, setting.setter, status);
    throw CFG_WriteError();
  }
}

// Hour and minute of an "H:M" text, split at ":" the way strtok splits (empty
// tokens are skipped, tokens after the second ignored); a missing token is 0
// and each token counts by its leading decimal integer. With `strict`, a
// token that counts as 0 is refused unless it is "0" or "00".
bool parseTime(const char* text, int& hour, int& minute, bool strict) {
  char copy[CDR_TEXT_SIZE];
  setField(copy, text);
  int* parts[2] = {&hour, &minute};
  hour = 0;
  minute = 0;
  char* position = 0;
  char* token = strtok_r(copy, ":", &position);
  for (int i = 0; i < 2 && token != 0; ++i, token = strtok_r(0, ":", &position)) {
    *parts[i] = atoi(token);
    if (strict && *parts[i] == 0 && strcmp(token, "0") != 0 && strcmp(token, "00") != 0) {
      return false;
    }
  }
  return true;
}

// Validates a day text by its leading decimal integer (0 when it has none),
// stores it unchanged and caches it. False when out of range.
bool storeDay(const PushText& setting, char* field, const std::string& text, int first, int last) {
  int day = atoi(text.c_str());
  if (day < first || day > last) return false;
  writeText(setting, text);
  setField(field, text.c_str());
  return true;
}

// The failure line of a deletion carries only its first sentence, and its
// number is the address of the detail format, which stood where the result
// belongs. The device's log has always read so; tools match on it.
const char* const kDeleteFailedDetail =
    "Time=%02d:%02d, DayOfMonth=%s,DayofWeek=%s, Month=%d, ExePath=%s";

void logDeleteFailure() {
  char line[128];
  snprintf(line, sizeof line, "CDR: delete push task failed, rc=%d,",
           static_cast<int>(reinterpret_cast<uintptr_t>(kDeleteFailedDetail)));
  cdrLog(kScheduleFailedLevel, line);
}

}  // namespace

// The cached type starts as the registry's default, no scheduled push, until
// TransferType is first read or written.
QTX_CDRPushSettingImpl::QTX_CDRPushSettingImpl(const std::string& instanceID)
    : QTX_CDRPushSetting(instanceID),
      m_TransferType(kNoPushDefault),
      m_NumRetry(0),
      m_DeleteFlag(0),
      m_CompressFlag(0),
      m_IncludeMetricsFlag(0) {
  m_IPAddress[0] = m_UserName[0] = m_Password[0] = m_DestFolder[0] = '\0';
  m_TransferTime[0] = m_TransferDayOfMonth[0] = m_TransferDayOfWeek[0] = '\0';
  printf(" QTX_CDRPushSettingImpl created !!!!!!!!!!!!!!!!!!!!!!!!!\n");
  gCDRPushInstance = this;
  ZpoNotifyRegBackupAndRestore("CDROAMProvider", C_RestoreCallBackHdlr, 2);
}

QTX_CDRPushSettingImpl::~QTX_CDRPushSettingImpl() { gCDRPushInstance = 0; }

int QTX_CDRPushSettingImpl::setQulifier(Array<CIMQualifier>& qualifiers) const {
  bool applicable = m_TransferType != kNoPush && m_TransferType != kNoPushDefault;
  qualifiers.push_back(cdrApplicableQualifier(applicable));
  return applicable ? 1 : 0;
}

// ---- TransferType ----------------------------------------------------------

int QTX_CDRPushSettingImpl::getTransferType(unsigned char& value, Array<CIMQualifier>&) const {
  getByte(kTransferType, m_TransferType, value, kNoPushDefault);
  return CDR_STATUS_OK;
}

// Types 3 and 4 remove the scheduled run; any other arms it from the stored
// day and time. A failed write is logged at the schedule's level.
int QTX_CDRPushSettingImpl::setTransferType(unsigned char value) {
  m_TransferType = value;
  writeByte(kTransferType, m_TransferType, kScheduleFailedLevel);
  if (value == kNoPush || value == kNoPushDefault) return removePushSchedule();
  refreshScheduleTexts();
  return setPushSchedule();
}

// ---- Texts without checks --------------------------------------------------

#define QTX_CDRPUSHSETTINGIMPL_TEXT(N, SETTING)                                         \
  int QTX_CDRPushSettingImpl::get##N(std::string& value, Array<CIMQualifier>& qualifiers) \
      const {                                                                           \
    if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;                             \
    getText(SETTING, m_##N, value);                                                     \
    return CDR_STATUS_OK;                                                               \
  }                                                                                     \
  int QTX_CDRPushSettingImpl::set##N(std::string value) {                               \
    writeText(SETTING, value);                                                          \
    return CDR_STATUS_OK;                                                               \
  }

QTX_CDRPUSHSETTINGIMPL_TEXT(IPAddress, kIPAddress)
QTX_CDRPUSHSETTINGIMPL_TEXT(UserName, kUserName)
QTX_CDRPUSHSETTINGIMPL_TEXT(Password, kPassword)
QTX_CDRPUSHSETTINGIMPL_TEXT(DestFolder, kDestFolder)
#undef QTX_CDRPUSHSETTINGIMPL_TEXT

// ---- One-byte settings -----------------------------------------------------

// A failed read gives 1 retry.
int QTX_CDRPushSettingImpl::getNumRetry(unsigned int& value, Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  getByte(kNumRetry, m_NumRetry, value, 1u);
  return CDR_STATUS_OK;
}

// Kept in one byte: only the low-order byte of the value is stored.
int QTX_CDRPushSettingImpl::setNumRetry(unsigned int value) {
  writeByte(kNumRetry, static_cast<unsigned char>(value & 0xFF), CDR_LOG_ERROR);
  return CDR_STATUS_OK;
}

#define QTX_CDRPUSHSETTINGIMPL_FLAG(N, SETTING)                                                     \
  int QTX_CDRPushSettingImpl::get##N(bool& value, Array<CIMQualifier>& qualifiers) const {          \
    if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;                                         \
    getByte(SETTING, m_##N, value, false);                                                          \
    return CDR_STATUS_OK;                                                                           \
  }                                                                                                 \
  int QTX_CDRPushSettingImpl::set##N(bool value) {                                                  \
    m_##N = value ? 1 : 0;                                                                          \
    writeByte(SETTING, m_##N, CDR_LOG_ERROR);                                                       \
    return CDR_STATUS_OK;                                                                           \
  }

QTX_CDRPUSHSETTINGIMPL_FLAG(DeleteFlag, kDeleteFlag)
QTX_CDRPUSHSETTINGIMPL_FLAG(CompressFlag, kCompressFlag)
QTX_CDRPUSHSETTINGIMPL_FLAG(IncludeMetricsFlag, kIncludeMetricsFlag)
#undef QTX_CDRPUSHSETTINGIMPL_FLAG

// ---- Time and days: validated, and each change re-arms the schedule ------

int QTX_CDRPushSettingImpl::getTransferTime(std::string& value, Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  getText(kTransferTime, m_TransferTime, value);
  return CDR_STATUS_OK;
}

// Hour 0-23 and minute 0-59; the text is stored as given ("7:5", or empty
// for midnight).
int QTX_CDRPushSettingImpl::setTransferTime(std::string value) {
  int hour = 0;
  int minute = 0;
  if (!parseTime(value.c_str(), hour, minute, true) || hour < 0 || hour > 23 || minute < 0 ||
      minute > 59) {
    return CDR_STATUS_INVALID;
  }
  writeText(kTransferTime, value);
  setField(m_TransferTime, value.c_str());
  return setPushSchedule();
}

// Applies to monthly pushes only.
int QTX_CDRPushSettingImpl::getTransferDayOfMonth(std::string& value,
                                                  Array<CIMQualifier>& qualifiers) const {
  bool applicable = m_TransferType == kMonthly;
  qualifiers.push_back(cdrApplicableQualifier(applicable));
  if (applicable) getText(kDayOfMonth, m_TransferDayOfMonth, value);
  return CDR_STATUS_OK;
}

int QTX_CDRPushSettingImpl::setTransferDayOfMonth(std::string value) {
  if (!storeDay(kDayOfMonth, m_TransferDayOfMonth, value, 1, 31)) return CDR_STATUS_INVALID;
  return setPushSchedule();
}

// Applies to weekly pushes only.
int QTX_CDRPushSettingImpl::getTransferDayOfWeek(std::string& value,
                                                 Array<CIMQualifier>& qualifiers) const {
  bool applicable = m_TransferType == kWeekly;
  qualifiers.push_back(cdrApplicableQualifier(applicable));
  if (applicable) getText(kDayOfWeek, m_TransferDayOfWeek, value);
  return CDR_STATUS_OK;
}

// Days of week count from 0.
int QTX_CDRPushSettingImpl::setTransferDayOfWeek(std::string value) {
  if (!storeDay(kDayOfWeek, m_TransferDayOfWeek, value, 0, 6)) return CDR_STATUS_INVALID;
  return setPushSchedule();
}

// ---- The schedule ------------------------------------------------------------

unsigned int QTX_CDRPushSettingImpl::PushFileNow() {
  int status = system(kTransferProgram);
  (void)status;  // the transfer program records its own results
  return ++PushFileNowReturn;
}

void QTX_CDRPushSettingImpl::refreshScheduleTexts() {
  if (m_TransferType == kMonthly) refreshText(kDayOfMonth, m_TransferDayOfMonth);
  if (m_TransferType == kWeekly) refreshText(kDayOfWeek, m_TransferDayOfWeek);
  refreshText(kTransferTime, m_TransferTime);
}

int QTX_CDRPushSettingImpl::setPushSchedule() {
  ZpoScheduledTask task;
  task.minute = task.hour = task.dayOfMonth = task.dayOfWeek = task.month = ZPO_SCHED_ANY;

  // Another type has no description of its own and runs daily.
  char prefix[64] = "";
  if (m_TransferType == kWeekly) {
    int day = atoi(m_TransferDayOfWeek);
    if (day == 0) day = 7;  // the scheduler counts Sunday as 7
    task.dayOfWeek = static_cast<uint16_t>(day);
    snprintf(prefix, sizeof prefix, "PUSH_WEEKLY: DayOfWeek=%d,", day);
  } else if (m_TransferType == kMonthly) {
    int day = atoi(m_TransferDayOfMonth);
    task.dayOfMonth = static_cast<uint16_t>(day);
    snprintf(prefix, sizeof prefix, "PUSH_MONTHLY: DayOfMonth=%d,", day);
  } else if (m_TransferType == kDaily) {
    snprintf(prefix, sizeof prefix, "PUSH_DAILY:");
  }

  int hour = 0;
  int minute = 0;
  parseTime(m_TransferTime, hour, minute, false);
  task.hour = static_cast<uint16_t>(hour);
  task.minute = static_cast<uint16_t>(minute);
  char description[128];
  snprintf(description, sizeof description, "%s Time=%02d:%02d ", prefix, hour, minute);

  memset(task.path, 0, sizeof task.path);
  strcpy(task.path, kTransferProgram);

  int removed = removePushSchedule();
  ZpoStatus status = ZpoSetScheduledTask(task, kSchedulerArg, kSchedulerArg, kSchedulerArg);
  char line[256];
  if (status == 0) {
    snprintf(line, sizeof line, "CDR: push task scheduled successfully, %s", description);
    cdrLog(kScheduleDoneLevel, line);
    return removed;
  }
  snprintf(line, sizeof line, "CDR: schedule push task failed, %s, rc=%d", description,
           static_cast<int>(status));
  cdrLog(kScheduleFailedLevel, line);
  throw CFG_WriteError();
}

// Each deletion's result overwrites the last: only a failure of the last
// entry fails the removal; earlier ones are only logged.
int QTX_CDRPushSettingImpl::removePushSchedule() {
  ZpoScheduledTaskList* head = 0;
  ZpoGetScheduledTaskList(kTransferProgram, &head, kSchedulerArg);
  ZpoStatus result = 0;
  for (ZpoScheduledTaskList* entry = head; entry != 0; entry = entry->next) {
    memset(entry->info.path, 0, sizeof entry->info.path);
    strcpy(entry->info.path, kTransferProgram);
    result = ZpoDeleteScheduledTaskEx(entry->info, kSchedulerArg, kSchedulerArg, kSchedulerArg);
    if (result == 0) {
      cdrLog(kScheduleDoneLevel, "CDR: push task deleted successfully");
    } else {
      logDeleteFailure();
    }
  }
  if (head != 0) ZpoDeallocateScheduledTaskList(head);
  if (result != 0) {
    cdrLog(kScheduleDoneLevel, "CDR: push task Unsuccessful delete");
    throw CFG_WriteError();
  }
  return CDR_STATUS_OK;
}

int QTX_CDRPushSettingImpl::RestoreCallBackHdlr(unsigned long) {
  uint32_t status = cdrReadTransferType(m_TransferType);
  if (status != 0) return static_cast<int>(status);
  if (m_TransferType != kDaily && m_TransferType != kWeekly && m_TransferType != kMonthly) {
    return removePushSchedule();
  }
  refreshScheduleTexts();
  return setPushSchedule();
}
