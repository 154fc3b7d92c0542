#include "OW_CIMDateTime.hpp"
#include "OW_DateTime.hpp"
#include <gtest/gtest.h>
#include <string>

using namespace OpenWBEM;

struct ParseCase
{
	const char* text;
	bool interval;
	unsigned year, month, days, hours, minutes, seconds, micros;
	int utc;
	const char* printed;
};

TEST(CIMDateTimeParse, ReadsFixedFieldsOfIntervalAndAbsoluteTexts)
{
	const ParseCase cases[] = {
		{ "00000001020304.000005:000", true, 0, 0, 1, 2, 3, 4, 5, 0, "00000001020304.000005:000" },
		{ "12345678235959.999999:000", true, 0, 0, 12345678, 23, 59, 59, 999999, 0, "12345678235959.999999:000" },
		{ "20240102030405.000000+000", false, 2024, 1, 2, 3, 4, 5, 0, 0, "20240102030405.000000+000" },
		{ "19991231235959.123456-300", false, 1999, 12, 31, 23, 59, 59, 123456, -300, "19991231235959.123456-300" },
		{ "20240102030405.000000+060", false, 2024, 1, 2, 3, 4, 5, 0, 60, "20240102030405.000000+060" },
		// No range checks: month 13 and hour 99 are kept.
		{ "20241399990000.000000+000", false, 2024, 13, 99, 99, 0, 0, 0, 0, "20241399990000.000000+000" },
		// Wildcards read as zero.
		{ "2024**********.******+000", false, 2024, 0, 0, 0, 0, 0, 0, 0, "20240000000000.000000+000" },
	};
	for (const ParseCase& c : cases)
	{
		SCOPED_TRACE(c.text);
		CIMDateTime dt(String(c.text));
		EXPECT_EQ(c.interval, dt.isInterval());
		EXPECT_EQ(c.year, dt.getYear());
		EXPECT_EQ(c.month, dt.getMonth());
		EXPECT_EQ(c.days, dt.getDays());
		EXPECT_EQ(c.hours, dt.getHours());
		EXPECT_EQ(c.minutes, dt.getMinutes());
		EXPECT_EQ(c.seconds, dt.getSeconds());
		EXPECT_EQ(c.micros, dt.getMicroSeconds());
		EXPECT_EQ(c.utc, dt.getUtc());
		EXPECT_STREQ(c.printed, dt.toString().c_str());
	}
}

TEST(CIMDateTimeParse, EmptyTextIsTheZeroInterval)
{
	CIMDateTime dt((String()));
	EXPECT_TRUE(dt.isInterval());
	EXPECT_FALSE(dt);
	EXPECT_STREQ("00000000000000.000000:000", dt.toString().c_str());
}

TEST(CIMDateTimeParse, OtherTextsThrowInvalidFormat)
{
	const char* const bad[] = {
		"x",
		"2024",
		"20240102030405.000000",
		"20240102030405.000000*000",
		"00000001020304.000005 000",
	};
	for (const char* text : bad)
	{
		SCOPED_TRACE(text);
		try
		{
			CIMDateTime dt((String(text)));
			ADD_FAILURE() << "no exception";
		}
		catch (const CIMDateTimeException& e)
		{
			EXPECT_STREQ("Invalid format for date time", e.getMessage());
			EXPECT_STREQ("CIMDateTimeException", e.type());
			EXPECT_EQ(CIMDateTime::E_INVALID_DATE_TIME_FORMAT, e.getErrorCode());
		}
	}
}

TEST(CIMDateTimeParse, InvalidFormatIsNotACIMException)
{
	bool caughtAsCIMException = false;
	try
	{
		CIMDateTime dt((String("bad")));
	}
	catch (const CIMException&)
	{
		caughtAsCIMException = true;
	}
	catch (const Exception&)
	{
	}
	EXPECT_FALSE(caughtAsCIMException);
}

TEST(CIMDateTimeTruth, FalseWhenNullOrAllFieldsZero)
{
	EXPECT_FALSE(CIMDateTime());
	EXPECT_FALSE(CIMDateTime(CIMNULL));
	// The offset and the interval flag do not count.
	EXPECT_FALSE(CIMDateTime(String("00000000000000.000000+060")));
	EXPECT_TRUE(CIMDateTime(String("00000000000000.000001:000")));
}

TEST(CIMDateTimeInterval, MicrosecondsSplitIntoFields)
{
	CIMDateTime dt(UInt64(90061000002ULL));
	EXPECT_STREQ("00000001010101.000002:000", dt.toString().c_str());
}

TEST(CIMDateTimeCopy, ChangingACopyLeavesTheOriginal)
{
	CIMDateTime a(String("20240102030405.000000+000"));
	CIMDateTime b(a);
	b.setYear(1999);
	EXPECT_EQ(2024, a.getYear());
	EXPECT_EQ(1999, b.getYear());
	EXPECT_NE(a, b);
}
