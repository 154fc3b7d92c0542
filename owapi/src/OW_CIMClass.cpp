#include "OW_CIMClass.hpp"
#include "OW_CIMMethod.hpp"
#include "OW_CIMParameter.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMException.hpp"
#include "OW_Bool.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include "OW_ElementLists.hpp"

namespace OW_NAMESPACE
{

namespace
{
String qualifiersMOF(const CIMQualifierArray& quals, const char* indent)
{
	if (quals.empty())
	{
		return String();
	}
	String out = String(indent) + "[";
	for (size_t i = 0; i < quals.size(); ++i)
	{
		if (i > 0)
		{
			out += ", ";
		}
		out += quals[i].toMOF();
	}
	return out + "]\n";
}

} // end unnamed namespace

bool ElementLists::trueQualifier(const CIMQualifierArray& quals, const char* name)
{
	for (size_t i = 0; i < quals.size(); ++i)
	{
		if (quals[i].getName().equalsIgnoreCase(name))
		{
			CIMValue v = quals[i].getValue();
			return v && v.getType() == CIMDataType::BOOLEAN && !v.isArray() && bool(v.toBool());
		}
	}
	return false;
}

// ---- CIMParameter

struct CIMParameter::PARMData : public COWIntrusiveCountableBase
{
	virtual COWIntrusiveCountableBase* cloneBase() const { return new PARMData(*this); }
	String m_name;
	CIMDataType m_dataType;
	CIMQualifierArray m_qualifiers;
};

CIMParameter::CIMParameter() : m_pdata(new PARMData) {}
CIMParameter::CIMParameter(CIMNULL_t) {}
CIMParameter::CIMParameter(const CIMName& name) : m_pdata(new PARMData) { m_pdata->m_name = name.toString(); }
CIMParameter::CIMParameter(const char* name) : m_pdata(new PARMData) { m_pdata->m_name = String(name); }
CIMParameter::CIMParameter(const CIMParameter& x) : CIMElement(), m_pdata(x.m_pdata) {}
CIMParameter::~CIMParameter() {}
CIMParameter& CIMParameter::operator=(const CIMParameter& x) { m_pdata = x.m_pdata; return *this; }
void CIMParameter::setNull() { m_pdata = COWIntrusiveReference<PARMData>(); }

CIMParameter& CIMParameter::setQualifiers(const CIMQualifierArray& quals)
{
	m_pdata->m_qualifiers = quals;
	return *this;
}

CIMQualifierArray CIMParameter::getQualifiers() const { return m_pdata->m_qualifiers; }

CIMParameter& CIMParameter::setQualifier(const CIMQualifier& qual)
{
	if (qual)
	{
		ElementLists::set(m_pdata->m_qualifiers, qual);
	}
	return *this;
}

CIMParameter& CIMParameter::setDataType(const CIMDataType& type)
{
	m_pdata->m_dataType = type;
	return *this;
}

CIMDataType CIMParameter::getType() const { return m_pdata->m_dataType; }
CIMDataType CIMParameter::getDataType() const { return m_pdata->m_dataType; }
Int32 CIMParameter::getDataSize() const { return m_pdata->m_dataType.getSize(); }

CIMQualifier CIMParameter::getQualifier(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_qualifiers, name);
}

bool CIMParameter::hasTrueQualifier(const CIMName& name) const
{
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, name.toString().c_str());
}

String CIMParameter::getName() const { return m_pdata->m_name; }
void CIMParameter::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }
String CIMParameter::toString() const { return toMOF(); }

String CIMParameter::toMOF() const
{
	const PARMData& d = *m_pdata;
	String out;
	if (!d.m_qualifiers.empty())
	{
		out = qualifiersMOF(d.m_qualifiers, "");
		out = out.substring(0, out.length() - 1) + " ";
	}
	return out + d.m_dataType.toMOF() + " " + d.m_name + d.m_dataType.getArrayMOF();
}

// ---- CIMMethod

struct CIMMethod::METHData : public COWIntrusiveCountableBase
{
	METHData() : m_propagated(false) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new METHData(*this); }
	String m_name;
	CIMDataType m_returnDatatype;
	CIMQualifierArray m_qualifiers;
	CIMParameterArray m_parameters;
	String m_originClass;
	String m_override;
	bool m_propagated;
};

