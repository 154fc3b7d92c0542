// The crontab rendering of the scheduled tasks ($ZPO_ROOT/crontab).
#ifndef ZPO_CRON_TABLE_HPP
#define ZPO_CRON_TABLE_HPP

#include "RegistryStore.hpp"

#include <string>
#include <vector>

namespace zpo {

// "m h dom mon dow command", ZPO_SCHED_ANY written as "*"; '%' in the command
// is escaped because cron would turn it into a line end.
std::string crontabLine(const TaskRow& task);

// Replaces `file` with one line per task (written to a temporary file, then renamed).
bool writeCrontab(const std::string& file, const std::vector<TaskRow>& tasks);

}  // namespace zpo

#endif
