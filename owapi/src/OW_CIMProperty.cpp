#include "OW_CIMProperty.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMException.hpp"
#include "OW_Bool.hpp"
#include "OW_NULLValueException.hpp"
#include "OW_NoSuchQualifierException.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_ElementLists.hpp"

namespace OW_NAMESPACE
{

struct CIMProperty::PROPData : public COWIntrusiveCountableBase
{
	PROPData() : m_sizeDataType(-1), m_cimValue(CIMNULL), m_propagated(false) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new PROPData(*this); }
	String m_name;
	CIMQualifierArray m_qualifiers;
	CIMDataType m_propertyDataType;
	Int32 m_sizeDataType;
	String m_override;
	String m_originClass;
	CIMValue m_cimValue;
	bool m_propagated;
};

const char* const CIMProperty::NAME_PROPERTY = "Name";

CIMProperty::CIMProperty() : m_pdata(new PROPData) {}
CIMProperty::CIMProperty(CIMNULL_t) {}
CIMProperty::CIMProperty(const CIMProperty& arg) : CIMElement(), m_pdata(arg.m_pdata) {}

CIMProperty::CIMProperty(const CIMName& name) : m_pdata(new PROPData)
{
	m_pdata->m_name = name.toString();
}

CIMProperty::CIMProperty(const char* name) : m_pdata(new PROPData)
{
	m_pdata->m_name = String(name);
}

CIMProperty::CIMProperty(const CIMName& name, const CIMValue& value) : m_pdata(new PROPData)
{
	m_pdata->m_name = name.toString();
	// A null value has no type to take: this throws like any null access.
	m_pdata->m_propertyDataType = value.getCIMDataType();
	m_pdata->m_cimValue = value;
}

CIMProperty::CIMProperty(const CIMName& name, const CIMDataType& dt) : m_pdata(new PROPData)
{
	m_pdata->m_name = name.toString();
	m_pdata->m_propertyDataType = dt;
}

CIMProperty::~CIMProperty() {}
CIMProperty& CIMProperty::operator=(const CIMProperty& arg) { m_pdata = arg.m_pdata; return *this; }
void CIMProperty::setNull() { m_pdata = COWIntrusiveReference<PROPData>(); }

CIMQualifierArray CIMProperty::getQualifiers() const { return m_pdata->m_qualifiers; }

CIMProperty& CIMProperty::setQualifiers(const CIMQualifierArray& quals)
{
	m_pdata->m_qualifiers = quals;
	return *this;
}

String CIMProperty::getOriginClass() const { return m_pdata->m_originClass; }

CIMProperty& CIMProperty::setOriginClass(const CIMName& originCls)
{
	m_pdata->m_originClass = originCls.toString();
	return *this;
}

CIMProperty& CIMProperty::setValue(const CIMValue& val)
{
	CIMDataType dt = getDataType();
	CIMValue stored(val);
	if (val && dt && !dt.isEmbeddedObjectType()
		&& val.getType() != CIMDataType::EMBEDDEDCLASS && val.getType() != CIMDataType::EMBEDDEDINSTANCE
		&& !(val.getType() == dt.getType() && val.isArray() == dt.isArrayType()))
	{
		stored = CIMValueCast::castValueToDataType(val, dt);
	}
	m_pdata->m_cimValue = stored;
	return *this;
}

CIMProperty& CIMProperty::setDataType(const CIMDataType& type)
{
	m_pdata->m_propertyDataType = type;
	if (m_pdata->m_cimValue && type)
	{
		m_pdata->m_cimValue = CIMValueCast::castValueToDataType(m_pdata->m_cimValue, type);
	}
	return *this;
}

CIMProperty& CIMProperty::setDataType(const CIMDataType::Type& type)
{
	return setDataType(CIMDataType(type));
}

Int32 CIMProperty::getSize() const { return m_pdata->m_sizeDataType; }

CIMProperty& CIMProperty::setDataSize(Int32 size)
{
	m_pdata->m_sizeDataType = size;
	return *this;
}

CIMDataType CIMProperty::getDataType() const { return m_pdata->m_propertyDataType; }

CIMQualifier CIMProperty::getQualifier(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_qualifiers, name);
}

CIMQualifier CIMProperty::getQualifierT(const CIMName& name) const
{
	CIMQualifier q = getQualifier(name);
	if (!q)
	{
		throw NoSuchQualifierException(__FILE__, __LINE__, name.toString().c_str());
	}
	return q;
}

CIMValue CIMProperty::getValue() const { return m_pdata->m_cimValue; }

