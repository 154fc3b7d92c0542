// The dispatcher with the test provider loaded in-process: what reaches the
// provider, and what the response carries.
#include "OperationDispatcher.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "CimValues.hpp"
#include "CimXmlResponse.hpp"
#include "CimXmlRequest.hpp"
#include "HostProcess.hpp"
#include "MofParser.hpp"

namespace cimhost {
namespace {

using test::readFile;

// Scalars are written as the API's own text of them, escaped where XML
// needs it: the integer types at their limits, booleans and strings.
TEST(ResponseWriting, ScalarValuesAreTheirApiTextEscaped) {
    const OpenWBEM::CIMValue values[] = {
        OpenWBEM::CIMValue(OpenWBEM::UInt8(255)),   OpenWBEM::CIMValue(OpenWBEM::Int8(-128)),
        OpenWBEM::CIMValue(OpenWBEM::UInt16(65535)), OpenWBEM::CIMValue(OpenWBEM::Int16(-32768)),
        OpenWBEM::CIMValue(OpenWBEM::UInt32(4294967295u)), OpenWBEM::CIMValue(OpenWBEM::Int32(-2147483647 - 1)),
        OpenWBEM::CIMValue(OpenWBEM::UInt64(18446744073709551615ull)),
        OpenWBEM::CIMValue(OpenWBEM::Int64(-9223372036854775807ll - 1)), OpenWBEM::CIMValue(true),
        OpenWBEM::CIMValue(false),  OpenWBEM::CIMValue(OpenWBEM::UInt32(0))};
    for (const OpenWBEM::CIMValue& value : values) {
        XmlWriter xml;
        writeValue(xml, value);
        EXPECT_EQ(std::string("<VALUE>") + value.toString().c_str() + "</VALUE>", xml.str());
    }
    XmlWriter plain;
    writeValue(plain, OpenWBEM::CIMValue(OpenWBEM::String("0911 plain text")));
    EXPECT_EQ("<VALUE>0911 plain text</VALUE>", plain.str());
    XmlWriter escaped;
    writeValue(escaped, OpenWBEM::CIMValue(OpenWBEM::String("a<b & \"c\"\r")));
    EXPECT_EQ("<VALUE>a&lt;b &amp; \"c\"&#13;</VALUE>", escaped.str());
}

std::string call(const std::string& name, const std::string& params, const std::string& ns = "root/cimv2") {
    std::string path;
    size_t begin = 0;
    while (begin < ns.size()) {
        size_t slash = ns.find('/', begin);
        path += "<NAMESPACE NAME=\"" + ns.substr(begin, slash - begin) + "\"/>";
        begin = slash == std::string::npos ? ns.size() : slash + 1;
    }
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"77\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" + name + "\"><LOCALNAMESPACEPATH>" + path +
           "</LOCALNAMESPACEPATH>" + params + "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

std::string widgetName(const std::string& id, const std::string& cls = "Test_Widget") {
    return "<INSTANCENAME CLASSNAME=\"" + cls + "\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">" + id +
           "</KEYVALUE></KEYBINDING></INSTANCENAME>";
}

std::string param(const std::string& name, const std::string& content) {
    return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>";
}

class Dispatcher : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        logDir = new test::TempDir;
        log = new HostLog(logDir->file("host.log"));
        module = new ProviderModule(CIMHOST_TEST_PROVIDER, *log);
        module->initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(*log, "")));
    }
    static void TearDownTestSuite() {
        delete module;
        delete log;
        delete logDir;
    }
    void SetUp() override {
        loadMofFile(CIMHOST_TEST_MOF, classes);
        dispatcher = std::make_unique<OperationDispatcher>(classes, module, *log, "root/cimv2", "127.0.0.1");
        logStart = readFile(logDir->file("host.log")).size();
    }

    std::string run(const std::string& body, const std::string& user = "") {
        return dispatcher->handle(parseCimRequest(body), user);
    }
    // What the host logged since the test began.
    std::string logged() const { return readFile(logDir->file("host.log")).substr(logStart); }

    static test::TempDir* logDir;
    static HostLog* log;
    static ProviderModule* module;
    ClassRepository classes;
    std::unique_ptr<OperationDispatcher> dispatcher;
    size_t logStart = 0;
};

test::TempDir* Dispatcher::logDir = nullptr;
HostLog* Dispatcher::log = nullptr;
ProviderModule* Dispatcher::module = nullptr;

