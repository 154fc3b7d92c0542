#include "OW_CIMQualifier.hpp"
#include "OW_CIMQualifierType.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMFlavor.hpp"
#include "OW_CIMScope.hpp"
#include "OW_Bool.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"

namespace OW_NAMESPACE
{

// ---- CIMQualifierType

struct CIMQualifierType::QUALTData : public COWIntrusiveCountableBase
{
	QUALTData() : m_defaultValue(CIMNULL) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new QUALTData(*this); }
	String m_name;
	CIMDataType m_dataType;
	CIMScopeArray m_scope;
	CIMFlavorArray m_flavor;
	CIMValue m_defaultValue;
};

namespace
{
template <class List, class Item> bool contains(const List& list, const Item& item)
{
	for (size_t i = 0; i < list.size(); ++i)
	{
		if (list[i] == item)
		{
			return true;
		}
	}
	return false;
}

// The flavors that exclude each other: adding one drops its opposite.
Int32 opposite(Int32 flavor)
{
	switch (flavor)
	{
		case CIMFlavor::ENABLEOVERRIDE: return CIMFlavor::DISABLEOVERRIDE;
		case CIMFlavor::DISABLEOVERRIDE: return CIMFlavor::ENABLEOVERRIDE;
		case CIMFlavor::TOSUBCLASS: return CIMFlavor::RESTRICTED;
		case CIMFlavor::RESTRICTED: return CIMFlavor::TOSUBCLASS;
		default: return CIMFlavor::INVALID;
	}
}

void addFlavorTo(CIMFlavorArray& flavors, const CIMFlavor& flavor)
{
	if (!flavor.isValid() || contains(flavors, flavor))
	{
		return;
	}
	Int32 other = opposite(flavor.getFlavor());
	for (size_t i = 0; i < flavors.size(); ++i)
	{
		if (flavors[i].getFlavor() == other)
		{
			flavors.remove(i);
			break;
		}
	}
	flavors.push_back(flavor);
}

void removeFlavorFrom(CIMFlavorArray& flavors, Int32 flavor)
{
	for (size_t i = 0; i < flavors.size(); ++i)
	{
		if (flavors[i].getFlavor() == flavor)
		{
			flavors.remove(i);
			return;
		}
	}
}
} // end unnamed namespace

CIMQualifierType::CIMQualifierType() : m_pdata(new QUALTData)
{
	addFlavor(CIMFlavor(CIMFlavor::ENABLEOVERRIDE));
	addFlavor(CIMFlavor(CIMFlavor::TOSUBCLASS));
}

CIMQualifierType::CIMQualifierType(CIMNULL_t) {}

CIMQualifierType::CIMQualifierType(const CIMName& name) : m_pdata(new QUALTData)
{
	m_pdata->m_name = name.toString();
	addFlavor(CIMFlavor(CIMFlavor::ENABLEOVERRIDE));
	addFlavor(CIMFlavor(CIMFlavor::TOSUBCLASS));
}

CIMQualifierType::CIMQualifierType(const char* name) : m_pdata(new QUALTData)
{
	m_pdata->m_name = String(name);
	addFlavor(CIMFlavor(CIMFlavor::ENABLEOVERRIDE));
	addFlavor(CIMFlavor(CIMFlavor::TOSUBCLASS));
}

CIMQualifierType::CIMQualifierType(const CIMQualifierType& x) : CIMElement(), m_pdata(x.m_pdata) {}
CIMQualifierType::~CIMQualifierType() {}
CIMQualifierType& CIMQualifierType::operator=(const CIMQualifierType& x) { m_pdata = x.m_pdata; return *this; }
void CIMQualifierType::setNull() { m_pdata = COWIntrusiveReference<QUALTData>(); }

const CIMScopeArray& CIMQualifierType::getScope() const { return m_pdata->m_scope; }
CIMDataType CIMQualifierType::getDataType() const { return m_pdata->m_dataType; }
Int32 CIMQualifierType::getDataSize() const { return m_pdata->m_dataType.getSize(); }
CIMValue CIMQualifierType::getDefaultValue() const { return m_pdata->m_defaultValue; }

