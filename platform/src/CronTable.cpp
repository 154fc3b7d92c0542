#include "CronTable.hpp"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace zpo {
namespace {

std::string cronField(uint16_t value) {
  return value == ZPO_SCHED_ANY ? std::string("*") : std::to_string(value);
}

bool writeAll(int fd, const std::string& text) {
  const char* data = text.data();
  std::size_t left = text.size();
  while (left > 0) {
    ssize_t written = ::write(fd, data, left);
    if (written < 0) return false;
    data += written;
    left -= static_cast<std::size_t>(written);
  }
  return true;
}

}  // namespace

std::string crontabLine(const TaskRow& task) {
  std::string command;
  for (char c : task.path) {
    if (c == '%') command += '\\';
    command += c;
  }
  return cronField(task.minute) + " " + cronField(task.hour) + " " + cronField(task.dayOfMonth) +
         " " + cronField(task.month) + " " + cronField(task.dayOfWeek) + " " + command;
}

bool writeCrontab(const std::string& file, const std::vector<TaskRow>& tasks) {
  std::string text;
  for (const TaskRow& task : tasks) text += crontabLine(task) + "\n";
  const std::string temporary = file + ".tmp." + std::to_string(getpid());
  int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (fd < 0) return false;
  bool ok = writeAll(fd, text) && fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok && std::rename(temporary.c_str(), file.c_str()) == 0) return true;
  ::unlink(temporary.c_str());
  return false;
}

}  // namespace zpo