TEST_F(Dispatcher, LoadsTheProviderByTheIdOfItsFileName) {
    EXPECT_EQ(module->id(), "TestProvider");
    EXPECT_EQ(providerIdFromPath("/x/libCDRProvider.so"), "CDRProvider");
    EXPECT_EQ(providerIdFromPath("CDRProvider.so"), "CDRProvider");
    EXPECT_EQ(dispatcher->boundClasses(), std::vector<std::string>{"Test_Widget"});
    EXPECT_THROW(ProviderModule("/nonexistent/NoSuch.so", *log), ProviderLoadError);
}

TEST_F(Dispatcher, AnswersClassOperationsFromTheMof) {
    std::string names = run(call("EnumerateClassNames", param("DeepInheritance", "<VALUE>TRUE</VALUE>")));
    EXPECT_NE(names.find("<IRETURNVALUE><CLASSNAME NAME=\"Test_Widget\"/><CLASSNAME NAME=\"Test_Elsewhere\"/></IRETURNVALUE>"),
              std::string::npos) << names;
    // Operation names are matched ignoring case, as owcimomd matches them.
    std::string cls = run(call("getclass", param("ClassName", "<CLASSNAME NAME=\"test_widget\"/>")));
    EXPECT_EQ(cls.rfind("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n", 0), 0u);
    EXPECT_NE(cls.find("<IMETHODRESPONSE NAME=\"getclass\"><IRETURNVALUE><CLASS NAME=\"Test_Widget\">"), std::string::npos);
    // Flavors other than the defaults show, as OpenWBEM writes them.
    EXPECT_NE(cls.find("<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
                       "<VALUE>true</VALUE></QUALIFIER></PROPERTY>"), std::string::npos) << cls;
    EXPECT_NE(cls.find("<QUALIFIER NAME=\"Description\" TYPE=\"string\" TRANSLATABLE=\"true\">"), std::string::npos);
    EXPECT_NE(cls.find("<PROPERTY.ARRAY NAME=\"Codes\" TYPE=\"uint32\"></PROPERTY.ARRAY>"), std::string::npos);
    EXPECT_NE(cls.find("<PROPERTY NAME=\"Enabled\" TYPE=\"boolean\"><VALUE>true</VALUE></PROPERTY>"), std::string::npos);
    EXPECT_NE(cls.find("<METHOD NAME=\"Ping\" TYPE=\"uint32\"><PARAMETER NAME=\"Level\" TYPE=\"uint32\"><QUALIFIER NAME=\"In\""),
              std::string::npos) << cls;
    EXPECT_NE(cls.find("A widget &amp; its \"parts\""), std::string::npos);
    EXPECT_EQ(cls.find("/>", cls.find("<CLASS ")), std::string::npos) << "no self-closed element inside CLASS";
    std::string bare = run(call("GetClass", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>") +
                                                param("IncludeQualifiers", "<VALUE>FALSE</VALUE>") +
                                                param("IncludeClassOrigin", "<VALUE>TRUE</VALUE>")));
    EXPECT_EQ(bare.find("QUALIFIER"), std::string::npos);
    EXPECT_NE(bare.find("<PROPERTY NAME=\"Id\" TYPE=\"string\" CLASSORIGIN=\"Test_Widget\"></PROPERTY>"), std::string::npos);
}

