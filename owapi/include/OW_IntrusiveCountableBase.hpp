#ifndef OW_INTRUSIVE_COUNTABLE_BASE_HPP_INCLUDE_GUARD_
#define OW_INTRUSIVE_COUNTABLE_BASE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include <atomic>

namespace OW_NAMESPACE
{

class IntrusiveCountableBase;
void IntrusiveReferenceAddRef(IntrusiveCountableBase* p);
void IntrusiveReferenceRelease(IntrusiveCountableBase* p);

/// Holds the reference count of objects owned through IntrusiveReference.
/// A copy starts with its own count of zero.
class IntrusiveCountableBase
{
protected:
	IntrusiveCountableBase() : m_usecount(0) {}
	IntrusiveCountableBase(const IntrusiveCountableBase&) : m_usecount(0) {}
	IntrusiveCountableBase& operator=(const IntrusiveCountableBase&) { return *this; }
	virtual ~IntrusiveCountableBase();
private:
	std::atomic<int> m_usecount;
	friend void IntrusiveReferenceAddRef(IntrusiveCountableBase* p);
	friend void IntrusiveReferenceRelease(IntrusiveCountableBase* p);
};

inline void IntrusiveReferenceAddRef(IntrusiveCountableBase* p)
{
	p->m_usecount.fetch_add(1, std::memory_order_relaxed);
}

/// Drops one reference; deletes the object when none is left.
inline void IntrusiveReferenceRelease(IntrusiveCountableBase* p)
{
	if (p->m_usecount.fetch_sub(1, std::memory_order_acq_rel) == 1)
	{
		delete p;
	}
}

} // end namespace OW_NAMESPACE

#endif
