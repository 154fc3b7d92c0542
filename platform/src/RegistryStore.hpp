// The registry database of a state directory ($ZPO_ROOT/registry.db): entries,
// injected faults and scheduled tasks, on one SQLite connection.
#ifndef ZPO_REGISTRY_STORE_HPP
#define ZPO_REGISTRY_STORE_HPP

#include "ZpoShared.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace zpo {

enum class EntryKind { kBinary, kInt, kString };

const char* entryKindName(EntryKind kind);

struct RegistryEntry {
  std::string component, section, key;
  EntryKind kind = EntryKind::kBinary;
  std::string bytes;    // binary and string values
  uint32_t number = 0;  // int values
};

// Calls that faults can be injected into.
enum class FaultOp { kRegRead, kRegWrite, kSchedSet, kSchedDelete, kQueueSend };

const char* faultOpName(FaultOp op);
// Parses "reg-read" etc.; false for any other text.
bool parseFaultOp(const std::string& text, FaultOp* op);

// A row of the faults table. An empty name matches any name of the call.
struct FaultRule {
  std::string op, component, section, key;
  uint32_t status = 0;
};

struct TaskRow {
  std::string path;
  uint16_t minute = 0, hour = 0, dayOfMonth = 0, dayOfWeek = 0, month = 0;
};

class RegistryStore {
 public:
  // Opens (creating when missing) the registry database of the prepared state
  // directory `canonicalRoot`. Null on failure, with the reason in *error.
  static std::unique_ptr<RegistryStore> open(const std::string& canonicalRoot, std::string* error);
  ~RegistryStore();
  RegistryStore(const RegistryStore&) = delete;
  RegistryStore& operator=(const RegistryStore&) = delete;

  const std::string& root() const { return root_; }
  // Text of the last storage failure.
  const std::string& lastError() const { return lastError_; }

  // Entries. ZPO_ERR_NOT_FOUND when absent, ZPO_ERR_STORAGE on database failure.
  ZpoStatus read(const std::string& component, const std::string& section, const std::string& key,
                 RegistryEntry* entry);
  // Runs `reading` inside one read transaction: what it reads is one snapshot,
  // and the database's file locks are taken once for all of it.
  ZpoStatus readTransaction(const std::function<ZpoStatus()>& reading);
  ZpoStatus write(const RegistryEntry& entry);
  ZpoStatus remove(const std::string& component, const std::string& section, const std::string& key);
  // Entries in name order; an empty component or section selects all.
  ZpoStatus list(const std::string& component, const std::string& section,
                 std::vector<RegistryEntry>* entries);

  // Status of the first fault rule matching the call, 0 when none does.
  // Rules are reloaded only when the database changed.
  uint32_t injectedFault(FaultOp op, const std::string& component, const std::string& section,
                         const std::string& key);
  // Replaces the rule with the same op and names.
  ZpoStatus setFault(const FaultRule& rule);
  // Removes the rules of `op` (all when op is empty); with names, only that rule.
  ZpoStatus clearFaults(const std::string& op, const std::string* component,
                        const std::string* section, const std::string* key);
  ZpoStatus listFaults(std::vector<FaultRule>* rules);

  // Scheduled tasks; every change rewrites $root/crontab.
  ZpoStatus addTask(const TaskRow& task);
  // Deletes one task equal to `task`; ZPO_ERR_NOT_FOUND when none is.
  ZpoStatus deleteTask(const TaskRow& task);
  // Tasks in creation order; an empty path selects all.
  ZpoStatus listTasks(const std::string& path, std::vector<TaskRow>* tasks);

  // Consistent copy of the whole database into a new file.
  ZpoStatus backupTo(const std::string& file);
  // Replaces every entry with the entries of a backup file, in one transaction.
  ZpoStatus restoreFrom(const std::string& file);

 private:
  class Statement;
  explicit RegistryStore(const std::string& root);
  ZpoStatus fail(const char* what);
  ZpoStatus exec(const char* sql);
  // Runs `change` inside BEGIN IMMEDIATE ... COMMIT; rolls back when it fails.
  ZpoStatus writeTransaction(const std::function<ZpoStatus()>& change);
  ZpoStatus rewriteCrontab();
  void reloadFaultsIfChanged();

  std::string root_;
  sqlite3* db_ = nullptr;
  std::string lastError_;
  std::vector<std::unique_ptr<Statement>> statements_;
  Statement* selectEntry_ = nullptr;
  Statement* upsertEntry_ = nullptr;
  Statement* dataVersion_ = nullptr;
  Statement* begin_ = nullptr;
  Statement* beginRead_ = nullptr;
  Statement* commit_ = nullptr;
  Statement* rollback_ = nullptr;
  std::vector<FaultRule> faults_;
  bool faultsLoaded_ = false;
  int64_t faultsVersion_ = -1;
};

// Runs `use` with this process's store of the current state directory, under
// the process's registry lock, opening it first when needed.
ZpoStatus withProcessStore(const std::function<ZpoStatus(RegistryStore&)>& use);

// Why the last attempt to open this process's store failed.
std::string processStoreOpenError();

// The fault status for a call, 0 when no rule matches or the store is unavailable.
uint32_t processInjectedFault(FaultOp op, const std::string& component = std::string(),
                              const std::string& section = std::string(),
                              const std::string& key = std::string());

// Canonical path of the current state directory, prepared; empty on failure.
std::string currentStateRoot();

// Closes this process's store; the next use opens the then-current root.
void resetProcessStore();

}  // namespace zpo

#endif
