#ifndef OW_COW_INTRUSIVE_COUNTABLE_BASE_HPP_INCLUDE_GUARD_
#define OW_COW_INTRUSIVE_COUNTABLE_BASE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include <atomic>

namespace OW_NAMESPACE
{

/// Reference count of the shared data behind the copy-on-write CIM handles.
class COWIntrusiveCountableBase
{
protected:
	COWIntrusiveCountableBase() : m_usecount(0) {}
	COWIntrusiveCountableBase(const COWIntrusiveCountableBase&) : m_usecount(0) {}
	COWIntrusiveCountableBase& operator=(const COWIntrusiveCountableBase&) { return *this; }
public:
	virtual ~COWIntrusiveCountableBase();
	/// A fresh copy of the data, owned by nobody yet.
	virtual COWIntrusiveCountableBase* cloneBase() const = 0;

	void addRef() { m_usecount.fetch_add(1, std::memory_order_relaxed); }
	void release()
	{
		if (m_usecount.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
	}
	bool isUnique() const { return m_usecount.load(std::memory_order_acquire) == 1; }
private:
	std::atomic<int> m_usecount;
};

} // end namespace OW_NAMESPACE

#endif
