// Where the platform keeps its state: one directory per device instance.
#ifndef ZPO_STATE_DIRECTORY_HPP
#define ZPO_STATE_DIRECTORY_HPP

#include <cstdint>
#include <string>

namespace zpo {

// The state directory named by ZPO_ROOT, or /tmp/zpo-<uid> when it is unset
// or empty. Not created by this call.
std::string stateRootFromEnvironment();

// Creates `path` and its missing parents (mode 0755). Returns false on failure.
bool makeDirectories(const std::string& path);

// Creates the state directory and its log/ and notify/ folders, and returns its
// canonical path (symbolic links resolved). Empty on failure.
std::string prepareStateRoot(const std::string& root);

// 32-bit FNV-1a hash of the canonical state directory path, 8 lowercase hex digits.
std::string stateRootTag(const std::string& canonicalRoot);

// POSIX message queue name of queue `name` of the state directory:
// "/zpo-<tag>-<name>". Empty when `name` is empty, holds '/' or is too long.
std::string posixQueueName(const std::string& canonicalRoot, const std::string& name);

}  // namespace zpo

#endif
