// The registry floor: what one warm read and one write of each kind of entry
// cost through libZpoShared, measured in the same run as the module.
#ifndef CDR_BENCH_REGISTRY_FLOOR_HPP
#define CDR_BENCH_REGISTRY_FLOOR_HPP

#include <string>

#include "RegistryCallCounter.h"

// Registers one read and one write benchmark per kind (1, 2, 4 and 64-byte
// binary, int, 32-character string) on entries of section "BenchFloor" of
// the current ZPO_ROOT.
void registerFloorBenchmarks();

// Name of the floor benchmark whose time a registry call of `kind` is
// charged at ("floor/read/binary 2 bytes", ...); empty for kFailedCall.
std::string floorBenchmarkName(RegistryCallKind kind);

#endif