CIMMethod::CIMMethod() : m_pdata(new METHData) {}
CIMMethod::CIMMethod(CIMNULL_t) {}
CIMMethod::CIMMethod(const CIMName& name) : m_pdata(new METHData) { m_pdata->m_name = name.toString(); }
CIMMethod::CIMMethod(const char* name) : m_pdata(new METHData) { m_pdata->m_name = String(name); }
CIMMethod::CIMMethod(const CIMMethod& x) : CIMElement(), m_pdata(x.m_pdata) {}
CIMMethod::~CIMMethod() {}
CIMMethod& CIMMethod::operator=(const CIMMethod& x) { m_pdata = x.m_pdata; return *this; }
void CIMMethod::setNull() { m_pdata = COWIntrusiveReference<METHData>(); }

CIMMethod& CIMMethod::addQualifier(const CIMQualifier& qual)
{
	if (ElementLists::find(getQualifiers(), qual.getName()) != String::npos)
	{
		String msg = String("Qualifier ") + qual.getName() + " already exists";
		throw CIMException(__FILE__, __LINE__, CIMException::ALREADY_EXISTS, msg.c_str());
	}
	m_pdata->m_qualifiers.push_back(qual);
	return *this;
}

CIMMethod& CIMMethod::setQualifiers(const CIMQualifierArray& quals)
{
	m_pdata->m_qualifiers = quals;
	return *this;
}

CIMQualifierArray CIMMethod::getQualifiers() const { return m_pdata->m_qualifiers; }

CIMQualifier CIMMethod::getQualifier(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_qualifiers, name);
}

CIMMethod& CIMMethod::setQualifier(const CIMQualifier& qual)
{
	if (qual)
	{
		ElementLists::set(m_pdata->m_qualifiers, qual);
	}
	return *this;
}

bool CIMMethod::hasTrueQualifier(const CIMName& name) const
{
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, name.toString().c_str());
}

String CIMMethod::getOriginClass() const { return m_pdata->m_originClass; }

CIMMethod& CIMMethod::setOriginClass(const CIMName& originCls)
{
	m_pdata->m_originClass = originCls.toString();
	return *this;
}

CIMMethod& CIMMethod::addParameter(const CIMParameter& param)
{
	m_pdata->m_parameters.push_back(param);
	return *this;
}

CIMMethod& CIMMethod::setParameters(const CIMParameterArray& inParms)
{
	m_pdata->m_parameters = inParms;
	return *this;
}

CIMParameterArray CIMMethod::getParameters() const { return m_pdata->m_parameters; }

CIMParameterArray CIMMethod::getINParameters() const
{
	CIMParameterArray result;
	const CIMParameterArray& params = m_pdata->m_parameters;
	for (size_t i = 0; i < params.size(); ++i)
	{
		// A parameter without an In qualifier is an input parameter.
		if (!params[i].getQualifier(CIMQualifier::CIM_QUAL_IN)
			|| params[i].hasTrueQualifier(CIMQualifier::CIM_QUAL_IN))
		{
			result.push_back(params[i]);
		}
	}
	return result;
}

CIMParameterArray CIMMethod::getOUTParameters() const
{
	CIMParameterArray result;
	const CIMParameterArray& params = m_pdata->m_parameters;
	for (size_t i = 0; i < params.size(); ++i)
	{
		if (params[i].hasTrueQualifier(CIMQualifier::CIM_QUAL_OUT))
		{
			result.push_back(params[i]);
		}
	}
	return result;
}

CIMMethod& CIMMethod::setReturnType(const CIMDataType& type)
{
	m_pdata->m_returnDatatype = type;
	return *this;
}

CIMDataType CIMMethod::getReturnType() const { return m_pdata->m_returnDatatype; }
Int32 CIMMethod::getReturnDataSize() const { return m_pdata->m_returnDatatype.getSize(); }

CIMMethod& CIMMethod::setOverridingMethod(const CIMName& omname)
{
	m_pdata->m_override = omname.toString();
	return *this;
}

String CIMMethod::getOverridingMethod() const { return m_pdata->m_override; }

CIMMethod& CIMMethod::setPropagated(bool propagated)
{
	m_pdata->m_propagated = propagated;
	return *this;
}

bool CIMMethod::getPropagated() const { return m_pdata->m_propagated; }

CIMMethod CIMMethod::clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const
{
	CIMMethod m(*this);
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		m.m_pdata->m_qualifiers.clear();
		CIMParameterArray params = m.getParameters();
		for (size_t i = 0; i < params.size(); ++i)
		{
			params[i].setQualifiers(CIMQualifierArray());
		}
		m.m_pdata->m_parameters = params;
	}
	if (includeClassOrigin == WBEMFlags::E_EXCLUDE_CLASS_ORIGIN)
	{
		m.m_pdata->m_originClass = String();
	}
	return m;
}

