#include "OW_UTF8Utils.hpp"
#include <gtest/gtest.h>
#include <string>
#include <cstring>

using namespace OpenWBEM;

TEST(ISO8859ToUTF8, EveryHighByteBecomesItsTwoByteCodePoint)
{
	for (unsigned int b = 0x80; b <= 0xFF; ++b)
	{
		char input[2] = { static_cast<char>(b), '\0' };
		char output[8];
		std::memset(output, 'Z', sizeof(output));
		ASSERT_EQ(2u, UTF8Utils::ISO8859ToUTF8(input, output, sizeof(output))) << b;
		EXPECT_EQ(static_cast<unsigned char>(0xC0 | (b >> 6)), static_cast<unsigned char>(output[0])) << b;
		EXPECT_EQ(static_cast<unsigned char>(0x80 | (b & 0x3F)), static_cast<unsigned char>(output[1])) << b;
		EXPECT_EQ('\0', output[2]) << b;
	}
}

TEST(ISO8859ToUTF8, AsciiIsCopiedUnchanged)
{
	char output[32];
	EXPECT_EQ(11u, UTF8Utils::ISO8859ToUTF8("hello world", output, sizeof(output)));
	EXPECT_STREQ("hello world", output);
}

struct LimitCase
{
	const char* input;
	size_t outputSize;
	const char* expected;
};

TEST(ISO8859ToUTF8, StopsBeforeACharacterThatDoesNotFitAndAlwaysTerminates)
{
	// "a\xE9b": the e-acute needs two bytes.
	const LimitCase cases[] = {
		{ "a\xE9" "b", 1, "" },
		{ "a\xE9" "b", 2, "a" },
		{ "a\xE9" "b", 3, "a" },          // room for one byte only: no half character
		{ "a\xE9" "b", 4, "a\xC3\xA9" },
		{ "a\xE9" "b", 5, "a\xC3\xA9" "b" },
		{ "\xFF\xFF", 4, "\xC3\xBF" },
		{ "", 1, "" },
	};
	for (const LimitCase& c : cases)
	{
		SCOPED_TRACE(c.outputSize);
		char output[16];
		std::memset(output, 'Z', sizeof(output));
		size_t written = UTF8Utils::ISO8859ToUTF8(c.input, output, c.outputSize);
		EXPECT_EQ(std::strlen(c.expected), written);
		EXPECT_STREQ(c.expected, output);
		EXPECT_EQ('Z', output[c.outputSize]) << "wrote past outputSize";
	}
}

TEST(ISO8859ToUTF8, ZeroSizeWritesNothing)
{
	char output[4] = { 'Z', 'Z', 'Z', 'Z' };
	EXPECT_EQ(0u, UTF8Utils::ISO8859ToUTF8("abc", output, 0));
	EXPECT_EQ('Z', output[0]);
}
