#include "StateDirectory.hpp"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace zpo {

std::string stateRootFromEnvironment() {
  const char* root = std::getenv("ZPO_ROOT");
  if (root != nullptr && root[0] != '\0') return root;
  return "/tmp/zpo-" + std::to_string(static_cast<unsigned long>(getuid()));
}

bool makeDirectories(const std::string& path) {
  if (path.empty()) return false;
  for (std::string::size_type slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
    const std::string prefix = path.substr(0, slash);
    if (mkdir(prefix.c_str(), 0755) != 0 && errno != EEXIST) return false;
    if (slash == std::string::npos) break;
  }
  struct stat info;
  return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string prepareStateRoot(const std::string& root) {
  if (!makeDirectories(root) || !makeDirectories(root + "/log") ||
      !makeDirectories(root + "/notify")) {
    return std::string();
  }
  char resolved[PATH_MAX];
  if (realpath(root.c_str(), resolved) == nullptr) return std::string();
  return resolved;
}

std::string stateRootTag(const std::string& canonicalRoot) {
  uint32_t hash = 2166136261u;
  for (unsigned char c : canonicalRoot) {
    hash ^= c;
    hash *= 16777619u;
  }
  char text[9];
  std::snprintf(text, sizeof text, "%08x", hash);
  return text;
}

std::string posixQueueName(const std::string& canonicalRoot, const std::string& name) {
  // NAME_MAX (255) bounds a queue name without its leading slash.
  if (name.empty() || name.find('/') != std::string::npos || name.size() > 200) return std::string();
  return "/zpo-" + stateRootTag(canonicalRoot) + "-" + name;
}

}  // namespace zpo
