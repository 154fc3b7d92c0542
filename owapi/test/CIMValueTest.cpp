#include "OW_CIMValue.hpp"
#include "OW_CIMValueCast.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMDateTime.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_Char16.hpp"
#include <utility>
#include <gtest/gtest.h>
#include <string>

using namespace OpenWBEM;

TEST(CIMValueConstruction, OverloadsPickTheDocumentedTypes)
{
	char buf[] = "text";
	struct Case
	{
		CIMValue value;
		CIMDataType::Type type;
	} cases[] = {
		{ CIMValue(5), CIMDataType::SINT32 },
		{ CIMValue(5u), CIMDataType::UINT32 },
		{ CIMValue(Int64(5)), CIMDataType::SINT64 },
		{ CIMValue(UInt64(5)), CIMDataType::UINT64 },
		// size_t is unsigned long on LP64 (UInt64), unsigned int on ILP32 (UInt32).
		{ CIMValue(size_t(5)), sizeof(size_t) == 8 ? CIMDataType::UINT64 : CIMDataType::UINT32 },
		{ CIMValue('c'), CIMDataType::SINT32 },
		{ CIMValue(true), CIMDataType::BOOLEAN },
		{ CIMValue(Bool(false)), CIMDataType::BOOLEAN },
		{ CIMValue(buf), CIMDataType::STRING },
		{ CIMValue("lit"), CIMDataType::STRING },
		{ CIMValue(UInt8(1)), CIMDataType::UINT8 },
		{ CIMValue(Int8(1)), CIMDataType::SINT8 },
		{ CIMValue(UInt16(1)), CIMDataType::UINT16 },
		{ CIMValue(Int16(1)), CIMDataType::SINT16 },
		{ CIMValue(1.5f), CIMDataType::REAL32 },
		{ CIMValue(1.5), CIMDataType::REAL64 },
		{ CIMValue(Char16('x')), CIMDataType::CHAR16 },
	};
	for (const Case& c : cases)
	{
		EXPECT_EQ(c.type, c.value.getType()) << c.value.toString();
		EXPECT_FALSE(c.value.isArray());
	}
}

TEST(CIMValueToString, FormatsEachTypeAsPlainText)
{
	StringArray strings;
	strings.push_back("a");
	strings.push_back("b");
	BoolArray bools;
	bools.push_back(true);
	bools.push_back(false);
	UInt8Array bytes;
	bytes.push_back(7);
	bytes.push_back(200);
	Int8Array signedBytes;
	signedBytes.push_back(-3);
	struct Case
	{
		CIMValue value;
		const char* text;
	} cases[] = {
		{ CIMValue(CIMNULL), "(null)" },
		{ CIMValue(true), "true" },
		{ CIMValue(UInt8(255)), "255" },
		{ CIMValue(Int8(-5)), "-5" },
		{ CIMValue(Int64(-9000000000LL)), "-9000000000" },
		{ CIMValue(UInt64(18446744073709551615ULL)), "18446744073709551615" },
		{ CIMValue(Real64(1.5)), "1.5" },
		{ CIMValue(Real32(0.1f)), "0.1" },
		{ CIMValue(String("say \"hi\", ok")), "say \"hi\", ok" },
		{ CIMValue(Char16('Q')), "Q" },
		{ CIMValue(strings), "a,b" },
		{ CIMValue(StringArray()), "" },
		{ CIMValue(bools), "true,false" },
		{ CIMValue(bytes), "7,200" },
		{ CIMValue(signedBytes), "-3" },
		{ CIMValue(CIMDateTime(String("20240102030405.000000+060"))), "20240102030405.000000+060" },
		{ CIMValue(CIMObjectPath("Cls", "root/cimv2")), "/root/cimv2:Cls" },
	};
	for (const Case& c : cases)
	{
		EXPECT_STREQ(c.text, c.value.toString().c_str());
	}
}

TEST(CIMValueToString, RealsUsePrintfPrecision)
{
	EXPECT_STREQ("0.33333334", CIMValue(Real32(1.0f / 3)).toString().c_str());
	EXPECT_STREQ("0.3333333333333333", CIMValue(Real64(1.0 / 3)).toString().c_str());
}

