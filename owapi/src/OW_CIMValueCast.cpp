#include "OW_CIMValueCast.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMDataType.hpp"
#include "OW_CIMException.hpp"
#include "OW_String.hpp"
#include "OW_Array.hpp"
#include "OW_Bool.hpp"
#include "OW_Char16.hpp"
#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"

namespace OW_NAMESPACE
{

namespace
{
bool isScalarish(CIMDataType::Type t)
{
	return CIMDataType::isNumericType(t) || t == CIMDataType::BOOLEAN || t == CIMDataType::CHAR16;
}

// Which conversions are possible: anything to or from STRING, and any pair
// among the numeric types, BOOLEAN and CHAR16.
bool isCompatible(CIMDataType::Type from, CIMDataType::Type to)
{
	if (from == to)
	{
		return true;
	}
	if (from == CIMDataType::STRING || to == CIMDataType::STRING)
	{
		return true;
	}
	return isScalarish(from) && isScalarish(to);
}

[[noreturn]] void throwFailed(const String& msg)
{
	throw CIMException(__FILE__, __LINE__, CIMException::FAILED, msg.c_str());
}

CIMValue convertText(const String& text, const CIMDataType& dataType)
{
	try
	{
		return CIMValue::createSimpleValue(dataType.toString(), text);
	}
	catch (const StringConversionException& e)
	{
		throwFailed(e.getMessage());
	}
	catch (const CIMDateTimeException& e)
	{
		// A date-time that does not parse keeps its own message.
		throwFailed(e.getMessage());
	}
	catch (const Exception&)
	{
		throwFailed(String("Failed to convert \"") + text + "\" to " + dataType.toString());
	}
}

template <class T> void appendTexts(const Array<T>& elements, StringArray& texts)
{
	for (size_t i = 0; i < elements.size(); ++i)
	{
		texts.push_back(CIMValue(elements[i]).toString());
	}
}

// The text of each element of an array value.
StringArray elementTexts(const CIMValue& value)
{
	StringArray texts;
	switch (value.getType())
	{
		case CIMDataType::UINT8: appendTexts(value.toUInt8Array(), texts); break;
		case CIMDataType::SINT8: appendTexts(value.toInt8Array(), texts); break;
		case CIMDataType::UINT16: appendTexts(value.toUInt16Array(), texts); break;
		case CIMDataType::SINT16: appendTexts(value.toInt16Array(), texts); break;
		case CIMDataType::UINT32: appendTexts(value.toUInt32Array(), texts); break;
		case CIMDataType::SINT32: appendTexts(value.toInt32Array(), texts); break;
		case CIMDataType::UINT64: appendTexts(value.toUInt64Array(), texts); break;
		case CIMDataType::SINT64: appendTexts(value.toInt64Array(), texts); break;
		case CIMDataType::REAL32: appendTexts(value.toReal32Array(), texts); break;
		case CIMDataType::REAL64: appendTexts(value.toReal64Array(), texts); break;
		case CIMDataType::BOOLEAN: appendTexts(value.toBoolArray(), texts); break;
		case CIMDataType::CHAR16: appendTexts(value.toChar16Array(), texts); break;
		case CIMDataType::STRING: texts = value.toStringArray(); break;
		case CIMDataType::DATETIME: appendTexts(value.toCIMDateTimeArray(), texts); break;
		case CIMDataType::REFERENCE: appendTexts(value.toCIMObjectPathArray(), texts); break;
		default: break;
	}
	return texts;
}

CIMValue convertArray(const CIMValue& value, const CIMDataType& dataType)
{
	StringArray texts = elementTexts(value);
	CIMDataType::Type to = dataType.getType();
	switch (to)
	{
#define OW_CONVERT_ARRAY(CIMTYPE, CPP, TO) \
		case CIMDataType::CIMTYPE: \
		{ \
			Array<CPP> out; \
			for (size_t i = 0; i < texts.size(); ++i) \
			{ \
				out.push_back(convertText(texts[i], dataType).TO()); \
			} \
			return CIMValue(out); \
		}
		OW_CONVERT_ARRAY(UINT8, UInt8, toUInt8)
		OW_CONVERT_ARRAY(SINT8, Int8, toInt8)
		OW_CONVERT_ARRAY(UINT16, UInt16, toUInt16)
		OW_CONVERT_ARRAY(SINT16, Int16, toInt16)
		OW_CONVERT_ARRAY(UINT32, UInt32, toUInt32)
		OW_CONVERT_ARRAY(SINT32, Int32, toInt32)
		OW_CONVERT_ARRAY(UINT64, UInt64, toUInt64)
		OW_CONVERT_ARRAY(SINT64, Int64, toInt64)
		OW_CONVERT_ARRAY(REAL32, Real32, toReal32)
		OW_CONVERT_ARRAY(REAL64, Real64, toReal64)
		OW_CONVERT_ARRAY(BOOLEAN, Bool, toBool)
		OW_CONVERT_ARRAY(CHAR16, Char16, toChar16)
		OW_CONVERT_ARRAY(DATETIME, CIMDateTime, toCIMDateTime)
		OW_CONVERT_ARRAY(REFERENCE, CIMObjectPath, toCIMObjectPath)
#undef OW_CONVERT_ARRAY
		case CIMDataType::STRING:
			return CIMValue(texts);
		default:
			throwFailed(String("Failed to convert \"") + value.toString() + "\" to " + dataType.toString());
	}
}
} // end unnamed namespace

namespace CIMValueCast
{

CIMValue castValueToDataType(const CIMValue& value, const CIMDataType& dataType)
{
	if (!value || !dataType)
	{
		return CIMValue(CIMNULL);
	}
	CIMDataType::Type from = value.getType();
	CIMDataType::Type to = dataType.getType();
	if (from == to && value.isArray() == dataType.isArrayType())
	{
		return value;
	}
	if (!isCompatible(from, to) || to == CIMDataType::EMBEDDEDCLASS || to == CIMDataType::EMBEDDEDINSTANCE)
	{
		throwFailed(String("Failed to convert \"") + value.toString() + "\" to " + dataType.toString());
	}
	// As OpenWBEM casts between arrays and scalars: an array to a scalar is
	// its first element (NULL when empty), a scalar to an array an array of
	// that one element.
	if (value.isArray() && !dataType.isArrayType())
	{
		StringArray texts = elementTexts(value);
		return texts.empty() ? CIMValue(CIMNULL) : convertText(texts[0], dataType);
	}
	if (!value.isArray() && dataType.isArrayType())
	{
		return convertArray(CIMValue(StringArray(1, value.toString())), dataType);
	}
	if (value.isArray())
	{
		return convertArray(value, dataType);
	}
	return convertText(value.toString(), dataType);
}

} // end namespace CIMValueCast

} // end namespace OW_NAMESPACE
