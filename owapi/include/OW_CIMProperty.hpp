#ifndef OW_CIMPROPERTY_HPP_INCLUDE_GUARD_
#define OW_CIMPROPERTY_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A CIM property: name, data type, value (may be null) and qualifiers.
class CIMProperty : public CIMElement
{
public:
	struct PROPData;

	static const char* const NAME_PROPERTY;

	/// Empty, untyped, null value.
	CIMProperty();
	explicit CIMProperty(CIMNULL_t);
	CIMProperty(const CIMProperty& arg);
	explicit CIMProperty(const CIMName& name);
	explicit CIMProperty(const char* name);
	/// Typed from the value; a null value throws.
	CIMProperty(const CIMName& name, const CIMValue& value);
	CIMProperty(const CIMName& name, const CIMDataType& dt);
	virtual ~CIMProperty();
	CIMProperty& operator=(const CIMProperty& arg);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMProperty, COWIntrusiveReference<PROPData>, m_pdata, !m_pdata.isNull())

	/// A copy of the qualifiers.
	CIMQualifierArray getQualifiers() const;
	/// Replaces all qualifiers.
	CIMProperty& setQualifiers(const CIMQualifierArray& quals);
	String getOriginClass() const;
	CIMProperty& setOriginClass(const CIMName& originCls);
	/// Stores the value, converted to the property's type when the type is
	/// set and differs (may throw CIMException(FAILED)). Null is accepted.
	CIMProperty& setValue(const CIMValue& val);
	CIMProperty& setDataType(const CIMDataType& type);
	CIMProperty& setDataType(const CIMDataType::Type& type);
	Int32 getSize() const;
	CIMProperty& setDataSize(Int32 size);
	CIMDataType getDataType() const;
	/// Null when absent; the name is matched ignoring case.
	CIMQualifier getQualifier(const CIMName& name) const;
	/// Throws NoSuchQualifierException when absent.
	CIMQualifier getQualifierT(const CIMName& name) const;
	/// May be null.
	CIMValue getValue() const;
	/// Throws NULLValueException when the value is null.
	CIMValue getValueT() const;
	CIMProperty& setPropagated(bool propagated = true);
	bool getPropagated() const;
	CIMProperty& setOverridingProperty(const CIMName& opname);
	String getOverridingProperty() const;
	bool isReference() const;
	/// Key qualifier true, or a REFERENCE type.
	bool isKey() const;
	CIMProperty filter(WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers) const;
	/// Replaces the qualifier of the same name, or appends it; null is ignored.
	CIMProperty& setQualifier(const CIMQualifier& qual);
	/// A duplicate name throws CIMException(ALREADY_EXISTS).
	CIMProperty& addQualifier(const CIMQualifier& qual);
	bool removeQualifier(const CIMName& name);
	CIMProperty& clearQualifiers();
	CIMProperty& clearNonKeyQualifiers();
	CIMProperty clone() const;
	CIMProperty clone(WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin) const;
	/// True if the qualifier exists with a non-null scalar boolean true.
	bool hasTrueQualifier(const CIMName& name) const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	/// "<type>:<name>=<value>", "null" for a null value.
	virtual String toString() const;
	virtual String toMOF() const;

private:
	COWIntrusiveReference<PROPData> m_pdata;
	friend bool operator<(const CIMProperty& x, const CIMProperty& y);
};

bool operator<(const CIMProperty& x, const CIMProperty& y);

} // end namespace OW_NAMESPACE

#endif
