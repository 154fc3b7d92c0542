#include "OW_CIMException.hpp"
#include <gtest/gtest.h>
#include <string>

using namespace OpenWBEM;

struct LongMessageCase
{
	CIMException::ErrNoType code;
	const char* msg;
	const char* expected;
};

TEST(CIMExceptionMessage, DescriptionThenTheMessageInParentheses)
{
	const LongMessageCase cases[] = {
		{ CIMException::NOT_FOUND, "Id=7", "requested object could not be found (Id=7)" },
		{ CIMException::FAILED, 0, "general error" },
		{ CIMException::FAILED, "", "general error" },
		{ CIMException::FAILED, "101", "general error (101)" },
		// A message that already starts with the description is kept as is.
		{ CIMException::FAILED, "general error: disk", "general error: disk" },
		// The prefix test is case-sensitive.
		{ CIMException::FAILED, "General error", "general error (General error)" },
		{ CIMException::INVALID_CLASS, 0, "class does not exist" },
		{ CIMException::INVALID_PARAMETER, "DigitsLimit must be <= 24",
			"invalid parameter passed to method (DigitsLimit must be <= 24)" },
		{ CIMException::NOT_SUPPORTED, 0, "requested operation is not supported" },
		{ CIMException::METHOD_NOT_FOUND, 0, "extrinsic method does not exist" },
		{ CIMException::CLASS_HAS_INSTANCES, 0, "operator cannot be done on class with instances" },
		{ static_cast<CIMException::ErrNoType>(18), "x", "unknown error (x)" },
	};
	for (const LongMessageCase& c : cases)
	{
		CIMException e("file.cpp", 12, c.code, c.msg);
		EXPECT_STREQ(c.expected, e.getMessage());
		EXPECT_STREQ(c.expected, e.what());
		EXPECT_EQ(c.code, e.getErrNo());
	}
}

TEST(CIMExceptionMessage, DescriptionIsTheRawMessageOrNull)
{
	CIMException withMsg("f", 1, CIMException::NOT_FOUND, "Id=7");
	EXPECT_STREQ("Id=7", withMsg.getDescription());
	CIMException without("f", 1, CIMException::NOT_FOUND);
	EXPECT_EQ(nullptr, without.getDescription());
	CIMException empty("f", 1, CIMException::NOT_FOUND, "");
	EXPECT_STREQ("", empty.getDescription());
}

TEST(CIMExceptionMessage, CopiesKeepFileLineAndTexts)
{
	CIMException original("CDR/CDROAM/src/CDRProvider", 260, CIMException::FAILED, "boom");
	CIMException copy(original);
	CIMException* cloned = original.clone();
	for (const CIMException* e : { &copy, cloned })
	{
		EXPECT_STREQ("CDR/CDROAM/src/CDRProvider", e->getFile());
		EXPECT_EQ(260, e->getLine());
		EXPECT_STREQ("general error (boom)", e->getMessage());
		EXPECT_STREQ("boom", e->getDescription());
		EXPECT_STREQ("CIMException", e->type());
	}
	delete cloned;
}

namespace OW_NAMESPACE
{
// The throw macros name CIMException unqualified.
static void throwWithMacro()
{
	OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "bad");
}
}

TEST(CIMExceptionMessage, ThrowMacroRecordsThisFileAndLine)
{
	try
	{
		OpenWBEM::throwWithMacro();
		FAIL() << "no exception";
	}
	catch (const CIMException& e)
	{
		EXPECT_NE(std::string::npos, std::string(e.getFile()).find("CIMExceptionTest.cpp"));
		EXPECT_GT(e.getLine(), 0);
		EXPECT_STREQ("invalid parameter passed to method (bad)", e.getMessage());
	}
}

TEST(CIMExceptionMessage, CodeDescriptionsByValue)
{
	EXPECT_STREQ("no error", CIMException::getCodeDescription(CIMException::SUCCESS));
	EXPECT_STREQ("unknown error", CIMException::getCodeDescription(static_cast<CIMException::ErrNoType>(18)));
	EXPECT_STREQ("unknown error", CIMException::getCodeDescription(static_cast<CIMException::ErrNoType>(31)));
}
