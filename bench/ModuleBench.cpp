// In-process cost of the module against its registry floor.
//
// Measures, in one run and on one temporary device state:
//  - the floor: one warm registry read and one write of each kind through
//    libZpoShared;
//  - per class, enumInstances, enumInstanceNames and getInstance through
//    CDRProvider.so loaded with dlopen and initialised as a CIM object
//    manager does, with result handlers that only count;
//  - modifyInstance of the service with one property and with the full
//    property set a client sends after reading the instance.
// Run with the counting interposer preloaded (bench/run does), each module
// benchmark also reports the registry calls it makes per operation, and the
// summary charges each call at the floor cost of its kind.
//
// Summary lines go to standard output after the benchmark table and, as
// tab-separated rows, to the file named by CDR_BENCH_SUMMARY when set.
// With CDR_BENCH_SEED_ROOT=<dir> it only writes the configured device's
// settings into that state directory.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <ext/stdio_sync_filebuf.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "OW_config.h"
#include "OW_CIMClass.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_RepositoryIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include "BenchModule.hpp"
#include "RegistryCallCounter.h"
#include "RegistryFloor.hpp"
#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

namespace {

using namespace cdrbench;

const double kEnumerationTarget = 1.5;  // times the registry floor

template <class T>
class CountingHandler : public OW::ResultHandlerIFC<T> {
 public:
  size_t count = 0;