CIMQualifierType& CIMQualifierType::setDataType(const CIMDataType& dataType)
{
	m_pdata->m_dataType = dataType;
	if (m_pdata->m_defaultValue && dataType)
	{
		m_pdata->m_defaultValue = CIMValueCast::castValueToDataType(m_pdata->m_defaultValue, dataType);
	}
	return *this;
}

CIMQualifierType& CIMQualifierType::setDataType(const CIMDataType::Type& dataType)
{
	return setDataType(CIMDataType(dataType));
}

CIMQualifierType& CIMQualifierType::setDefaultValue(const CIMValue& defValue)
{
	CIMDataType dt = getDataType();
	m_pdata->m_defaultValue = (defValue && dt) ? CIMValueCast::castValueToDataType(defValue, dt) : defValue;
	return *this;
}

CIMQualifierType& CIMQualifierType::addScope(const CIMScope& newScope)
{
	if (newScope.isValid() && !hasScope(newScope))
	{
		m_pdata->m_scope.push_back(newScope);
	}
	return *this;
}

bool CIMQualifierType::hasScope(const CIMScope& scopeArg) const
{
	return contains(m_pdata->m_scope, scopeArg);
}

bool CIMQualifierType::hasFlavor(const CIMFlavor& flavorArg) const
{
	return contains(m_pdata->m_flavor, flavorArg);
}

CIMQualifierType& CIMQualifierType::addFlavor(const CIMFlavor& newFlavor)
{
	addFlavorTo(m_pdata->m_flavor, newFlavor);
	return *this;
}

CIMQualifierType& CIMQualifierType::removeFlavor(const Int32 flavor)
{
	removeFlavorFrom(m_pdata->m_flavor, flavor);
	return *this;
}

bool CIMQualifierType::hasDefaultValue() const { return bool(m_pdata->m_defaultValue); }

bool CIMQualifierType::isDefaultValueArray() const
{
	return m_pdata->m_defaultValue && m_pdata->m_defaultValue.isArray();
}

CIMFlavorArray CIMQualifierType::getFlavors() const { return m_pdata->m_flavor; }
String CIMQualifierType::getName() const { return m_pdata->m_name; }
void CIMQualifierType::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }
String CIMQualifierType::toString() const { return String("CIMQualifierType(") + m_pdata->m_name + ")"; }

String CIMQualifierType::toMOF() const
{
	const QUALTData& d = *m_pdata;
	String out = "Qualifier " + d.m_name + " : " + d.m_dataType.toMOF() + d.m_dataType.getArrayMOF();
	if (d.m_defaultValue)
	{
		out += " = " + d.m_defaultValue.toMOF();
	}
	if (d.m_scope.size() > 0)
	{
		out += ", Scope(";
		for (size_t i = 0; i < d.m_scope.size(); ++i)
		{
			out += (i > 0 ? ", " : "") + d.m_scope[i].toMOF();
		}
		out += ")";
	}
	if (d.m_flavor.size() > 0)
	{
		out += ", Flavor(";
		for (size_t i = 0; i < d.m_flavor.size(); ++i)
		{
			out += (i > 0 ? ", " : "") + d.m_flavor[i].toMOF();
		}
		out += ")";
	}
	out += ";\n";
	return out;
}

// ---- CIMQualifier

struct CIMQualifier::QUALData : public COWIntrusiveCountableBase
{
	QUALData() : m_qualifierValue(CIMNULL), m_propagated(false) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new QUALData(*this); }
	String m_name;
	CIMValue m_qualifierValue;
	CIMQualifierType m_qualifierType;
	bool m_propagated;
	CIMFlavorArray m_flavors;
	String m_language;
};

