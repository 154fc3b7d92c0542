#include "RegistryStore.hpp"

#include "CronTable.hpp"
#include "StateDirectory.hpp"

#include <mutex>
#include <pthread.h>
#include <sqlite3.h>
#include <unistd.h>

namespace zpo {

namespace {

const char* const kSchema =
    "CREATE TABLE IF NOT EXISTS entries(component TEXT, section TEXT, key TEXT,"
    " kind TEXT NOT NULL CHECK (kind IN ('binary','int','string')), value NOT NULL,"
    " PRIMARY KEY (component, section, key));"
    "CREATE TABLE IF NOT EXISTS faults(op TEXT, component TEXT, section TEXT, key TEXT,"
    " status INTEGER);"
    "CREATE TABLE IF NOT EXISTS scheduled_tasks(id INTEGER PRIMARY KEY, path TEXT NOT NULL,"
    " minute INTEGER NOT NULL, hour INTEGER NOT NULL, day_of_month INTEGER NOT NULL,"
    " day_of_week INTEGER NOT NULL, month INTEGER NOT NULL);";

// Writers wait this long for another process's transaction to end.
const int kBusyTimeoutMs = 15000;

const char* const kFaultOpNames[] = {"reg-read", "reg-write", "sched-set", "sched-delete",
                                     "queue-send"};

bool parseKind(const unsigned char* text, EntryKind* kind) {
  const std::string name = text != nullptr ? reinterpret_cast<const char*>(text) : "";
  if (name == "binary") *kind = EntryKind::kBinary;
  else if (name == "int") *kind = EntryKind::kInt;
  else if (name == "string") *kind = EntryKind::kString;
  else return false;
  return true;
}

std::string columnText(sqlite3_stmt* stmt, int column) {
  const unsigned char* text = sqlite3_column_text(stmt, column);
  return text != nullptr ? std::string(reinterpret_cast<const char*>(text),
                                       static_cast<std::size_t>(sqlite3_column_bytes(stmt, column)))
                         : std::string();
}

// Reads one entry row laid out as component, section, key, kind, value.
bool readEntryRow(sqlite3_stmt* stmt, RegistryEntry* entry) {
  entry->component = columnText(stmt, 0);
  entry->section = columnText(stmt, 1);
  entry->key = columnText(stmt, 2);
  if (!parseKind(sqlite3_column_text(stmt, 3), &entry->kind)) return false;
  entry->bytes.clear();
  entry->number = 0;
  if (entry->kind == EntryKind::kInt) {
    entry->number = static_cast<uint32_t>(sqlite3_column_int64(stmt, 4));
  } else if (entry->kind == EntryKind::kString) {
    entry->bytes = columnText(stmt, 4);
  } else {
    const void* blob = sqlite3_column_blob(stmt, 4);
    const int size = sqlite3_column_bytes(stmt, 4);
    if (blob != nullptr) entry->bytes.assign(static_cast<const char*>(blob), static_cast<std::size_t>(size));
  }
  return true;
}

void bindText(sqlite3_stmt* stmt, int index, const std::string& text) {
  sqlite3_bind_text(stmt, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

void bindTask(sqlite3_stmt* stmt, const TaskRow& task) {
  bindText(stmt, 1, task.path);
  sqlite3_bind_int(stmt, 2, task.minute);
  sqlite3_bind_int(stmt, 3, task.hour);
  sqlite3_bind_int(stmt, 4, task.dayOfMonth);
  sqlite3_bind_int(stmt, 5, task.dayOfWeek);
  sqlite3_bind_int(stmt, 6, task.month);
}

}  // namespace

// A prepared statement, reset and unbound after each use.
class RegistryStore::Statement {
 public:
  Statement(sqlite3* db, const char* sql, unsigned flags = 0) {
    if (sqlite3_prepare_v3(db, sql, -1, flags, &stmt_, nullptr) != SQLITE_OK) stmt_ = nullptr;
  }
  ~Statement() { sqlite3_finalize(stmt_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  bool ok() const { return stmt_ != nullptr; }
  sqlite3_stmt* get() const { return stmt_; }
  // Steps once; the statement is left ready for reading a row.
  int step() { return sqlite3_step(stmt_); }
  void reset() {
    sqlite3_reset(stmt_);
    sqlite3_clear_bindings(stmt_);
  }

 private:
  sqlite3_stmt* stmt_ = nullptr;
};

namespace {

// Resets a statement when the scope ends, whichever way it ends.
template <class S>
class ResetOnExit {
 public:
  explicit ResetOnExit(S* statement) : statement_(statement) {}
  ~ResetOnExit() { statement_->reset(); }

 private:
  S* statement_;
};

}  // namespace

const char* entryKindName(EntryKind kind) {
  switch (kind) {
    case EntryKind::kInt: return "int";
    case EntryKind::kString: return "string";
    case EntryKind::kBinary: break;
  }
  return "binary";
}

const char* faultOpName(FaultOp op) { return kFaultOpNames[static_cast<int>(op)]; }

bool parseFaultOp(const std::string& text, FaultOp* op) {
  for (int i = 0; i < 5; ++i) {
    if (text == kFaultOpNames[i]) {
      *op = static_cast<FaultOp>(i);
      return true;
    }
  }
  return false;
}

RegistryStore::RegistryStore(const std::string& root) : root_(root) {}

RegistryStore::~RegistryStore() {
  statements_.clear();
  sqlite3_close_v2(db_);
}

std::unique_ptr<RegistryStore> RegistryStore::open(const std::string& canonicalRoot, std::string* error) {
  std::unique_ptr<RegistryStore> store(new RegistryStore(canonicalRoot));
  const std::string file = canonicalRoot + "/registry.db";
  if (sqlite3_open_v2(file.c_str(), &store->db_,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr) != SQLITE_OK) {
    *error = file + ": " + (store->db_ != nullptr ? sqlite3_errmsg(store->db_) : "cannot open");
    return nullptr;
  }
  sqlite3_busy_timeout(store->db_, kBusyTimeoutMs);
  // WAL lets readers go on while another process writes; FULL syncs every commit.
  if (store->exec("PRAGMA journal_mode=WAL") != ZPO_OK || store->exec("PRAGMA synchronous=FULL") != ZPO_OK ||
      store->exec(kSchema) != ZPO_OK) {
    *error = file + ": " + store->lastError_;
    return nullptr;
  }
  auto prepare = [&store](const char* sql) {
    store->statements_.emplace_back(new Statement(store->db_, sql, SQLITE_PREPARE_PERSISTENT));
    return store->statements_.back()->ok() ? store->statements_.back().get() : nullptr;
  };
  store->selectEntry_ = prepare(
      "SELECT component, section, key, kind, value FROM entries WHERE component=?1 AND section=?2 AND key=?3");
  store->upsertEntry_ = prepare(
      "INSERT INTO entries(component, section, key, kind, value) VALUES(?1, ?2, ?3, ?4, ?5)"
      " ON CONFLICT(component, section, key) DO UPDATE SET kind=excluded.kind, value=excluded.value");
  store->dataVersion_ = prepare("PRAGMA data_version");
  store->begin_ = prepare("BEGIN IMMEDIATE");
  store->beginRead_ = prepare("BEGIN");
  store->commit_ = prepare("COMMIT");
  store->rollback_ = prepare("ROLLBACK");
  for (const auto& statement : store->statements_) {
    if (!statement->ok()) {
      *error = file + ": " + sqlite3_errmsg(store->db_);
      return nullptr;
    }
  }
  return store;
}

ZpoStatus RegistryStore::fail(const char* what) {
  lastError_ = std::string(what) + ": " + sqlite3_errmsg(db_);
  return ZPO_ERR_STORAGE;
}

ZpoStatus RegistryStore::exec(const char* sql) {
  // A first open by several processes at once may meet a lock the busy handler
  // cannot wait for (changing the journal mode); try again a few times.
  for (int attempt = 0;; ++attempt) {
    const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
    if (rc == SQLITE_OK) return ZPO_OK;
    if ((rc & 0xff) != SQLITE_BUSY || attempt == 50) return fail(sql);
    usleep(20000);
  }
}

ZpoStatus RegistryStore::writeTransaction(const std::function<ZpoStatus()>& change) {
  for (int attempt = 0;; ++attempt) {
    const int rc = begin_->step();
    begin_->reset();
    if (rc == SQLITE_DONE) break;
    if ((rc & 0xff) != SQLITE_BUSY || attempt == 10) return fail("begin");
  }
  ZpoStatus status = change();
  if (status == ZPO_OK) {
    const int rc = commit_->step();
    commit_->reset();
    if (rc == SQLITE_DONE) return ZPO_OK;
    status = fail("commit");
  }
  if (!sqlite3_get_autocommit(db_)) {
    rollback_->step();
    rollback_->reset();
  }
  return status;
}

ZpoStatus RegistryStore::readTransaction(const std::function<ZpoStatus()>& reading) {
  const int rc = beginRead_->step();
  beginRead_->reset();
  if (rc != SQLITE_DONE) return fail("begin");
  // Ends the transaction however `reading` leaves, a throw included: one
  // left open would refuse every later BEGIN of this connection.
  struct End {
    RegistryStore& store;
    ~End() {
      if (sqlite3_get_autocommit(store.db_)) return;
      store.commit_->step();
      store.commit_->reset();
    }
  } end{*this};
  return reading();
}

ZpoStatus RegistryStore::read(const std::string& component, const std::string& section,
                              const std::string& key, RegistryEntry* entry) {
  ResetOnExit<Statement> resetLater(selectEntry_);
  bindText(selectEntry_->get(), 1, component);
  bindText(selectEntry_->get(), 2, section);
  bindText(selectEntry_->get(), 3, key);
  const int rc = selectEntry_->step();
  if (rc == SQLITE_DONE) return ZPO_ERR_NOT_FOUND;
  if (rc != SQLITE_ROW) return fail("read");
  if (!readEntryRow(selectEntry_->get(), entry)) {
    lastError_ = "read: unknown kind";
    return ZPO_ERR_STORAGE;
  }
  return ZPO_OK;
}

ZpoStatus RegistryStore::write(const RegistryEntry& entry) {
  return writeTransaction([&]() -> ZpoStatus {
    ResetOnExit<Statement> resetLater(upsertEntry_);
    sqlite3_stmt* stmt = upsertEntry_->get();
    bindText(stmt, 1, entry.component);
    bindText(stmt, 2, entry.section);
    bindText(stmt, 3, entry.key);
    bindText(stmt, 4, entryKindName(entry.kind));
    if (entry.kind == EntryKind::kInt) {
      sqlite3_bind_int64(stmt, 5, entry.number);
    } else if (entry.kind == EntryKind::kString) {
      bindText(stmt, 5, entry.bytes);
    } else {
      sqlite3_bind_blob(stmt, 5, entry.bytes.data(), static_cast<int>(entry.bytes.size()), SQLITE_TRANSIENT);
    }
    return upsertEntry_->step() == SQLITE_DONE ? ZPO_OK : fail("write");
  });
}

ZpoStatus RegistryStore::remove(const std::string& component, const std::string& section,
                                const std::string& key) {
  return writeTransaction([&]() -> ZpoStatus {
    Statement erase(db_, "DELETE FROM entries WHERE component=?1 AND section=?2 AND key=?3");
    if (!erase.ok()) return fail("delete");
    bindText(erase.get(), 1, component);
    bindText(erase.get(), 2, section);
    bindText(erase.get(), 3, key);
    if (erase.step() != SQLITE_DONE) return fail("delete");
    return sqlite3_changes(db_) > 0 ? ZPO_OK : ZPO_ERR_NOT_FOUND;
  });
}

ZpoStatus RegistryStore::list(const std::string& component, const std::string& section,
                              std::vector<RegistryEntry>* entries) {
  Statement select(db_,
                   "SELECT component, section, key, kind, value FROM entries"
                   " WHERE (?1 = '' OR component = ?1) AND (?2 = '' OR section = ?2)"
                   " ORDER BY component, section, key");
  if (!select.ok()) return fail("list");
  bindText(select.get(), 1, component);
  bindText(select.get(), 2, section);
  entries->clear();
  int rc;
  while ((rc = select.step()) == SQLITE_ROW) {
    RegistryEntry entry;
    if (readEntryRow(select.get(), &entry)) entries->push_back(entry);
  }
  return rc == SQLITE_DONE ? ZPO_OK : fail("list");
}

void RegistryStore::reloadFaultsIfChanged() {
  int64_t version = -1;
  {
    ResetOnExit<Statement> resetLater(dataVersion_);
    if (dataVersion_->step() == SQLITE_ROW) version = sqlite3_column_int64(dataVersion_->get(), 0);
  }
  if (faultsLoaded_ && version == faultsVersion_) return;
  std::vector<FaultRule> rules;
  if (listFaults(&rules) != ZPO_OK) return;
  faults_.swap(rules);
  faultsLoaded_ = true;
  faultsVersion_ = version;
}

uint32_t RegistryStore::injectedFault(FaultOp op, const std::string& component,
                                      const std::string& section, const std::string& key) {
  reloadFaultsIfChanged();
  const char* name = faultOpName(op);
  for (const FaultRule& rule : faults_) {
    if (rule.op == name && (rule.component.empty() || rule.component == component) &&
        (rule.section.empty() || rule.section == section) && (rule.key.empty() || rule.key == key)) {
      return rule.status;
    }
  }
  return 0;
}

ZpoStatus RegistryStore::setFault(const FaultRule& rule) {
  // data_version does not move for this connection's own commits.
  faultsLoaded_ = false;
  return writeTransaction([&]() -> ZpoStatus {
    Statement erase(db_, "DELETE FROM faults WHERE op=?1 AND component=?2 AND section=?3 AND key=?4");
    Statement insert(db_, "INSERT INTO faults(op, component, section, key, status) VALUES(?1, ?2, ?3, ?4, ?5)");
    if (!erase.ok() || !insert.ok()) return fail("fault");
    for (Statement* statement : {&erase, &insert}) {
      bindText(statement->get(), 1, rule.op);
      bindText(statement->get(), 2, rule.component);
      bindText(statement->get(), 3, rule.section);
      bindText(statement->get(), 4, rule.key);
    }
    sqlite3_bind_int64(insert.get(), 5, rule.status);
    return erase.step() == SQLITE_DONE && insert.step() == SQLITE_DONE ? ZPO_OK : fail("fault");
  });
}

ZpoStatus RegistryStore::clearFaults(const std::string& op, const std::string* component,
                                     const std::string* section, const std::string* key) {
  faultsLoaded_ = false;
  return writeTransaction([&]() -> ZpoStatus {
    Statement erase(db_,
                    "DELETE FROM faults WHERE (?1 = '' OR op = ?1) AND (?5 = 0 OR"
                    " (component = ?2 AND section = ?3 AND key = ?4))");
    if (!erase.ok()) return fail("fault");
    bindText(erase.get(), 1, op);
    const bool named = component != nullptr && section != nullptr && key != nullptr;
    if (named) {
      bindText(erase.get(), 2, *component);
      bindText(erase.get(), 3, *section);
      bindText(erase.get(), 4, *key);
    }
    sqlite3_bind_int(erase.get(), 5, named ? 1 : 0);
    return erase.step() == SQLITE_DONE ? ZPO_OK : fail("fault");
  });
}

ZpoStatus RegistryStore::listFaults(std::vector<FaultRule>* rules) {
  Statement select(db_, "SELECT op, component, section, key, status FROM faults ORDER BY rowid");
  if (!select.ok()) return fail("faults");
  rules->clear();
  int rc;
  while ((rc = select.step()) == SQLITE_ROW) {
    FaultRule rule;
    rule.op = columnText(select.get(), 0);
    rule.component = columnText(select.get(), 1);
    rule.section = columnText(select.get(), 2);
    rule.key = columnText(select.get(), 3);
    rule.status = static_cast<uint32_t>(sqlite3_column_int64(select.get(), 4));
    rules->push_back(rule);
  }
  return rc == SQLITE_DONE ? ZPO_OK : fail("faults");
}

ZpoStatus RegistryStore::rewriteCrontab() {
  std::vector<TaskRow> tasks;
  const ZpoStatus status = listTasks(std::string(), &tasks);
  if (status != ZPO_OK) return status;
  if (!writeCrontab(root_ + "/crontab", tasks)) {
    lastError_ = "cannot write " + root_ + "/crontab";
    return ZPO_ERR_IO;
  }
  return ZPO_OK;
}

ZpoStatus RegistryStore::addTask(const TaskRow& task) {
  // The crontab is written while the write lock is held, so the last file
  // written always shows the last committed set of tasks.
  return writeTransaction([&]() -> ZpoStatus {
    Statement insert(db_,
                     "INSERT INTO scheduled_tasks(path, minute, hour, day_of_month, day_of_week, month)"
                     " VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    if (!insert.ok()) return fail("schedule");
    bindTask(insert.get(), task);
    if (insert.step() != SQLITE_DONE) return fail("schedule");
    return rewriteCrontab();
  });
}

ZpoStatus RegistryStore::deleteTask(const TaskRow& task) {
  return writeTransaction([&]() -> ZpoStatus {
    Statement erase(db_,
                    "DELETE FROM scheduled_tasks WHERE id = (SELECT id FROM scheduled_tasks WHERE path=?1"
                    " AND minute=?2 AND hour=?3 AND day_of_month=?4 AND day_of_week=?5 AND month=?6"
                    " ORDER BY id LIMIT 1)");
    if (!erase.ok()) return fail("unschedule");
    bindTask(erase.get(), task);
    if (erase.step() != SQLITE_DONE) return fail("unschedule");
    if (sqlite3_changes(db_) == 0) return ZPO_ERR_NOT_FOUND;
    return rewriteCrontab();
  });
}

ZpoStatus RegistryStore::listTasks(const std::string& path, std::vector<TaskRow>* tasks) {
  Statement select(db_,
                   "SELECT path, minute, hour, day_of_month, day_of_week, month FROM scheduled_tasks"
                   " WHERE (?1 = '' OR path = ?1) ORDER BY id");
  if (!select.ok()) return fail("tasks");
  bindText(select.get(), 1, path);
  tasks->clear();
  int rc;
  while ((rc = select.step()) == SQLITE_ROW) {
    TaskRow task;
    task.path = columnText(select.get(), 0);
    task.minute = static_cast<uint16_t>(sqlite3_column_int(select.get(), 1));
    task.hour = static_cast<uint16_t>(sqlite3_column_int(select.get(), 2));
    task.dayOfMonth = static_cast<uint16_t>(sqlite3_column_int(select.get(), 3));
    task.dayOfWeek = static_cast<uint16_t>(sqlite3_column_int(select.get(), 4));
    task.month = static_cast<uint16_t>(sqlite3_column_int(select.get(), 5));
    tasks->push_back(task);
  }
  return rc == SQLITE_DONE ? ZPO_OK : fail("tasks");
}

ZpoStatus RegistryStore::backupTo(const std::string& file) {
  sqlite3* target = nullptr;
  if (sqlite3_open_v2(file.c_str(), &target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) != SQLITE_OK) {
    lastError_ = file + ": " + (target != nullptr ? sqlite3_errmsg(target) : "cannot open");
    sqlite3_close(target);
    return ZPO_ERR_IO;
  }
  // One step copies every page inside one read transaction: a consistent copy
  // however many writers are busy meanwhile.
  sqlite3_backup* backup = sqlite3_backup_init(target, "main", db_, "main");
  int rc = SQLITE_ERROR;
  if (backup != nullptr) {
    rc = sqlite3_backup_step(backup, -1);
    sqlite3_backup_finish(backup);
  }
  if (rc != SQLITE_DONE) lastError_ = file + ": " + sqlite3_errmsg(target);
  sqlite3_close(target);
  return rc == SQLITE_DONE ? ZPO_OK : ZPO_ERR_IO;
}

ZpoStatus RegistryStore::restoreFrom(const std::string& file) {
  if (access(file.c_str(), R_OK) != 0) {
    lastError_ = file + ": cannot read";
    return ZPO_ERR_IO;
  }
  Statement attach(db_, "ATTACH DATABASE ?1 AS backup");
  if (!attach.ok()) return fail("restore");
  bindText(attach.get(), 1, file);
  if (attach.step() != SQLITE_DONE) return fail("restore");
  faultsLoaded_ = false;
  const ZpoStatus status = writeTransaction([&]() -> ZpoStatus {
    if (exec("DELETE FROM main.entries") != ZPO_OK) return ZPO_ERR_STORAGE;
    return exec("INSERT INTO main.entries(component, section, key, kind, value)"
                " SELECT component, section, key, kind, value FROM backup.entries");
  });
  exec("DETACH DATABASE backup");
  return status;
}

// ---- The store of this process ---------------------------------------------

namespace {

std::mutex gStoreLock;
std::unique_ptr<RegistryStore> gStore;
std::string gOpenError;

// A child of fork must neither use nor close its parent's connection: it
// forgets it and opens its own on first use.
void lockStoreBeforeFork() { gStoreLock.lock(); }
void unlockStoreInParent() { gStoreLock.unlock(); }
void forgetStoreInChild() {
  (void)gStore.release();
  gStoreLock.unlock();
}

const int gForkHandlers = pthread_atfork(lockStoreBeforeFork, unlockStoreInParent, forgetStoreInChild);

}  // namespace

std::string currentStateRoot() { return prepareStateRoot(stateRootFromEnvironment()); }

ZpoStatus withProcessStore(const std::function<ZpoStatus(RegistryStore&)>& use) {
  (void)gForkHandlers;
  std::lock_guard<std::mutex> hold(gStoreLock);
  if (!gStore) {
    const std::string root = currentStateRoot();
    if (root.empty()) {
      gOpenError = "cannot create the state directory " + stateRootFromEnvironment();
      return ZPO_ERR_STORAGE;
    }
    gStore = RegistryStore::open(root, &gOpenError);
    if (!gStore) return ZPO_ERR_STORAGE;
  }
  return use(*gStore);
}

std::string processStoreOpenError() {
  std::lock_guard<std::mutex> hold(gStoreLock);
  return gOpenError;
}

uint32_t processInjectedFault(FaultOp op, const std::string& component, const std::string& section,
                              const std::string& key) {
  uint32_t status = 0;
  withProcessStore([&](RegistryStore& store) {
    status = store.injectedFault(op, component, section, key);
    return ZPO_OK;
  });
  return status;
}

void resetProcessStore() {
  std::lock_guard<std::mutex> hold(gStoreLock);
  gStore.reset();
}

}  // namespace zpo
