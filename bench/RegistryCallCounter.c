/* LD_PRELOAD interposer counting registry calls; see RegistryCallCounter.h. */
#define _GNU_SOURCE
#include "RegistryCallCounter.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

#include "ZpoShared.h"

static uint64_t counts[kRegistryCallKinds];
static int traceFailures = -1;

static void* realFunction(const char* name) {
  void* function = dlsym(RTLD_NEXT, name);
  if (function == NULL) {
    fprintf(stderr, "registry call counter: %s not found after the interposer\n", name);
    abort();
  }
  return function;
}

/* Binary lengths other than 1, 2 and 4 bytes are charged at the 64-byte cost. */
static int binaryKind(int first, uint32_t length) {
  if (length == 1) return first;
  if (length == 2) return first + 1;
  if (length == 4) return first + 2;
  return first + 3;
}

static ZpoStatus counted(int kind, ZpoStatus status, const char* section, const char* key) {
  __atomic_add_fetch(&counts[kind], 1, __ATOMIC_RELAXED);
  if (status != ZPO_OK) {
    __atomic_add_fetch(&counts[kFailedCall], 1, __ATOMIC_RELAXED);
    if (traceFailures < 0) traceFailures = getenv("CDR_BENCH_TRACE_FAILURES") != NULL;
    if (traceFailures) fprintf(stderr, "registry call failed: %s/%s kind %d status 0x%x\n", section, key, kind, status);
  }
  return status;
}

void cdrBenchRegistryCallCounts(uint64_t* out) {
  for (int i = 0; i < kRegistryCallKinds; ++i) out[i] = __atomic_load_n(&counts[i], __ATOMIC_RELAXED);
}

#define FORWARD(name, params)                                   \
  typedef ZpoStatus(*name##Type) params;                              \
  static name##Type real##name;                                       \
  static name##Type load##name(void) {                                \
    if (real##name == NULL) real##name = (name##Type)realFunction(#name); \
    return real##name;                                                \
  }

FORWARD(ZpoGetRegEntryBinary, (const char*, const char*, const char*, void*, uint32_t))
FORWARD(ZpoSetRegEntryBinary, (const char*, const char*, const char*, const void*, uint32_t))
FORWARD(ZpoGetRegEntryString, (const char*, const char*, const char*, char*, uint32_t))
FORWARD(ZpoSetRegEntryString, (const char*, const char*, const char*, const char*))
FORWARD(ZpoGetRegEntryInt, (const char*, const char*, const char*, uint32_t*))
FORWARD(ZpoSetRegEntryInt, (const char*, const char*, const char*, uint32_t))

ZpoStatus ZpoGetRegEntryBinary(const char* c, const char* s, const char* k, void* buffer, uint32_t length) {
  return counted(binaryKind(kReadBinary1, length), loadZpoGetRegEntryBinary()(c, s, k, buffer, length), s, k);
}
ZpoStatus ZpoSetRegEntryBinary(const char* c, const char* s, const char* k, const void* buffer, uint32_t length) {
  return counted(binaryKind(kWriteBinary1, length), loadZpoSetRegEntryBinary()(c, s, k, buffer, length), s, k);
}
ZpoStatus ZpoGetRegEntryString(const char* c, const char* s, const char* k, char* buffer, uint32_t size) {
  return counted(kReadString, loadZpoGetRegEntryString()(c, s, k, buffer, size), s, k);
}
ZpoStatus ZpoSetRegEntryString(const char* c, const char* s, const char* k, const char* text) {
  return counted(kWriteString, loadZpoSetRegEntryString()(c, s, k, text), s, k);
}
ZpoStatus ZpoGetRegEntryInt(const char* c, const char* s, const char* k, uint32_t* value) {
  return counted(kReadInt, loadZpoGetRegEntryInt()(c, s, k, value), s, k);
}
ZpoStatus ZpoSetRegEntryInt(const char* c, const char* s, const char* k, uint32_t value) {
  return counted(kWriteInt, loadZpoSetRegEntryInt()(c, s, k, value), s, k);
}
