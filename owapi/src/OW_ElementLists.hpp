#ifndef OW_ELEMENTLISTS_HPP_INCLUDE_GUARD_
#define OW_ELEMENTLISTS_HPP_INCLUDE_GUARD_
// Library-internal helpers for lists of named elements (qualifiers,
// properties, methods, parameters); names match ignoring case.
#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_CIMName.hpp"
#include "OW_CIMFwd.hpp"

namespace OW_NAMESPACE
{

namespace ElementLists
{

/// Index of the first element named name, or String::npos.
template <class T> size_t find(const Array<T>& list, const CIMName& name)
{
	String wanted = name.toString();
	for (size_t i = 0; i < list.size(); ++i)
	{
		if (list[i].getName().equalsIgnoreCase(wanted))
		{
			return i;
		}
	}
	return String::npos;
}

/// The element named name, or a null one.
template <class T> T get(const Array<T>& list, const CIMName& name)
{
	size_t i = find(list, name);
	return i == String::npos ? T(CIMNULL) : list[i];
}

/// Replaces the element of the same name, or appends it.
template <class T> void set(Array<T>& list, const T& element)
{
	size_t i = find(list, element.getName());
	if (i == String::npos)
	{
		list.push_back(element);
	}
	else
	{
		list[i] = element;
	}
}

/// Removes the first element named name; false if there is none.
template <class T> bool remove(Array<T>& list, const CIMName& name)
{
	size_t i = find(list, name);
	if (i == String::npos)
	{
		return false;
	}
	list.remove(i);
	return true;
}

/// Whether the first qualifier named name holds a boolean true. The name is
/// a plain text so that a caller asking often makes no CIMName of it.
bool trueQualifier(const Array<CIMQualifier>& quals, const char* name);

} // end namespace ElementLists

} // end namespace OW_NAMESPACE

#endif
