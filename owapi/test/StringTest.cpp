#include "OW_String.hpp"
#include "OW_Array.hpp"
#include <gtest/gtest.h>
#include <string>

using namespace OpenWBEM;

TEST(StringCompare, EqualsIsCaseSensitiveAndEqualsIgnoreCaseIsNot)
{
	String s("QTX_CDRService");
	EXPECT_TRUE(s.equals("QTX_CDRService"));
	EXPECT_FALSE(s.equals("qtx_cdrservice"));
	EXPECT_FALSE(s == "qtx_cdrservice");
	EXPECT_TRUE(s.equalsIgnoreCase("qtx_cdrservice"));
	EXPECT_FALSE(s.equals(String("QTX_CDRServic")));
}

TEST(StringBasics, NullPointerAndNulCharGiveEmptyText)
{
	EXPECT_STREQ("", String(static_cast<const char*>(0)).c_str());
	EXPECT_STREQ("", String('\0').c_str());
	EXPECT_TRUE(String().empty());
	EXPECT_STREQ("x", String('x').c_str());
}

TEST(StringBasics, CopiesDoNotShareChanges)
{
	String a("abc");
	String b(a);
	b.concat("def");
	b.toUpperCase();
	EXPECT_STREQ("abc", a.c_str());
	EXPECT_STREQ("ABCDEF", b.c_str());
}

TEST(StringBasics, SubstringClipsAndTrimModifiesInPlace)
{
	String s("  hello  ");
	EXPECT_STREQ("hello", s.substring(2, 5).c_str());
	EXPECT_STREQ("lo  ", s.substring(5).c_str());
	EXPECT_STREQ("", s.substring(99).c_str());
	EXPECT_STREQ("", s.substring(0, 0).c_str());
	s.trim();
	EXPECT_STREQ("hello", s.c_str());
}

TEST(StringBasics, NumbersFormatLikePrintf)
{
	EXPECT_STREQ("-5", String(Int32(-5)).c_str());
	EXPECT_STREQ("0", String(UInt32(0)).c_str());
	EXPECT_STREQ("-2147483648", String(Int32(-2147483647 - 1)).c_str());
	EXPECT_STREQ("-9223372036854775808", String(Int64(-9223372036854775807LL - 1)).c_str());
	EXPECT_STREQ("9223372036854775807", String(Int64(9223372036854775807LL)).c_str());
	EXPECT_STREQ("18446744073709551615", String(UInt64(~UInt64(0))).c_str());
	// long and unsigned long: Int64 and UInt64 on LP64, constructors of their
	// own where long is 32 bits; either way a plain long converts unambiguously.
	EXPECT_STREQ("-2147483648", String(-2147483647L - 1).c_str());
	EXPECT_STREQ("4294967295", String(4294967295UL).c_str());
	EXPECT_STREQ("1.5", String(Real64(1.5)).c_str());
	EXPECT_STREQ("0.1", String(Real32(0.1f)).c_str());
	// bool promotes to Int32.
	EXPECT_STREQ("1", String(true).c_str());
}

struct ConversionCase
{
	const char* text;
	const char* type;
	bool ok;
	long long expected;
};

long long convert(const String& s, const std::string& type)
{
	if (type == "UInt8") return s.toUInt8();
	if (type == "Int8") return s.toInt8();
	if (type == "UInt16") return s.toUInt16();
	if (type == "Int16") return s.toInt16();
	if (type == "UInt32") return s.toUInt32();
	if (type == "Int32") return s.toInt32();
	if (type == "UInt64") return static_cast<long long>(s.toUInt64());
	if (type == "Int64") return s.toInt64();
	if (type == "bool") return s.toBool() ? 1 : 0;
	return 0;
}

TEST(StringConversion, WholeTextMustParseAndFitTheType)
{
	const ConversionCase cases[] = {
		{ "255", "UInt8", true, 255 },
		{ "256", "UInt8", false, 0 },
		{ "-1", "UInt8", false, 0 },
		{ "-128", "Int8", true, -128 },
		{ "128", "Int8", false, 0 },
		{ "65535", "UInt16", true, 65535 },
		{ "-1", "UInt16", false, 0 },
		{ "-32768", "Int16", true, -32768 },
		{ "4294967295", "UInt32", true, 4294967295LL },
		{ "-1", "UInt32", false, 0 },
		{ " +42", "Int32", true, 42 },
		{ "42 ", "Int32", false, 0 },
		{ "", "Int32", false, 0 },
		{ "12abc", "Int32", false, 0 },
		{ "2147483648", "Int32", false, 0 },
		{ "-1", "UInt64", true, -1 },
		{ "9223372036854775808", "Int64", false, 0 },
		{ "TRUE", "bool", true, 1 },
		{ "false", "bool", true, 0 },
		{ "1", "bool", false, 0 },
		{ " true", "bool", false, 0 },
	};
	for (const ConversionCase& c : cases)
	{
		SCOPED_TRACE(std::string(c.type) + " <- \"" + c.text + "\"");
		if (c.ok)
		{
			EXPECT_EQ(c.expected, convert(String(c.text), c.type));
		}
		else
		{
			try
			{
				convert(String(c.text), c.type);
				ADD_FAILURE() << "no exception";
			}
			catch (const StringConversionException& e)
			{
				EXPECT_EQ(std::string("Unable to convert \"") + c.text + "\" into " + c.type,
					e.getMessage());
				EXPECT_STREQ("StringConversionException", e.type());
			}
		}
	}
}

TEST(StringConversion, BaseIsPassedThrough)
{
	EXPECT_EQ(255u, String("ff").toUInt32(16));
	EXPECT_EQ(255u, String("0xff").toUInt32(16));
	EXPECT_EQ(8, String("010").toInt32(0));
}

TEST(ArrayIndexing, OutOfRangeThrowsWithSizeAndIndex)
{
	StringArray a;
	a.push_back("x");
	try
	{
		(void)a[3];
		FAIL() << "no exception";
	}
	catch (const OutOfBoundsException& e)
	{
		EXPECT_STREQ("Array Index out of bounds. size = 1, index = 3", e.getMessage());
	}
}

TEST(ArrayIndexing, CopiesAreIndependent)
{
	StringArray a(2, String("x"));
	StringArray b(a);
	b[0] = "y";
	EXPECT_STREQ("x", a[0].c_str());
	EXPECT_STREQ("y", b[0].c_str());
}

// An empty array has no storage of its own: copies, clearing and appending
// must still behave as copy-on-write.
TEST(ArrayIndexing, EmptyAndSharedArraysStayIndependent)
{
	const StringArray none;
	EXPECT_TRUE(none.empty());
	EXPECT_TRUE(none.begin() == none.end());
	EXPECT_EQ(none, StringArray());

	StringArray grown(none);
	grown.push_back("x");
	EXPECT_EQ(0u, none.size());
	EXPECT_TRUE(none < grown);
	EXPECT_FALSE(grown < none);

	StringArray shared(grown);
	shared.clear();
	EXPECT_EQ(1u, grown.size());
	EXPECT_EQ(shared, none);
	shared.push_back("y");
	EXPECT_STREQ("x", grown[0].c_str());

	grown.appendArray(none);
	grown.appendArray(shared);
	ASSERT_EQ(2u, grown.size());
	EXPECT_STREQ("y", grown.back().c_str());
	EXPECT_EQ(1u, shared.size());
}
