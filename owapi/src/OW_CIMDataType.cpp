#include "OW_CIMDataType.hpp"
#include "OW_COWIntrusiveCountableBase.hpp"
#include <cstring>

namespace OW_NAMESPACE
{

struct CIMDataType::DTData : public COWIntrusiveCountableBase
{
	DTData() : m_type(CIMDataType::CIMNULL), m_numberOfElements(0), m_sizeRange(SIZE_SINGLE) {}
	virtual COWIntrusiveCountableBase* cloneBase() const { return new DTData(*this); }
	CIMDataType::Type m_type;
	Int32 m_numberOfElements;
	Int32 m_sizeRange;
	String m_reference;
};

namespace
{
const char* const INVALID_TEXT = "** INVALID DATA TYPE IN CIMDATATYPE - toString **";

struct TypeName
{
	const char* name;
	CIMDataType::Type type;
};

const TypeName typeNames[] =
{
	{ "uint8", CIMDataType::UINT8 },
	{ "sint8", CIMDataType::SINT8 },
	{ "uint16", CIMDataType::UINT16 },
	{ "sint16", CIMDataType::SINT16 },
	{ "uint32", CIMDataType::UINT32 },
	{ "sint32", CIMDataType::SINT32 },
	{ "uint64", CIMDataType::UINT64 },
	{ "sint64", CIMDataType::SINT64 },
	{ "string", CIMDataType::STRING },
	{ "boolean", CIMDataType::BOOLEAN },
	{ "real32", CIMDataType::REAL32 },
	{ "real64", CIMDataType::REAL64 },
	{ "datetime", CIMDataType::DATETIME },
	{ "char16", CIMDataType::CHAR16 },
	{ "reference", CIMDataType::REFERENCE },
	{ "ref", CIMDataType::REFERENCE },
	{ "embeddedclass", CIMDataType::EMBEDDEDCLASS },
	{ "embeddedinstance", CIMDataType::EMBEDDEDINSTANCE }
};

bool isValidType(CIMDataType::Type t)
{
	return t > CIMDataType::CIMNULL && t < CIMDataType::MAXDATATYPE;
}
} // end unnamed namespace

CIMDataType::CIMDataType() : m_pdata(new DTData) {}

CIMDataType::CIMDataType(CIMNULL_t) {}

CIMDataType::CIMDataType(Type type)
{
	// Every value and property carries its type: the scalar types share one
	// data each, copied on the first change like any other.
	static const COWIntrusiveReference<DTData>* const scalars = []
	{
		// One more for INVALID.
		COWIntrusiveReference<DTData>* made = new COWIntrusiveReference<DTData>[MAXDATATYPE + 1];
		for (int t = 0; t <= MAXDATATYPE; ++t)
		{
			made[t] = COWIntrusiveReference<DTData>(new DTData);
			DTData& data = *made[t];
			data.m_type = isValidType(Type(t)) ? Type(t) : t == CIMNULL ? CIMNULL : INVALID;
			data.m_numberOfElements = isValidType(Type(t)) ? 1 : 0;
			data.m_sizeRange = SIZE_SINGLE;
		}
		return made;
	}();
	m_pdata = isValidType(type) || type == CIMNULL ? scalars[type] : scalars[MAXDATATYPE];
}

CIMDataType::CIMDataType(Type type, Int32 size) : m_pdata(new DTData)
{
	if (!isValidType(type))
	{
		type = type == CIMNULL ? CIMNULL : INVALID;
	}
	m_pdata->m_type = type;
	m_pdata->m_numberOfElements = size < 1 ? -1 : size;
	m_pdata->m_sizeRange = size < 1 ? SIZE_UNLIMITED : SIZE_LIMITED;
}

CIMDataType::CIMDataType(const CIMName& refClassName) : m_pdata(new DTData)
{
	m_pdata->m_type = REFERENCE;
	m_pdata->m_numberOfElements = 1;
	m_pdata->m_sizeRange = SIZE_SINGLE;
	m_pdata->m_reference = refClassName.toString();
}

CIMDataType::CIMDataType(const CIMDataType& arg) : CIMBase(), m_pdata(arg.m_pdata) {}
CIMDataType::~CIMDataType() {}
CIMDataType& CIMDataType::operator=(const CIMDataType& arg) { m_pdata = arg.m_pdata; return *this; }
void CIMDataType::setNull() { m_pdata = COWIntrusiveReference<DTData>(); }

bool CIMDataType::isArrayType() const { return m_pdata->m_sizeRange != SIZE_SINGLE; }
bool CIMDataType::isNumericType() const { return isNumericType(m_pdata->m_type); }

bool CIMDataType::isNumericType(Type type)
{
	switch (type)
	{
		case UINT8: case SINT8: case UINT16: case SINT16: case UINT32: case SINT32:
		case UINT64: case SINT64: case REAL32: case REAL64:
			return true;
		default:
			return false;
	}
}

bool CIMDataType::isReferenceType() const { return m_pdata->m_type == REFERENCE; }
bool CIMDataType::isEmbeddedObjectType() const
{
	return m_pdata->m_type == EMBEDDEDCLASS || m_pdata->m_type == EMBEDDEDINSTANCE;
}
CIMDataType::Type CIMDataType::getType() const { return m_pdata->m_type; }
Int32 CIMDataType::getSize() const { return m_pdata->m_numberOfElements; }
String CIMDataType::getRefClassName() const { return m_pdata->m_reference; }

bool CIMDataType::setToArrayType(Int32 size)
{
	m_pdata->m_numberOfElements = size < 1 ? -1 : size;
	m_pdata->m_sizeRange = size < 1 ? SIZE_UNLIMITED : SIZE_LIMITED;
	return true;
}

bool CIMDataType::equals(const CIMDataType& arg) const
{
	return m_pdata->m_type == arg.m_pdata->m_type && isArrayType() == arg.isArrayType();
}

CIMDataType::operator safe_bool() const
{
	return (!m_pdata.isNull() && m_pdata->m_type != CIMNULL && m_pdata->m_type != INVALID)
		? &CIMDataType::m_pdata : 0;
}

bool CIMDataType::operator!() const
{
	return m_pdata.isNull() || m_pdata->m_type == CIMNULL || m_pdata->m_type == INVALID;
}

String CIMDataType::toString() const
{
	switch (m_pdata->m_type)
	{
		case UINT8: return "uint8";
		case SINT8: return "sint8";
		case UINT16: return "uint16";
		case SINT16: return "sint16";
		case UINT32: return "uint32";
		case SINT32: return "sint32";
		case UINT64: return "uint64";
		case SINT64: return "sint64";
		case STRING: return "string";
		case BOOLEAN: return "boolean";
		case REAL32: return "real32";
		case REAL64: return "real64";
		case DATETIME: return "datetime";
		case CHAR16: return "char16";
		case REFERENCE: return "REF";
		case EMBEDDEDCLASS: return "string";
		case EMBEDDEDINSTANCE: return "string";
		default: return INVALID_TEXT;
	}
}

String CIMDataType::toMOF() const
{
	if (m_pdata->m_type == REFERENCE)
	{
		return m_pdata->m_reference + " REF";
	}
	return toString();
}

String CIMDataType::getArrayMOF() const
{
	if (!isArrayType())
	{
		return String();
	}
	if (m_pdata->m_sizeRange == SIZE_UNLIMITED)
	{
		return "[]";
	}
	return String("[") + String(m_pdata->m_numberOfElements) + "]";
}

CIMDataType::Type CIMDataType::strToSimpleType(const String& strType)
{
	for (size_t i = 0; i < sizeof(typeNames) / sizeof(typeNames[0]); ++i)
	{
		if (strType.equalsIgnoreCase(typeNames[i].name))
		{
			return typeNames[i].type;
		}
	}
	return INVALID;
}

CIMDataType CIMDataType::getDataType(const String& strType)
{
	String name(strType);
	name.trim();
	bool isArray = false;
	if (name.endsWith("[]"))
	{
		isArray = true;
		name = name.substring(0, name.length() - 2);
		name.trim();
	}
	Type t = strToSimpleType(name);
	if (t == INVALID)
	{
		return CIMDataType(CIMNULL);
	}
	return isArray ? CIMDataType(t, 0) : CIMDataType(t);
}

bool operator==(const CIMDataType& x, const CIMDataType& y)
{
	if (x.m_pdata.isNull() || y.m_pdata.isNull())
	{
		return x.m_pdata.isNull() && y.m_pdata.isNull();
	}
	return x.m_pdata->m_type == y.m_pdata->m_type
		&& x.m_pdata->m_numberOfElements == y.m_pdata->m_numberOfElements
		&& x.m_pdata->m_sizeRange == y.m_pdata->m_sizeRange
		&& x.m_pdata->m_reference.equalsIgnoreCase(y.m_pdata->m_reference);
}

bool operator<(const CIMDataType& x, const CIMDataType& y)
{
	if (x.m_pdata.isNull() || y.m_pdata.isNull())
	{
		return x.m_pdata.isNull() && !y.m_pdata.isNull();
	}
	if (x.m_pdata->m_type != y.m_pdata->m_type)
	{
		return x.m_pdata->m_type < y.m_pdata->m_type;
	}
	if (x.m_pdata->m_numberOfElements != y.m_pdata->m_numberOfElements)
	{
		return x.m_pdata->m_numberOfElements < y.m_pdata->m_numberOfElements;
	}
	if (x.m_pdata->m_sizeRange != y.m_pdata->m_sizeRange)
	{
		return x.m_pdata->m_sizeRange < y.m_pdata->m_sizeRange;
	}
	return x.m_pdata->m_reference.compareToIgnoreCase(y.m_pdata->m_reference) < 0;
}

} // end namespace OW_NAMESPACE