 protected:
  void doHandle(const T&) override { ++count; }
};

LoadedModule* module = nullptr;

// ---- Registry call counts --------------------------------------------------

RegistryCallCountsFunction registryCallCounts = nullptr;

struct CallCounts {
  uint64_t kinds[kRegistryCallKinds] = {};
};

CallCounts currentCounts() {
  CallCounts counts;
  if (registryCallCounts) registryCallCounts(counts.kinds);
  return counts;
}

// Registry calls per operation of each module benchmark, by kind.
std::map<std::string, std::vector<double>> callsPerOperation;

// Runs `operation` in the timing loop and records its registry calls per
// iteration as counters and for the summary.
template <class Operation>
void measure(benchmark::State& state, const std::string& name, Operation operation) {
  const CallCounts before = currentCounts();
  for (auto _ : state) {
    try {
      operation();
    } catch (const OW::CIMException& e) {
      state.SkipWithError(e.getMessage());
      break;
    }
  }
  const CallCounts after = currentCounts();
  std::vector<double> perOperation(kRegistryCallKinds);
  double reads = 0, writes = 0;
  for (int kind = 0; kind < kRegistryCallKinds; ++kind) {
    perOperation[kind] = double(after.kinds[kind] - before.kinds[kind]) / double(state.iterations());
    if (kind <= kReadString) reads += perOperation[kind];
    else if (kind <= kWriteString) writes += perOperation[kind];
  }
  callsPerOperation[name] = perOperation;
  if (registryCallCounts) {
    state.counters["reg_reads"] = reads;
    state.counters["reg_writes"] = writes;
    state.counters["reg_failed"] = perOperation[kFailedCall];
  }
}

// ---- The module's benchmarks ---------------------------------------------

void registerModuleBenchmarks() {
  for (const char* className : kClasses) {
    const std::string name = className;
    benchmark::RegisterBenchmark(("enumInstances/" + name).c_str(), [name](benchmark::State& state) {
      CountingHandler<OW::CIMInstance> handler;
      measure(state, "enumInstances/" + name, [&] {
        module->instances->enumInstances(module->env, kNamespace, name.c_str(), handler,
                                         OW::WBEMFlags::E_NOT_LOCAL_ONLY, OW::WBEMFlags::E_DEEP,
                                         OW::WBEMFlags::E_EXCLUDE_QUALIFIERS,
                                         OW::WBEMFlags::E_INCLUDE_CLASS_ORIGIN, nullptr, kNoClass, kNoClass);
      });
      state.counters["instances"] = double(handler.count) / double(state.iterations());
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark(("enumInstanceNames/" + name).c_str(), [name](benchmark::State& state) {
      CountingHandler<OW::CIMObjectPath> handler;
      measure(state, "enumInstanceNames/" + name, [&] {
        module->instances->enumInstanceNames(module->env, kNamespace, name.c_str(), handler, kNoClass);
      });
      state.counters["instances"] = double(handler.count) / double(state.iterations());
    })->Unit(benchmark::kMicrosecond);
    const OW::CIMObjectPath first = module->names(className).at(0);
    benchmark::RegisterBenchmark(("getInstance/" + name).c_str(), [name, first](benchmark::State& state) {
      measure(state, "getInstance/" + name, [&] { benchmark::DoNotOptimize(module->get(first)); });
    })->Unit(benchmark::kMicrosecond);
  }

  // A client changing one setting sends either just that property or, like
  // wbemcli mi, every property it read back with the one changed.
  const OW::CIMObjectPath service = module->names("QTX_CDRService").at(0);
  const std::string one = "modifyInstance/QTX_CDRService/one property";
  benchmark::RegisterBenchmark(one.c_str(), [one, service](benchmark::State& state) {
    OW::CIMInstance modified("QTX_CDRService");
    for (const OW::CIMProperty& key : service.getKeys()) modified.setProperty(key);
    unsigned limit = 16;
    measure(state, one, [&] {
      limit = limit == 16 ? 20 : 16;
      modified.setProperty("DigitsLimit", OW::CIMValue(OW::UInt16(limit)));
      module->instances->modifyInstance(module->env, kNamespace, modified, modified,
                                        OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, nullptr, kNoClass);
    });
  })->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(0.5);
  const std::string full = "modifyInstance/QTX_CDRService/full property set";
  benchmark::RegisterBenchmark(full.c_str(), [full, service](benchmark::State& state) {
    OW::CIMInstance modified = module->get(service);
    unsigned limit = 16;
    measure(state, full, [&] {
      limit = limit == 16 ? 20 : 16;
      modified.setProperty("DigitsLimit", OW::CIMValue(OW::UInt16(limit)));
      module->instances->modifyInstance(module->env, kNamespace, modified, modified,
                                        OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, nullptr, kNoClass);
    });
    state.counters["properties"] = double(modified.getProperties().size());
  })->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(0.5);
}

// ---- Summary ----------------------------------------------------------------

// Shows the usual table and keeps, per benchmark, the median of its
// repetitions (or its single run) for the summary.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  explicit SummaryReporter(std::FILE* out) : out_(out) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
      const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (!single && !median) continue;
      // Every benchmark here reports in microseconds.
      const std::string name = run.run_name.function_name;
      if (!cpuMicros_.count(name)) order_.push_back(name);
      cpuMicros_[name] = run.GetAdjustedCPUTime();
      wallMicros_[name] = run.GetAdjustedRealTime();
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    std::vector<double> floorOf(kRegistryCallKinds, -1);
    for (int kind = 0; kind < kFailedCall; ++kind) {
      auto found = cpuMicros_.find(floorBenchmarkName(RegistryCallKind(kind)));
      if (found != cpuMicros_.end()) floorOf[kind] = found->second;
    }
    std::FILE* out = out_;
    std::ofstream summary;
    if (const char* path = std::getenv("CDR_BENCH_SUMMARY")) summary.open(path);
    summary << "operation\tcpu_us\twall_us\treg_reads\treg_writes\tfloor_us\tratio\ttarget\tmet\n";
    std::fprintf(out, "\nCPU time per operation (median of the repetitions), floor = registry calls x their CPU cost\n");
    std::fprintf(out, "%-48s %9s %9s %6s %6s %9s %6s  %s\n", "operation", "cpu(us)", "wall(us)", "reads",
                 "writes", "floor(us)", "ratio", "target");
    for (const std::string& name : order_) {
      const double micros = cpuMicros_[name];
      std::string reads = "-", writes = "-", floor = "-", ratio = "-", target = "-", met = "-";
      if (name.rfind("floor/", 0) == 0) {
        floor = format(micros);
        ratio = "1.00";
      } else if (registryCallCounts && callsPerOperation.count(name)) {
        const std::vector<double>& calls = callsPerOperation[name];
        double readCount = 0, writeCount = 0, floorMicros = 0;
        bool priced = true;
        for (int kind = 0; kind < kFailedCall; ++kind) {
          if (calls[kind] == 0) continue;
          (kind <= kReadString ? readCount : writeCount) += calls[kind];
          if (floorOf[kind] < 0) priced = false;
          floorMicros += calls[kind] * floorOf[kind];
        }
        reads = format(readCount, 1);
        writes = format(writeCount, 1);
        const bool enumerationOrGet = name.rfind("modifyInstance/", 0) != 0;
        if (priced) {
          floor = format(floorMicros);
          if (floorMicros > 0) ratio = format(micros / floorMicros);
          if (enumerationOrGet) {
            target = "<= 1.5x floor";
            if (floorMicros > 0) met = micros <= kEnumerationTarget * floorMicros ? "yes" : "no";
            else met = "n/a (no registry call)";
          }
        }
      }
      std::fprintf(out, "%-48s %9s %9s %6s %6s %9s %6s  %s %s\n", name.c_str(), format(micros).c_str(),
                   format(wallMicros_[name]).c_str(), reads.c_str(), writes.c_str(), floor.c_str(), ratio.c_str(),
                   target.c_str(), met == "-" ? "" : met.c_str());
      summary << name << '\t' << format(micros) << '\t' << format(wallMicros_[name]) << '\t' << reads << '\t' << writes << '\t' << floor << '\t'
              << ratio << '\t' << target << '\t' << met << '\n';
    }
    if (!registryCallCounts) {
      std::fprintf(out, "\nno registry call counts: run with LD_PRELOAD=<build>/lib/libcdr_registry_counter.so\n");
    }
    std::fflush(out);
  }

 private:
  static std::string format(double value, int decimals = 2) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
  }
  std::FILE* out_;
  std::map<std::string, double> cpuMicros_;
  std::map<std::string, double> wallMicros_;
  std::vector<std::string> order_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  registryCallCounts = reinterpret_cast<RegistryCallCountsFunction>(dlsym(RTLD_DEFAULT, "cdrBenchRegistryCallCounts"));

