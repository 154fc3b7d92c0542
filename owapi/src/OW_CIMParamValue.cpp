#include "OW_CIMParamValue.hpp"
#include "OW_CIMValue.hpp"
#include "OW_Array.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"

namespace OW_NAMESPACE
{

struct CIMParamValue::Data : public COWIntrusiveCountableBase
{
	Data() : m_val(CIMNULL) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new Data(*this); }
	String m_name;
	CIMValue m_val;
};

CIMParamValue::CIMParamValue() : m_pdata(new Data) {}
CIMParamValue::CIMParamValue(CIMNULL_t) {}

CIMParamValue::CIMParamValue(const CIMName& name, const CIMValue& val) : m_pdata(new Data)
{
	m_pdata->m_name = name.toString();
	m_pdata->m_val = val;
}

CIMParamValue::CIMParamValue(const CIMName& name) : m_pdata(new Data)
{
	m_pdata->m_name = name.toString();
}

CIMParamValue::CIMParamValue(const CIMParamValue& x) : CIMBase(), m_pdata(x.m_pdata) {}
CIMParamValue::~CIMParamValue() {}
CIMParamValue& CIMParamValue::operator=(const CIMParamValue& x) { m_pdata = x.m_pdata; return *this; }
String CIMParamValue::getName() const { return m_pdata->m_name; }

CIMParamValue& CIMParamValue::setName(const CIMName& name)
{
	m_pdata->m_name = name.toString();
	return *this;
}

CIMValue CIMParamValue::getValue() const { return m_pdata->m_val; }

CIMParamValue& CIMParamValue::setValue(const CIMValue& val)
{
	m_pdata->m_val = val;
	return *this;
}

void CIMParamValue::setNull() { m_pdata = COWIntrusiveReference<Data>(); }

String CIMParamValue::toString() const
{
	return "CIMParamValue(" + m_pdata->m_name + "): " + m_pdata->m_val.toString();
}

String CIMParamValue::toMOF() const
{
	return m_pdata->m_name + " = " + m_pdata->m_val.toMOF();
}

CIMValue getParamValue(const String& paramName, const CIMParamValueArray& params)
{
	for (size_t i = 0; i < params.size(); ++i)
	{
		if (params[i].getName().equalsIgnoreCase(paramName))
		{
			return params[i].getValue();
		}
	}
	return CIMValue(CIMNULL);
}

} // end namespace OW_NAMESPACE
