#ifndef OW_CIMMETHOD_HPP_INCLUDE_GUARD_
#define OW_CIMMETHOD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A declared method: name, return type, parameters in declaration order
/// and qualifiers.
class CIMMethod : public CIMElement
{
public:
	struct METHData;

	CIMMethod();
	explicit CIMMethod(CIMNULL_t);
	explicit CIMMethod(const CIMName& name);
	explicit CIMMethod(const char* name);
	CIMMethod(const CIMMethod& x);
	virtual ~CIMMethod();
	CIMMethod& operator=(const CIMMethod& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMMethod, COWIntrusiveReference<METHData>, m_pdata, !m_pdata.isNull())

	CIMMethod& addQualifier(const CIMQualifier& qual);
	CIMMethod& setQualifiers(const CIMQualifierArray& quals);
	CIMQualifierArray getQualifiers() const;
	/// Null when absent; the name is matched ignoring case.
	CIMQualifier getQualifier(const CIMName& name) const;
	CIMMethod& setQualifier(const CIMQualifier& qual);
	bool hasTrueQualifier(const CIMName& name) const;
	String getOriginClass() const;
	CIMMethod& setOriginClass(const CIMName& originCls);
	CIMMethod& addParameter(const CIMParameter& param);
	CIMMethod& setParameters(const CIMParameterArray& inParms);
	CIMParameterArray getParameters() const;
	/// Parameters with a true In qualifier, or without an In qualifier.
	CIMParameterArray getINParameters() const;
	/// Parameters with a true Out qualifier.
	CIMParameterArray getOUTParameters() const;
	CIMMethod& setReturnType(const CIMDataType& type);
	CIMDataType getReturnType() const;
	Int32 getReturnDataSize() const;
	CIMMethod& setOverridingMethod(const CIMName& omname);
	String getOverridingMethod() const;
	CIMMethod& setPropagated(bool propagated = true);
	bool getPropagated() const;
	CIMMethod clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<METHData> m_pdata;
};

} // end namespace OW_NAMESPACE

#endif
