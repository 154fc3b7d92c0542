#ifndef OW_COW_INTRUSIVE_REFERENCE_HPP_INCLUDE_GUARD_
#define OW_COW_INTRUSIVE_REFERENCE_HPP_INCLUDE_GUARD_
#include "OW_config.h"

namespace OW_NAMESPACE
{

/// Throws the exception for a member call on a null handle.
void COWIntrusiveReferenceThrowNullException();

/// Copy-on-write pointer behind the CIM handle classes. Read access through
/// a const reference shares the data; write access through a non-const
/// reference first makes the data unique. Both throw on a null pointer.
/// T must derive from COWIntrusiveCountableBase; every member that touches
/// the object is only instantiated where T is complete.
template<class T> class COWIntrusiveReference
{
public:
	COWIntrusiveReference() : m_pObj(0) {}
	explicit COWIntrusiveReference(T* p) : m_pObj(p)
	{
		if (m_pObj) m_pObj->addRef();
	}
	COWIntrusiveReference(const COWIntrusiveReference& rhs) : m_pObj(rhs.m_pObj)
	{
		if (m_pObj) m_pObj->addRef();
	}
	~COWIntrusiveReference()
	{
		if (m_pObj) m_pObj->release();
	}
	COWIntrusiveReference& operator=(const COWIntrusiveReference& rhs)
	{
		COWIntrusiveReference tmp(rhs);
		swap(tmp);
		return *this;
	}
	void swap(COWIntrusiveReference& rhs)
	{
		T* tmp = m_pObj;
		m_pObj = rhs.m_pObj;
		rhs.m_pObj = tmp;
	}
	bool isNull() const { return m_pObj == 0; }
	const T* getPtr() const { return m_pObj; }
	const T* operator->() const { check(); return m_pObj; }
	const T& operator*() const { check(); return *m_pObj; }
	T* operator->() { check(); unshare(); return m_pObj; }
	T& operator*() { check(); unshare(); return *m_pObj; }
private:
	void check() const
	{
		if (m_pObj == 0) COWIntrusiveReferenceThrowNullException();
	}
	void unshare()
	{
		if (!m_pObj->isUnique())
		{
			T* copy = static_cast<T*>(m_pObj->cloneBase());
			copy->addRef();
			m_pObj->release();
			m_pObj = copy;
		}
	}
	T* m_pObj;
};

} // end namespace OW_NAMESPACE

#endif
