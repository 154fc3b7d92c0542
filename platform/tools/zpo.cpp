// zpo: looks at and changes the state of a development device (registry,
// injected faults, scheduled tasks, message queues, diagnostics logs).
// Exit status: 0 done, 1 failed (absent entry, timeout, storage error), 2 bad arguments.
#include "ZpoShared.h"

#include "CronTable.hpp"
#include "RegistryStore.hpp"
#include "RestoreNotifier.hpp"
#include "StateDirectory.hpp"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <fcntl.h>
#include <fstream>
#include <mqueue.h>
#include <optional>
#include <string>
#include <vector>

namespace {

using Args = std::vector<std::string>;

const int kDone = 0;
const int kFailed = 1;
const int kBadArguments = 2;

const char* const kUsage =
    "usage: zpo [--root DIR] COMMAND\n"
    "  reg get C S K | reg set-binary C S K HEX | reg set-int C S K N | reg set-string C S K TEXT\n"
    "  reg delete C S K | reg list [C [S]] | reg backup FILE | reg restore FILE\n"
    "  fault set OP [C S K] STATUS | fault clear [OP [C S K]] | fault list\n"
    "  sched list\n"
    "  queue listen NAME [--count N] [--timeout SECONDS] | queue remove NAME\n"
    "  log NAME [--lines N]\n";

int usage(const char* form) {
  std::fprintf(stderr, "usage: zpo [--root DIR] %s\n", form);
  return kBadArguments;
}

int storageFailure(const zpo::RegistryStore* store) {
  const std::string reason = store != nullptr ? store->lastError() : zpo::processStoreOpenError();
  std::fprintf(stderr, "zpo: %s\n", reason.empty() ? "registry failure" : reason.c_str());
  return kFailed;
}

// Runs `use` on the registry of the state directory; storage failures are reported here.
template <class Use>
int withStore(Use use) {
  int result = kDone;
  const ZpoStatus status = zpo::withProcessStore([&](zpo::RegistryStore& store) -> ZpoStatus {
    result = use(store);
    return ZPO_OK;
  });
  return status == ZPO_OK ? result : storageFailure(nullptr);
}

std::optional<uint32_t> parseNumber(const std::string& text, bool allowHex) {
  int base = 10;
  std::string digits = text;
  if (allowHex && (text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0)) {
    base = 16;
    digits = text.substr(2);
  }
  if (digits.empty() || digits.size() > 10) return std::nullopt;
  for (char c : digits) {
    if (!(base == 16 ? std::isxdigit(static_cast<unsigned char>(c)) : std::isdigit(static_cast<unsigned char>(c)))) {
      return std::nullopt;
    }
  }
  const unsigned long long value = std::strtoull(digits.c_str(), nullptr, base);
  if (value > 0xffffffffULL) return std::nullopt;
  return static_cast<uint32_t>(value);
}

// "f990" or "f9 90": pairs of hex digits, blanks ignored; at least one byte.
std::optional<std::string> parseHexBytes(const std::string& text) {
  std::string digits;
  for (char c : text) {
    if (c == ' ' || c == '\t') continue;
    if (!std::isxdigit(static_cast<unsigned char>(c))) return std::nullopt;
    digits += c;
  }
  if (digits.empty() || digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    bytes += static_cast<char>(std::strtoul(digits.substr(i, 2).c_str(), nullptr, 16));
  }
  return bytes;
}

// The `reg get` form of an entry's value.
std::string valueText(const zpo::RegistryEntry& entry) {
  switch (entry.kind) {
    case zpo::EntryKind::kInt:
      return "int " + std::to_string(entry.number);
    case zpo::EntryKind::kString:
      return "string " + entry.bytes;
    case zpo::EntryKind::kBinary:
      break;
  }
  std::string text = "binary";
  for (unsigned char byte : entry.bytes) {
    char hex[4];
    std::snprintf(hex, sizeof hex, " %02x", byte);
    text += hex;
  }
  return text;
}

void printLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

int regCommand(const Args& args) {
  const std::string verb = args.empty() ? "" : args[0];
  const std::size_t count = args.size();
  if (verb == "get" && count == 4) {
    return withStore([&](zpo::RegistryStore& store) {
      zpo::RegistryEntry entry;
      const ZpoStatus status = store.read(args[1], args[2], args[3], &entry);
      if (status == ZPO_ERR_NOT_FOUND) {
        std::fprintf(stderr, "absent\n");
        return kFailed;
      }
      if (status != ZPO_OK) return storageFailure(&store);
      printLine(valueText(entry));
      return kDone;
    });
  }
  if ((verb == "set-binary" || verb == "set-int" || verb == "set-string") && count == 5) {
    zpo::RegistryEntry entry;
    entry.component = args[1];
    entry.section = args[2];
    entry.key = args[3];
    if (verb == "set-binary") {
      const auto bytes = parseHexBytes(args[4]);
      if (!bytes) return usage("reg set-binary C S K HEX");
      entry.kind = zpo::EntryKind::kBinary;
      entry.bytes = *bytes;
    } else if (verb == "set-int") {
      const auto number = parseNumber(args[4], false);
      if (!number) return usage("reg set-int C S K N");
      entry.kind = zpo::EntryKind::kInt;
      entry.number = *number;
    } else {
      entry.kind = zpo::EntryKind::kString;
      entry.bytes = args[4];
    }
    if (entry.component.empty() || entry.section.empty() || entry.key.empty()) return usage("reg set-... C S K VALUE");
    return withStore([&](zpo::RegistryStore& store) {
      return store.write(entry) == ZPO_OK ? kDone : storageFailure(&store);
    });
  }
  if (verb == "delete" && count == 4) {
    return withStore([&](zpo::RegistryStore& store) {
      const ZpoStatus status = store.remove(args[1], args[2], args[3]);
      if (status == ZPO_ERR_NOT_FOUND) {
        std::fprintf(stderr, "absent\n");
        return kFailed;
      }
      return status == ZPO_OK ? kDone : storageFailure(&store);
    });
  }
  if (verb == "list" && count <= 3) {
    return withStore([&](zpo::RegistryStore& store) {
      std::vector<zpo::RegistryEntry> entries;
      if (store.list(count > 1 ? args[1] : "", count > 2 ? args[2] : "", &entries) != ZPO_OK) {
        return storageFailure(&store);
      }
      for (const zpo::RegistryEntry& entry : entries) {
        printLine(entry.component + "\t" + entry.section + "\t" + entry.key + "\t" + valueText(entry));
      }
      return kDone;
    });
  }
  if (verb == "backup" && count == 2) {
    return withStore([&](zpo::RegistryStore& store) {
      return store.backupTo(args[1]) == ZPO_OK ? kDone : storageFailure(&store);
    });
  }
  if (verb == "restore" && count == 2) {
    return withStore([&](zpo::RegistryStore& store) {
      if (store.restoreFrom(args[1]) != ZPO_OK) return storageFailure(&store);
      std::string error;
      if (zpo::notifyRegisteredProcesses(store.root(), ZPO_EVENT_RESTORE, &error) < 0) {
        std::fprintf(stderr, "zpo: restored, but registered processes not told: %s\n", error.c_str());
        return kFailed;
      }
      return kDone;
    });
  }
  return usage("reg get|set-binary|set-int|set-string|delete|list|backup|restore ...");
}

int faultCommand(const Args& args) {
  const std::string verb = args.empty() ? "" : args[0];
  zpo::FaultOp op;
  const bool knownOp = args.size() > 1 && zpo::parseFaultOp(args[1], &op);
  if (verb == "set" && knownOp && (args.size() == 3 || args.size() == 6)) {
    const auto status = parseNumber(args.back(), true);
    if (!status || *status == 0) return usage("fault set OP [C S K] STATUS (non-zero, decimal or 0x hex)");
    zpo::FaultRule rule;
    rule.op = args[1];
    if (args.size() == 6) {
      rule.component = args[2];
      rule.section = args[3];
      rule.key = args[4];
    }
    rule.status = *status;
    return withStore([&](zpo::RegistryStore& store) {
      return store.setFault(rule) == ZPO_OK ? kDone : storageFailure(&store);
    });
  }
  if (verb == "clear" && (args.size() == 1 || (knownOp && (args.size() == 2 || args.size() == 5)))) {
    return withStore([&](zpo::RegistryStore& store) {
      const bool named = args.size() == 5;
      const ZpoStatus status = store.clearFaults(args.size() > 1 ? args[1] : "", named ? &args[2] : nullptr,
                                                 named ? &args[3] : nullptr, named ? &args[4] : nullptr);
      return status == ZPO_OK ? kDone : storageFailure(&store);
    });
  }
  if (verb == "list" && args.size() == 1) {
    return withStore([&](zpo::RegistryStore& store) {
      std::vector<zpo::FaultRule> rules;
      if (store.listFaults(&rules) != ZPO_OK) return storageFailure(&store);
      for (const zpo::FaultRule& rule : rules) {
        char status[16];
        std::snprintf(status, sizeof status, "0x%x", rule.status);
        printLine(rule.op + "\t" + rule.component + "\t" + rule.section + "\t" + rule.key + "\t" + status);
      }
      return kDone;
    });
  }
  return usage("fault set OP [C S K] STATUS | fault clear [OP [C S K]] | fault list "
               "(OP: reg-read reg-write sched-set sched-delete queue-send)");
}

int schedCommand(const Args& args) {
  if (args.size() != 1 || args[0] != "list") return usage("sched list");
  return withStore([&](zpo::RegistryStore& store) {
    std::vector<zpo::TaskRow> tasks;
    if (store.listTasks("", &tasks) != ZPO_OK) return storageFailure(&store);
    for (const zpo::TaskRow& task : tasks) printLine(zpo::crontabLine(task));
    return kDone;
  });
}

// Splits "NAME [--OPTION VALUE]..." into the name and the options' values.
bool parseNamedOptions(const Args& args, const std::vector<std::string>& known, std::string* name,
                       std::vector<std::optional<std::string>>* values) {
  values->assign(known.size(), std::nullopt);
  if (args.size() < 2) return false;
  *name = args[1];
  for (std::size_t i = 2; i < args.size(); i += 2) {
    if (i + 1 >= args.size()) return false;
    std::size_t which = 0;
    while (which < known.size() && known[which] != args[i]) ++which;
    if (which == known.size()) return false;
    (*values)[which] = args[i + 1];
  }
  return true;
}

int queueListen(const std::string& posixName, std::optional<uint32_t> count, std::optional<double> timeout) {
  struct mq_attr attributes = {};
  attributes.mq_maxmsg = 10;
  attributes.mq_msgsize = 1024;
  const mqd_t queue = mq_open(posixName.c_str(), O_CREAT | O_RDONLY | O_CLOEXEC, 0600, &attributes);
  if (queue == static_cast<mqd_t>(-1)) {
    std::fprintf(stderr, "zpo: cannot open queue %s: %s\n", posixName.c_str(), std::strerror(errno));
    return kFailed;
  }
  struct mq_attr actual = {};
  mq_getattr(queue, &actual);
  std::string buffer(static_cast<std::size_t>(actual.mq_msgsize), '\0');
  struct timespec deadline;
  clock_gettime(CLOCK_REALTIME, &deadline);
  if (timeout) {
    const double whole = std::floor(*timeout);
    deadline.tv_sec += static_cast<time_t>(whole);
    deadline.tv_nsec += static_cast<long>((*timeout - whole) * 1e9);
    if (deadline.tv_nsec >= 1000000000L) {
      deadline.tv_sec += 1;
      deadline.tv_nsec -= 1000000000L;
    }
  }
  uint32_t received = 0;
  while (!count || received < *count) {
    const ssize_t size = timeout ? mq_timedreceive(queue, buffer.data(), buffer.size(), nullptr, &deadline)
                                 : mq_receive(queue, buffer.data(), buffer.size(), nullptr);
    if (size < 0) {
      if (errno == EINTR) continue;
      mq_close(queue);
      if (errno == ETIMEDOUT) {
        std::fprintf(stderr, "timeout\n");
      } else {
        std::fprintf(stderr, "zpo: receive: %s\n", std::strerror(errno));
      }
      return kFailed;
    }
    printLine(std::string(buffer.data(), static_cast<std::size_t>(size)));
    std::fflush(stdout);
    ++received;
  }
  mq_close(queue);
  return kDone;
}

int queueCommand(const Args& args) {
  const std::string verb = args.empty() ? "" : args[0];
  const std::string root = zpo::currentStateRoot();
  if (verb == "listen") {
    std::string name;
    std::vector<std::optional<std::string>> values;
    if (!parseNamedOptions(args, {"--count", "--timeout"}, &name, &values)) {
      return usage("queue listen NAME [--count N] [--timeout SECONDS]");
    }
    std::optional<uint32_t> count;
    std::optional<double> timeout;
    if (values[0]) {
      count = parseNumber(*values[0], false);
      if (!count || *count == 0) return usage("queue listen NAME [--count N] [--timeout SECONDS]");
    }
    if (values[1]) {
      char* end = nullptr;
      const double seconds = std::strtod(values[1]->c_str(), &end);
      if (values[1]->empty() || *end != '\0' || !(seconds >= 0) || seconds > 1e6) {
        return usage("queue listen NAME [--count N] [--timeout SECONDS]");
      }
      timeout = seconds;
    }
    const std::string posixName = zpo::posixQueueName(root, name);
    if (posixName.empty()) return usage("queue listen NAME [--count N] [--timeout SECONDS]");
    return queueListen(posixName, count, timeout);
  }
  if (verb == "remove" && args.size() == 2) {
    const std::string posixName = zpo::posixQueueName(root, args[1]);
    if (posixName.empty()) return usage("queue remove NAME");
    if (mq_unlink(posixName.c_str()) == 0) return kDone;
    std::fprintf(stderr, errno == ENOENT ? "absent\n" : "zpo: cannot remove the queue\n");
    return kFailed;
  }
  return usage("queue listen NAME [--count N] [--timeout SECONDS] | queue remove NAME");
}

int logCommand(const Args& args) {
  std::string name;
  std::vector<std::optional<std::string>> values;
  if (!parseNamedOptions(args, {"--lines"}, &name, &values) || name.empty() ||
      name.find('/') != std::string::npos) {
    return usage("log NAME [--lines N]");
  }
  std::optional<uint32_t> lines = 10;
  if (values[0]) {
    lines = parseNumber(*values[0], false);
    if (!lines) return usage("log NAME [--lines N]");
  }
  const std::string root = zpo::currentStateRoot();
  std::ifstream in(root + "/log/" + name);
  if (!in) {
    std::fprintf(stderr, "zpo: no log %s\n", name.c_str());
    return kFailed;
  }
  std::deque<std::string> last;
  for (std::string line; std::getline(in, line);) {
    last.push_back(line);
    if (last.size() > *lines) last.pop_front();
  }
  for (const std::string& line : last) printLine(line);
  return kDone;
}

}  // namespace

int main(int argc, char** argv) {
  Args args(argv + 1, argv + argc);
  while (!args.empty() && args[0].rfind("--root", 0) == 0) {
    std::string root;
    if (args[0] == "--root" && args.size() >= 2) {
      root = args[1];
      args.erase(args.begin(), args.begin() + 2);
    } else if (args[0].rfind("--root=", 0) == 0) {
      root = args[0].substr(7);
      args.erase(args.begin());
    }
    if (root.empty()) {
      std::fputs(kUsage, stderr);
      return kBadArguments;
    }
    setenv("ZPO_ROOT", root.c_str(), 1);
  }
  if (args.empty()) {
    std::fputs(kUsage, stderr);
    return kBadArguments;
  }
  const std::string command = args[0];
  const Args rest(args.begin() + 1, args.end());
  if (command == "reg") return regCommand(rest);
  if (command == "fault") return faultCommand(rest);
  if (command == "sched") return schedCommand(rest);
  if (command == "queue") return queueCommand(rest);
  if (command == "log") return logCommand(args);
  std::fputs(kUsage, stderr);
  return kBadArguments;
}