// OpenWBEM 3.0 describes a CIM error by its code's text and the message in
// parentheses (CIMException::getMessage); class lookups name the class as
// an object path.
TEST_F(Dispatcher, ErrorsCarryOpenWbem30Descriptions) {
    const std::pair<std::string, std::string> cases[] = {
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>")),
         "<ERROR CODE=\"5\" DESCRIPTION=\"class does not exist (/root/cimv2:No_Such)\"/>"},
        {call("GetClass", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>")),
         "<ERROR CODE=\"6\" DESCRIPTION=\"requested object could not be found (/root/cimv2:No_Such)\"/>"},
        {call("EnumerateClassNames", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>")),
         "<ERROR CODE=\"5\" DESCRIPTION=\"class does not exist (No_Such)\"/>"},
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>"), "root/other"),
         "<ERROR CODE=\"3\" DESCRIPTION=\"namespace does not exist (root/other)\"/>"},
        {call("CreateClass", ""), "<ERROR CODE=\"7\" DESCRIPTION=\"requested operation is not supported\"/>"},
        {call("DeleteClass", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>")), "<ERROR CODE=\"6\""},
        {call("DeleteClass", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>")), "<ERROR CODE=\"7\""},
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Elsewhere\"/>")),
         "<ERROR CODE=\"1\" DESCRIPTION=\"general error (Invalid provider: OtherProvider)\"/>"},
        // Parameters missing or of the wrong form: CIM error 4, as XMLExecute
        // reads them, not HTTP 400.
        {call("GetInstance", ""),
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (Non-optional parameter InstanceName "
         "was not given)\"/>"},
        {call("EnumerateInstances", param("ClassName", "<VALUE>Test_Widget</VALUE>")), "<ERROR CODE=\"4\""},
        {call("GetInstance", param("InstanceName", "<CLASSNAME NAME=\"Test_Widget\"/>")), "<ERROR CODE=\"4\""},
        {call("EnumerateInstanceNames", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>") +
                                            param("DeepInheritance", "<VALUE>true</VALUE>")),
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (Parameter DeepInheritance is not a "
         "valid parameter)\"/>"},
        // All parameters are read before the namespace is looked at.
        {call("GetInstance", "", "root/other"), "(Non-optional parameter InstanceName was not given)"},
        // owcimomd's repository has "root" above "root/cimv2", without
        // classes; namespace names are matched ignoring case, except when
        // the classes at the top of a namespace are listed.
        {call("EnumerateClassNames", "", "root"), "<IRETURNVALUE></IRETURNVALUE>"},
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>"), "root"),
         "<ERROR CODE=\"5\" DESCRIPTION=\"class does not exist (/root:Test_Widget)\"/>"},
        {call("EnumerateInstanceNames", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>"), "Root/CIMV2"),
         "VALUETYPE=\"string\">B2</KEYVALUE>"},
        {call("EnumerateClasses", "", "Root/CIMV2"),
         "<ERROR CODE=\"3\" DESCRIPTION=\"namespace does not exist (Root/CIMV2)\"/>"},
        {call("GetClass", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>"), "Root/CIMV2"),
         "<ERROR CODE=\"3\" DESCRIPTION=\"namespace does not exist (Root/CIMV2)\"/>"},
        // A LOCALNAMESPACEPATH without NAMESPACE fails in owcimomd's XML
        // parser, whatever the operation.
        {call("NoSuchOperation", "", ""),
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (CIMXMLParser::mustGetChild("
         "CIMXMLParser::tokenId tId=NAMESPACE) failed.  parser = m_good = 0&#10;&lt;/LOCALNAMESPACEPATH&gt;&#10;)\"/>"},
        // As owcimomd reads a request: a numeric key that is no number is
        // CIM error 1 before anything else is looked at, a reference as a
        // key is its text, a parameter given again replaces the first.
        {call("GetInstance", param("InstanceName", "<INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"
                                                   "<KEYVALUE VALUETYPE=\"numeric\">B2</KEYVALUE></KEYBINDING></INSTANCENAME>"),
              "root/other"),
         "<ERROR CODE=\"1\" DESCRIPTION=\"general error (Unable to convert &quot;B2&quot; into Real64)\"/>"},
        {call("GetInstance", param("InstanceName", "<INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"
                                                   "<VALUE.REFERENCE><CLASSNAME NAME=\"X\"/></VALUE.REFERENCE>"
                                                   "</KEYBINDING></INSTANCENAME>")),
         "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>/:X</VALUE>"},
        {call("GetInstance", param("InstanceName", widgetName("nothing")) + param("InstanceName", widgetName("B2"))),
         "<VALUE>B2</VALUE>"},
        // An instance's values are converted by the request's types first;
        // a date-time that is none is a general error.
        {call("ModifyInstance",
              param("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + widgetName("B2") + "<INSTANCE CLASSNAME=\"Test_Widget\">"
                                        "<PROPERTY NAME=\"Count\" TYPE=\"uint16\"><VALUE>a b</VALUE></PROPERTY>"
                                        "</INSTANCE></VALUE.NAMEDINSTANCE>"),
              "root/other"),
         "(Unable to convert &quot;a b&quot; into UInt16)"},
        {call("CreateInstance", param("NewInstance", "<INSTANCE CLASSNAME=\"No_Such\"><PROPERTY NAME=\"When\" "
                                                     "TYPE=\"datetime\"><VALUE>abc</VALUE></PROPERTY></INSTANCE>")),
         "<ERROR CODE=\"1\" DESCRIPTION=\"general error (Invalid format for date time)\"/>"},
        // An empty boolean is false; another text is not a boolean.
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>") +
                                        param("LocalOnly", "<VALUE></VALUE>") + param("DeepInheritance", "<VALUE>yes</VALUE>")),
         "(Unable to convert &quot;yes&quot; into bool)"},
    };
    for (const auto& [body, expected] : cases) {
        std::string response = run(body);
        EXPECT_NE(response.find(expected), std::string::npos) << response;
    }
}

// ExecQuery goes to owcimomd's WQL library; the host answers as owcimomd
// does without one.
TEST_F(Dispatcher, ExecQueryAnswersAsOwcimomdWithoutWql) {
    std::string query = param("QueryLanguage", "<VALUE>WQL</VALUE>") +
                        param("Query", "<VALUE>select * from Test_Widget</VALUE>");
    EXPECT_NE(run(call("ExecQuery", query))
                  .find("<ERROR CODE=\"14\" DESCRIPTION=\"query language is not recognized or supported (WQL)\"/>"),
              std::string::npos);
    EXPECT_NE(run(call("ExecQuery", param("Query", "<VALUE>select * from Test_Widget</VALUE>")))
                  .find("(Non-optional parameter QueryLanguage was not given)"),
              std::string::npos);
}

TEST_F(Dispatcher, ProviderErrorsGetTheDescriptionsOwcimomdGives) {
    const std::pair<std::string, std::string> cases[] = {
        {"missing", "<ERROR CODE=\"6\" DESCRIPTION=\"requested object could not be found\"/>"},
        {"cim", "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (Count must be &lt;= 10)\"/>"},
        {"std", "<ERROR CODE=\"1\" DESCRIPTION=\"widget store is broken\"/>"},
        {"int", "<ERROR CODE=\"1\" DESCRIPTION=\"Unknown Exception\"/>"},
    };
    for (const auto& [id, expected] : cases) {
        std::string response = run(call("GetInstance", param("InstanceName", widgetName(id))));
        EXPECT_NE(response.find("<IMETHODRESPONSE NAME=\"GetInstance\">" + expected + "</IMETHODRESPONSE>"),
                  std::string::npos) << response;
    }
    // The log names where the provider raised the error.
    EXPECT_NE(logged().find("CIM error 4 for GetInstance from "), std::string::npos);
    EXPECT_NE(logged().find("TestProvider.cpp:"), std::string::npos);
}

// OpenWBEM leaves LocalOnly, IncludeQualifiers, IncludeClassOrigin and
// PropertyList of GetInstance and EnumerateInstances to the provider: the
// instance goes out as the provider built it.
TEST_F(Dispatcher, InstancesGoOutAsTheProviderBuiltThem) {
    std::string expected =
        "<INSTANCE CLASSNAME=\"Test_Widget\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" "
        "TYPE=\"boolean\"><VALUE>true</VALUE></QUALIFIER><VALUE>A1</VALUE></PROPERTY><PROPERTY NAME=\"Count\" "
        "TYPE=\"uint32\"><QUALIFIER NAME=\"Applicable\" TYPE=\"boolean\"><VALUE>false</VALUE></QUALIFIER>"
        "<VALUE>42</VALUE></PROPERTY><PROPERTY NAME=\"Label\" TYPE=\"string\"></PROPERTY><PROPERTY.ARRAY NAME=\"Codes\" "
        "TYPE=\"uint32\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"
        "<PROPERTY NAME=\"Enabled\" TYPE=\"boolean\"><VALUE>true</VALUE></PROPERTY></INSTANCE>";
    std::string all = run(call("GetInstance", param("InstanceName", widgetName("A1"))));
    EXPECT_NE(all.find(expected), std::string::npos) << all;
    EXPECT_EQ(all.find("Seen"), std::string::npos) << "a property the provider did not set stays out";
    std::string narrowed = run(call("GetInstance", param("InstanceName", widgetName("A1")) +
                                                       param("IncludeQualifiers", "<VALUE>false</VALUE>") +
                                                       param("PropertyList", "<VALUE.ARRAY><VALUE>count</VALUE></VALUE.ARRAY>")));
    EXPECT_NE(narrowed.find(expected), std::string::npos) << narrowed;
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=A1 qualifiers=0 list=[count]"),
              std::string::npos) << logged();
}

// owcimomd names an enumerated instance from its key properties, those with
// a Key qualifier: an instance without one gets a name without keys. Key
// values carry VALUETYPE only.
TEST_F(Dispatcher, NamesEnumeratedInstancesByTheirKeyQualifiedProperties) {
    std::string response = run(call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"test_WIDGET\"/>")));
    EXPECT_NE(response.find("<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"
                            "<KEYVALUE VALUETYPE=\"string\">A1</KEYVALUE></KEYBINDING></INSTANCENAME>"),
              std::string::npos) << response;
    EXPECT_NE(response.find("<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"Test_Widget\"></INSTANCENAME>"),
              std::string::npos) << response;
    // Enumerations reach the provider under the class's own spelling; other
    // operations pass the client's.
    EXPECT_NE(logged().find("enumInstances ns=root/cimv2 class=Test_Widget localOnly=1 deep=1 qualifiers=0 origin=0 list=all"),
              std::string::npos) << logged();
    run(call("EnumerateInstanceNames", param("ClassName", "<CLASSNAME NAME=\"TEST_widget\"/>")));
    EXPECT_NE(logged().find("enumInstanceNames ns=root/cimv2 class=Test_Widget"), std::string::npos);
    run(call("GetInstance", param("InstanceName", widgetName("A1", "test_widget"))));
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=test_widget Id=A1"), std::string::npos);
}