  // CDR_BENCH_SEED_ROOT=<dir>: only seed that state directory (bench/run
  // serves it with cimhost) and stop.
  if (const char* seedRoot = std::getenv("CDR_BENCH_SEED_ROOT")) {
    setenv("ZPO_ROOT", seedRoot, 1);
    ZpoDevReset();
    seedConfiguredDevice();
    ZpoDevReset();
    return 0;
  }

  zpotest::TempZpoRoot root;
  seedConfiguredDevice();

  // The module prints progress traces on standard output; they go to
  // /dev/null and the tables to the original standard output.
  std::fflush(stdout);
  std::cout.flush();
  const int tableDescriptor = dup(STDOUT_FILENO);
  std::FILE* tableFile = fdopen(tableDescriptor, "w");
  if (tableFile == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
  __gnu_cxx::stdio_sync_filebuf<char> tableBuffer(tableFile);
  std::ostream tableStream(&tableBuffer);
  try {
    module = new LoadedModule(CDR_PROVIDER_MODULE);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "cannot load %s: %s\n", CDR_PROVIDER_MODULE, e.what());
    return 1;
  }

  registerFloorBenchmarks();
  registerModuleBenchmarks();
  SummaryReporter reporter(tableFile);
  reporter.SetOutputStream(&tableStream);
  reporter.SetErrorStream(&std::cerr);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  tableStream.flush();
  benchmark::Shutdown();
  return 0;
}
