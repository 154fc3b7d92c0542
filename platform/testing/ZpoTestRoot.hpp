// Test support: a private, temporary device state for one test.
#ifndef ZPO_TEST_ROOT_HPP
#define ZPO_TEST_ROOT_HPP

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zpotest {

// Creates a fresh temporary state directory, points ZPO_ROOT at it (setenv) and
// calls ZpoDevReset(); the destructor removes the queues it made and the
// directory, restores the previous ZPO_ROOT and calls ZpoDevReset().
class TempZpoRoot {
 public:
  TempZpoRoot();
  ~TempZpoRoot();
  TempZpoRoot(const TempZpoRoot&) = delete;
  TempZpoRoot& operator=(const TempZpoRoot&) = delete;

  const std::string& path() const;

  // op "reg-read", "reg-write", "sched-set", "sched-delete" or "queue-send";
  // names empty for the scheduler and queue ops (an empty name matches any).
  void setFault(const std::string& op, const std::string& component, const std::string& section,
                const std::string& key, uint32_t status);
  void clearFaults();

  // Lines of $ZPO_ROOT/log/<logName>, without the line end; empty when missing.
  std::vector<std::string> logLines(const std::string& logName) const;
  // Bytes of a binary entry; empty when absent or of another kind (use hasEntry).
  std::vector<uint8_t> binary(const std::string& c, const std::string& s, const std::string& k) const;
  bool hasEntry(const std::string& c, const std::string& s, const std::string& k) const;
  // Removes an entry, as restoring a backup without it does.
  void removeEntry(const std::string& c, const std::string& s, const std::string& k);

  // A POSIX queue owned by the test, as the CDR service owns its queue.
  class Queue {
   public:
    Queue(Queue&& other) noexcept;
    Queue& operator=(Queue&& other) noexcept;
    ~Queue();
    // Every message waiting now, oldest first, without blocking.
    std::vector<std::string> drain();
    // The next message, waiting at most `timeout`; nullopt when none came.
    std::optional<std::string> receive(std::chrono::milliseconds timeout);
    const std::string& posixName() const { return posixName_; }

   private:
    friend class TempZpoRoot;
    Queue(std::string posixName, int descriptor, long messageSize);
    std::string posixName_;
    int descriptor_ = -1;
    long messageSize_ = 0;
  };
  // Creates (or opens) queue `name`, mapped as osQueueGetId maps names.
  Queue createQueue(const std::string& name, long maxMessages = 10);
  // Removes queue `name`, as when its owner goes away.
  void removeQueue(const std::string& name);

  // This process's diagnostic registrations, "<module file> <component>
  // <module> <log file>" each, and its restore callbacks, "<name> <mask>".
  std::vector<std::string> diagnosticModules() const;
  std::vector<std::string> restoreCallbacks() const;

  // Lines of $ZPO_ROOT/crontab.
  std::vector<std::string> crontabLines() const;
  // Path of the built zpo command.
  std::string zpoCommand() const;

 private:
  std::string path_;
  std::string canonicalPath_;
  std::optional<std::string> previousRoot_;
  std::vector<std::string> createdQueues_;
};

}  // namespace zpotest

#endif
