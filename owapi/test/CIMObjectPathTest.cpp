#include "OW_CIMObjectPath.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMException.hpp"
#include <gtest/gtest.h>

using namespace OpenWBEM;

TEST(CIMObjectPathToString, QuotesEveryKeyValueInInsertionOrder)
{
	CIMObjectPath op("My_Class", "root/cimv2");
	op.setKeyValue("Id", CIMValue(UInt32(5)));
	op.setKeyValue("Name", CIMValue(String("abc")));
	op.setKeyValue("On", CIMValue(true));
	EXPECT_STREQ("/root/cimv2:My_Class.Id=\"5\",Name=\"abc\",On=\"true\"", op.toString().c_str());
	EXPECT_STREQ("My_Class.Id=\"5\",Name=\"abc\",On=\"true\"", op.modelPath().c_str());
}

TEST(CIMObjectPathToString, ClassPathsAndEmptyNamespace)
{
	EXPECT_STREQ("/root/cimv2:My_Class", CIMObjectPath("My_Class", "root/cimv2").toString().c_str());
	EXPECT_STREQ("/:My_Class", CIMObjectPath("My_Class").toString().c_str());
}

TEST(CIMObjectPathToString, EscapesBackslashQuoteAndNewline)
{
	CIMObjectPath op("C", "ns");
	op.setKeyValue("K", CIMValue(String("a\\b\"c\nd")));
	EXPECT_STREQ("/ns:C.K=\"a\\\\b\\\"c\\nd\"", op.toString().c_str());
}

TEST(CIMObjectPathNameSpace, TrimsAndStripsLeadingSlashes)
{
	EXPECT_STREQ("root/cimv2", CIMObjectPath("C", "  //root/cimv2 ").getNameSpace().c_str());
}

TEST(CIMObjectPathKeys, SetKeysDropsQualifiersAndGetKeyIgnoresCase)
{
	CIMProperty key("InstanceID", CIMValue(String("x")));
	key.setQualifier(CIMQualifier::createKeyQualifier());
	CIMObjectPath op("C", CIMPropertyArray(1, key));
	CIMProperty got = op.getKey("instanceid");
	ASSERT_TRUE(got);
	EXPECT_TRUE(got.getQualifiers().empty());
	EXPECT_FALSE(op.getKey("Other"));
	EXPECT_FALSE(op.getKeyValue("Other"));
}

TEST(CIMObjectPathKeys, NamespaceFirstConstructorTakesTheInstanceKeyList)
{
	CIMInstance inst("C");
	CIMProperty key("Name", CIMValue(String("CDRPullStatistic")));
	key.setQualifier(CIMQualifier::createKeyQualifier());
	inst.setProperty(key);
	inst.setProperty("Other", CIMValue(UInt32(1)));
	CIMObjectPath op("root/cimv2", inst);
	EXPECT_STREQ("/root/cimv2:C.Name=\"CDRPullStatistic\"", op.toString().c_str());
}

TEST(CIMObjectPathEquals, IgnoresCaseAndKeyOrderButNotValues)
{
	CIMObjectPath a("Cls", "root/cimv2");
	a.setKeyValue("A", CIMValue(String("1")));
	a.setKeyValue("B", CIMValue(String("2")));
	CIMObjectPath b("CLS", "ROOT/cimv2");
	b.setKeyValue("b", CIMValue(String("2")));
	b.setKeyValue("a", CIMValue(String("1")));
	EXPECT_TRUE(a.equals(b));
	b.setKeyValue("a", CIMValue(String("9")));
	EXPECT_FALSE(a.equals(b));
}

TEST(CIMObjectPathParse, ReadsWhatToStringWrites)
{
	CIMObjectPath op("QTX_CDRService", "root/cimv2");
	op.setKeyValue("SystemName", CIMValue(String("sys \"one\"")));
	op.setKeyValue("Name", CIMValue(String("a,b=c")));
	CIMObjectPath parsed = CIMObjectPath::parse(op.toString());
	EXPECT_TRUE(parsed.equals(op));
	EXPECT_STREQ(op.toString().c_str(), parsed.toString().c_str());
}

TEST(CIMObjectPathParse, BareValuesAndHosts)
{
	CIMObjectPath op = CIMObjectPath::parse("//host:5989/root/cimv2:C.N=5,F=false");
	EXPECT_STREQ("host", op.getHost().c_str());
	EXPECT_STREQ("root/cimv2", op.getNameSpace().c_str());
	EXPECT_EQ(CIMDataType::UINT64, op.getKeyValue("N").getType());
	EXPECT_EQ(CIMDataType::BOOLEAN, op.getKeyValue("F").getType());
	EXPECT_STREQ("HTTP://host:5989/root/cimv2:C.N=\"5\",F=\"false\"", op.toString().c_str());
}

TEST(CIMObjectPathParse, EmptyIsNullAndGarbageIsInvalidParameter)
{
	EXPECT_FALSE(CIMObjectPath::parse(""));
	const char* const bad[] = { "/root:", "/root:C.", "/root:C.K=\"open", "/root:C.K", "/root:C.=1", "/root:C D" };
	for (const char* text : bad)
	{
		try
		{
			CIMObjectPath::parse(text);
			ADD_FAILURE() << "no exception for " << text;
		}
		catch (const CIMException& e)
		{
			EXPECT_EQ(CIMException::INVALID_PARAMETER, e.getErrNo()) << text;
		}
	}
}
