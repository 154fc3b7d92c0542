#include "OW_CIMInstance.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMQualifierType.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMClass.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include <gtest/gtest.h>
#include <vector>

using namespace OpenWBEM;

namespace
{
CIMProperty keyProperty(const char* name, const char* value)
{
	CIMProperty p(name, CIMValue(String(value)));
	p.setQualifier(CIMQualifier::createKeyQualifier());
	return p;
}

CIMQualifierArray applicableQualifier(bool applicable)
{
	CIMQualifierType type("Applicable");
	type.setDataType(CIMDataType::BOOLEAN);
	CIMQualifier q(type);
	q.setValue(CIMValue(applicable));
	return CIMQualifierArray(1, q);
}

class CollectingHandler : public CIMInstanceResultHandlerIFC
{
public:
	std::vector<CIMInstance> received;
protected:
	virtual void doHandle(const CIMInstance& i) { received.push_back(i); }
};
} // end unnamed namespace

TEST(CIMPropertySetValue, ConvertsToTheDeclaredType)
{
	CIMProperty p("Count", CIMDataType::UINT16);
	p.setValue(CIMValue(String("12")));
	EXPECT_EQ(CIMDataType::UINT16, p.getValue().getType());
	p.setValue(CIMValue(CIMNULL));
	EXPECT_FALSE(p.getValue());
	EXPECT_THROW(p.setValue(CIMValue(String("x"))), CIMException);
	EXPECT_STREQ("uint16:Count=null", p.toString().c_str());
}

TEST(CIMPropertySetValue, UntypedPropertyStoresTheValueAsIs)
{
	CIMProperty p("Name");
	p.setValue(CIMValue(UInt8(3)));
	EXPECT_EQ(CIMDataType::UINT8, p.getValue().getType());
}

TEST(CIMPropertyConstruction, NullValueThrows)
{
	EXPECT_THROW(CIMProperty("X", CIMValue(CIMNULL)), Exception);
}

TEST(CIMPropertyKeys, OnlyABooleanTrueKeyQualifierMakesAKey)
{
	CIMProperty p("Id", CIMValue(String("1")));
	EXPECT_FALSE(p.isKey());
	CIMQualifier q("Key");
	q.setValue(CIMValue(String("true")));
	p.setQualifier(q);
	EXPECT_FALSE(p.isKey());
	q.setValue(CIMValue(true));
	p.setQualifier(q);
	EXPECT_TRUE(p.isKey());
	EXPECT_EQ(1u, p.getQualifiers().size());
	EXPECT_TRUE(p.getQualifier("KEY"));

	// The name matches in any case, behind other qualifiers; false is no key.
	CIMProperty q2("Id", CIMValue(String("1")));
	CIMQualifier other("Description");
	other.setValue(CIMValue(String("the id")));
	q2.setQualifier(other);
	CIMQualifier lower("key");
	lower.setValue(CIMValue(false));
	q2.setQualifier(lower);
	EXPECT_FALSE(q2.isKey());
	lower.setValue(CIMValue(true));
	q2.setQualifier(lower);
	EXPECT_TRUE(q2.isKey());

	// A reference is a key without any qualifier.
	CIMProperty ref("Antecedent", CIMDataType(CIMName("Test_Widget")));
	EXPECT_TRUE(ref.isKey());
}

TEST(CIMPropertyQualifiers, AddQualifierRefusesADuplicate)
{
	CIMProperty p("Id", CIMValue(String("1")));
	p.addQualifier(CIMQualifier("Description"));
	try
	{
		p.addQualifier(CIMQualifier("description"));
		FAIL() << "no exception";
	}
	catch (const CIMException& e)
	{
		EXPECT_EQ(CIMException::ALREADY_EXISTS, e.getErrNo());
	}
}

TEST(CIMInstanceSetProperty, ReplacesAPropertyOfTheSameNameWholesale)
{
	CIMInstance inst("QTX_CDRService");
	CIMProperty first("DigitsLimit", CIMValue(UInt32(10)));
	first.setQualifiers(applicableQualifier(true));
	inst.setProperty(first);

	CIMProperty second("digitslimit", CIMValue(String("twelve")));
	inst.setProperty(second);

	ASSERT_EQ(1u, inst.getProperties().size());
	CIMProperty stored = inst.getProperty("DigitsLimit");
	EXPECT_STREQ("digitslimit", stored.getName().c_str());
	EXPECT_EQ(CIMDataType::STRING, stored.getDataType().getType());
	EXPECT_TRUE(stored.getQualifiers().empty());
}

TEST(CIMInstanceSetProperty, NameValueFormConvertsToTheExistingType)
{
	CIMInstance inst("C");
	inst.setProperty(CIMProperty("Count", CIMDataType::UINT32));
	inst.setProperty("count", CIMValue(String("42")));
	EXPECT_EQ(CIMDataType::UINT32, inst.getPropertyValue("Count").getType());
	inst.setProperty("New", CIMValue(CIMNULL));
	EXPECT_TRUE(inst.getProperty("New"));
	EXPECT_FALSE(inst.propertyHasValue("New"));
}

