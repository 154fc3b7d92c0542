#include "OW_CIMInstance.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMClass.hpp"
#include "OW_NoSuchPropertyException.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_ElementLists.hpp"

namespace OW_NAMESPACE
{

struct CIMInstance::INSTData : public COWIntrusiveCountableBase
{
	virtual COWIntrusiveCountableBase* cloneBase() const { return new INSTData(*this); }
	String m_owningClassName;
	CIMPropertyArray m_keys;
	CIMPropertyArray m_properties;
	CIMQualifierArray m_qualifiers;
	String m_language;
	String m_nameSpace;
};

namespace
{
bool inList(const StringArray& list, const String& name)
{
	for (size_t i = 0; i < list.size(); ++i)
	{
		if (list[i].equalsIgnoreCase(name))
		{
			return true;
		}
	}
	return false;
}
} // end unnamed namespace

CIMInstance::CIMInstance() : m_pdata(new INSTData) {}
CIMInstance::CIMInstance(CIMNULL_t) {}
CIMInstance::CIMInstance(const CIMInstance& x) : CIMElement(), m_pdata(x.m_pdata) {}

CIMInstance::CIMInstance(const CIMName& name) : m_pdata(new INSTData)
{
	m_pdata->m_owningClassName = name.toString();
}

CIMInstance::CIMInstance(const char* name) : m_pdata(new INSTData)
{
	m_pdata->m_owningClassName = String(name);
}

CIMInstance::~CIMInstance() {}
CIMInstance& CIMInstance::operator=(const CIMInstance& x) { m_pdata = x.m_pdata; return *this; }
void CIMInstance::setNull() { m_pdata = COWIntrusiveReference<INSTData>(); }

CIMInstance& CIMInstance::setKeys(const CIMPropertyArray& keys)
{
	m_pdata->m_keys = keys;
	return *this;
}

String CIMInstance::getClassName() const { return m_pdata->m_owningClassName; }

CIMInstance& CIMInstance::setClassName(const CIMName& name)
{
	m_pdata->m_owningClassName = name.toString();
	return *this;
}

String CIMInstance::getNameSpace() const { return m_pdata->m_nameSpace; }

CIMInstance& CIMInstance::setNameSpace(const String& ns)
{
	m_pdata->m_nameSpace = ns;
	return *this;
}

String CIMInstance::getLanguage() const { return m_pdata->m_language; }

CIMInstance& CIMInstance::setLanguage(const String& language)
{
	m_pdata->m_language = language;
	return *this;
}

CIMQualifierArray CIMInstance::getQualifiers() const { return m_pdata->m_qualifiers; }

CIMQualifier CIMInstance::getQualifier(const CIMName& qualName) const
{
	return ElementLists::get(m_pdata->m_qualifiers, qualName);
}

CIMInstance& CIMInstance::setQualifiers(const CIMQualifierArray& quals)
{
	m_pdata->m_qualifiers = quals;
	return *this;
}

CIMInstance& CIMInstance::setQualifier(const CIMQualifier& qual)
{
	if (qual)
	{
		ElementLists::set(m_pdata->m_qualifiers, qual);
	}
	return *this;
}

bool CIMInstance::removeQualifier(const CIMName& qualName)
{
	return ElementLists::remove(m_pdata->m_qualifiers, qualName);
}

CIMPropertyArray CIMInstance::getProperties(Int32 valueDataType) const
{
	const INSTData& d = *m_pdata;
	if (valueDataType == CIMDataType::INVALID)
	{
		return d.m_properties;
	}
	CIMPropertyArray result;
	for (size_t i = 0; i < d.m_properties.size(); ++i)
	{
		CIMDataType dt = d.m_properties[i].getDataType();
		if (dt.getType() == valueDataType)
		{
			result.push_back(d.m_properties[i]);
		}
	}
	return result;
}

CIMProperty CIMInstance::getProperty(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_properties, name);
}