TEST(CIMValueExtraction, WrongTypeThrowsValueCastWithTheRequestedType)
{
	struct Case
	{
		CIMValue value;
		std::string expected;
		void (*extract)(const CIMValue&);
	} cases[] = {
		{ CIMValue(String("5")), "UINT32", [](const CIMValue& v) { v.toUInt32(); } },
		{ CIMValue(UInt16(5)), "UINT32", [](const CIMValue& v) { v.toUInt32(); } },
		{ CIMValue(UInt32(5)), "STRING", [](const CIMValue& v) { String s; v.get(s); } },
		{ CIMValue(UInt32(5)), "BOOLEAN", [](const CIMValue& v) { v.toBool(); } },
		{ CIMValue(UInt32(5)), "STRING ARRAY", [](const CIMValue& v) { v.toStringArray(); } },
		{ CIMValue(StringArray()), "STRING", [](const CIMValue& v) { String s; v.get(s); } },
		{ CIMValue(UInt32(5)), "OBJECTPATH ARRAY", [](const CIMValue& v) { v.toCIMObjectPathArray(); } },
		{ CIMValue(String("x")), "REFERENCE", [](const CIMValue& v) { v.toCIMObjectPath(); } },
	};
	for (const Case& c : cases)
	{
		try
		{
			c.extract(c.value);
			ADD_FAILURE() << "no exception for " << c.expected;
		}
		catch (const ValueCastException& e)
		{
			EXPECT_EQ("CIMValue::CIMValueImpl::get - Value is not a " + c.expected,
				std::string(e.getMessage()));
		}
	}
}

TEST(CIMValueExtraction, ScalarSint64ConvertsToAnyNumericType)
{
	CIMValue v(Int64(300));
	EXPECT_EQ(UInt8(44), v.toUInt8());
	EXPECT_EQ(300u, v.toUInt32());
	EXPECT_DOUBLE_EQ(300.0, v.toReal64());
	EXPECT_THROW(v.toBool(), ValueCastException);
}

TEST(CIMValueExtraction, MatchingTypesRoundTrip)
{
	Bool b;
	CIMValue(true).get(b);
	EXPECT_TRUE(b);
	String s;
	CIMValue("abc").get(s);
	EXPECT_STREQ("abc", s.c_str());
	UInt16Array a;
	a.push_back(1);
	a.push_back(2);
	EXPECT_EQ(a, CIMValue(a).toUInt16Array());
	EXPECT_EQ(2u, CIMValue(a).getArraySize());
	EXPECT_EQ(1u, CIMValue(UInt16(9)).getArraySize());
}

TEST(CIMValueNull, QueriesOnANullValueThrowButTruthTestsDoNot)
{
	CIMValue v(CIMNULL);
	EXPECT_FALSE(v);
	EXPECT_TRUE(!v);
	EXPECT_THROW(v.getType(), Exception);
	EXPECT_THROW(v.isArray(), Exception);
	EXPECT_THROW(v.toUInt32(), Exception);
	try
	{
		v.getCIMDataType();
		FAIL() << "no exception";
	}
	catch (const std::exception& e)
	{
		EXPECT_STREQ("NULL COWReference dereferenced", e.what());
	}
	CIMValue copy(v);
	EXPECT_TRUE(copy == v);
	EXPECT_TRUE(CIMValue(CIMNULL) < CIMValue(0));
}

TEST(CIMValueComparison, DifferentIntegerTypesAreNeverEqual)
{
	EXPECT_NE(CIMValue(UInt16(5)), CIMValue(UInt32(5)));
	EXPECT_EQ(CIMValue(UInt32(5)), CIMValue(5u));
	EXPECT_NE(CIMValue(CIMNULL), CIMValue(5u));
	EXPECT_TRUE(CIMValue(1) < CIMValue(2));
}

struct SimpleValueCase
{
	const char* type;
	const char* text;
	CIMDataType::Type resultType;
	const char* resultText;
};

