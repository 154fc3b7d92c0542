#include "CimXmlRequest.hpp"

#include <gtest/gtest.h>

namespace cimhost {
namespace {

const std::string kHead = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n";
const std::string kNs =
    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"cimv2\"></NAMESPACE></LOCALNAMESPACEPATH>";

std::string intrinsic(const std::string& name, const std::string& params) {
    return kHead + "<MESSAGE ID=\"4711\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" + name + "\">" + kNs +
           "\n" + params + "</IMETHODCALL></SIMPLEREQ>\n</MESSAGE></CIM>";
}

TEST(CimXmlRequest, ReadsTheModifyInstanceTheClientSends) {
    // As wbemcli sends it: untouched properties echoed, no TYPE on keys.
    CimRequest request = parseCimRequest(intrinsic(
        "ModifyInstance",
        "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"Demo_Item\">"
        "<KEYBINDING NAME=\"ItemID\"><KEYVALUE VALUETYPE=\"string\">A1</KEYVALUE></KEYBINDING></INSTANCENAME>"
        "<INSTANCE CLASSNAME=\"Demo_Item\"><PROPERTY NAME=\"ItemID\" TYPE=\"string\"><VALUE>A1</VALUE></PROPERTY>\n"
        "<PROPERTY NAME=\"Count\" TYPE=\"uint32\"><VALUE>7</VALUE></PROPERTY>\n"
        "<PROPERTY NAME=\"Note\" TYPE=\"string\"></PROPERTY><PROPERTY NAME=\"Pad\"><VALUE> </VALUE></PROPERTY>"
        "<PROPERTY.ARRAY NAME=\"Codes\" TYPE=\"uint32\"><VALUE.ARRAY><VALUE>1</VALUE><VALUE>2</VALUE></VALUE.ARRAY>"
        "</PROPERTY.ARRAY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE>\n"));
    EXPECT_EQ(request.messageId, "4711");
    EXPECT_TRUE(request.intrinsic);
    EXPECT_EQ(request.nameSpace, "root/cimv2");
    auto named = request.namedInstanceParam("modifiedinstance");
    ASSERT_TRUE(named);
    EXPECT_EQ(named->first.className, "Demo_Item");
    ASSERT_EQ(named->first.keys.size(), 1u);
    EXPECT_EQ(named->first.keys[0].valueType, "string");
    EXPECT_EQ(named->first.keys[0].type, "");
    const std::vector<PropertyText>& p = named->second.properties;
    ASSERT_EQ(p.size(), 5u);
    EXPECT_EQ(p[1].name, "Count");
    EXPECT_EQ(p[1].value.elements.front(), "7");
    EXPECT_TRUE(p[2].value.isNull);
    EXPECT_EQ(p[3].type, "");
    EXPECT_EQ(p[3].value.elements.front(), " ");
    EXPECT_TRUE(p[4].isArray);
    EXPECT_EQ(p[4].value.elements, (std::vector<std::string>{"1", "2"}));
}

TEST(CimXmlRequest, ReadsAnExtrinsicCallOnAnInstanceAndOnAClass) {
    CimRequest call = parseCimRequest(
        kHead + "<MESSAGE ID=\"9\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><METHODCALL NAME=\"Reset\"><LOCALINSTANCEPATH>"
                "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>"
                "<INSTANCENAME CLASSNAME=\"Demo_Item\"><KEYBINDING NAME=\"ItemID\"><KEYVALUE VALUETYPE=\"string\">A1"
                "</KEYVALUE></KEYBINDING></INSTANCENAME></LOCALINSTANCEPATH><PARAMVALUE NAME=\"Level\"><VALUE>3</VALUE>"
                "</PARAMVALUE><PARAMVALUE NAME=\"Reason\"></PARAMVALUE></METHODCALL></SIMPLEREQ></MESSAGE></CIM>");
    EXPECT_FALSE(call.intrinsic);
    EXPECT_EQ(call.methodName, "Reset");
    EXPECT_EQ(call.target.className, "Demo_Item");
    EXPECT_FALSE(call.target.isClassPath);
    ASSERT_EQ(call.parameters.size(), 2u);
    EXPECT_EQ(call.parameters[0].value.elements.front(), "3");
    EXPECT_TRUE(call.parameters[1].value.isNull);

    CimRequest onClass = parseCimRequest(
        kHead + "<MESSAGE ID=\"9\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><METHODCALL NAME=\"Reset\"><LOCALCLASSPATH>"
                "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/></LOCALNAMESPACEPATH><CLASSNAME NAME=\"Demo_Item\"/>"
                "</LOCALCLASSPATH></METHODCALL></SIMPLEREQ></MESSAGE></CIM>");
    EXPECT_TRUE(onClass.target.isClassPath);
    EXPECT_EQ(onClass.nameSpace, "root");
}

TEST(CimXmlRequest, ReadsIntrinsicParametersInTheirForms) {
    CimRequest request = parseCimRequest(intrinsic(
        "GetInstance",
        "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>false</VALUE></IPARAMVALUE>"
        "<IPARAMVALUE NAME=\"IncludeQualifiers\"><VALUE>TRUE</VALUE></IPARAMVALUE>"
        "<IPARAMVALUE NAME=\"PropertyList\"><VALUE.ARRAY><VALUE>Count</VALUE></VALUE.ARRAY></IPARAMVALUE>"
        "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"Demo_Item\"><KEYBINDING NAME=\"Seq\">"
        "<KEYVALUE VALUETYPE=\"numeric\" TYPE=\"uint32\">17</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE>"));
    EXPECT_EQ(request.booleanParam("LocalOnly"), false);
    EXPECT_EQ(request.booleanParam("IncludeQualifiers"), true);
    EXPECT_FALSE(request.booleanParam("IncludeClassOrigin"));
    EXPECT_EQ(request.stringArrayParam("PropertyList"), (std::vector<std::string>{"Count"}));
    auto name = request.objectNameParam("InstanceName");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->keys[0].valueType, "numeric");
    EXPECT_EQ(name->keys[0].type, "uint32");
    EXPECT_EQ(name->keys[0].text, "17");
}

TEST(CimXmlRequest, RefusesBodiesByTheirFault) {
    enum Fault { NotWellFormed, NotValid, Multiple };
    const std::pair<std::string, Fault> cases[] = {
        {intrinsic("EnumerateInstances", "").substr(0, 120), NotWellFormed},             // truncated
        {"<CIM><MESSAGE ID=\"1\"><SIMPLEREQ></CIM>", NotWellFormed},                      // mismatched tags
        {kHead + "<MESSAGE ID=\"1\"><SIMPLEREQ><IMETHODCALL NAME=\"x\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"a&b\"/>", NotWellFormed},
        {"<?xml version=\"1.0\"?><FOO/>", NotValid},
        {kHead + "<MESSAGE ID=\"1\"></MESSAGE></CIM>", NotValid},
        {kHead + "<MESSAGE ID=\"1\"><SIMPLEREQ><IMETHODCALL NAME=\"GetClass\"></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>", NotValid},
        {kHead + "<MESSAGE><SIMPLEREQ></SIMPLEREQ></MESSAGE></CIM>", NotValid},
        {"<?xml version=\"1.0\"?><!DOCTYPE CIM [<!ENTITY x \"xx\">]><CIM><MESSAGE ID=\"1\"></MESSAGE></CIM>", NotWellFormed},
        {kHead + "<MESSAGE ID=\"1\"><MULTIREQ></MULTIREQ></MESSAGE></CIM>", Multiple},
    };
    for (const auto& [body, fault] : cases) {
        try {
            parseCimRequest(body);
            ADD_FAILURE() << "accepted: " << body;
        } catch (const MalformedRequest&) {
            EXPECT_EQ(fault, NotWellFormed) << body;
        } catch (const InvalidRequest&) {
            EXPECT_EQ(fault, NotValid) << body;
        } catch (const MultipleRequestsUnsupported&) {
            EXPECT_EQ(fault, Multiple) << body;
        }
    }
}

TEST(CimXmlRequest, RefusesParametersOfTheWrongForm) {
    CimRequest request = parseCimRequest(intrinsic(
        "GetInstance", "<IPARAMVALUE NAME=\"LocalOnly\"><VALUE>maybe</VALUE></IPARAMVALUE>"
                       "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCE CLASSNAME=\"X\"></INSTANCE></IPARAMVALUE>"));
    // Worded as owcimomd's conversion of the value words it.
    try {
        request.booleanParam("LocalOnly");
        ADD_FAILURE() << "maybe read as a boolean";
    } catch (const InvalidRequest& e) {
        EXPECT_STREQ(e.what(), "Unable to convert \"maybe\" into bool");
    }
    EXPECT_THROW(request.objectNameParam("InstanceName"), InvalidRequest);
}

}  // namespace
}  // namespace cimhost