CIMProperty CIMInstance::getProperty(const CIMName& name, const CIMName& originClass) const
{
	const INSTData& d = *m_pdata;
	for (size_t i = 0; i < d.m_properties.size(); ++i)
	{
		const CIMProperty& p = d.m_properties[i];
		if (p.getName().equalsIgnoreCase(name.toString())
			&& p.getOriginClass().equalsIgnoreCase(originClass.toString()))
		{
			return p;
		}
	}
	return CIMProperty(CIMNULL);
}

CIMProperty CIMInstance::getPropertyT(const CIMName& name) const
{
	CIMProperty p = getProperty(name);
	if (!p)
	{
		// Error code E_INSTANCE_HAS_NO_SUCH_PROPERTY.
		throw NoSuchPropertyException(__FILE__, __LINE__, name.toString().c_str(), 1);
	}
	return p;
}

CIMValue CIMInstance::getPropertyValue(const CIMName& name) const
{
	CIMProperty p = getProperty(name);
	return p ? p.getValue() : CIMValue(CIMNULL);
}

bool CIMInstance::propertyHasValue(const CIMName& name) const
{
	return bool(getPropertyValue(name));
}

CIMPropertyArray CIMInstance::getKeyValuePairs() const { return m_pdata->m_keys; }

CIMInstance& CIMInstance::updatePropertyValues(const CIMPropertyArray& props)
{
	for (size_t i = 0; i < props.size(); ++i)
	{
		updatePropertyValue(props[i]);
	}
	return *this;
}

CIMInstance& CIMInstance::updatePropertyValue(const CIMProperty& prop)
{
	size_t i = ElementLists::find(getProperties(), prop.getName());
	if (i != String::npos)
	{
		CIMProperty& target = m_pdata->m_properties[i];
		bool wasKey = target.isKey();
		target.setValue(prop.getValue());
		if (wasKey)
		{
			rebuildKeys();
		}
	}
	return *this;
}

CIMInstance& CIMInstance::updatePropertyValue(const CIMName& name, const CIMValue& value)
{
	return updatePropertyValue(CIMProperty(name, value));
}

CIMInstance& CIMInstance::setProperty(const CIMName& name, const CIMValue& cv)
{
	size_t i = ElementLists::find(getProperties(), name);
	if (i != String::npos)
	{
		CIMProperty& target = m_pdata->m_properties[i];
		target.setValue(cv);
		if (target.isKey())
		{
			rebuildKeys();
		}
	}
	else
	{
		CIMProperty cp(name);
		if (cv)
		{
			cp.setDataType(cv.getCIMDataType());
		}
		cp.setValue(cv);
		m_pdata->m_properties.push_back(cp);
	}
	return *this;
}

CIMInstance& CIMInstance::setProperty(const CIMProperty& prop)
{
	if (!prop)
	{
		return *this;
	}
	size_t i = ElementLists::find(getProperties(), prop.getName());
	bool keyChange = prop.isKey();
	if (i != String::npos)
	{
		keyChange = keyChange || m_pdata->m_properties[i].isKey();
		m_pdata->m_properties[i] = prop;
	}
	else
	{
		m_pdata->m_properties.push_back(prop);
	}
	if (keyChange)
	{
		rebuildKeys();
	}
	return *this;
}

CIMInstance& CIMInstance::setProperties(const CIMPropertyArray& props)
{
	m_pdata->m_properties = props;
	rebuildKeys();
	return *this;
}

CIMInstance& CIMInstance::removeProperty(const CIMName& propName)
{
	size_t i = ElementLists::find(getProperties(), propName);
	if (i != String::npos)
	{
		bool wasKey = m_pdata->m_properties[i].isKey();
		m_pdata->m_properties.remove(i);
		if (wasKey)
		{
			rebuildKeys();
		}
	}
	return *this;
}

void CIMInstance::rebuildKeys()
{
	CIMPropertyArray keys;
	const CIMPropertyArray& props = m_pdata->m_properties;
	for (size_t i = 0; i < props.size(); ++i)
	{
		if (props[i].isKey())
		{
			keys.push_back(props[i]);
		}
	}
	m_pdata->m_keys = keys;
}