std::string modifyBody(const std::string& properties, const std::string& extra = "") {
    return call("ModifyInstance", param("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + widgetName("OTHER") +
                                                                "<INSTANCE CLASSNAME=\"Test_Widget\">" + properties +
                                                                "</INSTANCE></VALUE.NAMEDINSTANCE>") + extra);
}

// CIMServer::modifyInstance fits the instance to the class
// (CIMInstance::syncWithClass) before the provider sees it: unknown
// properties dropped, names and types the class's, NULL values the class
// default, missing properties appended, keys from the Key properties. The
// 3.0 series passes the PropertyList on without narrowing the instance.
TEST_F(Dispatcher, ModifyFitsTheInstanceToTheClassAsSyncWithClassDoes) {
    std::string body = modifyBody(
        "<PROPERTY NAME=\"label\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY><PROPERTY NAME=\"Count\" TYPE=\"string\">"
        "<VALUE>7</VALUE></PROPERTY><PROPERTY NAME=\"Bogus\" TYPE=\"string\"><VALUE>b</VALUE></PROPERTY><PROPERTY "
        "NAME=\"id\" TYPE=\"string\"><VALUE>A1</VALUE></PROPERTY><PROPERTY.ARRAY NAME=\"Codes\" TYPE=\"uint32\">"
        "<VALUE.ARRAY><VALUE>3</VALUE></VALUE.ARRAY></PROPERTY.ARRAY><PROPERTY NAME=\"Enabled\" TYPE=\"boolean\">"
        "</PROPERTY>",
        param("PropertyList", "<VALUE.ARRAY><VALUE>label</VALUE></VALUE.ARRAY>"));
    std::string response = run(body);
    EXPECT_NE(response.find("<IMETHODRESPONSE NAME=\"ModifyInstance\"></IMETHODRESPONSE>"), std::string::npos) << response;
    // Keys come from the instance's own key property (A1), not the name beside it.
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=A1 qualifiers=1 list=all"), std::string::npos);
    EXPECT_NE(logged().find("modifyInstance ns=root/cimv2 class=Test_Widget Label=string:x,Count=uint32:7,Id=string:A1,"
                            "Codes=uint32:3,Enabled=boolean:true,Seen=null previous=A1 list=[label]"),
              std::string::npos) << logged();

    const std::pair<std::string, std::string> refused[] = {
        // Not convertible to the class's type: the object manager's error.
        {"<PROPERTY NAME=\"Count\" TYPE=\"string\"><VALUE>seven</VALUE></PROPERTY>",
         "<ERROR CODE=\"1\" DESCRIPTION=\"general error (Unable to convert &quot;seven&quot; into UInt32)\"/>"},
        {"<PROPERTY NAME=\"Count\" TYPE=\"datetime\"><VALUE>20240131120000.000000+000</VALUE></PROPERTY>",
         "<ERROR CODE=\"1\" DESCRIPTION=\"general error (Failed to convert &quot;20240131120000.000000+000&quot; to "
         "uint32)\"/>"},
        // Not a value of its own TYPE, or no TYPE: refused while reading.
        {"<PROPERTY NAME=\"Count\" TYPE=\"uint32\"><VALUE>seven</VALUE></PROPERTY>",
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (Unable to convert &quot;seven&quot; "
         "into UInt32)\"/>"},
        {"<PROPERTY NAME=\"Count\"><VALUE>7</VALUE></PROPERTY>",
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (property has null data type)\"/>"},
    };
    for (const auto& [property, expected] : refused) {
        EXPECT_NE(run(modifyBody(property)).find(expected), std::string::npos) << property;
    }
}

TEST_F(Dispatcher, CreateFitsTheNewInstanceToTheClass) {
    std::string response = run(call(
        "CreateInstance", param("NewInstance", "<INSTANCE CLASSNAME=\"test_widget\"><PROPERTY NAME=\"ID\" TYPE=\"string\">"
                                               "<VALUE>C3</VALUE></PROPERTY></INSTANCE>")));
    EXPECT_NE(logged().find("createInstance Id=string:C3,Count=null,Label=null,Codes=null,Enabled=boolean:true,Seen=null"),
              std::string::npos) << logged();
    EXPECT_NE(response.find("<IRETURNVALUE><INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"), std::string::npos)
        << response;
}

// XMLCIMFactory reads values as C strings: an empty number is 0 (strtol
// stops at once at the end), a boolean array never fails (an element is true
// when it says "true"), a CHAR16 is one character, and text arrives as sent:
// carriage returns and tabs stay, and go back out escaped.
TEST_F(Dispatcher, ReadsValuesAsOpenWbemsXmlFactoryDoes) {
    std::string response = run(modifyBody(
        "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>A1</VALUE></PROPERTY>"
        "<PROPERTY NAME=\"Count\" TYPE=\"uint32\"><VALUE></VALUE></PROPERTY>"
        "<PROPERTY.ARRAY NAME=\"Enabled\" TYPE=\"boolean\"><VALUE.ARRAY><VALUE>yes</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"
        "<PROPERTY NAME=\"label\" TYPE=\"string\"><VALUE>first</VALUE></PROPERTY>"
        "<PROPERTY NAME=\"LABEL\" TYPE=\"uint8\"><VALUE>2</VALUE></PROPERTY>"));
    EXPECT_NE(response.find("<IMETHODRESPONSE NAME=\"ModifyInstance\"></IMETHODRESPONSE>"), std::string::npos) << response;
    // A property named twice: the first is fitted to the class, both go on.
    EXPECT_NE(logged().find("Id=string:A1,Count=uint32:0,Enabled=boolean:false,Label=string:first,LABEL=uint8:2"),
              std::string::npos) << logged();

    const std::pair<std::string, std::string> cases[] = {
        {modifyBody("<PROPERTY NAME=\"Label\" TYPE=\"char16\"><VALUE>ab</VALUE></PROPERTY>"),
         "(Unable to convert &quot;ab&quot; into Char16)"},
        {modifyBody("<PROPERTY NAME=\"Count\" TYPE=\"uint16\"><VALUE>1\r2\t3</VALUE></PROPERTY>"),
         "(Unable to convert &quot;1&#13;2&#9;3&quot; into UInt16)"},
        // A numeric key is a 64-bit integer first: the empty one is 0.
        {call("GetInstance", param("InstanceName", "<INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"
                                                   "<KEYVALUE VALUETYPE=\"numeric\"></KEYVALUE></KEYBINDING></INSTANCENAME>")),
         "<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>0</VALUE>"},
        // An empty ClassName is the top of the namespace.
        {call("EnumerateClassNames", param("ClassName", "<CLASSNAME NAME=\"\"/>")), "<CLASSNAME NAME=\"Test_Widget\"/>"},
        // A date-time that does not parse says so, also where it is cast.
        {call("SetProperty", param("InstanceName", widgetName("A1")) + param("PropertyName", "<VALUE>Seen</VALUE>") +
                                 param("NewValue", "<VALUE>abc</VALUE>")),
         "<ERROR CODE=\"13\" DESCRIPTION=\"value supplied is incompatible with type (Invalid format for date time)\"/>"},
    };
    for (const auto& [body, expected] : cases) {
        std::string answer = run(body);
        EXPECT_NE(answer.find(expected), std::string::npos) << answer;
    }
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=0 "), std::string::npos) << logged();
}

// Where 3.2 differs from 3.0, the device's series, cimhost can follow 3.2:
// a namespace is found only as spelled, a modification reaches the provider
// cut to its keys and the PropertyList, and any text is a scalar CHAR16.
TEST_F(Dispatcher, FollowsOpenWbem32WhereItDiffersFrom30) {
    std::string body = call("EnumerateInstanceNames", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>"), "ROOT/CIMV2");
    std::string char16 = modifyBody("<PROPERTY NAME=\"Label\" TYPE=\"char16\"><VALUE>ab</VALUE></PROPERTY>");
    EXPECT_NE(run(body).find("<INSTANCENAME CLASSNAME=\"Test_Widget\">"), std::string::npos);
    EXPECT_NE(run(char16).find("<ERROR CODE=\"4\""), std::string::npos);
    dispatcher->followSeries32();
    EXPECT_NE(run(body).find("<ERROR CODE=\"3\" DESCRIPTION=\"namespace does not exist (ROOT/CIMV2)\"/>"), std::string::npos);
    EXPECT_NE(run(call("EnumerateClassNames", "", "root")).find("<IRETURNVALUE></IRETURNVALUE>"), std::string::npos);
    std::string answer = run(modifyBody("<PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>A1</VALUE></PROPERTY>"
                                        "<PROPERTY NAME=\"Label\" TYPE=\"char16\"><VALUE>ab</VALUE></PROPERTY>",
                                        param("PropertyList", "<VALUE.ARRAY><VALUE>label</VALUE></VALUE.ARRAY>")));
    readValuesAs(Series::OpenWbem30);
    EXPECT_NE(answer.find("<IMETHODRESPONSE NAME=\"ModifyInstance\"></IMETHODRESPONSE>"), std::string::npos) << answer;
    EXPECT_NE(logged().find("modifyInstance ns=root/cimv2 class=Test_Widget Label=string:a previous=A1 list=[label]"),
              std::string::npos) << logged();
}

// SetProperty is a ModifyInstance of one property in owcimomd.
TEST_F(Dispatcher, SetPropertyModifiesTheOneProperty) {
    auto setProperty = [&](const std::string& name, const std::string& value) {
        return run(call("SetProperty", param("InstanceName", widgetName("A1")) +
                                           param("PropertyName", "<VALUE>" + name + "</VALUE>") +
                                           param("NewValue", "<VALUE>" + value + "</VALUE>")));
    };
    EXPECT_NE(setProperty("count", "5").find("<IMETHODRESPONSE NAME=\"SetProperty\"></IMETHODRESPONSE>"), std::string::npos);
    EXPECT_NE(logged().find("modifyInstance ns=root/cimv2 class=Test_Widget Id=string:A1,Count=uint32:5,"), std::string::npos)
        << logged();
    EXPECT_NE(logged().find("list=[count]"), std::string::npos);
    EXPECT_NE(setProperty("Count", "five").find("<ERROR CODE=\"13\""), std::string::npos);
    EXPECT_NE(setProperty("Id", "B2").find("general error (Cannot modify key property: Id)"), std::string::npos);
    EXPECT_NE(setProperty("Nope", "1").find("<ERROR CODE=\"12\""), std::string::npos);
}

std::string methodCall(const std::string& name, const std::string& params, const std::string& id = "A1",
                       const std::string& cls = "Test_Widget") {
    return "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"5\" PROTOCOLVERSION=\"1.0\">"
           "<SIMPLEREQ><METHODCALL NAME=\"" + name + "\"><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE "
           "NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" + widgetName(id, cls) +
           "</LOCALINSTANCEPATH>" + params + "</METHODCALL></SIMPLEREQ></MESSAGE></CIM>";
}

// CIMServer::invokeMethod: the instance must exist (the provider's
// getInstance), inputs go in declaration order under the client's names and
// are converted to their declared types, outputs come back all of them.
TEST_F(Dispatcher, InvokesMethodsAsOwcimomdDoes) {
    std::string response = run(methodCall("Ping", "<PARAMVALUE NAME=\"reason\"><VALUE>why</VALUE></PARAMVALUE>"
                                                  "<PARAMVALUE NAME=\"Level\"><VALUE>3</VALUE></PARAMVALUE>"));
    EXPECT_NE(response.find("<METHODRESPONSE NAME=\"Ping\"><RETURNVALUE><VALUE>7</VALUE></RETURNVALUE>"
                            "<PARAMVALUE NAME=\"Echo\" PARAMTYPE=\"string\"><VALUE>pong</VALUE></PARAMVALUE></METHODRESPONSE>"),
              std::string::npos) << response;
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=A1 qualifiers=1 list=all"), std::string::npos);
    EXPECT_NE(logged().find("invokeMethod Ping on Test_Widget Id=A1 in=Level=uint32:3;reason=string:why; out=Echo;"),
              std::string::npos) << logged();
    // The method name reaches the provider as spelled; its own rule decides.
    EXPECT_NE(run(methodCall("PING", "")).find("<ERROR CODE=\"17\" DESCRIPTION=\"extrinsic method does not exist\"/>"),
              std::string::npos);
    EXPECT_NE(logged().find("invokeMethod PING on Test_Widget Id=A1 in=Level=null;Reason=null; out=Echo;"), std::string::npos);

    const std::pair<std::string, std::string> refused[] = {
        {methodCall("Pong", ""), "<ERROR CODE=\"17\" DESCRIPTION=\"extrinsic method does not exist (Pong)\"/>"},
        {methodCall("Ping", "<PARAMVALUE NAME=\"Echo\"><VALUE>x</VALUE></PARAMVALUE>"),
         "(Unknown or duplicate parameter: Echo)"},
        {methodCall("Ping", "<PARAMVALUE NAME=\"Level\"><VALUE>1</VALUE></PARAMVALUE><PARAMVALUE NAME=\"level\"><VALUE>2"
                            "</VALUE></PARAMVALUE>"),
         "(Unknown or duplicate parameter: level)"},
        {methodCall("Ping", "<PARAMVALUE NAME=\"Level\"><VALUE>high</VALUE></PARAMVALUE>"),
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (Unable to convert &quot;high&quot;"},
        // Any CIM error of getInstance means the instance is not there.
        {methodCall("Ping", "", "missing"),
         "<ERROR CODE=\"6\" DESCRIPTION=\"requested object could not be found (Instance not found: "
         "/root/cimv2:Test_Widget.Id=&quot;missing&quot;)\"/>"},
        {methodCall("Ping", "", "cim"), "(Instance not found: /root/cimv2:Test_Widget.Id=&quot;cim&quot;)"},
        {methodCall("Ping", "", "std"), "<ERROR CODE=\"1\" DESCRIPTION=\"widget store is broken\"/>"},
        {methodCall("Ping", "", "A1", "No_Such"),
         "<ERROR CODE=\"6\" DESCRIPTION=\"requested object could not be found (/root/cimv2:No_Such)\"/>"},
    };
    for (const auto& [body, expected] : refused) {
        std::string answer = run(body);
        EXPECT_NE(answer.find(expected), std::string::npos) << answer;
    }
    EXPECT_EQ(logged().find("invokeMethod Ping on Test_Widget Id=missing"), std::string::npos);
}

// owcimomd consults only association classes that reference the object's
// class; there are none, so the answer is empty and the associator
// provider is never asked. The named classes are still checked.
TEST_F(Dispatcher, AssociationsFindNoAssociationClassAndAnswerEmpty) {
    for (const char* op : {"Associators", "AssociatorNames", "References", "ReferenceNames"}) {
        std::string response = run(call(op, param("ObjectName", widgetName("A1"))));
        EXPECT_NE(response.find("<IRETURNVALUE></IRETURNVALUE>"), std::string::npos) << response;
    }
    EXPECT_EQ(logged().find("associator"), std::string::npos) << logged();
    EXPECT_EQ(logged().find("reference"), std::string::npos) << logged();
    const std::pair<std::string, std::string> refused[] = {
        {call("Associators", param("ObjectName", widgetName("A1")) + param("AssocClass", "<CLASSNAME NAME=\"Test_Link\"/>")),
         "<ERROR CODE=\"6\" DESCRIPTION=\"requested object could not be found (/root/cimv2:Test_Link)\"/>"},
        {call("References", param("ObjectName", widgetName("A1")) + param("ResultClass", "<CLASSNAME NAME=\"test_widget\"/>")),
         "<ERROR CODE=\"4\" DESCRIPTION=\"invalid parameter passed to method (class Test_Widget is not an association)\"/>"},
        {call("ReferenceNames", param("ObjectName", widgetName("A1", "No_Such"))), "<ERROR CODE=\"6\""},
    };
    for (const auto& [body, expected] : refused) {
        std::string answer = run(body);
        EXPECT_NE(answer.find(expected), std::string::npos) << answer;
    }
}

// The 3.0 series writes the empty date-time as a zero date (3.2: a zero
// interval).
TEST(DateTimeText, WritesTheEmptyDateTimeAsOpenWbem30Does) {
    EXPECT_EQ(dateTimeText(OpenWBEM::CIMDateTime(OpenWBEM::String(""))), "00000000000000.000000+000");
    EXPECT_EQ(dateTimeText(OpenWBEM::CIMDateTime(OpenWBEM::String("20240131120000.000000+060"))),
              "20240131120000.000000+060");
    EXPECT_EQ(dateTimeText(OpenWBEM::CIMDateTime(OpenWBEM::String("00000001000000.000000:000"))),
              "00000001000000.000000:000");
}

}  // namespace
}  // namespace cimhost
