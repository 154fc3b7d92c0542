#ifndef OW_CIMCLASS_HPP_INCLUDE_GUARD_
#define OW_CIMCLASS_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_WBEMFlags.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A class definition: name, superclass, qualifiers, properties and methods.
class CIMClass : public CIMElement
{
public:
	struct CLSData;

	static const char* const NAMESPACECLASS;

	CIMClass();
	explicit CIMClass(CIMNULL_t);
	explicit CIMClass(const CIMName& name);
	explicit CIMClass(const char* name);
	CIMClass(const CIMClass& x);
	virtual ~CIMClass();
	CIMClass& operator=(const CIMClass& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMClass, COWIntrusiveReference<CLSData>, m_pdata, !m_pdata.isNull())

	/// The superclass name; "" for a root class.
	String getSuperClass() const;
	CIMClass& setSuperClass(const CIMName& pname);
	/// Properties with the Key qualifier (or of reference type).
	CIMPropertyArray getKeys() const;
	/// Null when absent; the name is matched ignoring case.
	CIMQualifier getQualifier(const CIMName& name) const;
	CIMProperty getProperty(const CIMName& name) const;
	CIMProperty getProperty(const CIMName& name, const CIMName& originClass) const;
	CIMMethod getMethod(const CIMName& name) const;
	CIMMethod getMethod(const CIMName& name, const CIMName& originClass) const;
	bool isAssociation() const;
	bool isAbstract() const;
	bool isKeyed() const;
	CIMQualifierArray getQualifiers() const;
	CIMPropertyArray getAllProperties() const;
	CIMPropertyArray getProperties() const;
	CIMMethodArray getAllMethods() const;
	CIMMethodArray getMethods() const;
	CIMClass& addProperty(const CIMProperty& prop);
	/// Replaces the property of the same name, or appends it.
	CIMClass& setProperty(const CIMProperty& prop);
	CIMClass& setProperties(const CIMPropertyArray& props);
	CIMClass& addQualifier(const CIMQualifier& qual);
	/// Replaces the qualifier of the same name, or appends it.
	CIMClass& setQualifier(const CIMQualifier& qual);
	CIMClass& setQualifiers(const CIMQualifierArray& quals);
	bool removeQualifier(const CIMName& name);
	bool removeProperty(const CIMName& name);
	CIMClass& addMethod(const CIMMethod& meth);
	CIMClass& setMethod(const CIMMethod& meth);
	CIMClass& setMethods(const CIMMethodArray& meths);
	/// An instance of this class holding its properties, types, default
	/// values and qualifiers.
	CIMInstance newInstance() const;
	CIMClass clone(WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray& propertyList = StringArray(),
		bool noProps = false) const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<CLSData> m_pdata;
};

} // end namespace OW_NAMESPACE

#endif
