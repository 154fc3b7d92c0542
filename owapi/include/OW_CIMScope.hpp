#ifndef OW_CIMSCOPE_HPP_INCLUDE_GUARD_
#define OW_CIMSCOPE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"

namespace OW_NAMESPACE
{

/// Where a qualifier may be used.
class CIMScope
{
public:
	enum Scope
	{
		BAD = 0,
		SCHEMA = 1,
		CLASS = 2,
		ASSOCIATION = 3,
		INDICATION = 4,
		PROPERTY = 5,
		REFERENCE = 6,
		METHOD = 7,
		PARAMETER = 8,
		QUALIFIER = 9,
		ANY = 10,
		MAXSCOPE = 11
	};
	CIMScope() : m_val(BAD) {}
	CIMScope(Scope scopeVal) : m_val(scopeVal) {}
	Scope getScope() const { return m_val; }
	bool isValid() const { return m_val > BAD && m_val < MAXSCOPE; }
	bool operator==(const CIMScope& arg) const { return m_val == arg.m_val; }
	bool operator!=(const CIMScope& arg) const { return m_val != arg.m_val; }
	bool operator<(const CIMScope& arg) const { return m_val < arg.m_val; }
	/// The MOF keyword, e.g. "property"; "BAD SCOPE" when invalid.
	String toString() const;
	String toMOF() const;
private:
	Scope m_val;
};

} // end namespace OW_NAMESPACE

#endif
