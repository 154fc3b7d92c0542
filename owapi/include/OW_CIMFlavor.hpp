#ifndef OW_CIMFLAVOR_HPP_INCLUDE_GUARD_
#define OW_CIMFLAVOR_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"

namespace OW_NAMESPACE
{

/// A qualifier flavor (override, propagation and translation rules).
class CIMFlavor
{
public:
	enum
	{
		INVALID = 0,
		ENABLEOVERRIDE = 1,
		DISABLEOVERRIDE = 2,
		RESTRICTED = 3,
		TOSUBCLASS = 4,
		TRANSLATE = 5,
		TOINSTANCE = 6,
		LASTVALUE = 7
	};
	CIMFlavor() : m_flavor(INVALID) {}
	CIMFlavor(Int32 flavor) : m_flavor(flavor) {}
	bool isValid() const { return m_flavor > INVALID && m_flavor < LASTVALUE; }
	Int32 getFlavor() const { return m_flavor; }
	bool equals(const CIMFlavor& arg) const { return m_flavor == arg.m_flavor; }
	bool operator==(const CIMFlavor& arg) const { return m_flavor == arg.m_flavor; }
	bool operator!=(const CIMFlavor& arg) const { return m_flavor != arg.m_flavor; }
	bool operator<(const CIMFlavor& arg) const { return m_flavor < arg.m_flavor; }
	/// The MOF keyword, e.g. "EnableOverride"; "" when invalid.
	String toString() const;
	String toMOF() const;
private:
	Int32 m_flavor;
};

} // end namespace OW_NAMESPACE

#endif
