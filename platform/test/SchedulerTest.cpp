#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace {

const uint16_t kAny = ZPO_SCHED_ANY;

ZpoScheduledTask task(const char* path, uint16_t minute, uint16_t hour, uint16_t dayOfMonth, uint16_t dayOfWeek,
                      uint16_t month = kAny) {
  ZpoScheduledTask record;
  std::memset(&record, 0, sizeof record);
  std::strcpy(record.path, path);
  record.minute = minute;
  record.hour = hour;
  record.dayOfMonth = dayOfMonth;
  record.dayOfWeek = dayOfWeek;
  record.month = month;
  return record;
}

struct Listed {
  std::string path;
  uint16_t minute, hour;
  std::string dayOfMonth, dayOfWeek;
  uint16_t month;
  bool operator==(const Listed& other) const {
    return path == other.path && minute == other.minute && hour == other.hour && dayOfMonth == other.dayOfMonth &&
           dayOfWeek == other.dayOfWeek && month == other.month;
  }
};

std::ostream& operator<<(std::ostream& out, const Listed& entry) {
  return out << entry.path << " " << entry.minute << " " << entry.hour << " " << entry.dayOfMonth << " "
             << entry.dayOfWeek << " " << entry.month;
}

std::vector<Listed> listTasks(const char* path) {
  ZpoScheduledTaskList* head = nullptr;
  EXPECT_EQ(ZPO_OK, ZpoGetScheduledTaskList(path, &head, 1000));
  std::vector<Listed> listed;
  for (ZpoScheduledTaskList* entry = head; entry != nullptr; entry = entry->next) {
    listed.push_back(Listed{entry->info.path, entry->info.minute, entry->info.hour, entry->info.dayOfMonth,
                            entry->info.dayOfWeek, entry->info.month});
  }
  ZpoDeallocateScheduledTaskList(head);
  return listed;
}

ZpoScheduledTaskInfo infoOf(const char* path, uint16_t minute, uint16_t hour, const char* dayOfMonth,
                            const char* dayOfWeek, uint16_t month = kAny) {
  ZpoScheduledTaskInfo info;
  std::memset(&info, 0, sizeof info);
  std::strcpy(info.path, path);
  info.minute = minute;
  info.hour = hour;
  std::strcpy(info.dayOfMonth, dayOfMonth);
  std::strcpy(info.dayOfWeek, dayOfWeek);
  info.month = month;
  return info;
}

TEST(ScheduledTaskRecords, HaveTheDeviceLayout) {
  EXPECT_EQ(266u, sizeof(ZpoScheduledTask));
  EXPECT_EQ(256u, offsetof(ZpoScheduledTask, minute));
  EXPECT_EQ(264u, offsetof(ZpoScheduledTask, month));
  EXPECT_EQ(260u, offsetof(ZpoScheduledTaskList, info.dayOfMonth));
  EXPECT_EQ(290u, offsetof(ZpoScheduledTaskList, info.dayOfWeek));
  EXPECT_EQ(320u, offsetof(ZpoScheduledTaskList, info.month));
  EXPECT_EQ(324u, offsetof(ZpoScheduledTaskList, next));
}

class Scheduler : public ::testing::Test {
 protected:
  zpotest::TempZpoRoot root;
};

TEST_F(Scheduler, ListShowsTasksOfThePathWithDayTexts) {
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 30, 8, kAny, 3), 1000, 1000, 1000));
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/other", 0, 0, kAny, kAny), 1000, 1000, 1000));
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 5, 7, 31, kAny), 1000, 1000, 1000));
  const std::vector<Listed> expected = {{"/qv/bin/CDRTransfer", 30, 8, "*", "3", kAny},
                                        {"/qv/bin/CDRTransfer", 5, 7, "31", "*", kAny}};
  EXPECT_EQ(expected, listTasks("/qv/bin/CDRTransfer"));
}

TEST_F(Scheduler, ListOfAPathWithoutTasksIsEmpty) {
  ZpoScheduledTaskList* head = reinterpret_cast<ZpoScheduledTaskList*>(&head);
  EXPECT_EQ(ZPO_OK, ZpoGetScheduledTaskList("/qv/bin/CDRTransfer", &head, 1000));
  EXPECT_EQ(nullptr, head);
}

