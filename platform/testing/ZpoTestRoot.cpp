#include "ZpoTestRoot.hpp"

#include "ZpoShared.h"

#include "DiagnosticLog.hpp"
#include "RegistryStore.hpp"
#include "RestoreNotifier.hpp"
#include "StateDirectory.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <mqueue.h>
#include <stdexcept>
#include <unistd.h>

namespace zpotest {
namespace {

std::vector<std::string> fileLines(const std::string& file) {
  std::vector<std::string> lines;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace

TempZpoRoot::TempZpoRoot() {
  const char* previous = std::getenv("ZPO_ROOT");
  if (previous != nullptr) previousRoot_ = previous;
  std::string pattern = (std::filesystem::temp_directory_path() / "zpo-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot create a temporary state directory");
  path_ = pattern;
  canonicalPath_ = zpo::prepareStateRoot(path_);
  if (canonicalPath_.empty()) throw std::runtime_error("cannot prepare " + path_);
  setenv("ZPO_ROOT", path_.c_str(), 1);
  ZpoDevReset();
}

TempZpoRoot::~TempZpoRoot() {
  ZpoDevReset();
  for (const std::string& name : createdQueues_) mq_unlink(name.c_str());
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
  if (previousRoot_) {
    setenv("ZPO_ROOT", previousRoot_->c_str(), 1);
  } else {
    unsetenv("ZPO_ROOT");
  }
  ZpoDevReset();
}

const std::string& TempZpoRoot::path() const { return path_; }

void TempZpoRoot::setFault(const std::string& op, const std::string& component, const std::string& section,
                           const std::string& key, uint32_t status) {
  zpo::FaultOp parsed;
  if (!zpo::parseFaultOp(op, &parsed)) throw std::invalid_argument("unknown fault op " + op);
  const zpo::FaultRule rule{op, component, section, key, status};
  if (zpo::withProcessStore([&](zpo::RegistryStore& store) { return store.setFault(rule); }) != ZPO_OK) {
    throw std::runtime_error("cannot store a fault");
  }
}

void TempZpoRoot::clearFaults() {
  if (zpo::withProcessStore([](zpo::RegistryStore& store) {
        return store.clearFaults(std::string(), nullptr, nullptr, nullptr);
      }) != ZPO_OK) {
    throw std::runtime_error("cannot clear the faults");
  }
}

std::vector<std::string> TempZpoRoot::logLines(const std::string& logName) const {
  return fileLines(canonicalPath_ + "/log/" + logName);
}

std::vector<uint8_t> TempZpoRoot::binary(const std::string& c, const std::string& s, const std::string& k) const {
  zpo::RegistryEntry entry;
  const ZpoStatus status =
      zpo::withProcessStore([&](zpo::RegistryStore& store) { return store.read(c, s, k, &entry); });
  if (status != ZPO_OK || entry.kind != zpo::EntryKind::kBinary) return {};
  return std::vector<uint8_t>(entry.bytes.begin(), entry.bytes.end());
}

bool TempZpoRoot::hasEntry(const std::string& c, const std::string& s, const std::string& k) const {
  zpo::RegistryEntry entry;
  return zpo::withProcessStore([&](zpo::RegistryStore& store) { return store.read(c, s, k, &entry); }) == ZPO_OK;
}

void TempZpoRoot::removeEntry(const std::string& c, const std::string& s, const std::string& k) {
  if (zpo::withProcessStore([&](zpo::RegistryStore& store) { return store.remove(c, s, k); }) != ZPO_OK) {
    throw std::runtime_error("cannot remove " + c + "/" + s + "/" + k);
  }
}

TempZpoRoot::Queue TempZpoRoot::createQueue(const std::string& name, long maxMessages) {
  const std::string posixName = zpo::posixQueueName(canonicalPath_, name);
  if (posixName.empty()) throw std::invalid_argument("bad queue name " + name);
  struct mq_attr attributes = {};
  attributes.mq_maxmsg = maxMessages;
  attributes.mq_msgsize = 1024;
  const mqd_t descriptor =
      mq_open(posixName.c_str(), O_CREAT | O_RDWR | O_NONBLOCK | O_CLOEXEC, 0600, &attributes);
  if (descriptor == static_cast<mqd_t>(-1)) throw std::runtime_error("cannot create queue " + posixName);
  if (std::find(createdQueues_.begin(), createdQueues_.end(), posixName) == createdQueues_.end()) {
    createdQueues_.push_back(posixName);
  }
  struct mq_attr actual = {};
  mq_getattr(descriptor, &actual);
  return Queue(posixName, descriptor, actual.mq_msgsize);
}

void TempZpoRoot::removeQueue(const std::string& name) {
  mq_unlink(zpo::posixQueueName(canonicalPath_, name).c_str());
}

std::vector<std::string> TempZpoRoot::diagnosticModules() const { return zpo::diagnosticRegistrations(); }

std::vector<std::string> TempZpoRoot::restoreCallbacks() const { return zpo::restoreRegistrations(); }

std::vector<std::string> TempZpoRoot::crontabLines() const { return fileLines(canonicalPath_ + "/crontab"); }

std::string TempZpoRoot::zpoCommand() const { return ZPO_COMMAND_PATH; }

TempZpoRoot::Queue::Queue(std::string posixName, int descriptor, long messageSize)
    : posixName_(std::move(posixName)), descriptor_(descriptor), messageSize_(messageSize) {}

TempZpoRoot::Queue::Queue(Queue&& other) noexcept
    : posixName_(std::move(other.posixName_)), descriptor_(other.descriptor_), messageSize_(other.messageSize_) {
  other.descriptor_ = -1;
}

TempZpoRoot::Queue& TempZpoRoot::Queue::operator=(Queue&& other) noexcept {
  if (this != &other) {
    if (descriptor_ >= 0) mq_close(descriptor_);
    posixName_ = std::move(other.posixName_);
    descriptor_ = other.descriptor_;
    messageSize_ = other.messageSize_;
    other.descriptor_ = -1;
  }
  return *this;
}

TempZpoRoot::Queue::~Queue() {
  if (descriptor_ >= 0) mq_close(descriptor_);
}

std::vector<std::string> TempZpoRoot::Queue::drain() {
  std::vector<std::string> messages;
  std::string buffer(static_cast<std::size_t>(messageSize_), '\0');
  for (;;) {
    const ssize_t received = mq_receive(descriptor_, buffer.data(), buffer.size(), nullptr);
    if (received < 0) break;
    messages.emplace_back(buffer.data(), static_cast<std::size_t>(received));
  }
  return messages;
}

std::optional<std::string> TempZpoRoot::Queue::receive(std::chrono::milliseconds timeout) {
  std::string buffer(static_cast<std::size_t>(messageSize_), '\0');
  struct timespec deadline;
  clock_gettime(CLOCK_REALTIME, &deadline);
  const long long nanoseconds = deadline.tv_nsec + static_cast<long long>(timeout.count()) * 1000000LL;
  deadline.tv_sec += static_cast<time_t>(nanoseconds / 1000000000LL);
  deadline.tv_nsec = static_cast<long>(nanoseconds % 1000000000LL);
  // The descriptor is non-blocking for drain(); wait on a blocking one here.
  const mqd_t blocking = mq_open(posixName_.c_str(), O_RDONLY | O_CLOEXEC);
  if (blocking == static_cast<mqd_t>(-1)) return std::nullopt;
  const ssize_t received = mq_timedreceive(blocking, buffer.data(), buffer.size(), nullptr, &deadline);
  mq_close(blocking);
  if (received < 0) return std::nullopt;
  return std::string(buffer.data(), static_cast<std::size_t>(received));
}

}  // namespace zpotest
