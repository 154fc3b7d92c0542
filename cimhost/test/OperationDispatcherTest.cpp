// The dispatcher with the test provider loaded in-process: what reaches the
// provider, and what the response carries.
#include "OperationDispatcher.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "CimXmlRequest.hpp"
#include "HostProcess.hpp"
#include "MofParser.hpp"

namespace cimhost {
namespace {

using test::readFile;

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
    std::string cls = run(call("GetClass", param("ClassName", "<CLASSNAME NAME=\"test_widget\"/>")));
    EXPECT_EQ(cls.rfind("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n", 0), 0u);
    EXPECT_NE(cls.find("<IMETHODRESPONSE NAME=\"GetClass\"><IRETURNVALUE><CLASS NAME=\"Test_Widget\">"), std::string::npos);
    EXPECT_NE(cls.find("<PROPERTY NAME=\"Id\" TYPE=\"string\"><QUALIFIER NAME=\"Key\" TYPE=\"boolean\"><VALUE>true</VALUE>"
                       "</QUALIFIER></PROPERTY>"), std::string::npos) << cls;
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

TEST_F(Dispatcher, AnswersHostLevelErrorsWithTheirCodes) {
    const std::pair<std::string, std::string> cases[] = {
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"No_Such\"/>")),
         "<ERROR CODE=\"5\" DESCRIPTION=\"No_Such\"/>"},
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>"), "root/other"),
         "<ERROR CODE=\"3\" DESCRIPTION=\"root/other\"/>"},
        {call("ExecQuery", param("Query", "<VALUE>select * from Test_Widget</VALUE>")),
         "<ERROR CODE=\"7\" DESCRIPTION=\"ExecQuery is not supported by this host\"/>"},
        {call("DeleteClass", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>")), "<ERROR CODE=\"7\""},
        {call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Elsewhere\"/>")),
         "<ERROR CODE=\"1\" DESCRIPTION=\"no instance provider serves class Test_Elsewhere\"/>"},
        {call("GetInstance", ""), "<ERROR CODE=\"4\""},
    };
    for (const auto& [body, expected] : cases) {
        std::string response = run(body);
        EXPECT_NE(response.find(expected), std::string::npos) << response;
    }
}