const char* const CIMQualifier::CIM_QUAL_ABSTRACT = "Abstract";
const char* const CIMQualifier::CIM_QUAL_AGGREGATE = "Aggregate";
const char* const CIMQualifier::CIM_QUAL_AGGREGATION = "Aggregation";
const char* const CIMQualifier::CIM_QUAL_ALIAS = "Alias";
const char* const CIMQualifier::CIM_QUAL_ARRAYTYPE = "ArrayType";
const char* const CIMQualifier::CIM_QUAL_ASSOCIATION = "Association";
const char* const CIMQualifier::CIM_QUAL_BITMAP = "BitMap";
const char* const CIMQualifier::CIM_QUAL_BITVALUES = "BitValues";
const char* const CIMQualifier::CIM_QUAL_COMPOSITION = "Composition";
const char* const CIMQualifier::CIM_QUAL_COUNTER = "Counter";
const char* const CIMQualifier::CIM_QUAL_DELETE = "Delete";
const char* const CIMQualifier::CIM_QUAL_DEPRECATED = "Deprecated";
const char* const CIMQualifier::CIM_QUAL_DESCRIPTION = "Description";
const char* const CIMQualifier::CIM_QUAL_DISPLAYNAME = "DisplayName";
const char* const CIMQualifier::CIM_QUAL_EMBEDDEDOBJECT = "EmbeddedObject";
const char* const CIMQualifier::CIM_QUAL_EXPENSIVE = "Expensive";
const char* const CIMQualifier::CIM_QUAL_EXPERIMENTAL = "Experimental";
const char* const CIMQualifier::CIM_QUAL_GAUGE = "Gauge";
const char* const CIMQualifier::CIM_QUAL_IFDELETED = "Ifdeleted";
const char* const CIMQualifier::CIM_QUAL_IN = "In";
const char* const CIMQualifier::CIM_QUAL_INDICATION = "Indication";
const char* const CIMQualifier::CIM_QUAL_INVISIBLE = "Invisible";
const char* const CIMQualifier::CIM_QUAL_KEY = "Key";
const char* const CIMQualifier::CIM_QUAL_LARGE = "Large";
const char* const CIMQualifier::CIM_QUAL_MAPPINGSTRINGS = "MappingStrings";
const char* const CIMQualifier::CIM_QUAL_MAX = "Max";
const char* const CIMQualifier::CIM_QUAL_MAXLEN = "MaxLen";
const char* const CIMQualifier::CIM_QUAL_MAXVALUE = "MaxValue";
const char* const CIMQualifier::CIM_QUAL_MIN = "Min";
const char* const CIMQualifier::CIM_QUAL_MINLEN = "MinLen";
const char* const CIMQualifier::CIM_QUAL_MINVALUE = "MinValue";
const char* const CIMQualifier::CIM_QUAL_MODELCORRESPONDENCE = "ModelCorrespondence";
const char* const CIMQualifier::CIM_QUAL_NONLOCAL = "Nonlocal";
const char* const CIMQualifier::CIM_QUAL_NONLOCALTYPE = "NonlocalType";
const char* const CIMQualifier::CIM_QUAL_NULLVALUE = "NullValue";
const char* const CIMQualifier::CIM_QUAL_OUT = "Out";
const char* const CIMQualifier::CIM_QUAL_OVERRIDE = "Override";
const char* const CIMQualifier::CIM_QUAL_PROPAGATED = "Propagated";
const char* const CIMQualifier::CIM_QUAL_PROVIDER = "Provider";
const char* const CIMQualifier::CIM_QUAL_READ = "Read";
const char* const CIMQualifier::CIM_QUAL_REQUIRED = "Required";
const char* const CIMQualifier::CIM_QUAL_REVISION = "Revision";
const char* const CIMQualifier::CIM_QUAL_SCHEMA = "Schema";
const char* const CIMQualifier::CIM_QUAL_SOURCE = "Source";
const char* const CIMQualifier::CIM_QUAL_SOURCETYPE = "SourceType";
const char* const CIMQualifier::CIM_QUAL_STATIC = "Static";
const char* const CIMQualifier::CIM_QUAL_TERMINAL = "Terminal";
const char* const CIMQualifier::CIM_QUAL_UNITS = "Units";
const char* const CIMQualifier::CIM_QUAL_VALUEMAP = "ValueMap";
const char* const CIMQualifier::CIM_QUAL_VALUES = "Values";
const char* const CIMQualifier::CIM_QUAL_VERSION = "Version";
const char* const CIMQualifier::CIM_QUAL_WEAK = "Weak";
const char* const CIMQualifier::CIM_QUAL_WRITE = "Write";

CIMQualifier::CIMQualifier() : m_pdata(new QUALData) {}
CIMQualifier::CIMQualifier(CIMNULL_t) {}

