// Backup/restore notification between processes sharing a state directory.
//
// A process that registers a callback binds a Unix datagram socket
// $ZPO_ROOT/notify/<pid>.sock and reads it on a detached thread. A restore
// sends the event value (8 bytes) to every socket there; the callbacks whose
// event mask has a bit of the event set run on that thread.
#ifndef ZPO_RESTORE_NOTIFIER_HPP
#define ZPO_RESTORE_NOTIFIER_HPP

#include <string>

namespace zpo {

// Sends `event` to every registered process of the state directory
// `canonicalRoot`; removes the sockets of processes that are gone. Returns the
// number of processes told.
int notifyRegisteredProcesses(const std::string& canonicalRoot, unsigned long event);

// Withdraws this process's registrations and closes its socket.
void forgetRestoreCallbacks();

}  // namespace zpo

#endif
