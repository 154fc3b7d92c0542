// cimhost as a process: the HTTP rules around the CIM-XML requests.
#include <httplib.h>
#include <gtest/gtest.h>

#include "HostProcess.hpp"

namespace cimhost::test {
namespace {

const std::string kEnumerate =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"3\" "
    "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH>"
    "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\">"
    "<CLASSNAME NAME=\"Test_Widget\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";

class HostOverHttp : public ::testing::Test {
protected:
    void SetUp() override {
        host = std::make_unique<HostProcess>(
            CIMHOST_BINARY, std::vector<std::string>{"--provider", CIMHOST_TEST_PROVIDER, "--mof", CIMHOST_TEST_MOF},
            dir.file("host.log"));
        ASSERT_TRUE(host->running()) << host->log();
        client = std::make_unique<httplib::Client>("127.0.0.1", host->port());
        client->set_keep_alive(true);
    }

    httplib::Result post(httplib::Headers headers, const std::string& body = kEnumerate) {
        return client->Post("/cimom", headers, body, "application/xml; charset=\"utf-8\"");
    }

    TempDir dir;
    std::unique_ptr<HostProcess> host;
    std::unique_ptr<httplib::Client> client;
};

TEST_F(HostOverHttp, AnswersCimRequestsOnOneKeptAliveConnection) {
    httplib::Headers headers{{"CIMOperation", "MethodCall"}, {"CIMMethod", "enumerateinstancenames"},
                             {"CIMObject", "root%2Fcimv2"}, {"CIMProtocolVersion", "1.0"}};
    for (int i = 0; i < 3; ++i) {
        httplib::Result result = post(headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, 200);
        EXPECT_EQ(result->get_header_value("CIMOperation"), "MethodResponse");
        EXPECT_EQ(result->get_header_value("Content-Type"), "application/xml; charset=\"utf-8\"");
        EXPECT_NE(result->body.find("<MESSAGE ID=\"3\" PROTOCOLVERSION=\"1.0\">"), std::string::npos);
        EXPECT_NE(result->body.find("<KEYVALUE VALUETYPE=\"string\">B2</KEYVALUE>"), std::string::npos);
    }
}

TEST_F(HostOverHttp, RefusesRequestsThatAreNotCimCalls) {
    struct Case {
        httplib::Headers headers;
        int status;
        std::string cimError;
    };
    const Case cases[] = {
        {{{"CIMMethod", "EnumerateInstanceNames"}}, 400, "unsupported-operation"},
        {{{"CIMOperation", "MethodCall"}, {"CIMMethod", "GetInstance"}}, 400, "header-mismatch"},
        {{{"CIMOperation", "MethodCall"}, {"CIMMethod", "EnumerateInstanceNames"}, {"CIMProtocolVersion", "2.0"}},
         501, "unsupported-protocol-version"},
    };
    for (const Case& c : cases) {
        httplib::Result result = post(c.headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, c.status);
        EXPECT_EQ(result->get_header_value("CIMError"), c.cimError);
    }
    httplib::Result get = client->Get("/cimom");
    ASSERT_TRUE(get);
    EXPECT_EQ(get->status, 405);
}

TEST_F(HostOverHttp, WaitsForTheBodyAfterExpectContinue) {
    std::ofstream(dir.file("body.xml")) << kEnumerate;
    CommandResult result = runCommand(
        "curl -s -D - -o /dev/null -H 'Expect: 100-continue' -H 'CIMOperation: MethodCall' -H 'CIMMethod: "
        "EnumerateInstanceNames' -H 'Content-Type: application/xml' --data-binary @" + dir.file("body.xml") +
            " http://127.0.0.1:" + std::to_string(host->port()) + "/cimom",
        dir);
    EXPECT_NE(result.out.find("HTTP/1.1 100 Continue"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("HTTP/1.1 200 OK"), std::string::npos) << result.out;
}

TEST(HostStartup, RefusesAnOpenAddressWithoutCredentials) {
    TempDir dir;
    CommandResult refused = runCommand(std::string(CIMHOST_BINARY) + " --provider " + CIMHOST_TEST_PROVIDER +
                                           " --mof " + CIMHOST_TEST_MOF + " --listen 0.0.0.0:0", dir);
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("without --auth-file; give --insecure"), std::string::npos) << refused.err;
}

TEST(HostStartup, RefusesAModuleBuiltForAnotherVersionOrWithoutFactory) {
    TempDir dir;
    // A library that is no provider module at all: no getOWVersion.
    CommandResult notModule = runCommand(std::string(CIMHOST_BINARY) + " --provider /lib/x86_64-linux-gnu/libz.so.1"
                                         " --mof " + CIMHOST_TEST_MOF + " --listen 127.0.0.1:0", dir);
    EXPECT_EQ(notModule.exitCode, 1);
    EXPECT_NE(notModule.err.find("has no getOWVersion"), std::string::npos) << notModule.err;
    // The right version, but the factory is named after another file name.
    std::filesystem::copy_file(CIMHOST_TEST_PROVIDER, dir.file("Renamed.so"));
    CommandResult renamed = runCommand(std::string(CIMHOST_BINARY) + " --provider " + dir.file("Renamed.so") +
                                           " --mof " + CIMHOST_TEST_MOF + " --listen 127.0.0.1:0", dir);
    EXPECT_EQ(renamed.exitCode, 1);
    EXPECT_NE(renamed.err.find("does not contain createProviderRenamed"), std::string::npos) << renamed.err;
}

}  // namespace
}  // namespace cimhost::test
