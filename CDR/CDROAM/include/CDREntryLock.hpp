// The module's one lock. Every call that enters the module from outside
// holds it for the whole call: the object manager's requests and the
// platform's restore notification. OpenWBEM runs requests on many threads at
// once and the notification comes on a platform thread, while the instance
// managers' cursors, the objects' cached settings and the module's status
// globals are shared.
#ifndef CDRENTRYLOCK_HPP
#define CDRENTRYLOCK_HPP

#include <mutex>

class CDREntryLock {
 public:
  // Waits until no other call is inside the module.
  CDREntryLock();
  ~CDREntryLock();

 private:
  CDREntryLock(const CDREntryLock&);
  CDREntryLock& operator=(const CDREntryLock&);

  std::lock_guard<std::mutex> m_hold;
};

#endif
