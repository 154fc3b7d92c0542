#ifndef OW_CIMVALUE_HPP_INCLUDE_GUARD_
#define OW_CIMVALUE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMBase.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMName.hpp"
#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_CIMNULL.hpp"

namespace OW_NAMESPACE
{

/// A CIM value: a typed scalar or array, or null. There is no default
/// constructor; CIMValue(CIMNULL) is the null value. Extraction is strict:
/// get()/toXxx() of another type throw ValueCastException (a scalar SINT64
/// converts to every numeric scalar type).
class CIMValue : public CIMBase
{
public:
	class CIMValueImpl;

	explicit CIMValue(CIMNULL_t);
	CIMValue(const CIMValue& x);
	virtual ~CIMValue();
	explicit CIMValue(bool x);
	explicit CIMValue(Bool x);
	explicit CIMValue(UInt8 x);
	explicit CIMValue(Int8 x);
	explicit CIMValue(UInt16 x);
	explicit CIMValue(Int16 x);
	explicit CIMValue(UInt32 x);
	explicit CIMValue(Int32 x);
	explicit CIMValue(UInt64 x);
	explicit CIMValue(Int64 x);
	explicit CIMValue(Real32 x);
	explicit CIMValue(Real64 x);
	explicit CIMValue(const Char16& x);
	explicit CIMValue(const String& x);
	explicit CIMValue(const char* x);
	explicit CIMValue(const CIMDateTime& x);
	explicit CIMValue(const CIMObjectPath& x);
	explicit CIMValue(const CIMClass& x);
	explicit CIMValue(const CIMInstance& x);
	explicit CIMValue(const BoolArray& x);
	explicit CIMValue(const Char16Array& x);
	explicit CIMValue(const UInt8Array& x);
	explicit CIMValue(const Int8Array& x);
	explicit CIMValue(const UInt16Array& x);
	explicit CIMValue(const Int16Array& x);
	explicit CIMValue(const UInt32Array& x);
	explicit CIMValue(const Int32Array& x);
	explicit CIMValue(const UInt64Array& x);
	explicit CIMValue(const Int64Array& x);
	explicit CIMValue(const Real64Array& x);
	explicit CIMValue(const Real32Array& x);
	explicit CIMValue(const StringArray& x);
	explicit CIMValue(const CIMDateTimeArray& x);
	explicit CIMValue(const CIMObjectPathArray& x);
	explicit CIMValue(const CIMClassArray& x);
	explicit CIMValue(const CIMInstanceArray& x);

	/// Parses value as the type named by cimtype ("uint32", ...); an unknown
	/// type name gives CIMValue(CIMNULL). Parse failures throw
	/// StringConversionException (or CIMException for a bad path).
	static CIMValue createSimpleValue(const String& cimtype, const String& value);

	CIMValue& operator=(const CIMValue& x);
	virtual void setNull();
	CIMValue& set(const CIMValue& val);

	OW_SAFE_BOOL_IMPL(CIMValue, COWIntrusiveReference<CIMValueImpl>, m_impl, !m_impl.isNull())

	UInt32 getArraySize() const;
	void get(Bool& x) const;
	void get(Char16& x) const;
	void get(UInt8& x) const;
	void get(Int8& x) const;
	void get(UInt16& x) const;
	void get(Int16& x) const;
	void get(UInt32& x) const;
	void get(Int32& x) const;
	void get(UInt64& x) const;
	void get(Int64& x) const;
	void get(Real32& x) const;
	void get(Real64& x) const;
	void get(String& x) const;
	void get(CIMDateTime& x) const;
	void get(CIMObjectPath& x) const;
	void get(CIMClass& x) const;
	void get(CIMInstance& x) const;
	void get(Char16Array& x) const;
	void get(UInt8Array& x) const;
	void get(Int8Array& x) const;
	void get(UInt16Array& x) const;
	void get(Int16Array& x) const;
	void get(UInt32Array& x) const;
	void get(Int32Array& x) const;
	void get(UInt64Array& x) const;
	void get(Int64Array& x) const;
	void get(Real64Array& x) const;
	void get(Real32Array& x) const;
	void get(StringArray& x) const;
	void get(BoolArray& x) const;
	void get(CIMDateTimeArray& x) const;
	void get(CIMObjectPathArray& x) const;
	void get(CIMClassArray& x) const;
	void get(CIMInstanceArray& x) const;

	Bool toBool() const;
	Char16 toChar16() const;
	UInt8 toUInt8() const;
	Int8 toInt8() const;
	UInt16 toUInt16() const;
	Int16 toInt16() const;
	UInt32 toUInt32() const;
	Int32 toInt32() const;
	UInt64 toUInt64() const;
	Int64 toInt64() const;
	Real32 toReal32() const;
	Real64 toReal64() const;
	CIMDateTime toCIMDateTime() const;
	CIMObjectPath toCIMObjectPath() const;
	CIMClass toCIMClass() const;
	CIMInstance toCIMInstance() const;
	Char16Array toChar16Array() const;
	UInt8Array toUInt8Array() const;
	Int8Array toInt8Array() const;
	UInt16Array toUInt16Array() const;
	Int16Array toInt16Array() const;
	UInt32Array toUInt32Array() const;
	Int32Array toInt32Array() const;
	UInt64Array toUInt64Array() const;
	Int64Array toInt64Array() const;
	Real64Array toReal64Array() const;
	Real32Array toReal32Array() const;
	StringArray toStringArray() const;
	BoolArray toBoolArray() const;
	CIMDateTimeArray toCIMDateTimeArray() const;
	CIMObjectPathArray toCIMObjectPathArray() const;
	CIMClassArray toCIMClassArray() const;
	CIMInstanceArray toCIMInstanceArray() const;

	/// Both null, or same type, array kind and contents.
	bool equal(const CIMValue& x) const;
	bool operator==(const CIMValue& x) const;
	bool operator!=(const CIMValue& x) const;
	/// Null orders first.
	bool operator<=(const CIMValue& x) const;
	bool operator>=(const CIMValue& x) const;
	bool operator<(const CIMValue& x) const;
	bool operator>(const CIMValue& x) const;

	CIMDataType::Type getType() const;
	/// Arrays report an unlimited array type.
	CIMDataType getCIMDataType() const;
	bool sameType(const CIMValue& x) const;
	bool isArray() const;
	bool isNumericType() const;

	/// Plain text of the value: "(null)" for null, strings unquoted,
	/// array elements joined with ",".
	virtual String toString() const;
	/// MOF text: strings quoted and escaped, arrays in braces.
	virtual String toMOF() const;

private:
	// Blocks a pointer from silently becoming a BOOLEAN value.
	explicit CIMValue(const void*);
	explicit CIMValue(void*);
	explicit CIMValue(volatile const void*);
	explicit CIMValue(volatile void*);

	COWIntrusiveReference<CIMValueImpl> m_impl;
};

} // end namespace OW_NAMESPACE

#endif
