#ifndef OW_CIMDATATYPE_HPP_INCLUDE_GUARD_
#define OW_CIMDATATYPE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMBase.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"

namespace OW_NAMESPACE
{

/// The data type of a CIM property, parameter or qualifier: a base type,
/// scalar or array (limited or unlimited), and for references the class.
class CIMDataType : public CIMBase
{
public:
	struct DTData;

	enum Type
	{
		CIMNULL = 0,
		UINT8 = 1,
		SINT8 = 2,
		UINT16 = 3,
		SINT16 = 4,
		UINT32 = 5,
		SINT32 = 6,
		UINT64 = 7,
		SINT64 = 8,
		STRING = 9,
		BOOLEAN = 10,
		REAL32 = 11,
		REAL64 = 12,
		DATETIME = 13,
		CHAR16 = 14,
		REFERENCE = 15,
		EMBEDDEDCLASS = 16,
		EMBEDDEDINSTANCE = 17,
		MAXDATATYPE = 18,
		INVALID = 99
	};
	enum
	{
		SIZE_SINGLE = 0,
		SIZE_UNLIMITED = 1,
		SIZE_LIMITED = 2
	};

	/// Non-null, of type CIMNULL (tests false).
	CIMDataType();
	explicit CIMDataType(CIMNULL_t);
	/// A scalar of the given type.
	CIMDataType(Type type);
	/// An array; a size below 1 means unlimited.
	CIMDataType(Type type, Int32 size);
	/// A REFERENCE to the named class.
	explicit CIMDataType(const CIMName& refClassName);
	CIMDataType(const CIMDataType& arg);
	virtual ~CIMDataType();
	CIMDataType& operator=(const CIMDataType& arg);

	virtual void setNull();
	bool isArrayType() const;
	bool isNumericType() const;
	static bool isNumericType(Type type);
	bool isReferenceType() const;
	bool isEmbeddedObjectType() const;
	Type getType() const;
	/// 1 for a scalar, -1 for an unlimited array, else the limit.
	Int32 getSize() const;
	Int32 getArraySize() const { return getSize(); }
	String getRefClassName() const;
	/// Makes the type an array; a size below 1 means unlimited.
	bool setToArrayType(Int32 size);
	/// Same base type and scalar/array kind.
	bool equals(const CIMDataType& arg) const;

	typedef COWIntrusiveReference<DTData> CIMDataType::*safe_bool;
	/// False when null, CIMNULL or INVALID.
	operator safe_bool() const;
	bool operator!() const;

	/// The MOF name of the base type, e.g. "uint32" or "REF".
	virtual String toString() const;
	virtual String toMOF() const;
	String getArrayMOF() const;

	/// The type named by a CIM type name ("uint32", "string", "reference",
	/// case ignored); a name ending in "[]" gives an unlimited array; an
	/// unknown name gives a null data type.
	static CIMDataType getDataType(const String& strType);
	/// The base type named by a CIM type name, or INVALID.
	static Type strToSimpleType(const String& strType);

private:
	COWIntrusiveReference<DTData> m_pdata;
	friend bool operator<(const CIMDataType& x, const CIMDataType& y);
	friend bool operator==(const CIMDataType& x, const CIMDataType& y);
};

bool operator<(const CIMDataType& x, const CIMDataType& y);
bool operator==(const CIMDataType& x, const CIMDataType& y);
inline bool operator!=(const CIMDataType& x, const CIMDataType& y) { return !(x == y); }
inline bool operator<=(const CIMDataType& x, const CIMDataType& y) { return !(y < x); }
inline bool operator>(const CIMDataType& x, const CIMDataType& y) { return y < x; }
inline bool operator>=(const CIMDataType& x, const CIMDataType& y) { return !(x < y); }

} // end namespace OW_NAMESPACE

#endif
