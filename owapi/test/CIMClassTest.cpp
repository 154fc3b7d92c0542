#include "OW_CIMClass.hpp"
#include "OW_CIMMethod.hpp"
#include "OW_CIMParameter.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMQualifierType.hpp"
#include "OW_CIMFlavor.hpp"
#include "OW_CIMScope.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMException.hpp"
#include <gtest/gtest.h>
#include <string>

using namespace OpenWBEM;

namespace
{
CIMParameter parameter(const char* name, CIMDataType::Type type, const char* direction)
{
	CIMParameter p(name);
	p.setDataType(CIMDataType(type));
	if (direction != 0)
	{
		CIMQualifier q(direction);
		q.setValue(CIMValue(true));
		p.setQualifier(q);
	}
	return p;
}

// QTX_CDRService as a host describes it: keys, a writable property, a method.
CIMClass serviceClass()
{
	CIMClass cls("QTX_CDRService");
	CIMQualifier provider(CIMQualifier::CIM_QUAL_PROVIDER);
	provider.setValue(CIMValue(String("c++::CDRProvider")));
	cls.addQualifier(provider);
	const char* const keys[] = { "SystemCreationClassName", "SystemName", "CreationClassName", "Name" };
	for (const char* key : keys)
	{
		CIMProperty p(key, CIMDataType::STRING);
		p.setQualifier(CIMQualifier::createKeyQualifier());
		cls.addProperty(p);
	}
	cls.addProperty(CIMProperty("DigitsLimit", CIMDataType::UINT32));
	CIMMethod refresh("Refresh");
	refresh.setReturnType(CIMDataType::UINT32);
	refresh.addParameter(parameter("Force", CIMDataType::BOOLEAN, "In"));
	CIMParameter detail = parameter("Detail", CIMDataType::STRING, "Out");
	CIMQualifier notIn("In");
	notIn.setValue(CIMValue(false));
	detail.setQualifier(notIn);
	refresh.addParameter(detail);
	refresh.addParameter(parameter("Level", CIMDataType::UINT8, 0));
	cls.addMethod(refresh);
	return cls;
}
} // end unnamed namespace

TEST(CIMClassDescription, LookupsIgnoreCaseAndKeysComeFromQualifiers)
{
	CIMClass cls = serviceClass();
	EXPECT_STREQ("QTX_CDRService", cls.getName().c_str());
	EXPECT_EQ(5u, cls.getAllProperties().size());
	EXPECT_EQ(4u, cls.getKeys().size());
	EXPECT_TRUE(cls.isKeyed());
	EXPECT_TRUE(cls.getProperty("digitslimit"));
	EXPECT_FALSE(cls.getProperty("Nope"));
	EXPECT_STREQ("c++::CDRProvider", cls.getQualifier("provider").getValue().toString().c_str());
	EXPECT_TRUE(cls.getMethod("REFRESH"));
	EXPECT_FALSE(cls.getMethod("ClipFile"));
	EXPECT_FALSE(cls.isAssociation());
}

TEST(CIMClassDescription, MethodParametersKeepOrderAndDirection)
{
	CIMMethod m = serviceClass().getMethod("Refresh");
	EXPECT_EQ(CIMDataType::UINT32, m.getReturnType().getType());
	CIMParameterArray all = m.getParameters();
	ASSERT_EQ(3u, all.size());
	EXPECT_STREQ("Force", all[0].getName().c_str());
	EXPECT_STREQ("Level", all[2].getName().c_str());
	// In defaults to true: only an explicit In(false) makes a pure output.
	CIMParameterArray in = m.getINParameters();
	ASSERT_EQ(2u, in.size());
	EXPECT_STREQ("Force", in[0].getName().c_str());
	EXPECT_STREQ("Level", in[1].getName().c_str());
	CIMParameterArray out = m.getOUTParameters();
	ASSERT_EQ(1u, out.size());
	EXPECT_STREQ("Detail", out[0].getName().c_str());
}

TEST(CIMClassDescription, CloneWithoutQualifiersLeavesTheOriginal)
{
	CIMClass cls = serviceClass();
	CIMClass bare = cls.clone(WBEMFlags::E_NOT_LOCAL_ONLY, WBEMFlags::E_EXCLUDE_QUALIFIERS,
		WBEMFlags::E_EXCLUDE_CLASS_ORIGIN);
	EXPECT_TRUE(bare.getQualifiers().empty());
	EXPECT_TRUE(bare.getKeys().empty());
	EXPECT_TRUE(bare.getMethod("Refresh").getParameters()[0].getQualifiers().empty());
	EXPECT_EQ(4u, cls.getKeys().size());
	EXPECT_FALSE(cls.getQualifiers().empty());
}

