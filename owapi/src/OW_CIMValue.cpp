#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_Bool.hpp"
#include "OW_Char16.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include <vector>

namespace OW_NAMESPACE
{

/// The data of a value. Every value is held as a list of elements; a scalar
/// is a list of one. Integers, booleans and characters share one list of
/// 64-bit words (signed values are stored sign-extended).
class CIMValue::CIMValueImpl : public COWIntrusiveCountableBase
{
public:
	CIMValueImpl(CIMDataType::Type t, bool array) : type(t), isArray(array) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new CIMValueImpl(*this); }

	size_t size() const
	{
		switch (type)
		{
			case CIMDataType::REAL32: case CIMDataType::REAL64: return reals.size();
			case CIMDataType::STRING: return strings.size();
			case CIMDataType::DATETIME: return dates.size();
			case CIMDataType::REFERENCE: return paths.size();
			case CIMDataType::EMBEDDEDCLASS: return classes.size();
			case CIMDataType::EMBEDDEDINSTANCE: return insts.size();
			default: return ints.size();
		}
	}

	CIMDataType::Type type;
	bool isArray;
	std::vector<UInt64> ints;
	std::vector<double> reals;
	std::vector<String> strings;
	std::vector<CIMDateTime> dates;
	std::vector<CIMObjectPath> paths;
	std::vector<CIMClass> classes;
	std::vector<CIMInstance> insts;
};