TEST_F(Dispatcher, PassesProviderErrorsWithTheirRawMessage) {
    const std::pair<std::string, std::string> cases[] = {
        {"missing", "<ERROR CODE=\"6\" DESCRIPTION=\"\"/>"},
        {"cim", "<ERROR CODE=\"4\" DESCRIPTION=\"Count must be &lt;= 10\"/>"},
        {"std", "<ERROR CODE=\"1\" DESCRIPTION=\"widget store is broken\"/>"},
        {"int", "<ERROR CODE=\"1\" DESCRIPTION=\"unknown exception\"/>"},
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

TEST_F(Dispatcher, ShowsExactlyThePropertiesTheProviderSet) {
    std::string all = run(call("GetInstance", param("InstanceName", widgetName("A1"))));
    EXPECT_NE(all.find("<INSTANCE CLASSNAME=\"Test_Widget\"><PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>A1</VALUE>"
                       "</PROPERTY><PROPERTY NAME=\"Count\" TYPE=\"uint32\"><VALUE>42</VALUE></PROPERTY>"
                       "<PROPERTY NAME=\"Label\" TYPE=\"string\"></PROPERTY><PROPERTY.ARRAY NAME=\"Codes\" "
                       "TYPE=\"uint32\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY></PROPERTY.ARRAY>"
                       "<PROPERTY NAME=\"Enabled\" TYPE=\"boolean\"><VALUE>true</VALUE></PROPERTY></INSTANCE>"),
              std::string::npos) << all;
    EXPECT_EQ(all.find("Seen"), std::string::npos) << "a property the provider did not set stays out";
    std::string narrowed = run(call("GetInstance", param("InstanceName", widgetName("A1")) +
                                                       param("IncludeQualifiers", "<VALUE>true</VALUE>") +
                                                       param("PropertyList", "<VALUE.ARRAY><VALUE>count</VALUE></VALUE.ARRAY>")));
    EXPECT_NE(narrowed.find("<INSTANCE CLASSNAME=\"Test_Widget\"><PROPERTY NAME=\"Count\" TYPE=\"uint32\"><QUALIFIER "
                            "NAME=\"Applicable\" TYPE=\"boolean\"><VALUE>false</VALUE></QUALIFIER><VALUE>42</VALUE>"
                            "</PROPERTY></INSTANCE>"),
              std::string::npos) << narrowed;
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=A1 qualifiers=1 list=[count]"),
              std::string::npos) << logged();
}

TEST_F(Dispatcher, NamesEnumeratedInstancesByTheirKeys) {
    std::string response = run(call("EnumerateInstances", param("ClassName", "<CLASSNAME NAME=\"Test_Widget\"/>")));
    EXPECT_NE(response.find("<VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\">"
                            "<KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">B2</KEYVALUE></KEYBINDING></INSTANCENAME>"),
              std::string::npos) << response;
    EXPECT_NE(logged().find("enumInstances ns=root/cimv2 class=Test_Widget localOnly=1 deep=1 qualifiers=0 origin=0 list=all"),
              std::string::npos) << logged();
}

TEST_F(Dispatcher, ModifyPassesTheInstanceInRequestOrderAndSpelling) {
    std::string body = call(
        "ModifyInstance",
        param("ModifiedInstance",
              "<VALUE.NAMEDINSTANCE>" + widgetName("OTHER") +
                  "<INSTANCE CLASSNAME=\"Test_Widget\"><PROPERTY NAME=\"label\" TYPE=\"string\"><VALUE>x</VALUE></PROPERTY>"
                  "<PROPERTY NAME=\"Count\"><VALUE>7</VALUE></PROPERTY><PROPERTY NAME=\"Id\" TYPE=\"string\"><VALUE>A1"
                  "</VALUE></PROPERTY><PROPERTY.ARRAY NAME=\"Codes\"><VALUE.ARRAY><VALUE>3</VALUE></VALUE.ARRAY>"
                  "</PROPERTY.ARRAY><PROPERTY NAME=\"Enabled\" TYPE=\"boolean\"></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>"));
    std::string response = run(body);
    EXPECT_NE(response.find("<IMETHODRESPONSE NAME=\"ModifyInstance\"></IMETHODRESPONSE>"), std::string::npos) << response;
    // Keys come from the instance's own properties (A1), not the name beside it.
    EXPECT_NE(logged().find("getInstance ns=root/cimv2 class=Test_Widget Id=A1 qualifiers=1 list=all"), std::string::npos);
    EXPECT_NE(logged().find("modifyInstance ns=root/cimv2 class=Test_Widget label=string:x,Count=uint32:7,Id=string:A1,"
                            "Codes=uint32:3,Enabled=null previous=A1 list=all"),
              std::string::npos) << logged();
    std::string badValue = body;
    badValue.replace(badValue.find("<VALUE>7</VALUE>"), 16, "<VALUE>seven</VALUE>");
    EXPECT_NE(run(badValue).find("<ERROR CODE=\"13\" DESCRIPTION=\"&quot;seven&quot; is not a valid uint32\"/>"),
              std::string::npos);
}

TEST_F(Dispatcher, InvokesMethodsWithDeclaredParametersInDeclarationOrder) {
    auto method = [](const std::string& name, const std::string& params) {
        return "<?xml version=\"1.0\"?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"5\" PROTOCOLVERSION=\"1.0\">"
               "<SIMPLEREQ><METHODCALL NAME=\"" + name + "\"><LOCALINSTANCEPATH><LOCALNAMESPACEPATH><NAMESPACE "
               "NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>" + widgetName("A1") +
               "</LOCALINSTANCEPATH>" + params + "</METHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    };
    std::string response = run(method("Ping", "<PARAMVALUE NAME=\"reason\"><VALUE>why</VALUE></PARAMVALUE>"
                                              "<PARAMVALUE NAME=\"Level\"><VALUE>3</VALUE></PARAMVALUE>"));
    EXPECT_NE(response.find("<METHODRESPONSE NAME=\"Ping\"><RETURNVALUE PARAMTYPE=\"uint32\"><VALUE>7</VALUE></RETURNVALUE>"
                            "<PARAMVALUE NAME=\"Echo\" PARAMTYPE=\"string\"><VALUE>pong</VALUE></PARAMVALUE></METHODRESPONSE>"),
              std::string::npos) << response;
    EXPECT_NE(logged().find("invokeMethod Ping on Test_Widget Id=A1 in=Level=uint32:3;Reason=string:why; out=Echo;"),
              std::string::npos) << logged();
    // The method name reaches the provider as spelled; its own rule decides.
    EXPECT_NE(run(method("PING", "")).find("<ERROR CODE=\"17\" DESCRIPTION=\"\"/>"), std::string::npos);
    EXPECT_NE(logged().find("invokeMethod PING on Test_Widget Id=A1 in=Level=null;Reason=null; out=Echo;"), std::string::npos);
    EXPECT_NE(run(method("Pong", "")).find("<ERROR CODE=\"17\" DESCRIPTION=\"Pong\"/>"), std::string::npos);
    EXPECT_NE(run(method("Ping", "<PARAMVALUE NAME=\"Echo\"><VALUE>x</VALUE></PARAMVALUE>")).find("<ERROR CODE=\"4\""),
              std::string::npos);
}

TEST_F(Dispatcher, WritesAssociationResultsWithTheirPaths) {
    std::string names = run(call("AssociatorNames", param("ObjectName", widgetName("A1"))));
    EXPECT_NE(names.find("<OBJECTPATH><INSTANCEPATH><NAMESPACEPATH><HOST>127.0.0.1</HOST><LOCALNAMESPACEPATH>"
                         "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>"
                         "<INSTANCENAME CLASSNAME=\"Test_Widget\">"),
              std::string::npos) << names;
    std::string objects = run(call("Associators", param("ObjectName", widgetName("A1")) +
                                                      param("AssocClass", "<CLASSNAME NAME=\"Test_Link\"/>") +
                                                      param("Role", "<VALUE>left</VALUE>")));
    EXPECT_NE(objects.find("<VALUE.OBJECTWITHPATH><INSTANCEPATH>"), std::string::npos) << objects;
    EXPECT_NE(logged().find("associators Id=A1 assoc=Test_Link result= role=left resultRole="), std::string::npos);
    EXPECT_NE(run(call("References", param("ObjectName", widgetName("A1")))).find("<ERROR CODE=\"5\""), std::string::npos);
    EXPECT_NE(run(call("ReferenceNames", param("ObjectName", widgetName("A1")))).find("<IRETURNVALUE></IRETURNVALUE>"),
              std::string::npos);
}

}  // namespace
}  // namespace cimhost
