#include "OW_CIMBase.hpp"
#include "OW_CIMElement.hpp"
#include "OW_CIMName.hpp"
#include "OW_CIMFlavor.hpp"
#include "OW_CIMScope.hpp"
#include "OW_String.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include <ostream>

namespace OW_NAMESPACE
{

IntrusiveCountableBase::~IntrusiveCountableBase() {}
COWIntrusiveCountableBase::~COWIntrusiveCountableBase() {}

CIMBase::~CIMBase() {}

std::ostream& operator<<(std::ostream& ostr, const CIMBase& cb)
{
	ostr << cb.toString();
	return ostr;
}

CIMElement::~CIMElement() {}

bool CIMElement::operator==(const CIMElement& arg)
{
	return getName().equalsIgnoreCase(arg.getName());
}

int CIMElement::compare(const CIMElement& arg)
{
	return getName().compareToIgnoreCase(arg.getName());
}

// ---- CIMName

CIMName::CIMName() {}
CIMName::CIMName(const String& name) : m_name(name) {}
CIMName::CIMName(const char* name) : m_name(name) {}
CIMName& CIMName::operator=(const String& name) { m_name = name; return *this; }
CIMName& CIMName::operator=(const char* name) { m_name = String(name); return *this; }
String CIMName::toString() const { return m_name; }
bool CIMName::isValid() const { return !m_name.empty(); }

bool operator<(const CIMName& x, const CIMName& y) { return x.toString().compareToIgnoreCase(y.toString()) < 0; }
bool operator==(const CIMName& x, const CIMName& y) { return x.toString().equalsIgnoreCase(y.toString()); }
bool operator!=(const CIMName& x, const CIMName& y) { return !(x == y); }
bool operator<=(const CIMName& x, const CIMName& y) { return !(y < x); }
bool operator>(const CIMName& x, const CIMName& y) { return y < x; }
bool operator>=(const CIMName& x, const CIMName& y) { return !(x < y); }
std::ostream& operator<<(std::ostream& ostr, const CIMName& name)
{
	ostr << name.toString();
	return ostr;
}

// ---- CIMFlavor, CIMScope

String CIMFlavor::toString() const
{
	switch (m_flavor)
	{
		case ENABLEOVERRIDE: return "EnableOverride";
		case DISABLEOVERRIDE: return "DisableOverride";
		case RESTRICTED: return "Restricted";
		case TOSUBCLASS: return "ToSubclass";
		case TRANSLATE: return "Translatable";
		case TOINSTANCE: return "ToInstance";
		default: return "";
	}
}

String CIMFlavor::toMOF() const { return toString(); }
String CIMScope::toMOF() const { return toString(); }

String CIMScope::toString() const
{
	switch (m_val)
	{
		case SCHEMA: return "schema";
		case CLASS: return "class";
		case ASSOCIATION: return "association";
		case INDICATION: return "indication";
		case PROPERTY: return "property";
		case REFERENCE: return "reference";
		case METHOD: return "method";
		case PARAMETER: return "parameter";
		case QUALIFIER: return "qualifier";
		case ANY: return "any";
		default: return "BAD SCOPE";
	}
}

} // end namespace OW_NAMESPACE
