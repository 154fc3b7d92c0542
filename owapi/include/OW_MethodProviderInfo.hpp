#ifndef OW_METHODPROVIDERINFO_HPP_INCLUDE_GUARD_
#define OW_METHODPROVIDERINFO_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_String.hpp"
#include "OW_Array.hpp"

namespace OW_NAMESPACE
{

/// Registration of a method provider: classes, namespaces and methods
/// (empty lists mean all).
class MethodProviderInfo
{
public:
	struct ClassInfo
	{
		explicit ClassInfo(String const& className_)
			: className(className_)
		{
		}
		ClassInfo(String const& className_, StringArray const& namespaces_, StringArray const& methods_)
			: className(className_)
			, namespaces(namespaces_)
			, methods(methods_)
		{
		}
		String className;
		StringArray namespaces;
		StringArray methods;
	};
	typedef Array<ClassInfo> ClassInfoArray;

	virtual ~MethodProviderInfo() {}
	void addInstrumentedClass(String const& className)
	{
		m_instrumentedClasses.push_back(ClassInfo(className));
	}
	void addInstrumentedClass(ClassInfo const& classInfo)
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

typedef Array<MethodProviderInfo> MethodProviderInfoArray;

} // end namespace OW_NAMESPACE

#endif
