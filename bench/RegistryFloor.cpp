#include "RegistryFloor.hpp"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>

#include "ZpoShared.h"

namespace {

const char* const kComponent = "CDR";
const char* const kSection = "BenchFloor";

struct FloorEntry {
  RegistryCallKind read;
  RegistryCallKind write;
  const char* label;
  const char* key;
  uint32_t binaryLength;  // 0 for the int and string entries
};

const FloorEntry kEntries[] = {
    {kReadBinary1, kWriteBinary1, "binary 1 byte", "BINARY1", 1},
    {kReadBinary2, kWriteBinary2, "binary 2 bytes", "BINARY2", 2},
    {kReadBinary4, kWriteBinary4, "binary 4 bytes", "BINARY4", 4},
    {kReadBinaryLarge, kWriteBinaryLarge, "binary 64 bytes", "BINARY64", 64},
    {kReadInt, kWriteInt, "int", "INT", 0},
    {kReadString, kWriteString, "string 32 chars", "STRING32", 0},
};

const char kText32[] = "CDR report of the main building";  // 31 + the terminating NUL
const char kOtherText32[] = "CDR report of the side building";
static_assert(sizeof kText32 == 32 && sizeof kOtherText32 == 32, "32-character texts with their NUL");

void check(ZpoStatus status, const char* what) {
  if (status != ZPO_OK) throw std::runtime_error(std::string("registry floor: ") + what + " failed");
}

// Writes the entry's value; `variant` flips every byte so that each write
// really changes the stored value.
void write(const FloorEntry& entry, bool variant) {
  unsigned char bytes[64];
  std::memset(bytes, variant ? 0xa5 : 0x5a, sizeof bytes);
  if (entry.read == kReadInt) {
    check(ZpoSetRegEntryInt(kComponent, kSection, entry.key, variant ? 1200u : 3400u), "int write");
  } else if (entry.read == kReadString) {
    check(ZpoSetRegEntryString(kComponent, kSection, entry.key, variant ? kOtherText32 : kText32), "string write");
  } else {
    check(ZpoSetRegEntryBinary(kComponent, kSection, entry.key, bytes, entry.binaryLength), "binary write");
  }
}

ZpoStatus read(const FloorEntry& entry) {
  unsigned char bytes[64];
  char text[64];
  uint32_t number = 0;
  if (entry.read == kReadInt) return ZpoGetRegEntryInt(kComponent, kSection, entry.key, &number);
  if (entry.read == kReadString) return ZpoGetRegEntryString(kComponent, kSection, entry.key, text, sizeof text);
  return ZpoGetRegEntryBinary(kComponent, kSection, entry.key, bytes, entry.binaryLength);
}

}  // namespace

std::string floorBenchmarkName(RegistryCallKind kind) {
  for (const FloorEntry& entry : kEntries) {
    if (entry.read == kind) return std::string("floor/read/") + entry.label;
    if (entry.write == kind) return std::string("floor/write/") + entry.label;
  }
  return "";
}

void registerFloorBenchmarks() {
  for (const FloorEntry& entry : kEntries) {
    write(entry, false);
    benchmark::RegisterBenchmark(floorBenchmarkName(entry.read).c_str(), [&entry](benchmark::State& state) {
      check(read(entry), "warm-up read");
      for (auto _ : state) benchmark::DoNotOptimize(read(entry));
    })->Unit(benchmark::kMicrosecond);
  }
  for (const FloorEntry& entry : kEntries) {
    benchmark::RegisterBenchmark(floorBenchmarkName(entry.write).c_str(), [&entry](benchmark::State& state) {
      bool variant = false;
      for (auto _ : state) write(entry, variant = !variant);
    })->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(0.3);
  }
}
