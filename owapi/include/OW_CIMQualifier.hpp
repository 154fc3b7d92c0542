#ifndef OW_CIMQUALIFIER_HPP_INCLUDE_GUARD_
#define OW_CIMQUALIFIER_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMElement.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A qualifier on a class, property, method or parameter. Its value is
/// stored as given, without type checks.
class CIMQualifier : public CIMElement
{
public:
	struct QUALData;

	static const char* const CIM_QUAL_ABSTRACT;
	static const char* const CIM_QUAL_AGGREGATE;
	static const char* const CIM_QUAL_AGGREGATION;
	static const char* const CIM_QUAL_ALIAS;
	static const char* const CIM_QUAL_ARRAYTYPE;
	static const char* const CIM_QUAL_ASSOCIATION;
	static const char* const CIM_QUAL_BITMAP;
	static const char* const CIM_QUAL_BITVALUES;
	static const char* const CIM_QUAL_COMPOSITION;
	static const char* const CIM_QUAL_COUNTER;
	static const char* const CIM_QUAL_DELETE;
	static const char* const CIM_QUAL_DEPRECATED;
	static const char* const CIM_QUAL_DESCRIPTION;
	static const char* const CIM_QUAL_DISPLAYNAME;
	static const char* const CIM_QUAL_EMBEDDEDOBJECT;
	static const char* const CIM_QUAL_EXPENSIVE;
	static const char* const CIM_QUAL_EXPERIMENTAL;
	static const char* const CIM_QUAL_GAUGE;
	static const char* const CIM_QUAL_IFDELETED;
	static const char* const CIM_QUAL_IN;
	static const char* const CIM_QUAL_INDICATION;
	static const char* const CIM_QUAL_INVISIBLE;
	static const char* const CIM_QUAL_KEY;
	static const char* const CIM_QUAL_LARGE;
	static const char* const CIM_QUAL_MAPPINGSTRINGS;
	static const char* const CIM_QUAL_MAX;
	static const char* const CIM_QUAL_MAXLEN;
	static const char* const CIM_QUAL_MAXVALUE;
	static const char* const CIM_QUAL_MIN;
	static const char* const CIM_QUAL_MINLEN;
	static const char* const CIM_QUAL_MINVALUE;
	static const char* const CIM_QUAL_MODELCORRESPONDENCE;
	static const char* const CIM_QUAL_NONLOCAL;
	static const char* const CIM_QUAL_NONLOCALTYPE;
	static const char* const CIM_QUAL_NULLVALUE;
	static const char* const CIM_QUAL_OUT;
	static const char* const CIM_QUAL_OVERRIDE;
	static const char* const CIM_QUAL_PROPAGATED;
	static const char* const CIM_QUAL_PROVIDER;
	static const char* const CIM_QUAL_READ;
	static const char* const CIM_QUAL_REQUIRED;
	static const char* const CIM_QUAL_REVISION;
	static const char* const CIM_QUAL_SCHEMA;
	static const char* const CIM_QUAL_SOURCE;
	static const char* const CIM_QUAL_SOURCETYPE;
	static const char* const CIM_QUAL_STATIC;
	static const char* const CIM_QUAL_TERMINAL;
	static const char* const CIM_QUAL_UNITS;
	static const char* const CIM_QUAL_VALUEMAP;
	static const char* const CIM_QUAL_VALUES;
	static const char* const CIM_QUAL_VERSION;
	static const char* const CIM_QUAL_WEAK;
	static const char* const CIM_QUAL_WRITE;

	CIMQualifier();
	explicit CIMQualifier(CIMNULL_t);
	CIMQualifier(const CIMName& name);
	CIMQualifier(const char* name);
	/// Takes the name, flavors and default value of the declaration.
	CIMQualifier(const CIMQualifierType& cgt);
	CIMQualifier(const CIMQualifier& x);
	virtual ~CIMQualifier();
	CIMQualifier& operator=(const CIMQualifier& x);

	virtual void setNull();
	OW_SAFE_BOOL_IMPL(CIMQualifier, COWIntrusiveReference<QUALData>, m_pdata, !m_pdata.isNull())

	/// Name "Key", value boolean true.
	static CIMQualifier createKeyQualifier();

	bool isKeyQualifier() const;
	bool isAssociationQualifier() const;
	/// May be null.
	CIMValue getValue() const;
	/// Throws NULLValueException when the value is null.
	CIMValue getValueT() const;
	/// Stored as is.
	CIMQualifier& setValue(const CIMValue& value);
	CIMQualifier& setDefaults(const CIMQualifierType& qtype);
	CIMQualifierType getDefaults() const;
	bool hasFlavor(const CIMFlavor& flavor) const;
	CIMQualifier& addFlavor(const CIMFlavor& flavor);
	CIMQualifier& removeFlavor(Int32 flavor);
	bool hasValue() const;
	/// Compares names only.
	bool equals(const CIMQualifier& arg) const;
	CIMFlavorArray getFlavor() const;
	CIMQualifier& setPropagated(bool propagated = true);
	bool getPropagated() const;
	CIMQualifier& setLanguage(const String& language);
	String getLanguage() const;

	virtual String getName() const;
	virtual void setName(const CIMName& name);
	/// "CIMQualifier(<name>)".
	virtual String toString() const;
	virtual String toMOF() const;
private:
	COWIntrusiveReference<QUALData> m_pdata;
};

} // end namespace OW_NAMESPACE

#endif