TEST(CIMClassDescription, DuplicateClassQualifierIsRefused)
{
	CIMClass cls = serviceClass();
	EXPECT_THROW(cls.addQualifier(CIMQualifier("PROVIDER")), CIMException);
	cls.setQualifier(CIMQualifier("Provider"));
	EXPECT_EQ(1u, cls.getQualifiers().size());
}

TEST(CIMQualifierTypeDefaults, NameConstructorAddsOverrideAndPropagationFlavors)
{
	CIMQualifierType t("Description");
	EXPECT_TRUE(t.hasFlavor(CIMFlavor(CIMFlavor::ENABLEOVERRIDE)));
	EXPECT_TRUE(t.hasFlavor(CIMFlavor(CIMFlavor::TOSUBCLASS)));
	t.addFlavor(CIMFlavor(CIMFlavor::DISABLEOVERRIDE));
	EXPECT_FALSE(t.hasFlavor(CIMFlavor(CIMFlavor::ENABLEOVERRIDE)));
	t.addScope(CIMScope(CIMScope::PROPERTY));
	EXPECT_TRUE(t.hasScope(CIMScope(CIMScope::PROPERTY)));
	EXPECT_FALSE(t.hasScope(CIMScope(CIMScope::CLASS)));
}

TEST(CIMQualifierTypeDefaults, DefaultValueIsConvertedToTheType)
{
	CIMQualifierType t("MaxLen");
	t.setDataType(CIMDataType::UINT32);
	t.setDefaultValue(CIMValue(String("256")));
	EXPECT_EQ(CIMDataType::UINT32, t.getDefaultValue().getType());
	CIMQualifier q(t);
	EXPECT_STREQ("MaxLen", q.getName().c_str());
	EXPECT_EQ(256u, q.getValue().toUInt32());
	// A qualifier's own value is stored without conversion.
	q.setValue(CIMValue(String("x")));
	EXPECT_EQ(CIMDataType::STRING, q.getValue().getType());
}

TEST(CIMDataTypeNames, TypeNamesMapBothWays)
{
	const struct
	{
		const char* name;
		CIMDataType::Type type;
		const char* printed;
	} cases[] = {
		{ "uint8", CIMDataType::UINT8, "uint8" },
		{ "SINT64", CIMDataType::SINT64, "sint64" },
		{ "Boolean", CIMDataType::BOOLEAN, "boolean" },
		{ "datetime", CIMDataType::DATETIME, "datetime" },
		{ "char16", CIMDataType::CHAR16, "char16" },
		{ "reference", CIMDataType::REFERENCE, "REF" },
		{ "real32", CIMDataType::REAL32, "real32" },
	};
	for (const auto& c : cases)
	{
		EXPECT_EQ(c.type, CIMDataType::strToSimpleType(c.name)) << c.name;
		EXPECT_STREQ(c.printed, CIMDataType(c.type).toString().c_str()) << c.name;
	}
	EXPECT_EQ(CIMDataType::INVALID, CIMDataType::strToSimpleType("uint128"));
	EXPECT_FALSE(CIMDataType::getDataType("uint128"));
	CIMDataType array = CIMDataType::getDataType("string[]");
	EXPECT_TRUE(array.isArrayType());
	EXPECT_EQ(-1, array.getSize());
	EXPECT_STREQ("** INVALID DATA TYPE IN CIMDATATYPE - toString **", CIMDataType().toString().c_str());
}

TEST(CIMDataTypeTruth, CimNullAndInvalidTypesTestFalse)
{
	EXPECT_FALSE(CIMDataType());
	EXPECT_FALSE(CIMDataType(CIMDataType::INVALID));
	EXPECT_FALSE(CIMDataType(CIMNULL));
	EXPECT_TRUE(CIMDataType(CIMDataType::STRING));
	EXPECT_TRUE(CIMDataType(CIMDataType::UINT8, 4).isArrayType());
	EXPECT_TRUE(CIMDataType(CIMDataType::UINT8).equals(CIMDataType(CIMDataType::UINT8)));
	EXPECT_FALSE(CIMDataType(CIMDataType::UINT8).equals(CIMDataType(CIMDataType::UINT8, 0)));
}