namespace
{
typedef CIMValue::CIMValueImpl Impl;

// Maps each C++ element type to its CIM type, its list in the data and
// the conversion to and from that list's element type.
template <class T> struct Traits;

#define OW_INT_TRAITS(CPP, CIMTYPE, NAME, SIGNED) \
template <> struct Traits<CPP> \
{ \
	typedef UInt64 Stored; \
	static const bool numeric = true; \
	static CIMDataType::Type type() { return CIMDataType::CIMTYPE; } \
	static const char* name() { return NAME; } \
	static std::vector<Stored>& list(Impl& d) { return d.ints; } \
	static const std::vector<Stored>& list(const Impl& d) { return d.ints; } \
	static Stored store(CPP v) { return SIGNED ? UInt64(Int64(v)) : UInt64(v); } \
	static CPP load(Stored v) { return SIGNED ? CPP(Int64(v)) : CPP(v); } \
};
OW_INT_TRAITS(UInt8, UINT8, "UINT8", false)
OW_INT_TRAITS(Int8, SINT8, "SINT8", true)
OW_INT_TRAITS(UInt16, UINT16, "UINT16", false)
OW_INT_TRAITS(Int16, SINT16, "SINT16", true)
OW_INT_TRAITS(UInt32, UINT32, "UINT32", false)
OW_INT_TRAITS(Int32, SINT32, "SINT32", true)
OW_INT_TRAITS(UInt64, UINT64, "UINT64", false)
OW_INT_TRAITS(Int64, SINT64, "SINT64", true)
#undef OW_INT_TRAITS

template <> struct Traits<Bool>
{
	typedef UInt64 Stored;
	static const bool numeric = false;
	static CIMDataType::Type type() { return CIMDataType::BOOLEAN; }
	static const char* name() { return "BOOLEAN"; }
	static std::vector<Stored>& list(Impl& d) { return d.ints; }
	static const std::vector<Stored>& list(const Impl& d) { return d.ints; }
	static Stored store(const Bool& v) { return bool(v) ? 1 : 0; }
	static Bool load(Stored v) { return Bool(v != 0); }
};

template <> struct Traits<Char16>
{
	typedef UInt64 Stored;
	static const bool numeric = false;
	static CIMDataType::Type type() { return CIMDataType::CHAR16; }
	static const char* name() { return "CHAR16"; }
	static std::vector<Stored>& list(Impl& d) { return d.ints; }
	static const std::vector<Stored>& list(const Impl& d) { return d.ints; }
	static Stored store(const Char16& v) { return v.getValue(); }
	static Char16 load(Stored v) { return Char16(UInt16(v)); }
};

template <> struct Traits<Real32>
{
	typedef double Stored;
	static const bool numeric = true;
	static CIMDataType::Type type() { return CIMDataType::REAL32; }
	static const char* name() { return "REAL32"; }
	static std::vector<Stored>& list(Impl& d) { return d.reals; }
	static const std::vector<Stored>& list(const Impl& d) { return d.reals; }
	static Stored store(Real32 v) { return v; }
	static Real32 load(Stored v) { return Real32(v); }
};

template <> struct Traits<Real64>
{
	typedef double Stored;
	static const bool numeric = true;
	static CIMDataType::Type type() { return CIMDataType::REAL64; }
	static const char* name() { return "REAL64"; }
	static std::vector<Stored>& list(Impl& d) { return d.reals; }
	static const std::vector<Stored>& list(const Impl& d) { return d.reals; }
	static Stored store(Real64 v) { return v; }
	static Real64 load(Stored v) { return v; }
};

#define OW_OBJ_TRAITS(CPP, CIMTYPE, NAME, ARRAYNAME, LIST) \
template <> struct Traits<CPP> \
{ \
	typedef CPP Stored; \
	static const bool numeric = false; \
	static CIMDataType::Type type() { return CIMDataType::CIMTYPE; } \
	static const char* name() { return NAME; } \
	static const char* arrayName() { return ARRAYNAME; } \
	static std::vector<Stored>& list(Impl& d) { return d.LIST; } \
	static const std::vector<Stored>& list(const Impl& d) { return d.LIST; } \
	static const Stored& store(const CPP& v) { return v; } \
	static const CPP& load(const Stored& v) { return v; } \
};
OW_OBJ_TRAITS(String, STRING, "STRING", "STRING ARRAY", strings)
OW_OBJ_TRAITS(CIMDateTime, DATETIME, "DATETIME", "DATETIME ARRAY", dates)
OW_OBJ_TRAITS(CIMObjectPath, REFERENCE, "REFERENCE", "OBJECTPATH ARRAY", paths)
OW_OBJ_TRAITS(CIMClass, EMBEDDEDCLASS, "EMBEDDEDCLASS", "EMBEDDEDCLASS ARRAY", classes)
OW_OBJ_TRAITS(CIMInstance, EMBEDDEDINSTANCE, "EMBEDDEDINSTANCE", "EMBEDDEDINSTANCE ARRAY", insts)
#undef OW_OBJ_TRAITS

template <class T> String arrayTypeName(...) { return String(Traits<T>::name()) + " ARRAY"; }
template <class T> String arrayTypeName(decltype(&Traits<T>::arrayName)) { return Traits<T>::arrayName(); }

[[noreturn]] void throwCast(const String& typeName)
{
	String msg = String("CIMValue::CIMValueImpl::get - Value is not a ") + typeName;
	throw ValueCastException(__FILE__, __LINE__, msg.c_str());
}

template <class T> Impl* makeScalar(const T& v)
{
	Impl* d = new Impl(Traits<T>::type(), false);
	Traits<T>::list(*d).push_back(Traits<T>::store(v));
	return d;
}

template <class T> Impl* makeArray(const Array<T>& a)
{
	Impl* d = new Impl(Traits<T>::type(), true);
	std::vector<typename Traits<T>::Stored>& l = Traits<T>::list(*d);
	l.reserve(a.size());
	for (typename Array<T>::const_iterator it = a.begin(); it != a.end(); ++it)
	{
		l.push_back(Traits<T>::store(*it));
	}
	return d;
}

// A scalar SINT64 converts to every numeric scalar type (MOF literals are
// parsed as SINT64).
template <class T> bool fromSint64(const Impl&, T&, std::false_type) { return false; }
template <class T> bool fromSint64(const Impl& d, T& x, std::true_type)
{
	if (d.type == CIMDataType::SINT64 && !d.isArray && !d.ints.empty())
	{
		x = T(Int64(d.ints[0]));
		return true;
	}
	return false;
}

template <class T> void getScalar(const Impl& d, T& x)
{
	if (d.type == Traits<T>::type() && !d.isArray)
	{
		x = Traits<T>::load(Traits<T>::list(d).at(0));
		return;
	}
	if (fromSint64(d, x, std::integral_constant<bool, Traits<T>::numeric>()))
	{
		return;
	}
	throwCast(Traits<T>::name());
}

template <class T> void getArray(const Impl& d, Array<T>& x)
{
	if (d.type != Traits<T>::type() || !d.isArray)
	{
		throwCast(arrayTypeName<T>(0));
	}
	const std::vector<typename Traits<T>::Stored>& l = Traits<T>::list(d);
	Array<T> result;
	result.reserve(l.size());
	for (size_t i = 0; i < l.size(); ++i)
	{
		result.push_back(Traits<T>::load(l[i]));
	}
	x = result;
}

String escapeMOF(const String& s)
{
	String out;
	for (const char* p = s.c_str(); *p; ++p)
	{
		switch (*p)
		{
			case '\\': out += "\\\\"; break;
			case '"': out += "\\\""; break;
			case '\n': out += "\\n"; break;
			case '\r': out += "\\r"; break;
			case '\t': out += "\\t"; break;
			case '\b': out += "\\b"; break;
			case '\f': out += "\\f"; break;
			default: out += *p; break;
		}
	}
	return out;
}

String elementToString(const Impl& d, size_t i, bool mof)
{
	switch (d.type)
	{
		case CIMDataType::BOOLEAN:
			return d.ints[i] ? String("true") : String("false");
		case CIMDataType::UINT8: case CIMDataType::UINT16:
		case CIMDataType::UINT32: case CIMDataType::UINT64:
			return String(UInt64(d.ints[i]));
		case CIMDataType::SINT8: case CIMDataType::SINT16:
		case CIMDataType::SINT32: case CIMDataType::SINT64:
			return String(Int64(d.ints[i]));
		case CIMDataType::CHAR16:
		{
			String c(char(d.ints[i] & 0xFF));
			return mof ? String("'") + c + "'" : c;
		}
		case CIMDataType::REAL32:
			return String(Real32(d.reals[i]));
		case CIMDataType::REAL64:
			return String(Real64(d.reals[i]));
		case CIMDataType::STRING:
			return mof ? String("\"") + escapeMOF(d.strings[i]) + "\"" : d.strings[i];
		case CIMDataType::DATETIME:
			return mof ? String("\"") + d.dates[i].toString() + "\"" : d.dates[i].toString();
		case CIMDataType::REFERENCE:
			return mof ? String("\"") + escapeMOF(d.paths[i].toString()) + "\"" : d.paths[i].toString();
		case CIMDataType::EMBEDDEDCLASS:
			return mof ? String("\"") + escapeMOF(d.classes[i].toMOF()) + "\"" : d.classes[i].toString();
		case CIMDataType::EMBEDDEDINSTANCE:
			return mof ? String("\"") + escapeMOF(d.insts[i].toMOF()) + "\"" : d.insts[i].toString();
		default:
			return String();
	}
}

bool sameElements(const Impl& a, const Impl& b)
{
	switch (a.type)
	{
		case CIMDataType::REAL32: case CIMDataType::REAL64: return a.reals == b.reals;
		case CIMDataType::STRING: return a.strings == b.strings;
		case CIMDataType::DATETIME: return a.dates == b.dates;
		case CIMDataType::REFERENCE:
			if (a.paths.size() != b.paths.size()) return false;
			for (size_t i = 0; i < a.paths.size(); ++i)
			{
				if (!a.paths[i].equals(b.paths[i])) return false;
			}
			return true;
		case CIMDataType::EMBEDDEDCLASS: case CIMDataType::EMBEDDEDINSTANCE:
			if (a.size() != b.size()) return false;
			for (size_t i = 0; i < a.size(); ++i)
			{
				if (!elementToString(a, i, true).equals(elementToString(b, i, true))) return false;
			}
			return true;
		default: return a.ints == b.ints;
	}
}

int compareElements(const Impl& a, const Impl& b)
{
	size_t n = a.size() < b.size() ? a.size() : b.size();
	for (size_t i = 0; i < n; ++i)
	{
		int c = 0;
		switch (a.type)
		{
			case CIMDataType::REAL32: case CIMDataType::REAL64:
				c = a.reals[i] < b.reals[i] ? -1 : (b.reals[i] < a.reals[i] ? 1 : 0);
				break;
			case CIMDataType::SINT8: case CIMDataType::SINT16:
			case CIMDataType::SINT32: case CIMDataType::SINT64:
				c = Int64(a.ints[i]) < Int64(b.ints[i]) ? -1 : (Int64(b.ints[i]) < Int64(a.ints[i]) ? 1 : 0);
				break;
			case CIMDataType::BOOLEAN: case CIMDataType::CHAR16: case CIMDataType::UINT8:
			case CIMDataType::UINT16: case CIMDataType::UINT32: case CIMDataType::UINT64:
				c = a.ints[i] < b.ints[i] ? -1 : (b.ints[i] < a.ints[i] ? 1 : 0);
				break;
			case CIMDataType::DATETIME:
				c = a.dates[i] < b.dates[i] ? -1 : (b.dates[i] < a.dates[i] ? 1 : 0);
				break;
			default:
				c = elementToString(a, i, true).compareTo(elementToString(b, i, true));
				break;
		}
		if (c != 0)
		{
			return c;
		}
	}
	return a.size() < b.size() ? -1 : (b.size() < a.size() ? 1 : 0);
}
} // end unnamed namespace