String CIMMethod::getName() const { return m_pdata->m_name; }
void CIMMethod::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }
String CIMMethod::toString() const { return toMOF(); }

String CIMMethod::toMOF() const
{
	const METHData& d = *m_pdata;
	String out = qualifiersMOF(d.m_qualifiers, "  ");
	out += "  " + d.m_returnDatatype.toMOF() + " " + d.m_name + "(";
	for (size_t i = 0; i < d.m_parameters.size(); ++i)
	{
		out += (i > 0 ? ", " : "") + d.m_parameters[i].toMOF();
	}
	return out + ");\n";
}

// ---- CIMClass

struct CIMClass::CLSData : public COWIntrusiveCountableBase
{
	virtual COWIntrusiveCountableBase* cloneBase() const { return new CLSData(*this); }
	String m_name;
	String m_parentClassName;
	CIMQualifierArray m_qualifiers;
	CIMPropertyArray m_properties;
	CIMMethodArray m_methods;
};

const char* const CIMClass::NAMESPACECLASS = "__Namespace";

CIMClass::CIMClass() : m_pdata(new CLSData) {}
CIMClass::CIMClass(CIMNULL_t) {}
CIMClass::CIMClass(const CIMName& name) : m_pdata(new CLSData) { m_pdata->m_name = name.toString(); }
CIMClass::CIMClass(const char* name) : m_pdata(new CLSData) { m_pdata->m_name = String(name); }
CIMClass::CIMClass(const CIMClass& x) : CIMElement(), m_pdata(x.m_pdata) {}
CIMClass::~CIMClass() {}
CIMClass& CIMClass::operator=(const CIMClass& x) { m_pdata = x.m_pdata; return *this; }
void CIMClass::setNull() { m_pdata = COWIntrusiveReference<CLSData>(); }

String CIMClass::getSuperClass() const { return m_pdata->m_parentClassName; }

CIMClass& CIMClass::setSuperClass(const CIMName& pname)
{
	m_pdata->m_parentClassName = pname.toString();
	return *this;
}

CIMPropertyArray CIMClass::getKeys() const
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
	return keys;
}

CIMQualifier CIMClass::getQualifier(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_qualifiers, name);
}

CIMProperty CIMClass::getProperty(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_properties, name);
}

CIMProperty CIMClass::getProperty(const CIMName& name, const CIMName& originClass) const
{
	CIMProperty p = getProperty(name);
	if (p && !p.getOriginClass().equalsIgnoreCase(originClass.toString()))
	{
		return CIMProperty(CIMNULL);
	}
	return p;
}

CIMMethod CIMClass::getMethod(const CIMName& name) const
{
	return ElementLists::get(m_pdata->m_methods, name);
}

CIMMethod CIMClass::getMethod(const CIMName& name, const CIMName& originClass) const
{
	CIMMethod m = getMethod(name);
	if (m && !m.getOriginClass().equalsIgnoreCase(originClass.toString()))
	{
		return CIMMethod(CIMNULL);
	}
	return m;
}

bool CIMClass::isAssociation() const
{
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, CIMQualifier::CIM_QUAL_ASSOCIATION);
}

bool CIMClass::isAbstract() const
{
	return ElementLists::trueQualifier(m_pdata->m_qualifiers, CIMQualifier::CIM_QUAL_ABSTRACT);
}

bool CIMClass::isKeyed() const { return !getKeys().empty(); }
CIMQualifierArray CIMClass::getQualifiers() const { return m_pdata->m_qualifiers; }
CIMPropertyArray CIMClass::getAllProperties() const { return m_pdata->m_properties; }
CIMMethodArray CIMClass::getAllMethods() const { return m_pdata->m_methods; }
CIMPropertyArray CIMClass::getProperties() const { return m_pdata->m_properties; }
CIMMethodArray CIMClass::getMethods() const { return m_pdata->m_methods; }

CIMClass& CIMClass::addProperty(const CIMProperty& prop)
{
	if (prop)
	{
		m_pdata->m_properties.push_back(prop);
	}
	return *this;
}

CIMClass& CIMClass::setProperty(const CIMProperty& prop)
{
	if (prop)
	{
		ElementLists::set(m_pdata->m_properties, prop);
	}
	return *this;
}

