// The task scheduler functions of libZpoShared. Tasks live in the registry
// database; $ZPO_ROOT/crontab mirrors them after every change.
#include "ZpoShared.h"

#include "RegistryStore.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The records cross the library boundary by value: their layout is fixed.
static_assert(sizeof(ZpoScheduledTask) == 266, "task record");
static_assert(offsetof(ZpoScheduledTask, path) == 0, "task record");
static_assert(offsetof(ZpoScheduledTask, minute) == 256, "task record");
static_assert(offsetof(ZpoScheduledTask, hour) == 258, "task record");
static_assert(offsetof(ZpoScheduledTask, dayOfMonth) == 260, "task record");
static_assert(offsetof(ZpoScheduledTask, dayOfWeek) == 262, "task record");
static_assert(offsetof(ZpoScheduledTask, month) == 264, "task record");
static_assert(sizeof(ZpoScheduledTaskInfo) == 322, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, path) == 0, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, minute) == 256, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, hour) == 258, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, dayOfMonth) == 260, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, dayOfWeek) == 290, "task list record");
static_assert(offsetof(ZpoScheduledTaskInfo, month) == 320, "task list record");
static_assert(offsetof(ZpoScheduledTaskList, info) == 0, "task list entry");
static_assert(offsetof(ZpoScheduledTaskList, padding) == 322, "task list entry");
static_assert(offsetof(ZpoScheduledTaskList, next) == 324, "task list entry");
// Packed to 4: `next` follows at 324 on every ABI, so the entry is 328 bytes
// with 32-bit pointers and 332 with 64-bit ones.
static_assert(sizeof(ZpoScheduledTaskList) == 324 + sizeof(void*), "task list entry");

namespace {

bool inRange(uint16_t value, uint16_t low, uint16_t high) {
  return value == ZPO_SCHED_ANY || (value >= low && value <= high);
}

// The path of a record, or false when it is empty or lacks its NUL.
bool recordPath(const char (&path)[256], std::string* text) {
  const void* end = std::memchr(path, '\0', sizeof path);
  if (end == nullptr || end == path) return false;
  *text = path;
  return true;
}

// "*" is any day; otherwise a decimal number without sign or blanks.
bool parseDayText(const char (&text)[30], uint16_t* day) {
  if (std::memchr(text, '\0', sizeof text) == nullptr) return false;
  if (std::strcmp(text, "*") == 0) {
    *day = ZPO_SCHED_ANY;
    return true;
  }
  if (text[0] < '0' || text[0] > '9') return false;
  char* end = nullptr;
  const unsigned long value = std::strtoul(text, &end, 10);
  if (*end != '\0' || value > 0xffff) return false;
  *day = static_cast<uint16_t>(value);
  return true;
}

void formatDayText(uint16_t day, char (&text)[30]) {
  std::memset(text, 0, sizeof text);
  if (day == ZPO_SCHED_ANY) {
    text[0] = '*';
  } else {
    std::snprintf(text, sizeof text, "%u", static_cast<unsigned>(day));
  }
}

}  // namespace

extern "C" {

ZpoStatus ZpoSetScheduledTask(ZpoScheduledTask task, uint32_t, uint32_t, uint32_t) {
  zpo::TaskRow row;
  if (!recordPath(task.path, &row.path) || !inRange(task.minute, 0, 59) || !inRange(task.hour, 0, 23) ||
      !inRange(task.dayOfMonth, 1, 31) || !inRange(task.dayOfWeek, 1, 7) || !inRange(task.month, 1, 12)) {
    return ZPO_ERR_INVALID_ARGUMENT;
  }
  row.minute = task.minute;
  row.hour = task.hour;
  row.dayOfMonth = task.dayOfMonth;
  row.dayOfWeek = task.dayOfWeek;
  row.month = task.month;
  return zpo::withProcessStore([&](zpo::RegistryStore& store) -> ZpoStatus {
    const uint32_t fault = store.injectedFault(zpo::FaultOp::kSchedSet, "", "", "");
    return fault != 0 ? fault : store.addTask(row);
  });
}

ZpoStatus ZpoGetScheduledTaskList(const char* path, ZpoScheduledTaskList** head, uint32_t) {
  if (path == nullptr || path[0] == '\0' || head == nullptr) return ZPO_ERR_INVALID_ARGUMENT;
  *head = nullptr;
  std::vector<zpo::TaskRow> tasks;
  const ZpoStatus status = zpo::withProcessStore(
      [&](zpo::RegistryStore& store) { return store.listTasks(path, &tasks); });
  if (status != ZPO_OK) return status;
  // `next` sits at offset 324, not pointer-aligned: set it only through the member.
  ZpoScheduledTaskList* last = nullptr;
  for (const zpo::TaskRow& task : tasks) {
    auto* entry = static_cast<ZpoScheduledTaskList*>(std::calloc(1, sizeof(ZpoScheduledTaskList)));
    if (entry == nullptr) {
      ZpoDeallocateScheduledTaskList(*head);
      *head = nullptr;
      return ZPO_ERR_STORAGE;
    }
    std::memcpy(entry->info.path, task.path.data(), std::min(task.path.size(), sizeof entry->info.path - 1));
    entry->info.minute = task.minute;
    entry->info.hour = task.hour;
    formatDayText(task.dayOfMonth, entry->info.dayOfMonth);
    formatDayText(task.dayOfWeek, entry->info.dayOfWeek);
    entry->info.month = task.month;
    if (last == nullptr) {
      *head = entry;
    } else {
      last->next = entry;
    }
    last = entry;
  }
  return ZPO_OK;
}

ZpoStatus ZpoDeleteScheduledTaskEx(ZpoScheduledTaskInfo task, uint32_t, uint32_t, uint32_t) {
  zpo::TaskRow row;
  if (!recordPath(task.path, &row.path) || !parseDayText(task.dayOfMonth, &row.dayOfMonth) ||
      !parseDayText(task.dayOfWeek, &row.dayOfWeek)) {
    return ZPO_ERR_INVALID_ARGUMENT;
  }
  row.minute = task.minute;
  row.hour = task.hour;
  row.month = task.month;
  return zpo::withProcessStore([&](zpo::RegistryStore& store) -> ZpoStatus {
    const uint32_t fault = store.injectedFault(zpo::FaultOp::kSchedDelete, "", "", "");
    return fault != 0 ? fault : store.deleteTask(row);
  });
}

ZpoStatus ZpoDeallocateScheduledTaskList(ZpoScheduledTaskList* head) {
  while (head != nullptr) {
    ZpoScheduledTaskList* next = head->next;
    std::free(head);
    head = next;
  }
  return ZPO_OK;
}

}  // extern "C"