TEST(CIMValueCreateSimpleValue, ParsesTextAsTheNamedType)
{
	const SimpleValueCase cases[] = {
		{ "uint8", "200", CIMDataType::UINT8, "200" },
		{ "sint16", "-12", CIMDataType::SINT16, "-12" },
		{ "uint32", "42", CIMDataType::UINT32, "42" },
		{ "UINT64", "42", CIMDataType::UINT64, "42" },
		{ "boolean", "TRUE", CIMDataType::BOOLEAN, "true" },
		{ "real64", "2.5", CIMDataType::REAL64, "2.5" },
		{ "string", "a b", CIMDataType::STRING, "a b" },
		{ "char16", "x", CIMDataType::CHAR16, "x" },
		{ "datetime", "00000001020304.000005:000", CIMDataType::DATETIME, "00000001020304.000005:000" },
		{ "reference", "/root/cimv2:C.k=\"1\"", CIMDataType::REFERENCE, "/root/cimv2:C.k=\"1\"" },
	};
	for (const SimpleValueCase& c : cases)
	{
		CIMValue v = CIMValue::createSimpleValue(c.type, c.text);
		ASSERT_TRUE(v) << c.type;
		EXPECT_EQ(c.resultType, v.getType()) << c.type;
		EXPECT_STREQ(c.resultText, v.toString().c_str()) << c.type;
	}
	EXPECT_FALSE(CIMValue::createSimpleValue("nosuchtype", "1"));
	EXPECT_THROW(CIMValue::createSimpleValue("uint8", "256"), StringConversionException);
}

TEST(CIMValueCast, ConvertsThroughTextOrFailsWithFailed)
{
	CIMValue v = CIMValueCast::castValueToDataType(CIMValue(String("17")), CIMDataType::UINT16);
	EXPECT_EQ(CIMDataType::UINT16, v.getType());
	EXPECT_EQ(17, v.toUInt16());

	v = CIMValueCast::castValueToDataType(CIMValue(UInt8(3)), CIMDataType::STRING);
	EXPECT_STREQ("3", v.toString().c_str());

	v = CIMValueCast::castValueToDataType(CIMValue(UInt8(3)), CIMDataType::SINT64);
	EXPECT_EQ(Int64(3), v.toInt64());

	EXPECT_FALSE(CIMValueCast::castValueToDataType(CIMValue(CIMNULL), CIMDataType::UINT16));

	try
	{
		CIMValueCast::castValueToDataType(CIMValue(String("abc")), CIMDataType::UINT32);
		FAIL() << "no exception";
	}
	catch (const CIMException& e)
	{
		EXPECT_EQ(CIMException::FAILED, e.getErrNo());
		EXPECT_STREQ("general error (Unable to convert \"abc\" into UInt32)", e.getMessage());
	}
	// As OpenWBEM: a date-time text that does not parse says so, and a
	// CHAR16 is one character.
	const std::pair<const char*, CIMDataType::Type> unreadable[] = {
		{"abc", CIMDataType::DATETIME}, {"ab", CIMDataType::CHAR16}};
	const char* messages[] = {"general error (Invalid format for date time)",
		"general error (Unable to convert \"ab\" into Char16)"};
	for (size_t i = 0; i < 2; ++i)
	{
		try
		{
			CIMValueCast::castValueToDataType(CIMValue(String(unreadable[i].first)), unreadable[i].second);
			FAIL() << "no exception for " << unreadable[i].first;
		}
		catch (const CIMException& e)
		{
			EXPECT_STREQ(messages[i], e.getMessage());
		}
	}
	try
	{
		CIMValueCast::castValueToDataType(CIMValue(UInt32(1)), CIMDataType::DATETIME);
		FAIL() << "no exception";
	}
	catch (const CIMException& e)
	{
		EXPECT_STREQ("general error (Failed to convert \"1\" to datetime)", e.getMessage());
	}
}

TEST(CIMValueCast, ArraysConvertElementByElement)
{
	StringArray texts;
	texts.push_back("1");
	texts.push_back("2");
	CIMValue v = CIMValueCast::castValueToDataType(CIMValue(texts), CIMDataType(CIMDataType::UINT8, 0));
	ASSERT_TRUE(v.isArray());
	EXPECT_EQ(CIMDataType::UINT8, v.getType());
	EXPECT_STREQ("1,2", v.toString().c_str());

	// Between arrays and scalars as OpenWBEM casts: the first element, or an
	// array of one.
	v = CIMValueCast::castValueToDataType(CIMValue(texts), CIMDataType::UINT8);
	ASSERT_FALSE(v.isArray());
	EXPECT_EQ(1, v.toUInt8());
	EXPECT_FALSE(CIMValueCast::castValueToDataType(CIMValue(StringArray()), CIMDataType::UINT8));
	v = CIMValueCast::castValueToDataType(CIMValue(UInt32(5)), CIMDataType(CIMDataType::STRING, 0));
	ASSERT_TRUE(v.isArray());
	EXPECT_STREQ("5", v.toString().c_str());
}