TEST(CIMInstanceSetProperty, ChangingAFetchedCopyLeavesTheInstance)
{
	CIMInstance inst("C");
	inst.setProperty("X", CIMValue(UInt32(1)));
	CIMProperty p = inst.getProperty("X");
	p.setValue(CIMValue(UInt32(2)));
	EXPECT_EQ(1u, inst.getPropertyValue("X").toUInt32());
	inst.setProperty(p);
	EXPECT_EQ(2u, inst.getPropertyValue("X").toUInt32());
}

TEST(CIMInstanceKeys, NameValuePropertiesAreNeverKeys)
{
	CIMInstance inst("C");
	inst.setProperty("InstanceID", CIMValue(String("a")));
	EXPECT_TRUE(inst.getKeyValuePairs().empty());
}

TEST(CIMInstanceKeys, KeyQualifiedPropertiesRebuildTheList)
{
	CIMInstance inst("C");
	inst.setProperty(keyProperty("B", "2"));
	inst.setProperty(CIMProperty("Other", CIMValue(UInt8(1))));
	inst.setProperty(keyProperty("A", "1"));
	CIMPropertyArray keys = inst.getKeyValuePairs();
	ASSERT_EQ(2u, keys.size());
	EXPECT_STREQ("B", keys[0].getName().c_str());
	EXPECT_STREQ("A", keys[1].getName().c_str());

	// Replacing a key with a non-key property drops it from the list.
	inst.setProperty(CIMProperty("B", CIMValue(String("2"))));
	EXPECT_EQ(1u, inst.getKeyValuePairs().size());

	// A list set by hand is replaced by the next rebuild.
	inst.setKeys(CIMPropertyArray());
	EXPECT_TRUE(inst.getKeyValuePairs().empty());
	inst.setProperty(keyProperty("C", "3"));
	EXPECT_EQ(2u, inst.getKeyValuePairs().size());
}

TEST(CIMInstanceToString, ListsPropertiesInOrder)
{
	CIMInstance inst("QTX_CDRServicePrefixBin");
	inst.setProperty("PrefixBin", CIMValue(String("0123")));
	inst.setProperty("InstanceID", CIMValue(String("CDRServicePrefixBin_0")));
	inst.setProperty("Empty", CIMValue(CIMNULL));
	EXPECT_STREQ("instance of QTX_CDRServicePrefixBin {\nPrefixBin = 0123;\n"
		"InstanceID = CDRServicePrefixBin_0;\nEmpty = null;\n}\n", inst.toString().c_str());
}

TEST(CIMInstanceQualifiers, PropertyQualifiersSurviveCopiesAndTheResultHandler)
{
	// The way providers fill instances: one instance reused, each property
	// built with its qualifiers and stored with setProperty.
	CollectingHandler handler;
	CIMInstance inst("QTX_CDRService");
	for (int round = 0; round < 2; ++round)
	{
		CIMProperty p("DigitsLimit", CIMValue(UInt32(10 + round)));
		p.setQualifiers(applicableQualifier(round == 0));
		inst.setProperty(p);
		handler.handle(inst);
	}
	ASSERT_EQ(2u, handler.received.size());
	for (int round = 0; round < 2; ++round)
	{
		CIMProperty got = handler.received[round].getProperty("DigitsLimit");
		ASSERT_TRUE(got);
		EXPECT_EQ(UInt32(10 + round), got.getValue().toUInt32());
		CIMQualifier q = got.getQualifier("Applicable");
		ASSERT_TRUE(q);
		EXPECT_EQ(round == 0, bool(q.getValue().toBool()));
	}
}

TEST(CIMInstanceNull, NullInstanceThrowsOnUse)
{
	CIMInstance inst(CIMNULL);
	EXPECT_FALSE(inst);
	EXPECT_THROW(inst.getClassName(), Exception);
	inst = CIMInstance("C");
	EXPECT_TRUE(inst);
}

TEST(CIMClassNewInstance, CarriesTypesSoValuesAreConverted)
{
	CIMClass cls("C");
	CIMProperty key("Id", CIMDataType::STRING);
	key.setQualifier(CIMQualifier::createKeyQualifier());
	cls.addProperty(key);
	cls.addProperty(CIMProperty("Count", CIMDataType::UINT8));
	EXPECT_EQ(1u, cls.getKeys().size());
	CIMInstance inst = cls.newInstance();
	inst.setProperty("Count", CIMValue(String("7")));
	inst.setProperty("Id", CIMValue(String("x")));
	EXPECT_EQ(CIMDataType::UINT8, inst.getPropertyValue("Count").getType());
	EXPECT_EQ(1u, inst.getKeyValuePairs().size());
}
