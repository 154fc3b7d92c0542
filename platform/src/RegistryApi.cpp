// The registry functions of libZpoShared and the development reset.
#include "ZpoShared.h"

#include "DiagnosticLog.hpp"
#include "RegistryStore.hpp"
#include "RestoreNotifier.hpp"

#include <cstring>

using zpo::EntryKind;
using zpo::FaultOp;
using zpo::RegistryEntry;
using zpo::RegistryStore;

namespace {

bool validName(const char* name) { return name != nullptr && name[0] != '\0'; }

bool validAddress(const char* component, const char* section, const char* key) {
  return validName(component) && validName(section) && validName(key);
}

// Reads the entry unless a reg-read fault is injected for it; the fault rules'
// check and the read share one read transaction.
ZpoStatus readEntry(const char* component, const char* section, const char* key, RegistryEntry* entry) {
  return zpo::withProcessStore([&](RegistryStore& store) -> ZpoStatus {
    return store.readTransaction([&]() -> ZpoStatus {
      const uint32_t fault = store.injectedFault(FaultOp::kRegRead, component, section, key);
      if (fault != 0) return fault;
      return store.read(component, section, key, entry);
    });
  });
}

ZpoStatus writeEntry(const RegistryEntry& entry) {
  return zpo::withProcessStore([&](RegistryStore& store) -> ZpoStatus {
    const uint32_t fault = store.injectedFault(FaultOp::kRegWrite, entry.component, entry.section, entry.key);
    if (fault != 0) return fault;
    return store.write(entry);
  });
}

RegistryEntry addressed(const char* component, const char* section, const char* key, EntryKind kind) {
  RegistryEntry entry;
  entry.component = component;
  entry.section = section;
  entry.key = key;
  entry.kind = kind;
  return entry;
}

}  // namespace

extern "C" {

ZpoStatus ZpoGetRegEntryBinary(const char* component, const char* section, const char* key, void* buffer,
                               uint32_t length) {
  if (!validAddress(component, section, key) || buffer == nullptr || length == 0) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry;
  const ZpoStatus status = readEntry(component, section, key, &entry);
  if (status != ZPO_OK) return status;
  if (entry.kind != EntryKind::kBinary) return ZPO_ERR_KIND_MISMATCH;
  if (entry.bytes.size() != length) return ZPO_ERR_SIZE_MISMATCH;
  std::memcpy(buffer, entry.bytes.data(), length);
  return ZPO_OK;
}

ZpoStatus ZpoSetRegEntryBinary(const char* component, const char* section, const char* key, const void* buffer,
                               uint32_t length) {
  if (!validAddress(component, section, key) || buffer == nullptr || length == 0) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry = addressed(component, section, key, EntryKind::kBinary);
  entry.bytes.assign(static_cast<const char*>(buffer), length);
  return writeEntry(entry);
}

ZpoStatus ZpoGetRegEntryString(const char* component, const char* section, const char* key, char* buffer,
                               uint32_t size) {
  if (!validAddress(component, section, key) || buffer == nullptr || size == 0) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry;
  const ZpoStatus status = readEntry(component, section, key, &entry);
  if (status != ZPO_OK) return status;
  if (entry.kind != EntryKind::kString) return ZPO_ERR_KIND_MISMATCH;
  if (entry.bytes.size() + 1 > size) return ZPO_ERR_BUFFER_TOO_SMALL;
  std::memcpy(buffer, entry.bytes.data(), entry.bytes.size());
  buffer[entry.bytes.size()] = '\0';
  return ZPO_OK;
}

ZpoStatus ZpoSetRegEntryString(const char* component, const char* section, const char* key, const char* text) {
  if (!validAddress(component, section, key) || text == nullptr) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry = addressed(component, section, key, EntryKind::kString);
  entry.bytes = text;
  return writeEntry(entry);
}

ZpoStatus ZpoGetRegEntryInt(const char* component, const char* section, const char* key, uint32_t* value) {
  if (!validAddress(component, section, key) || value == nullptr) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry;
  const ZpoStatus status = readEntry(component, section, key, &entry);
  if (status != ZPO_OK) return status;
  if (entry.kind != EntryKind::kInt) return ZPO_ERR_KIND_MISMATCH;
  *value = entry.number;
  return ZPO_OK;
}

ZpoStatus ZpoSetRegEntryInt(const char* component, const char* section, const char* key, uint32_t value) {
  if (!validAddress(component, section, key)) return ZPO_ERR_INVALID_ARGUMENT;
  RegistryEntry entry = addressed(component, section, key, EntryKind::kInt);
  entry.number = value;
  return writeEntry(entry);
}

void ZpoDevReset(void) {
  zpo::resetProcessStore();
  zpo::forgetDiagnosticModules();
  zpo::forgetRestoreCallbacks();
}

}  // extern "C"