CIMClass& CIMClass::setProperties(const CIMPropertyArray& props)
{
	m_pdata->m_properties = props;
	return *this;
}

CIMClass& CIMClass::addQualifier(const CIMQualifier& qual)
{
	if (ElementLists::find(getQualifiers(), qual.getName()) != String::npos)
	{
		String msg = String("Qualifier ") + qual.getName() + " already exists";
		throw CIMException(__FILE__, __LINE__, CIMException::ALREADY_EXISTS, msg.c_str());
	}
	m_pdata->m_qualifiers.push_back(qual);
	return *this;
}

CIMClass& CIMClass::setQualifier(const CIMQualifier& qual)
{
	if (qual)
	{
		ElementLists::set(m_pdata->m_qualifiers, qual);
	}
	return *this;
}

CIMClass& CIMClass::setQualifiers(const CIMQualifierArray& quals)
{
	m_pdata->m_qualifiers = quals;
	return *this;
}

bool CIMClass::removeQualifier(const CIMName& name) { return ElementLists::remove(m_pdata->m_qualifiers, name); }
bool CIMClass::removeProperty(const CIMName& name) { return ElementLists::remove(m_pdata->m_properties, name); }

CIMClass& CIMClass::addMethod(const CIMMethod& meth)
{
	if (meth)
	{
		m_pdata->m_methods.push_back(meth);
	}
	return *this;
}

CIMClass& CIMClass::setMethod(const CIMMethod& meth)
{
	if (meth)
	{
		ElementLists::set(m_pdata->m_methods, meth);
	}
	return *this;
}

CIMClass& CIMClass::setMethods(const CIMMethodArray& meths)
{
	m_pdata->m_methods = meths;
	return *this;
}

CIMInstance CIMClass::newInstance() const
{
	CIMInstance ci(m_pdata->m_name);
	CIMPropertyArray props;
	const CIMPropertyArray& mine = m_pdata->m_properties;
	for (size_t i = 0; i < mine.size(); ++i)
	{
		props.push_back(mine[i].clone());
	}
	ci.setProperties(props);
	return ci;
}

CIMClass CIMClass::clone(WBEMFlags::ELocalOnlyFlag localOnly,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
	const StringArray& propertyList, bool noProps) const
{
	CIMClass cc(*this);
	CIMPropertyArray props;
	const CIMPropertyArray& mine = m_pdata->m_properties;
	for (size_t i = 0; i < mine.size(); ++i)
	{
		if (localOnly == WBEMFlags::E_LOCAL_ONLY && mine[i].getPropagated())
		{
			continue;
		}
		if (noProps)
		{
			bool listed = false;
			for (size_t j = 0; j < propertyList.size(); ++j)
			{
				listed = listed || propertyList[j].equalsIgnoreCase(mine[i].getName());
			}
			if (!listed)
			{
				continue;
			}
		}
		props.push_back(mine[i].clone(includeQualifiers, includeClassOrigin));
	}
	cc.m_pdata->m_properties = props;
	CIMMethodArray meths;
	const CIMMethodArray& myMeths = m_pdata->m_methods;
	for (size_t i = 0; i < myMeths.size(); ++i)
	{
		if (localOnly == WBEMFlags::E_LOCAL_ONLY && myMeths[i].getPropagated())
		{
			continue;
		}
		meths.push_back(myMeths[i].clone(includeQualifiers, includeClassOrigin));
	}
	cc.m_pdata->m_methods = meths;
	if (includeQualifiers == WBEMFlags::E_EXCLUDE_QUALIFIERS)
	{
		cc.m_pdata->m_qualifiers.clear();
	}
	return cc;
}

String CIMClass::getName() const { return m_pdata->m_name; }
void CIMClass::setName(const CIMName& name) { m_pdata->m_name = name.toString(); }
String CIMClass::toString() const { return toMOF(); }

String CIMClass::toMOF() const
{
	const CLSData& d = *m_pdata;
	String out = qualifiersMOF(d.m_qualifiers, "");
	out += "class " + d.m_name;
	if (!d.m_parentClassName.empty())
	{
		out += " : " + d.m_parentClassName;
	}
	out += "\n{\n";
	for (size_t i = 0; i < d.m_properties.size(); ++i)
	{
		out += d.m_properties[i].toMOF();
	}
	for (size_t i = 0; i < d.m_methods.size(); ++i)
	{
		out += d.m_methods[i].toMOF();
	}
	return out + "};\n";
}

} // end namespace OW_NAMESPACE
