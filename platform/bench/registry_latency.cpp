// Measures one warm in-process registry read and one write (durable commit)
// on a fresh state directory: zpo_registry_latency [ROUNDS]
#include "ZpoShared.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

int main(int argc, char** argv) {
  const int rounds = argc > 1 ? std::atoi(argv[1]) : 2000;
  std::string root = (std::filesystem::temp_directory_path() / "zpo-latency-XXXXXX").string();
  if (rounds <= 0 || mkdtemp(root.data()) == nullptr) return 2;
  setenv("ZPO_ROOT", root.c_str(), 1);
  const unsigned char value[2] = {0xf9, 0x90};
  if (ZpoSetRegEntryBinary("CDR", "CDRService", "FORMAT", value, 2) != ZPO_OK) return 1;

  using Clock = std::chrono::steady_clock;
  unsigned char read[2];
  ZpoGetRegEntryBinary("CDR", "CDRService", "FORMAT", read, 2);  // warm up
  Clock::time_point start = Clock::now();
  for (int i = 0; i < rounds; ++i) ZpoGetRegEntryBinary("CDR", "CDRService", "FORMAT", read, 2);
  const double readMicros = std::chrono::duration<double, std::micro>(Clock::now() - start).count() / rounds;

  const int writes = rounds / 10 > 0 ? rounds / 10 : 1;
  start = Clock::now();
  for (int i = 0; i < writes; ++i) ZpoSetRegEntryInt("CDR", "CDRPush", "Push-Count", static_cast<uint32_t>(i));
  const double writeMicros = std::chrono::duration<double, std::micro>(Clock::now() - start).count() / writes;

  std::printf("warm read: %.2f us (%d rounds)\nwrite:     %.1f us (%d rounds)\n", readMicros, rounds,
              writeMicros, writes);
  ZpoDevReset();
  std::filesystem::remove_all(root);
  return 0;
}