CIMQualifier::CIMQualifier(const CIMName& name) : m_pdata(new QUALData)
{
	m_pdata->m_name = name.toString();
}

CIMQualifier::CIMQualifier(const char* name) : m_pdata(new QUALData)
{
	m_pdata->m_name = String(name);
}

CIMQualifier::CIMQualifier(const CIMQualifierType& cgt) : m_pdata(new QUALData)
{
	m_pdata->m_name = cgt.getName();
	m_pdata->m_qualifierType = cgt;
	m_pdata->m_qualifierValue = cgt.getDefaultValue();
	m_pdata->m_flavors = cgt.getFlavors();
}

CIMQualifier::CIMQualifier(const CIMQualifier& x) : CIMElement(), m_pdata(x.m_pdata) {}
CIMQualifier::~CIMQualifier() {}
CIMQualifier& CIMQualifier::operator=(const CIMQualifier& x) { m_pdata = x.m_pdata; return *this; }
void CIMQualifier::setNull() { m_pdata = COWIntrusiveReference<QUALData>(); }

CIMQualifier CIMQualifier::createKeyQualifier()
{
	CIMQualifier q(CIM_QUAL_KEY);
	q.setValue(CIMValue(Bool(true)));
	return q;
}

bool CIMQualifier::isKeyQualifier() const { return m_pdata->m_name.equalsIgnoreCase(CIM_QUAL_KEY); }
bool CIMQualifier::isAssociationQualifier() const
{
	return m_pdata->m_name.equalsIgnoreCase(CIM_QUAL_ASSOCIATION);
}

CIMValue CIMQualifier::getValue() const { return m_pdata->m_qualifierValue; }

CIMValue CIMQualifier::getValueT() const
{
	CIMValue v = m_pdata->m_qualifierValue;
	if (!v)
	{
		throw NULLValueException(__FILE__, __LINE__, "");
	}
	return v;
}

CIMQualifier& CIMQualifier::setValue(const CIMValue& value)
{
	m_pdata->m_qualifierValue = value;
	return *this;
}

CIMQualifier& CIMQualifier::setDefaults(const CIMQualifierType& qtype)
{
	m_pdata->m_qualifierType = qtype;
	return *this;
}

CIMQualifierType CIMQualifier::getDefaults() const { return m_pdata->m_qualifierType; }
bool CIMQualifier::hasFlavor(const CIMFlavor& flavor) const { return contains(m_pdata->m_flavors, flavor); }

CIMQualifier& CIMQualifier::addFlavor(const CIMFlavor& flavor)
{
	addFlavorTo(m_pdata->m_flavors, flavor);
	return *this;
}

CIMQualifier& CIMQualifier::removeFlavor(Int32 flavor)
{
	removeFlavorFrom(m_pdata->m_flavors, flavor);
	return *this;
}

bool CIMQualifier::hasValue() const { return bool(m_pdata->m_qualifierValue); }
bool CIMQualifier::equals(const CIMQualifier& arg) const { return m_pdata->m_name.equalsIgnoreCase(arg.getName()); }
CIMFlavorArray CIMQualifier::getFlavor() const { return m_pdata->m_flavors; }

CIMQualifier& CIMQualifier::setPropagated(bool propagated)
{
	m_pdata->m_propagated = propagated;
	return *this;
}

bool CIMQualifier::getPropagated() const { return m_pdata->m_propagated; }

CIMQualifier& CIMQualifier::setLanguage(const String& language)
{
	m_pdata->m_language = language;
	return *this;
}

String CIMQualifier::getLanguage() const { return m_pdata->m_language; }
String CIMQualifier::getName() const { return m_pdata->m_name; }
void CIMQualifier::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }
String CIMQualifier::toString() const { return String("CIMQualifier(") + m_pdata->m_name + ")"; }

String CIMQualifier::toMOF() const
{
	const QUALData& d = *m_pdata;
	String out = d.m_name;
	if (d.m_qualifierValue)
	{
		if (d.m_qualifierValue.isArray())
		{
			out += d.m_qualifierValue.toMOF();
		}
		else
		{
			out += "(" + d.m_qualifierValue.toMOF() + ")";
		}
	}
	return out;
}

} // end namespace OW_NAMESPACE