CIMInstance CIMInstance::filterProperties(const StringArray& propertyList,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
	bool ignorePropertyList) const
{
	CIMInstance result(*this);
	CIMPropertyArray kept;
	const CIMPropertyArray& props = m_pdata->m_properties;
	for (size_t i = 0; i < props.size(); ++i)
	{
		if (ignorePropertyList || inList(propertyList, props[i].getName()))
		{
			kept.push_back(props[i].clone(includeQualifiers, includeClassOrigin));
		}
	}
	result.m_pdata->m_properties = kept;
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		result.m_pdata->m_qualifiers.clear();
	}
	return result;
}

CIMInstance CIMInstance::clone(WBEMFlags::ELocalOnlyFlag localOnly,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
	const StringArray& propertyList, bool noProps) const
{
	CIMInstance result(*this);
	CIMPropertyArray kept;
	const CIMPropertyArray& props = m_pdata->m_properties;
	for (size_t i = 0; i < props.size(); ++i)
	{
		if (noProps && !inList(propertyList, props[i].getName()))
		{
			continue;
		}
		if (localOnly == WBEMFlags::E_LOCAL_ONLY && props[i].getPropagated())
		{
			continue;
		}
		kept.push_back(props[i].clone(includeQualifiers, includeClassOrigin));
	}
	result.m_pdata->m_properties = kept;
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		result.m_pdata->m_qualifiers.clear();
	}
	return result;
}

CIMInstance& CIMInstance::syncWithClass(const CIMClass& cc,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers)
{
	if (!cc)
	{
		return *this;
	}
	CIMPropertyArray classProps = cc.getAllProperties();
	for (size_t i = 0; i < classProps.size(); ++i)
	{
		const CIMProperty& cp = classProps[i];
		CIMProperty mine = getProperty(cp.getName());
		if (!mine)
		{
			CIMProperty added = cp.clone();
			if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
			{
				added.clearQualifiers();
			}
			m_pdata->m_properties.push_back(added);
		}
		else
		{
			mine.setDataType(cp.getDataType());
			if (includeQualifiers == WBEMFlags::E_INCLUDE_QUALIFIERS && mine.getQualifiers().empty())
			{
				mine.setQualifiers(cp.getQualifiers());
			}
			setProperty(mine);
		}
	}
	rebuildKeys();
	return *this;
}

bool CIMInstance::propertiesAreEqualTo(const CIMInstance& other) const
{
	CIMPropertyArray mine = getProperties();
	CIMPropertyArray theirs = other.getProperties();
	if (mine.size() != theirs.size())
	{
		return false;
	}
	for (size_t i = 0; i < mine.size(); ++i)
	{
		CIMProperty p = other.getProperty(mine[i].getName());
		if (!p || !p.getValue().equal(mine[i].getValue()))
		{
			return false;
		}
	}
	return true;
}

String CIMInstance::getName() const { return getClassName(); }
void CIMInstance::setName(const CIMName& name) { setClassName(name); }

String CIMInstance::toString() const
{
	const INSTData& d = *m_pdata;
	String out = "instance of " + d.m_owningClassName + " {\n";
	for (size_t i = 0; i < d.m_properties.size(); ++i)
	{
		const CIMProperty& p = d.m_properties[i];
		if (p.hasTrueQualifier(CIMQualifier::CIM_QUAL_INVISIBLE))
		{
			continue;
		}
		CIMValue v = p.getValue();
		out += p.getName() + " = " + (v ? v.toString() : String("null")) + ";\n";
	}
	out += "}\n";
	return out;
}

String CIMInstance::toMOF() const
{
	const INSTData& d = *m_pdata;
	String out = "INSTANCE OF " + d.m_owningClassName + "\n{\n";
	for (size_t i = 0; i < d.m_properties.size(); ++i)
	{
		const CIMProperty& p = d.m_properties[i];
		CIMValue v = p.getValue();
		out += "  " + p.getName() + " = " + (v ? v.toMOF() : String("NULL")) + ";\n";
	}
	out += "};\n";
	return out;
}

bool operator<(const CIMInstance& x, const CIMInstance& y)
{
	return x.toMOF() < y.toMOF();
}

} // end namespace OW_NAMESPACE