CIMValue CIMProperty::getValueT() const
{
	CIMValue v = m_pdata->m_cimValue;
	if (!v)
	{
		throw NULLValueException(__FILE__, __LINE__, m_pdata->m_name.c_str());
	}
	return v;
}

CIMProperty& CIMProperty::setPropagated(bool propagated)
{
	m_pdata->m_propagated = propagated;
	return *this;
}

bool CIMProperty::getPropagated() const { return m_pdata->m_propagated; }

CIMProperty& CIMProperty::setOverridingProperty(const CIMName& opname)
{
	m_pdata->m_override = opname.toString();
	return *this;
}

String CIMProperty::getOverridingProperty() const { return m_pdata->m_override; }

bool CIMProperty::isReference() const
{
	const CIMDataType& dt = m_pdata->m_propertyDataType;
	return dt && dt.isReferenceType();
}

bool CIMProperty::isKey() const
{
	// Asked of every property an instance is given: no CIMName of "Key" is
	// made for it.
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, CIMQualifier::CIM_QUAL_KEY) || isReference();
}

CIMProperty CIMProperty::filter(WBEMFlags::ELocalOnlyFlag localOnly,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers) const
{
	if (localOnly == WBEMFlags::E_LOCAL_ONLY && m_pdata->m_propagated)
	{
		return CIMProperty(CIMNULL);
	}
	CIMProperty cp(*this);
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		cp.clearQualifiers();
	}
	return cp;
}

CIMProperty& CIMProperty::setQualifier(const CIMQualifier& qual)
{
	if (qual)
	{
		ElementLists::set(m_pdata->m_qualifiers, qual);
	}
	return *this;
}

CIMProperty& CIMProperty::addQualifier(const CIMQualifier& qual)
{
	if (ElementLists::find(m_pdata->m_qualifiers, qual.getName()) != String::npos)
	{
		String msg = String("Qualifier ") + qual.getName() + " already exists";
		throw CIMException(__FILE__, __LINE__, CIMException::ALREADY_EXISTS, msg.c_str());
	}
	m_pdata->m_qualifiers.push_back(qual);
	return *this;
}

bool CIMProperty::removeQualifier(const CIMName& name)
{
	return ElementLists::remove(m_pdata->m_qualifiers, name);
}

CIMProperty& CIMProperty::clearQualifiers()
{
	m_pdata->m_qualifiers.clear();
	return *this;
}

CIMProperty& CIMProperty::clearNonKeyQualifiers()
{
	CIMQualifier key = getQualifier(CIMQualifier::CIM_QUAL_KEY);
	m_pdata->m_qualifiers.clear();
	if (key)
	{
		m_pdata->m_qualifiers.push_back(key);
	}
	return *this;
}

CIMProperty CIMProperty::clone() const
{
	CIMProperty cp(*this);
	// Detach from the shared data now rather than on the first change.
	cp.m_pdata = COWIntrusiveReference<PROPData>(new PROPData(*m_pdata));
	return cp;
}

CIMProperty CIMProperty::clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const
{
	CIMProperty cp = clone();
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		cp.clearQualifiers();
	}
	if (includeClassOrigin == WBEMFlags::E_EXCLUDE_CLASS_ORIGIN)
	{
		cp.setOriginClass(CIMName());
	}
	return cp;
}

bool CIMProperty::hasTrueQualifier(const CIMName& name) const
{
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, name.toString().c_str());
}

String CIMProperty::getName() const { return m_pdata->m_name; }
void CIMProperty::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }

String CIMProperty::toString() const
{
	const PROPData& d = *m_pdata;
	String out = d.m_propertyDataType.toString() + ":" + d.m_name + "=";
	out += d.m_cimValue ? d.m_cimValue.toString() : String("null");
	return out;
}

String CIMProperty::toMOF() const
{
	const PROPData& d = *m_pdata;
	String out;
	if (d.m_qualifiers.size() > 0)
	{
		out += "  [";
		for (size_t i = 0; i < d.m_qualifiers.size(); ++i)
		{
			if (i > 0)
			{
				out += ",\n   ";
			}
			out += d.m_qualifiers[i].toMOF();
		}
		out += "]\n";
	}
	out += "  " + d.m_propertyDataType.toMOF() + " " + d.m_name + d.m_propertyDataType.getArrayMOF();
	if (d.m_cimValue)
	{
		out += " = " + d.m_cimValue.toMOF();
	}
	out += ";\n";
	return out;
}

bool operator<(const CIMProperty& x, const CIMProperty& y)
{
	return x.getName().compareToIgnoreCase(y.getName()) < 0;
}

} // end namespace OW_NAMESPACE