TEST_F(Scheduler, CrontabHasOneStandardLinePerTask) {
  struct Case {
    ZpoScheduledTask task;
    const char* line;
  };
  const Case cases[] = {
      {task("/qv/bin/CDRTransfer", 30, 8, kAny, 3), "30 8 * * 3 /qv/bin/CDRTransfer"},
      {task("/qv/bin/CDRTransfer", 5, 7, kAny, kAny), "5 7 * * * /qv/bin/CDRTransfer"},
      {task("/qv/bin/CDRTransfer", 0, 23, 31, kAny), "0 23 31 * * /qv/bin/CDRTransfer"},
      {task("/bin/date +%H", 59, 0, 1, kAny, 12), "59 0 1 12 * /bin/date +\\%H"},
  };
  std::vector<std::string> expected;
  for (const Case& c : cases) {
    ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(c.task, 1000, 1000, 1000));
    expected.push_back(c.line);
    EXPECT_EQ(expected, root.crontabLines());
  }
}

TEST_F(Scheduler, DeleteRemovesOneMatchingTaskAndRewritesTheCrontab) {
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 30, 8, kAny, 3), 1, 2, 3));
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 30, 8, kAny, 3), 1, 2, 3));
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 0, 1, kAny, kAny), 1, 2, 3));
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 30, 8, "*", "4"), 1, 2, 3));
  EXPECT_EQ(ZPO_OK, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 30, 8, "*", "3"), 1, 2, 3));
  EXPECT_EQ((std::vector<std::string>{"30 8 * * 3 /qv/bin/CDRTransfer", "0 1 * * * /qv/bin/CDRTransfer"}),
            root.crontabLines());
  EXPECT_EQ(ZPO_OK, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 30, 8, "*", "3"), 1, 2, 3));
  EXPECT_EQ(ZPO_OK, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 0, 1, "*", "*"), 1, 2, 3));
  EXPECT_TRUE(root.crontabLines().empty());
  EXPECT_EQ(ZPO_ERR_NOT_FOUND, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 0, 1, "*", "*"), 1, 2, 3));
}

TEST_F(Scheduler, EveryListedEntryDeletesItsOwnTask) {
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 15, 3, 12, kAny), 1000, 1000, 1000));
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 45, 22, kAny, 7), 1000, 1000, 1000));
  ZpoScheduledTaskList* head = nullptr;
  ASSERT_EQ(ZPO_OK, ZpoGetScheduledTaskList("/qv/bin/CDRTransfer", &head, 1000));
  for (ZpoScheduledTaskList* entry = head; entry != nullptr; entry = entry->next) {
    EXPECT_EQ(ZPO_OK, ZpoDeleteScheduledTaskEx(entry->info, 1000, 1000, 1000));
  }
  ZpoDeallocateScheduledTaskList(head);
  EXPECT_TRUE(listTasks("/qv/bin/CDRTransfer").empty());
}

TEST_F(Scheduler, FieldsOutOfRangeAreRefused) {
  const ZpoScheduledTask refused[] = {
      task("/p", 60, 0, kAny, kAny), task("/p", 0, 24, kAny, kAny), task("/p", 0, 0, 0, kAny),
      task("/p", 0, 0, 32, kAny),    task("/p", 0, 0, kAny, 0),     task("/p", 0, 0, kAny, 8),
      task("/p", 0, 0, kAny, kAny, 13), task("", 0, 0, kAny, kAny),
  };
  for (const ZpoScheduledTask& record : refused) {
    EXPECT_EQ(ZPO_ERR_INVALID_ARGUMENT, ZpoSetScheduledTask(record, 1000, 1000, 1000))
        << record.minute << " " << record.hour << " " << record.dayOfMonth << " " << record.dayOfWeek;
  }
  EXPECT_TRUE(root.crontabLines().empty());
}

TEST_F(Scheduler, InjectedFaultsChangeNothing) {
  ASSERT_EQ(ZPO_OK, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 1, 2, kAny, kAny), 1000, 1000, 1000));
  root.setFault("sched-set", "", "", "", 0x2000A1);
  root.setFault("sched-delete", "", "", "", 0x2000A2);
  EXPECT_EQ(0x2000A1u, ZpoSetScheduledTask(task("/qv/bin/CDRTransfer", 3, 4, kAny, kAny), 1000, 1000, 1000));
  EXPECT_EQ(0x2000A2u, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 1, 2, "*", "*"), 1000, 1000, 1000));
  EXPECT_EQ(std::vector<std::string>{"1 2 * * * /qv/bin/CDRTransfer"}, root.crontabLines());
  root.clearFaults();
  EXPECT_EQ(ZPO_OK, ZpoDeleteScheduledTaskEx(infoOf("/qv/bin/CDRTransfer", 1, 2, "*", "*"), 1000, 1000, 1000));
}

}  // namespace
