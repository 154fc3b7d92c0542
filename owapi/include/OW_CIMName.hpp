#ifndef OW_CIMNAME_HPP_INCLUDE_GUARD_
#define OW_CIMNAME_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_String.hpp"
#include "OW_SafeBool.hpp"
#include <iosfwd>

namespace OW_NAMESPACE
{

/// A CIM name (class, property, qualifier, method). Keeps the case it was
/// given; comparisons ignore case.
class CIMName
{
public:
	CIMName();
	CIMName(const String& name);
	CIMName(const char* name);
	CIMName& operator=(const String& name);
	CIMName& operator=(const char* name);
	/// The name as given.
	String toString() const;
	/// True when non-empty.
	bool isValid() const;
	OW_SAFE_BOOL_IMPL(CIMName, String, m_name, isValid())
private:
	String m_name;
};

bool operator<(const CIMName& x, const CIMName& y);
bool operator==(const CIMName& x, const CIMName& y);
bool operator!=(const CIMName& x, const CIMName& y);
bool operator<=(const CIMName& x, const CIMName& y);
bool operator>(const CIMName& x, const CIMName& y);
bool operator>=(const CIMName& x, const CIMName& y);
std::ostream& operator<<(std::ostream& ostr, const CIMName& name);

} // end namespace OW_NAMESPACE

#endif
