#ifndef OW_ARRAY_HPP_INCLUDE_GUARD_
#define OW_ARRAY_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_ArrayFwd.hpp"
#include "OW_Exception.hpp"
#include "OW_CommonFwd.hpp"
#include <algorithm>
#include <vector>
#include <memory>

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(OutOfBounds, OW_COMMON_API)

/// Throws OutOfBoundsException "Array Index out of bounds. size = <n>, index = <i>".
void throwArrayOutOfBoundsException(size_t size, size_t idx);

/// Copy-on-write array: copies share the elements until one of them changes.
/// operator[] and remove() check the index and throw OutOfBoundsException.
/// An empty array holds no storage until something is added, so the many
/// empty qualifier and key arrays of CIM objects cost no allocation. (No
/// function-local static here: it would be a unique symbol, and a provider
/// library holding one is never unloaded.)
template<class T> class Array
{
	typedef std::vector<T> V;
public:
	typedef typename V::value_type value_type;
	typedef typename V::pointer pointer;
	typedef typename V::const_pointer const_pointer;
	typedef typename V::iterator iterator;
	typedef typename V::const_iterator const_iterator;
	typedef typename V::reference reference;
	typedef typename V::const_reference const_reference;
	typedef typename V::size_type size_type;
	typedef typename V::difference_type difference_type;
	typedef typename V::reverse_iterator reverse_iterator;
	typedef typename V::const_reverse_iterator const_reverse_iterator;

	Array() {}
	~Array() {}
	explicit Array(V* toWrap) : m_impl(toWrap) {}
	explicit Array(size_type n) : m_impl(std::make_shared<V>(n)) {}
	Array(int n, const T& value) : m_impl(std::make_shared<V>(size_type(n), value)) {}
	Array(long n, const T& value) : m_impl(std::make_shared<V>(size_type(n), value)) {}
	Array(size_type n, const T& value) : m_impl(std::make_shared<V>(n, value)) {}
	template<class InputIterator> Array(InputIterator first, InputIterator last)
		: m_impl(std::make_shared<V>(first, last)) {}

	iterator begin() { return mut().begin(); }
	const_iterator begin() const { return m_impl ? m_impl->cbegin() : const_iterator(); }
	iterator end() { return mut().end(); }
	const_iterator end() const { return m_impl ? m_impl->cend() : const_iterator(); }
	reverse_iterator rbegin() { return mut().rbegin(); }
	const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
	reverse_iterator rend() { return mut().rend(); }
	const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
	size_type size() const { return m_impl ? m_impl->size() : 0; }
	size_type max_size() const { return V().max_size(); }
	size_type capacity() const { return m_impl ? m_impl->capacity() : 0; }
	bool empty() const { return size() == 0; }
	reference operator[](size_type n) { checkIndex(n); return mut()[n]; }
	const_reference operator[](size_type n) const { checkIndex(n); return (*m_impl)[n]; }
	Array<T>& operator+=(const T& x) { mut().push_back(x); return *this; }
	void reserve(size_type n) { mut().reserve(n); }
	reference front() { return mut().front(); }
	const_reference front() const { return *begin(); }
	reference back() { return mut().back(); }
	const_reference back() const { return *(end() - 1); }
	void push_back(const T& x) { mut().push_back(x); }
	void append(const T& x) { mut().push_back(x); }
	void swap(Array<T>& x) { m_impl.swap(x.m_impl); }
	iterator insert(iterator position, const T& x) { return mut().insert(position, x); }
	void insert(size_type position, const T& x) { V& v = mut(); v.insert(v.begin() + position, x); }
	void remove(size_type index)
	{
		checkIndex(index);
		V& v = mut();
		v.erase(v.begin() + index);
	}
	void remove(size_type begin, size_type end)
	{
		checkIndex(begin);
		checkIndex(end - 1);
		V& v = mut();
		v.erase(v.begin() + begin, v.begin() + end);
	}
	template<class InputIterator> void insert(iterator position, InputIterator first, InputIterator last)
	{
		mut().insert(position, first, last);
	}
	void appendArray(const Array<T>& x)
	{
		Array<T> keep(x);
		V& v = mut();
		v.insert(v.end(), keep.begin(), keep.end());
	}
	void pop_back() { mut().pop_back(); }
	iterator erase(iterator position) { return mut().erase(position); }
	iterator erase(iterator first, iterator last) { return mut().erase(first, last); }
	void resize(size_type new_size, const T& x) { mut().resize(new_size, x); }
	void resize(size_type new_size) { mut().resize(new_size); }
	void clear()
	{
		// Nothing to copy for an array that is to be empty.
		if (m_impl.use_count() > 1) m_impl.reset();
		else if (m_impl) m_impl->clear();
	}

	friend bool operator==(const Array<T>& x, const Array<T>& y)
	{
		return x.size() == y.size() && std::equal(x.begin(), x.end(), y.begin());
	}
	friend bool operator<(const Array<T>& x, const Array<T>& y)
	{
		return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end());
	}
private:
	V& mut()
	{
		if (!m_impl)
		{
			m_impl = std::make_shared<V>();
		}
		else if (m_impl.use_count() > 1)
		{
			m_impl = std::make_shared<V>(*m_impl);
		}
		return *m_impl;
	}
	void checkIndex(size_type index) const
	{
		if (index >= size())
		{
			throwArrayOutOfBoundsException(size(), index);
		}
	}
	std::shared_ptr<V> m_impl;
};

template <class T> inline bool operator!=(const Array<T>& x, const Array<T>& y) { return !(x == y); }
template <class T> inline bool operator<=(const Array<T>& x, const Array<T>& y) { return !(y < x); }
template <class T> inline bool operator>=(const Array<T>& x, const Array<T>& y) { return !(x < y); }
template <class T> inline bool operator>(const Array<T>& x, const Array<T>& y) { return y < x; }
template <class T> inline void swap(Array<T>& x, Array<T>& y) { x.swap(y); }

typedef Array<UInt8> UInt8Array;
typedef Array<Int8> Int8Array;
typedef Array<UInt16> UInt16Array;
typedef Array<Int16> Int16Array;
typedef Array<UInt32> UInt32Array;
typedef Array<Int32> Int32Array;
typedef Array<UInt64> UInt64Array;
typedef Array<Int64> Int64Array;
typedef Array<Real64> Real64Array;
typedef Array<Real32> Real32Array;

} // end namespace OW_NAMESPACE

#endif
