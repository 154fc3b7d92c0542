/*
 * Counting interposer for the registry calls of libZpoShared. Preloaded with
 * LD_PRELOAD, it forwards every Zpo{Get,Set}RegEntry{Binary,Int,String} call
 * to the real function and counts it by kind; a benchmark reads the counts
 * through cdrBenchRegistryCallCounts (looked up with dlsym, so a program run
 * without the interposer simply finds no counts).
 */
#ifndef CDR_BENCH_REGISTRY_CALL_COUNTER_H
#define CDR_BENCH_REGISTRY_CALL_COUNTER_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a call is counted as: the kind of entry and, for binary entries, the
 * length class whose cost the floor charges for it. */
enum RegistryCallKind {
  kReadBinary1, kReadBinary2, kReadBinary4, kReadBinaryLarge, kReadInt, kReadString,
  kWriteBinary1, kWriteBinary2, kWriteBinary4, kWriteBinaryLarge, kWriteInt, kWriteString,
  kFailedCall, /* any call above that returned a status other than ZPO_OK */
  kRegistryCallKinds
};

/* Copies the counts since the process started into counts[kRegistryCallKinds]. */
typedef void (*RegistryCallCountsFunction)(uint64_t* counts);
void cdrBenchRegistryCallCounts(uint64_t* counts);

#ifdef __cplusplus
}
#endif

#endif
