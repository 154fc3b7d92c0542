#ifndef OW_CIMPARAMETER_HPP_INCLUDE_GUARD_
#define OW_CIMPARAMETER_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A declared method parameter: name, data type and qualifiers (In, Out, ...).
class CIMParameter : public CIMElement
{
public:
	struct PARMData;

	CIMParameter();
	explicit CIMParameter(CIMNULL_t);
	explicit CIMParameter(const CIMName& name);
	explicit CIMParameter(const char* name);
	CIMParameter(const CIMParameter& x);
	virtual ~CIMParameter();
	CIMParameter& operator=(const CIMParameter& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMParameter, COWIntrusiveReference<PARMData>, m_pdata, !m_pdata.isNull())

	CIMParameter& setQualifiers(const CIMQualifierArray& quals);
	CIMQualifierArray getQualifiers() const;
	/// Replaces the qualifier of the same name, or appends it.
	CIMParameter& setQualifier(const CIMQualifier& qual);
	CIMParameter& setDataType(const CIMDataType& type);
	CIMDataType getType() const;
	CIMDataType getDataType() const;
	Int32 getDataSize() const;
	/// Null when absent; the name is matched ignoring case.
	CIMQualifier getQualifier(const CIMName& name) const;
	bool hasTrueQualifier(const CIMName& name) const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<PARMData> m_pdata;
};

} // end namespace OW_NAMESPACE

#endif
