// The one pattern every managed class is built from.
//
// For a managed class C:
//  - C derives from CDRManagedObject<C, CInstanceManager>, which supplies the
//    class-static current instance manager and the change bracket;
//  - C's constructor stores its key(s) and calls theInstanceManager->add(this),
//    its destructor calls theInstanceManager->remove(this);
//  - C provides instanceKey(), the composite key made from its key getters;
//  - CDR_DECLARE_INSTANCE_MANAGER / CDR_DECLARE_IMPL_INSTANCE_MANAGER declare
//    CInstanceManager and CImplInstanceManager with their named slots, over
//    the table mechanics of CDRInstanceTable<C>.
#ifndef CDR_MANAGED_OBJECT_HPP
#define CDR_MANAGED_OBJECT_HPP

#include <map>
#include <string>

#include "CFG_Exception.h"

// Composite key: the empty string followed by the key values, no separator.
inline std::string cdrComposeKey(const std::string& a) { return std::string() + a; }
inline std::string cdrComposeKey(const std::string& a, const std::string& b,
                                 const std::string& c, const std::string& d) {
  return std::string() + a + b + c + d;
}

// Marks key parameters that a slot accepts and does not use.
template <class... Keys>
inline void cdrUnusedKeys(const Keys&...) {}

template <class C, class Manager>
class CDRManagedObject {
 public:
  virtual ~CDRManagedObject() {}
  // The change bracket around a group of sets; never overridden, always 0.
  virtual int startChange() { return 0; }
  virtual int endChange() { return 0; }

  // Stores `manager` as the current manager, then calls its init(). The
  // previous manager is neither deleted nor informed.
  static void SetInstanceManager(Manager* manager) {
    theInstanceManager = manager;
    theInstanceManager->init();
  }
  // Makes the default manager current again; deletes nothing.
  static void ClearInstanceManager() { theInstanceManager = &defaultInstanceManager; }
  static Manager* getInstanceManager() { return theInstanceManager; }

  static Manager* theInstanceManager;
  static Manager defaultInstanceManager;
};

template <class C, class Manager>
Manager CDRManagedObject<C, Manager>::defaultInstanceManager;
template <class C, class Manager>
Manager* CDRManagedObject<C, Manager>::theInstanceManager =
    &CDRManagedObject<C, Manager>::defaultInstanceManager;

// Ordered table of live objects keyed by their composite key, with one
// iteration cursor. Lists objects without owning them.
template <class C>
class CDRInstanceTable {
 protected:
  typedef std::map<std::string, C*> Table;

  CDRInstanceTable() : m_cursor(m_table.end()) {}

  // An existing entry with the same key is silently replaced.
  void addEntry(C* object) { m_table[object->instanceKey()] = object; }

  // Erases the entry with the object's key; an absent key is no error. The
  // cursor steps past an entry erased under it, so it never dangles.
  void removeEntry(C* object) {
    typename Table::iterator it = m_table.find(object->instanceKey());
    if (it == m_table.end()) return;
    if (it == m_cursor) ++m_cursor;
    m_table.erase(it);
  }

  // Throws CFG_NoInstance when the key is absent or holds a null pointer.
  C* findEntry(const std::string& key) const {
    typename Table::const_iterator it = m_table.find(key);
    if (it == m_table.end() || it->second == 0) throw CFG_NoInstance();
    return it->second;
  }

  void startCursor() { m_cursor = m_table.begin(); }
  bool cursorValid() const { return m_cursor != m_table.end(); }

  // Throws CFG_NoInstance at the end, and without moving on a null entry.
  C* advanceCursor() {
    if (m_cursor == m_table.end() || m_cursor->second == 0) throw CFG_NoInstance();
    C* object = m_cursor->second;
    ++m_cursor;
    return object;
  }

  void endCursor() { m_cursor = m_table.end(); }

 private:
  CDRInstanceTable(const CDRInstanceTable&);
  CDRInstanceTable& operator=(const CDRInstanceTable&);

  Table m_table;
  typename Table::iterator m_cursor;
};

// Declares CInstanceManager with its slots in order: destructor, init,
// creator, destroyer, add, remove, get, startIteration, hasNext, next,
// endIteration. KEY_PARAMS is the parenthesised key parameter list and
// KEY_ARGS the matching argument list. Creation and deletion are not
// supported by any manager.
#define CDR_DECLARE_INSTANCE_MANAGER(C, KEY_PARAMS, KEY_ARGS)                      \
  class C##InstanceManager : protected CDRInstanceTable<C> {                      \
   public:                                                                         \
    C##InstanceManager() {}                                                        \
    virtual ~C##InstanceManager() {}                                               \
    virtual void init() {}                                                         \
    virtual C* create##C KEY_PARAMS {                                              \
      cdrUnusedKeys KEY_ARGS;                                                      \
      throw CFG_InstanceCreationFailed();                                          \
    }                                                                              \
    virtual void destroy##C(C*) { throw CFG_InstanceDeletionFailed(); }           \
    virtual void add(C* object) { addEntry(object); }                              \
    virtual void remove(C* object) { removeEntry(object); }                        \
    virtual C* get KEY_PARAMS { return findEntry(cdrComposeKey KEY_ARGS); }        \
    virtual void startIteration() { startCursor(); }                               \
    virtual bool hasNext() { return cursorValid(); }                               \
    virtual C* next() { return advanceCursor(); }                                  \
    virtual void endIteration() { endCursor(); }                                   \
  };

// Declares CImplInstanceManager, the manager a provider installs: the same
// table under its own name, refusing creation and deletion as well.
#define CDR_DECLARE_IMPL_INSTANCE_MANAGER(C) \
  class C##ImplInstanceManager : public C##InstanceManager {};

#endif
