#ifndef OW_PROVIDERINFOBASE_HPP_INCLUDE_GUARD_
#define OW_PROVIDERINFOBASE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_String.hpp"
#include "OW_Array.hpp"

namespace OW_NAMESPACE
{

/// A class a provider instruments, and the namespaces (empty: all).
struct InstClassInfo
{
	explicit InstClassInfo(String const& className_)
		: className(className_)
	{
	}
	InstClassInfo(String const& className_, StringArray const& namespaces_)
		: className(className_)
		, namespaces(namespaces_)
	{
	}
	String className;
	StringArray namespaces;
};

/// The classes a provider registers for, and its name.
template <class ClassInfoT>
class ProviderInfoBase
{
public:
	typedef ClassInfoT ClassInfo;
	typedef Array<ClassInfoT> ClassInfoArray;

	virtual ~ProviderInfoBase() {}
	void addInstrumentedClass(String const& className)
	{
		m_instrumentedClasses.push_back(ClassInfo(className));
	}
	void addInstrumentedClass(ClassInfoT const& classInfo)
	{
		m_instrumentedClasses.push_back(classInfo);
	}
	const ClassInfoArray& getClassInfo() const
	{
		return m_instrumentedClasses;
	}
	void setProviderName(String const& name)
	{
		m_name = name;
	}
	String getProviderName() const
	{
		return m_name;
	}
private:
	ClassInfoArray m_instrumentedClasses;
	String m_name;
};

} // end namespace OW_NAMESPACE

#endif