namespace cimhost {
namespace {

// owcimomd's parser runs the call as soon as it has read it: end tags that
// do not match after the call are not seen, and a SIMPLEREQ holding no call
// is a CIM error 1, not a refused request.
TEST(CimXmlRequest, ReadsWhatOwcimomdsParserReadsBeforeItStops) {
    std::string body = intrinsic("EnumerateClassNames", "");
    body.erase(body.find("</MESSAGE>"), std::string("</MESSAGE>").size());
    EXPECT_EQ(parseCimRequest(body).methodName, "EnumerateClassNames");
    std::string cut = intrinsic("EnumerateClassNames", "");
    cut.erase(cut.find("</IMETHODCALL>"), std::string("</IMETHODCALL>").size());
    EXPECT_THROW(parseCimRequest(cut), MalformedRequest);

    std::string nested = intrinsic("EnumerateClassNames", "");
    nested.insert(nested.find("<SIMPLEREQ>"), "<SIMPLEREQ>");
    nested.insert(nested.find("</SIMPLEREQ>"), "</SIMPLEREQ>");
    CimRequest request = parseCimRequest(nested);
    EXPECT_EQ(request.faultCode, 1);
    EXPECT_EQ(request.fault, "No <METHODCALL> or <IMETHODCALL> element");
}

}  // namespace
}  // namespace cimhost
