#ifndef OW_CIMQUALIFIERTYPE_HPP_INCLUDE_GUARD_
#define OW_CIMQUALIFIERTYPE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A qualifier declaration: type, default value, scopes and flavors.
class CIMQualifierType : public CIMElement
{
public:
	struct QUALTData;

	/// The name constructors add the flavors ENABLEOVERRIDE and TOSUBCLASS.
	CIMQualifierType();
	explicit CIMQualifierType(CIMNULL_t);
	CIMQualifierType(const CIMName& name);
	CIMQualifierType(const char* name);
	CIMQualifierType(const CIMQualifierType& x);
	virtual ~CIMQualifierType();
	CIMQualifierType& operator=(const CIMQualifierType& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMQualifierType, COWIntrusiveReference<QUALTData>, m_pdata, !m_pdata.isNull())

	const CIMScopeArray& getScope() const;
	CIMDataType getDataType() const;
	Int32 getDataSize() const;
	CIMValue getDefaultValue() const;
	/// Converts an existing default value to the new type.
	CIMQualifierType& setDataType(const CIMDataType& dataType);
	CIMQualifierType& setDataType(const CIMDataType::Type& dataType);
	/// Converts the value to the set data type.
	CIMQualifierType& setDefaultValue(const CIMValue& defValue);
	CIMQualifierType& addScope(const CIMScope& newScope);
	bool hasScope(const CIMScope& scopeArg) const;
	bool hasFlavor(const CIMFlavor& flavorArg) const;
	CIMQualifierType& addFlavor(const CIMFlavor& newFlavor);
	CIMQualifierType& removeFlavor(const Int32 flavor);
	bool hasDefaultValue() const;
	bool isDefaultValueArray() const;
	CIMFlavorArray getFlavors() const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<QUALTData> m_pdata;
};

} // end namespace OW_NAMESPACE

#endif
