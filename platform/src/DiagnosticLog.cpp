#include "DiagnosticLog.hpp"

#include "ZpoShared.h"

#include "RegistryStore.hpp"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <mutex>
#include <unistd.h>

namespace zpo {
namespace {

struct DiagnosticModule {
  std::string moduleFileName;
  std::string component;
  std::string moduleName;
  std::string logFileName;
  int fd = -1;
};

std::mutex gModulesLock;
std::map<uint32_t, DiagnosticModule> gModules;
uint32_t gLastHandle = 0;

bool validLogFileName(const char* name) {
  const std::string text = name;
  return !text.empty() && text != "." && text != ".." && text.find('/') == std::string::npos;
}

}  // namespace

std::string formatLogLine(const struct timespec& when, const std::string& moduleName, int category, int level,
                          int identifier, const char* text) {
  struct tm local;
  localtime_r(&when.tv_sec, &local);
  char stamp[64];
  const std::size_t length = std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%S", &local);
  std::snprintf(stamp + length, sizeof stamp - length, ".%03ld", when.tv_nsec / 1000000L);
  std::string line = std::string(stamp) + " " + moduleName + " cat=" + std::to_string(category) +
                     " level=" + std::to_string(level) + " id=" + std::to_string(identifier) + " ";
  for (const char* c = text; *c != '\0'; ++c) line += (*c == '\n' || *c == '\r') ? ' ' : *c;
  line += '\n';
  return line;
}

void forgetDiagnosticModules() {
  std::lock_guard<std::mutex> hold(gModulesLock);
  for (auto& registered : gModules) ::close(registered.second.fd);
  gModules.clear();
}

std::vector<std::string> diagnosticRegistrations() {
  std::lock_guard<std::mutex> hold(gModulesLock);
  std::vector<std::string> lines;
  for (const auto& registered : gModules) {
    const DiagnosticModule& module = registered.second;
    lines.push_back(module.moduleFileName + " " + module.component + " " + module.moduleName + " " +
                    module.logFileName);
  }
  return lines;
}

}  // namespace zpo

using zpo::DiagnosticModule;
using zpo::gModules;
using zpo::gModulesLock;

extern "C" {

ZpoStatus ZpoDiagRegisterModule(const char* moduleFileName, const char* component, const char* moduleName,
                                const char* logFileName, uint32_t* handle) {
  if (moduleFileName == nullptr || component == nullptr || moduleName == nullptr || moduleName[0] == '\0' ||
      logFileName == nullptr || !zpo::validLogFileName(logFileName) || handle == nullptr) {
    return ZPO_ERR_INVALID_ARGUMENT;
  }
  const std::string root = zpo::currentStateRoot();
  if (root.empty()) return ZPO_ERR_IO;
  const std::string file = root + "/log/" + logFileName;
  DiagnosticModule module;
  module.moduleFileName = moduleFileName;
  module.component = component;
  module.moduleName = moduleName;
  module.logFileName = logFileName;
  // O_APPEND makes every write land whole at the end, whatever other writers do.
  module.fd = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  if (module.fd < 0) return ZPO_ERR_IO;
  std::lock_guard<std::mutex> hold(gModulesLock);
  const uint32_t assigned = ++zpo::gLastHandle;
  gModules[assigned] = module;
  *handle = assigned;
  return ZPO_OK;
}

ZpoStatus ZpoDiagAddLogEntry(uint32_t handle, int category, int level, int identifier, const char* text) {
  if (text == nullptr) return ZPO_ERR_INVALID_ARGUMENT;
  struct timespec now;
  clock_gettime(CLOCK_REALTIME, &now);
  std::lock_guard<std::mutex> hold(gModulesLock);
  const auto registered = gModules.find(handle);
  if (registered == gModules.end()) return ZPO_ERR_NOT_REGISTERED;
  const std::string line =
      zpo::formatLogLine(now, registered->second.moduleName, category, level, identifier, text);
  ssize_t written;
  do {
    written = ::write(registered->second.fd, line.data(), line.size());
  } while (written < 0 && errno == EINTR);
  return written == static_cast<ssize_t>(line.size()) ? ZPO_OK : ZPO_ERR_IO;
}

ZpoStatus ZpoDiagDeregisterModule(uint32_t handle) {
  std::lock_guard<std::mutex> hold(gModulesLock);
  const auto registered = gModules.find(handle);
  if (registered == gModules.end()) return ZPO_ERR_NOT_REGISTERED;
  ::close(registered->second.fd);
  gModules.erase(registered);
  return ZPO_OK;
}

}  // extern "C"
