#ifndef OW_CIMPARAMVALUE_HPP_INCLUDE_GUARD_
#define OW_CIMPARAMVALUE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMBase.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A method parameter's name and value (the value may be null).
class CIMParamValue : public CIMBase
{
public:
	struct Data;

	/// Empty name, null value.
	CIMParamValue();
	explicit CIMParamValue(CIMNULL_t);
	CIMParamValue(const CIMName& name, const CIMValue& val);
	explicit CIMParamValue(const CIMName& name);
	CIMParamValue(const CIMParamValue& x);
	virtual ~CIMParamValue();
	CIMParamValue& operator=(const CIMParamValue& x);

	String getName() const;
	CIMParamValue& setName(const CIMName& name);
	CIMValue getValue() const;
	/// Stored as is.
	CIMParamValue& setValue(const CIMValue& val);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMParamValue, COWIntrusiveReference<Data>, m_pdata, !m_pdata.isNull())
	/// "CIMParamValue(<name>): <value>".
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<Data> m_pdata;
};

#ifndef OWAPI_SERIES_3_0
/// The value of the first parameter of that name (case ignored), or null.
CIMValue getParamValue(const String& paramName, const CIMParamValueArray& params);
#endif

} // end namespace OW_NAMESPACE

#endif
