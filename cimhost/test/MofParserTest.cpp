#include "MofParser.hpp"

#include <gtest/gtest.h>

namespace cimhost {
namespace {

class ProjectMof : public ::testing::Test {
protected:
    void SetUp() override { loadMofFile(CIMHOST_PROJECT_MOF, classes); }
    ClassRepository classes;
};

TEST_F(ProjectMof, DefinesTheSixClassesBoundToTheModule) {
    ASSERT_EQ(classes.classes().size(), 6u);
    for (const ClassDefinition& cls : classes.classes()) {
        std::optional<ProviderBinding> binding = parseProviderQualifier(cls.qualifiers);
        ASSERT_TRUE(binding) << cls.name;
        EXPECT_EQ(binding->interfaceName, "c++");
        EXPECT_EQ(binding->providerId, "CDRProvider");
        EXPECT_TRUE(cls.superClass.empty());
    }
}

TEST_F(ProjectMof, GivesEachClassItsPropertiesKeysAndMethods) {
    struct Row {
        const char* cls;
        size_t properties;
        std::vector<std::string> keys;
        std::vector<std::string> methods;
    };
    const Row rows[] = {
        {"QTX_CDRService", 25, {"SystemCreationClassName", "SystemName", "CreationClassName", "Name"}, {"Refresh", "ClipFile"}},
        {"QTX_CDRServicePrefixBin", 2, {"InstanceID"}, {}},
        {"QTX_CDRServiceAccessBin", 3, {"InstanceID"}, {}},
        {"QTX_CDRPushSetting", 13, {"InstanceID"}, {"PushFileNow"}},
        {"QTX_CDRPushStatistics", 2, {"Name"}, {"Refresh"}},
        {"QTX_CDRPullStatistics", 11, {"Name"}, {"Refresh"}},
    };
    for (const Row& row : rows) {
        const ClassDefinition* cls = classes.findClass(row.cls);
        ASSERT_NE(cls, nullptr) << row.cls;
        EXPECT_EQ(cls->properties.size(), row.properties) << row.cls;
        std::vector<std::string> keys;
        for (const PropertyDefinition* key : cls->keyProperties()) keys.push_back(key->name);
        EXPECT_EQ(keys, row.keys) << row.cls;
        std::vector<std::string> methods;
        for (const MethodDefinition& m : cls->methods) {
            methods.push_back(m.name);
            EXPECT_EQ(m.returnType, "uint32") << row.cls << "." << m.name;
            EXPECT_TRUE(m.parameters.empty());
        }
        EXPECT_EQ(methods, row.methods) << row.cls;
    }
}

TEST_F(ProjectMof, TypesPropertiesAsTheProviderFillsThem) {
    struct Row {
        const char* cls;
        const char* property;
        const char* type;
    };
    const Row rows[] = {
        {"QTX_CDRService", "Format", "uint8"},
        {"QTX_CDRService", "FeatureCode", "string"},
        {"QTX_CDRService", "DNISInfo", "boolean"},
        {"QTX_CDRService", "DigitsLimit", "uint16"},
        {"QTX_CDRService", "CDRDiskSpaceLimit_MB", "uint32"},
        {"QTX_CDRPushSetting", "TransferType", "uint8"},
        {"QTX_CDRPushSetting", "NumRetry", "uint32"},
        {"QTX_CDRPushSetting", "TransferDayOfWeek", "string"},
        {"QTX_CDRPushStatistics", "LastTransferTime", "datetime"},
        {"QTX_CDRPullStatistics", "IncludeMetricsFlag", "boolean"},
        {"QTX_CDRPullStatistics", "TotalNumberOfFileTransferred", "uint32"},
    };
    for (const Row& row : rows) {
        const PropertyDefinition* p = classes.findClass(row.cls)->findProperty(row.property);
        ASSERT_NE(p, nullptr) << row.property;
        EXPECT_EQ(p->type, row.type) << row.property;
        EXPECT_FALSE(p->isArray);
        EXPECT_NE(findQualifier(p->qualifiers, "Description"), nullptr) << row.property;
    }
}

TEST_F(ProjectMof, FindsClassesPropertiesAndMethodsIgnoringCase) {
    const ClassDefinition* cls = classes.findClass("qtx_cdrservice");
    ASSERT_NE(cls, nullptr);
    EXPECT_EQ(cls->name, "QTX_CDRService");
    EXPECT_NE(cls->findProperty("digitslimit"), nullptr);
    EXPECT_NE(cls->findMethod("CLIPFILE"), nullptr);
}

TEST(MofParser, ReadsQualifierValuesArraysDefaultsAndParameters) {
    ClassRepository classes;
    parseMof(R"(
        #pragma locale ("en_US")
        Qualifier Key : boolean = false, Scope(property), Flavor(DisableOverride, ToSubclass);
        Qualifier Out : boolean = false, Scope(parameter);
        Qualifier Values : string[], Scope(property), Flavor(Translatable);
        /* a comment */
        [Description("one " "two\n")]
        class Demo_Item {
            [Key] string ItemID;
            [Values {"Off", "On"}] uint32 Codes[] = {1, 2};
            real64 Ratio = -1.5;
            Demo_Item REF Peer;
            uint32 Reset([IN] uint32 Level, [Out] string Message[]);
        };
        class Demo_Child : Demo_Item { string Extra; };
    )", "inline", classes);
    const ClassDefinition* item = classes.findClass("Demo_Item");
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(findQualifier(item->qualifiers, "Description")->value.elements.front(), "one two\n");
    const PropertyDefinition* key = item->findProperty("ItemID");
    EXPECT_TRUE(key->isKey());
    const Qualifier* keyQualifier = findQualifier(key->qualifiers, "Key");
    EXPECT_EQ(keyQualifier->type, "boolean");
    EXPECT_FALSE(keyQualifier->flavors.overridable);
    const PropertyDefinition* codes = item->findProperty("Codes");
    EXPECT_TRUE(codes->isArray);
    EXPECT_EQ(codes->defaultValue.elements, (std::vector<std::string>{"1", "2"}));
    const Qualifier* values = findQualifier(codes->qualifiers, "Values");
    EXPECT_TRUE(values->isArray);
    EXPECT_TRUE(values->flavors.translatable);
    EXPECT_EQ(values->value.elements, (std::vector<std::string>{"Off", "On"}));
    EXPECT_EQ(item->findProperty("Ratio")->defaultValue.elements.front(), "-1.5");
    EXPECT_EQ(item->findProperty("Peer")->type, "reference");
    EXPECT_EQ(item->findProperty("Peer")->referenceClass, "Demo_Item");
    const MethodDefinition* reset = item->findMethod("Reset");
    ASSERT_EQ(reset->parameters.size(), 2u);
    EXPECT_TRUE(reset->parameters[0].isInput());
    EXPECT_FALSE(reset->parameters[0].isOutput());
    EXPECT_TRUE(reset->parameters[1].isOutput());
    EXPECT_TRUE(reset->parameters[1].isArray);
    const ClassDefinition* child = classes.findClass("Demo_Child");
    ASSERT_EQ(child->properties.size(), 5u);
    EXPECT_EQ(child->properties.front().classOrigin, "Demo_Item");
    EXPECT_EQ(child->properties.back().classOrigin, "Demo_Child");
    EXPECT_NE(child->findMethod("Reset"), nullptr);
}

TEST(MofParser, NamesTheLineOfTheFirstError) {
    const std::pair<const char*, const char*> cases[] = {
        {"class A {\n  string X;\n  strin Y;\n};", "inline:3: unknown data type strin"},
        {"class A {\n  string X;\n  string x;\n};", "inline:3: property x defined twice"},
        {"class A {\n  string X;\n", "unterminated class A"},
        {"class A : Missing { };", "unknown superclass Missing"},
        {"[Description(\"open\n)] class A { };", "inline:1: unterminated string"},
        {"class A { string X; };\nclass a { string Y; };", "inline:2: class a defined twice"},
    };
    for (const auto& [text, message] : cases) {
        ClassRepository classes;
        try {
            parseMof(text, "inline", classes);
            ADD_FAILURE() << "no error for: " << text;
        } catch (const MofError& e) {
            EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what();
        }
    }
}

}  // namespace
}  // namespace cimhost