CIMValue::CIMValue(CIMNULL_t) {}
CIMValue::CIMValue(const CIMValue& x) : CIMBase(), m_impl(x.m_impl) {}
CIMValue::~CIMValue() {}
CIMValue::CIMValue(bool x) : m_impl(makeScalar(Bool(x))) {}
CIMValue::CIMValue(Bool x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(UInt8 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Int8 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(UInt16 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Int16 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(UInt32 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Int32 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(UInt64 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Int64 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Real32 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(Real64 x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const Char16& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const String& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const char* x) : m_impl(makeScalar(String(x))) {}
CIMValue::CIMValue(const CIMDateTime& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const CIMObjectPath& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const CIMClass& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const CIMInstance& x) : m_impl(makeScalar(x)) {}
CIMValue::CIMValue(const BoolArray& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Char16Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const UInt8Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Int8Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const UInt16Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Int16Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const UInt32Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Int32Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const UInt64Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Int64Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Real64Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const Real32Array& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const StringArray& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const CIMDateTimeArray& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const CIMObjectPathArray& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const CIMClassArray& x) : m_impl(makeArray(x)) {}
CIMValue::CIMValue(const CIMInstanceArray& x) : m_impl(makeArray(x)) {}

CIMValue CIMValue::createSimpleValue(const String& cimtype, const String& value)
{
	switch (CIMDataType::strToSimpleType(cimtype))
	{
		case CIMDataType::UINT8: return CIMValue(value.toUInt8());
		case CIMDataType::SINT8: return CIMValue(value.toInt8());
		case CIMDataType::UINT16: return CIMValue(value.toUInt16());
		case CIMDataType::SINT16: return CIMValue(value.toInt16());
		case CIMDataType::UINT32: return CIMValue(value.toUInt32());
		case CIMDataType::SINT32: return CIMValue(value.toInt32());
		case CIMDataType::UINT64: return CIMValue(value.toUInt64());
		case CIMDataType::SINT64: return CIMValue(value.toInt64());
		case CIMDataType::BOOLEAN: return CIMValue(value.toBool());
		case CIMDataType::REAL32: return CIMValue(value.toReal32());
		case CIMDataType::REAL64: return CIMValue(value.toReal64());
		case CIMDataType::CHAR16: return CIMValue(value.toChar16());
		case CIMDataType::STRING: return CIMValue(value);
		case CIMDataType::DATETIME: return CIMValue(CIMDateTime(value));
		case CIMDataType::REFERENCE: return CIMValue(CIMObjectPath::parse(value));
		default: return CIMValue(CIMNULL);
	}
}

CIMValue& CIMValue::operator=(const CIMValue& x) { m_impl = x.m_impl; return *this; }
void CIMValue::setNull() { m_impl = COWIntrusiveReference<CIMValueImpl>(); }
CIMValue& CIMValue::set(const CIMValue& val) { m_impl = val.m_impl; return *this; }

UInt32 CIMValue::getArraySize() const
{
	const CIMValueImpl& d = *m_impl;
	return d.isArray ? UInt32(d.size()) : 1;
}

#define OW_GET_SCALAR(T, TO) \
void CIMValue::get(T& x) const { getScalar(*m_impl, x); } \
T CIMValue::TO() const { T x; getScalar(*m_impl, x); return x; }
OW_GET_SCALAR(Bool, toBool)
OW_GET_SCALAR(Char16, toChar16)
OW_GET_SCALAR(UInt8, toUInt8)
OW_GET_SCALAR(Int8, toInt8)
OW_GET_SCALAR(UInt16, toUInt16)
OW_GET_SCALAR(Int16, toInt16)
OW_GET_SCALAR(UInt32, toUInt32)
OW_GET_SCALAR(Int32, toInt32)
OW_GET_SCALAR(UInt64, toUInt64)
OW_GET_SCALAR(Int64, toInt64)
OW_GET_SCALAR(Real32, toReal32)
OW_GET_SCALAR(Real64, toReal64)
OW_GET_SCALAR(CIMObjectPath, toCIMObjectPath)
OW_GET_SCALAR(CIMClass, toCIMClass)
OW_GET_SCALAR(CIMInstance, toCIMInstance)
#undef OW_GET_SCALAR

void CIMValue::get(String& x) const { getScalar(*m_impl, x); }
void CIMValue::get(CIMDateTime& x) const { getScalar(*m_impl, x); }
CIMDateTime CIMValue::toCIMDateTime() const
{
	CIMDateTime x(CIMNULL);
	getScalar(*m_impl, x);
	return x;
}

#define OW_GET_ARRAY(T, TO) \
void CIMValue::get(Array<T>& x) const { getArray(*m_impl, x); } \
Array<T> CIMValue::TO() const { Array<T> x; getArray(*m_impl, x); return x; }
OW_GET_ARRAY(Bool, toBoolArray)
OW_GET_ARRAY(Char16, toChar16Array)
OW_GET_ARRAY(UInt8, toUInt8Array)
OW_GET_ARRAY(Int8, toInt8Array)
OW_GET_ARRAY(UInt16, toUInt16Array)
OW_GET_ARRAY(Int16, toInt16Array)
OW_GET_ARRAY(UInt32, toUInt32Array)
OW_GET_ARRAY(Int32, toInt32Array)
OW_GET_ARRAY(UInt64, toUInt64Array)
OW_GET_ARRAY(Int64, toInt64Array)
OW_GET_ARRAY(Real32, toReal32Array)
OW_GET_ARRAY(Real64, toReal64Array)
OW_GET_ARRAY(String, toStringArray)
OW_GET_ARRAY(CIMDateTime, toCIMDateTimeArray)
OW_GET_ARRAY(CIMObjectPath, toCIMObjectPathArray)
OW_GET_ARRAY(CIMClass, toCIMClassArray)
OW_GET_ARRAY(CIMInstance, toCIMInstanceArray)
#undef OW_GET_ARRAY

bool CIMValue::equal(const CIMValue& x) const
{
	if (m_impl.isNull() || x.m_impl.isNull())
	{
		return m_impl.isNull() && x.m_impl.isNull();
	}
	const CIMValueImpl& a = *m_impl;
	const CIMValueImpl& b = *x.m_impl;
	return a.type == b.type && a.isArray == b.isArray && sameElements(a, b);
}

bool CIMValue::operator==(const CIMValue& x) const { return equal(x); }
bool CIMValue::operator!=(const CIMValue& x) const { return !equal(x); }

bool CIMValue::operator<(const CIMValue& x) const
{
	if (m_impl.isNull() || x.m_impl.isNull())
	{
		return m_impl.isNull() && !x.m_impl.isNull();
	}
	const CIMValueImpl& a = *m_impl;
	const CIMValueImpl& b = *x.m_impl;
	if (a.type != b.type)
	{
		return a.type < b.type;
	}
	if (a.isArray != b.isArray)
	{
		return !a.isArray;
	}
	return compareElements(a, b) < 0;
}

bool CIMValue::operator<=(const CIMValue& x) const { return !(x < *this); }
bool CIMValue::operator>=(const CIMValue& x) const { return !(*this < x); }
bool CIMValue::operator>(const CIMValue& x) const { return x < *this; }

CIMDataType::Type CIMValue::getType() const { return m_impl->type; }

CIMDataType CIMValue::getCIMDataType() const
{
	const CIMValueImpl& d = *m_impl;
	if (d.isArray)
	{
		return CIMDataType(d.type, 0);
	}
	return CIMDataType(d.type);
}

bool CIMValue::sameType(const CIMValue& x) const
{
	return getType() == x.getType() && isArray() == x.isArray();
}

bool CIMValue::isArray() const { return m_impl->isArray; }
bool CIMValue::isNumericType() const { return CIMDataType::isNumericType(getType()); }

String CIMValue::toString() const
{
	if (m_impl.isNull())
	{
		return "(null)";
	}
	const CIMValueImpl& d = *m_impl;
	if (!d.isArray)
	{
		return d.size() > 0 ? elementToString(d, 0, false) : String();
	}
	String out;
	for (size_t i = 0; i < d.size(); ++i)
	{
		if (i > 0)
		{
			out += ',';
		}
		out += elementToString(d, i, false);
	}
	return out;
}

String CIMValue::toMOF() const
{
	if (m_impl.isNull())
	{
		return "NULL";
	}
	const CIMValueImpl& d = *m_impl;
	if (!d.isArray)
	{
		return d.size() > 0 ? elementToString(d, 0, true) : String();
	}
	String out("{");
	for (size_t i = 0; i < d.size(); ++i)
	{
		if (i > 0)
		{
			out += ", ";
		}
		out += elementToString(d, i, true);
	}
	out += "}";
	return out;
}

} // end namespace OW_NAMESPACE
