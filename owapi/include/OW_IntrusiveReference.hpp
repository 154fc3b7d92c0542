#ifndef OW_INTRUSIVE_REFERENCE_HPP_INCLUDE_GUARD_
#define OW_INTRUSIVE_REFERENCE_HPP_INCLUDE_GUARD_
#include "OW_config.h"

namespace OW_NAMESPACE
{

/// Smart pointer to an object that carries its own reference count
/// (an IntrusiveCountableBase). Dereferencing does not check for null.
template<class T> class IntrusiveReference
{
private:
	typedef IntrusiveReference this_type;
public:
	typedef T element_type;

	IntrusiveReference() : m_pObj(0) {}
	IntrusiveReference(T* p, bool add_ref = true) : m_pObj(p)
	{
		if (m_pObj != 0 && add_ref) IntrusiveReferenceAddRef(m_pObj);
	}
	template<class U> IntrusiveReference(IntrusiveReference<U> const& rhs) : m_pObj(rhs.getPtr())
	{
		if (m_pObj != 0) IntrusiveReferenceAddRef(m_pObj);
	}
	IntrusiveReference(IntrusiveReference const& rhs) : m_pObj(rhs.m_pObj)
	{
		if (m_pObj != 0) IntrusiveReferenceAddRef(m_pObj);
	}
	~IntrusiveReference()
	{
		if (m_pObj != 0) IntrusiveReferenceRelease(m_pObj);
	}
	template<class U> IntrusiveReference& operator=(IntrusiveReference<U> const& rhs)
	{
		this_type(rhs).swap(*this);
		return *this;
	}
	IntrusiveReference& operator=(IntrusiveReference const& rhs)
	{
		this_type(rhs).swap(*this);
		return *this;
	}
	IntrusiveReference& operator=(T* rhs)
	{
		this_type(rhs).swap(*this);
		return *this;
	}
	T* getPtr() const { return m_pObj; }
	T& operator*() const { return *m_pObj; }
	T* operator->() const { return m_pObj; }

	typedef T* this_type::*safe_bool;
	operator safe_bool() const { return m_pObj == 0 ? 0 : &this_type::m_pObj; }
	bool operator!() const { return m_pObj == 0; }
	bool isNull() const OW_DEPRECATED { return m_pObj == 0; }

	void swap(IntrusiveReference& rhs)
	{
		T* tmp = m_pObj;
		m_pObj = rhs.m_pObj;
		rhs.m_pObj = tmp;
	}
	template <class U> IntrusiveReference<U> cast_to() const
	{
		return IntrusiveReference<U>(dynamic_cast<U*>(m_pObj));
	}
private:
	T* m_pObj;
};

template<class T, class U> inline bool operator==(IntrusiveReference<T> const& a, IntrusiveReference<U> const& b)
{ return a.getPtr() == b.getPtr(); }
template<class T, class U> inline bool operator!=(IntrusiveReference<T> const& a, IntrusiveReference<U> const& b)
{ return a.getPtr() != b.getPtr(); }
template<class T> inline bool operator==(IntrusiveReference<T> const& a, T* b) { return a.getPtr() == b; }
template<class T> inline bool operator!=(IntrusiveReference<T> const& a, T* b) { return a.getPtr() != b; }
template<class T> inline bool operator==(T* a, IntrusiveReference<T> const& b) { return a == b.getPtr(); }
template<class T> inline bool operator!=(T* a, IntrusiveReference<T> const& b) { return a != b.getPtr(); }
template<class T> inline bool operator<(IntrusiveReference<T> const& a, IntrusiveReference<T> const& b)
{ return a.getPtr() < b.getPtr(); }
template<class T> void swap(IntrusiveReference<T>& lhs, IntrusiveReference<T>& rhs) { lhs.swap(rhs); }

template<class T, class U> IntrusiveReference<T> static_pointer_cast(IntrusiveReference<U> const& p)
{ return static_cast<T*>(p.getPtr()); }
template<class T, class U> IntrusiveReference<T> const_pointer_cast(IntrusiveReference<U> const& p)
{ return const_cast<T*>(p.getPtr()); }
template<class T, class U> IntrusiveReference<T> dynamic_pointer_cast(IntrusiveReference<U> const& p)
{ return dynamic_cast<T*>(p.getPtr()); }

} // end namespace OW_NAMESPACE

#endif
