// Backup/restore notification between processes sharing a state directory.
//
// A process that registers a callback binds a Unix datagram socket
// $ZPO_ROOT/notify/<pid>.sock and reads it on a detached thread. A restore
// sends the event value to every socket there as a 4-byte datagram in the
// machine's byte order (the callbacks take an unsigned long, which is 32 bits
// on the device); the callbacks whose event mask has a bit of the event set
// run on that thread.
#ifndef ZPO_RESTORE_NOTIFIER_HPP
#define ZPO_RESTORE_NOTIFIER_HPP

#include <cstdint>
#include <string>
#include <vector>

namespace zpo {

// The datagram a restore sends.
typedef uint32_t RestoreEvent;

// Sends `event` to every registered process of the state directory
// `canonicalRoot`; removes the sockets of processes that are gone. Returns the
// number of processes told, or -1 with *error set when the registrations
// cannot be read.
int notifyRegisteredProcesses(const std::string& canonicalRoot, RestoreEvent event, std::string* error);

// Withdraws this process's registrations and closes its socket.
void forgetRestoreCallbacks();

// "<name> <event mask>" of every callback this process has registered, in
// registration order.
std::vector<std::string> restoreRegistrations();

}  // namespace zpo

#endif
