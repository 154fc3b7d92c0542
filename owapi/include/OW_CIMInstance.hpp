#ifndef OW_CIMINSTANCE_HPP_INCLUDE_GUARD_
#define OW_CIMINSTANCE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_WBEMFlags.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A CIM instance: class name, namespace, properties in insertion order, a
/// separate key list, qualifiers and a language. The key list changes only
/// through setKeys, setProperties and setProperty on key properties.
class CIMInstance : public CIMElement
{
public:
	struct INSTData;

	CIMInstance();
	explicit CIMInstance(CIMNULL_t);
	CIMInstance(const CIMInstance& x);
	explicit CIMInstance(const CIMName& name);
	explicit CIMInstance(const char* name);
	virtual ~CIMInstance();
	CIMInstance& operator=(const CIMInstance& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMInstance, COWIntrusiveReference<INSTData>, m_pdata, !m_pdata.isNull())

	CIMInstance& setKeys(const CIMPropertyArray& keys);
	String getClassName() const;
	CIMInstance& setClassName(const CIMName& name);
#ifndef OWAPI_SERIES_3_0
	String getNameSpace() const;
	CIMInstance& setNameSpace(const String& ns);
#endif
	String getLanguage() const;
#ifndef OWAPI_SERIES_3_0
	CIMInstance& setLanguage(const String& language);
#endif
	CIMQualifierArray getQualifiers() const;
	CIMQualifier getQualifier(const CIMName& qualName) const;
	CIMInstance& setQualifiers(const CIMQualifierArray& quals);
	CIMInstance& setQualifier(const CIMQualifier& qual);
	bool removeQualifier(const CIMName& qualName);
	/// All properties, or those declared with the given type.
	CIMPropertyArray getProperties(Int32 valueDataType = CIMDataType::INVALID) const;
	/// The first property of that name (case ignored), or a null property.
	CIMProperty getProperty(const CIMName& name) const;
	CIMProperty getProperty(const CIMName& name, const CIMName& originClass) const;
	/// Throws NoSuchPropertyException when absent.
	CIMProperty getPropertyT(const CIMName& name) const;
	/// Null when the property is absent or has no value.
	CIMValue getPropertyValue(const CIMName& name) const;
	bool propertyHasValue(const CIMName& name) const;
	/// The stored key list.
	CIMPropertyArray getKeyValuePairs() const;
	CIMInstance& updatePropertyValues(const CIMPropertyArray& props);
	CIMInstance& updatePropertyValue(const CIMProperty& prop);
#ifndef OWAPI_SERIES_3_0
	CIMInstance& updatePropertyValue(const CIMName& name, const CIMValue& value);
#endif
	/// Sets the value of an existing property (converted to its type), or
	/// appends an untyped-qualifier property typed from the value.
	CIMInstance& setProperty(const CIMName& name, const CIMValue& cv);
	/// Replaces the property of the same name wholesale, or appends it.
	CIMInstance& setProperty(const CIMProperty& prop);
	/// Replaces all properties and rebuilds the key list.
	CIMInstance& setProperties(const CIMPropertyArray& props);
	CIMInstance& removeProperty(const CIMName& propName);
	CIMInstance filterProperties(const StringArray& propertyList,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		bool ignorePropertyList = false) const;
	CIMInstance clone(WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray& propertyList = StringArray(),
		bool noProps = false) const;
	/// Converts values to the class's property types and adds missing ones.
	CIMInstance& syncWithClass(const CIMClass& cc,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers = WBEMFlags::E_INCLUDE_QUALIFIERS);
	bool propertiesAreEqualTo(const CIMInstance& other) const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	/// "instance of <Class> {\n" + "<Name> = <value>;\n" per property + "}\n".
	virtual String toString() const;
	virtual String toMOF() const;
private:
	void rebuildKeys();
	COWIntrusiveReference<INSTData> m_pdata;
	friend bool operator<(const CIMInstance& x, const CIMInstance& y);
};

bool operator<(const CIMInstance& x, const CIMInstance& y);

} // end namespace OW_NAMESPACE

#endif
