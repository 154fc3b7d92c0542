// cimhost as a process: the HTTP rules around the CIM-XML requests.
#include <arpa/inet.h>
#include <crypt.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <fstream>

#include <httplib.h>
#include <gtest/gtest.h>

#include "HostProcess.hpp"

namespace cimhost::test {
namespace {

// A client socket that sends exactly what it is given.
class RawConnection {
public:
    // A receive buffer of `receiveBuffer` bytes (0: the system's) makes the
    // server wait on a client that reads slowly.
    explicit RawConnection(int port, int receiveBuffer = 0) {
        fd_ = socket(AF_INET, SOCK_STREAM, 0);
        if (receiveBuffer > 0) setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<uint16_t>(port));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        connected_ = connect(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    }
    ~RawConnection() { close(fd_); }
    bool connected() const { return connected_; }
    bool send(const std::string& data) { return ::send(fd_, data.data(), data.size(), MSG_NOSIGNAL) == ssize_t(data.size()); }
    // Whether the server answered or closed within `milliseconds`.
    bool readable(int milliseconds) {
        pollfd p{fd_, POLLIN, 0};
        return poll(&p, 1, milliseconds) == 1;
    }
    // What arrives until the server closes or `milliseconds` pass quietly.
    std::string receive(int milliseconds) {
        std::string data;
        char chunk[4096];
        while (readable(milliseconds)) {
            ssize_t n = recv(fd_, chunk, sizeof chunk, 0);
            if (n <= 0) break;
            data.append(chunk, static_cast<size_t>(n));
        }
        return data;
    }
    // One whole answer: its head and as many bytes as its Content-Length
    // says, each read within `milliseconds` of the last (or less, when the
    // server closes or goes quiet first).
    std::string receiveAnswer(int milliseconds) {
        std::string data;
        char chunk[4096];
        size_t wanted = std::string::npos;
        while (data.size() != wanted && readable(milliseconds)) {
            ssize_t n = recv(fd_, chunk, sizeof chunk, 0);
            if (n <= 0) break;
            data.append(chunk, static_cast<size_t>(n));
            const size_t headEnd = data.find("\r\n\r\n");
            const size_t length = data.find("Content-Length: ");
            if (wanted == std::string::npos && headEnd != std::string::npos && length < headEnd) {
                wanted = headEnd + 4 + std::stoul(data.substr(length + 16));
            }
        }
        return data;
    }

private:
    int fd_ = -1;
    bool connected_ = false;
};

std::string postHead(const std::string& method, const std::string& framing) {
    return "POST /cimom HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: application/xml\r\nCIMOperation: "
           "MethodCall\r\nCIMMethod: " + method + "\r\n" + framing + "\r\n";
}

const std::string kEnumerate =
    "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"3\" "
    "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"EnumerateInstanceNames\"><LOCALNAMESPACEPATH>"
    "<NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"ClassName\">"
    "<CLASSNAME NAME=\"Test_Widget\"/></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";

class HostOverHttp : public ::testing::Test {
protected:
    void SetUp() override { start({}); }

    void start(std::vector<std::string> extra) {
        client.reset();
        host.reset();
        std::vector<std::string> args{"--provider", CIMHOST_TEST_PROVIDER, "--mof", CIMHOST_TEST_MOF};
        args.insert(args.end(), extra.begin(), extra.end());
        host = std::make_unique<HostProcess>(CIMHOST_BINARY, args, dir.file("host" + std::to_string(++started) + ".log"));
        ASSERT_TRUE(host->running()) << host->log();
        client = std::make_unique<httplib::Client>("127.0.0.1", host->port());
        client->set_keep_alive(true);
    }

    // As CIM clients do, the request accepts XML (owcimomd answers 406 otherwise).
    httplib::Result post(httplib::Headers headers, const std::string& body = kEnumerate,
                         const std::string& contentType = "application/xml; charset=\"utf-8\"") {
        if (headers.find("Accept") == headers.end()) headers.emplace("Accept", "application/xml");
        return client->Post("/cimom", headers, body, contentType);
    }

    // The host may log after the client saw the answer.
    bool logShows(const std::string& text) {
        for (int i = 0; i < 100; ++i) {
            if (host->log().find(text) != std::string::npos) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    }

    TempDir dir;
    int started = 0;
    std::unique_ptr<HostProcess> host;
    std::unique_ptr<httplib::Client> client;
};

std::string withVersions(const std::string& cim, const std::string& dtd, const std::string& protocol) {
    std::string body = kEnumerate;
    body.replace(body.find("CIMVERSION=\"2.0\""), 16, "CIMVERSION=\"" + cim + "\"");
    body.replace(body.find("DTDVERSION=\"2.0\""), 16, "DTDVERSION=\"" + dtd + "\"");
    body.replace(body.find("PROTOCOLVERSION=\"1.0\""), 21, "PROTOCOLVERSION=\"" + protocol + "\"");
    return body;
}

std::string withClassName(const std::string& text) {
    std::string body = kEnumerate;
    body.replace(body.find("Test_Widget"), 11, text);
    return body;
}

TEST_F(HostOverHttp, AnswersCimRequestsOnOneKeptAliveConnection) {
    httplib::Headers headers{{"CIMOperation", "MethodCall"}, {"CIMMethod", "enumerateinstancenames"},
                             {"CIMObject", "root%2Fcimv2"}, {"CIMProtocolVersion", "1.0"}};
    for (int i = 0; i < 3; ++i) {
        httplib::Result result = post(headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, 200);
        // In the extension framework's form, as owcimomd answers: the CIM
        // header under the number "Man" gives.
        std::string man = result->get_header_value("Man");
        ASSERT_EQ(man.substr(0, man.size() - 2), "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=") << man;
        EXPECT_EQ(result->get_header_value(man.substr(man.size() - 2) + "-CIMOperation"), "MethodResponse");
        EXPECT_FALSE(result->has_header("CIMOperation"));
        EXPECT_EQ(result->get_header_value("Content-Type"), "application/xml; charset=\"utf-8\"");
        EXPECT_NE(result->body.find("<MESSAGE ID=\"3\" PROTOCOLVERSION=\"1.0\">"), std::string::npos);
        EXPECT_NE(result->body.find("<KEYVALUE VALUETYPE=\"string\">B2</KEYVALUE>"), std::string::npos);
    }
}

// owcimomd's HTTP server reads none of the CIM headers: a request whose
// CIMOperation, CIMMethod, CIMObject or CIMProtocolVersion is missing or
// names something else runs as its body says. An HTTP/1.1 request without
// Host is 400, once the credentials are checked.
TEST_F(HostOverHttp, ReadsTheBodyNotTheCimHeadersAndWantsHostAsOwcimomdDoes) {
    httplib::Headers call{{"CIMOperation", "MethodCall"}, {"CIMMethod", "EnumerateInstanceNames"}};
    for (const httplib::Headers& headers : std::vector<httplib::Headers>{
             {{"CIMMethod", "EnumerateInstanceNames"}},
             {{"CIMOperation", "Bogus"}, {"CIMMethod", "GetInstance"}, {"CIMObject", "root%2Fother"}},
             {{"CIMOperation", "MethodCall"}, {"CIMProtocolVersion", "2.0"}}}) {
        httplib::Result result = post(headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, 200);
        EXPECT_NE(result->body.find("<KEYVALUE VALUETYPE=\"string\">B2</KEYVALUE>"), std::string::npos);
    }
    for (const char* version : {"1.1", "1.0"}) {
        RawConnection raw(host->port());
        ASSERT_TRUE(raw.send("POST /cimom HTTP/" + std::string(version) + "\r\nContent-Type: application/xml\r\n"
                             "Content-Length: " + std::to_string(kEnumerate.size()) + "\r\n\r\n" + kEnumerate));
        EXPECT_EQ(raw.receive(5000).substr(0, 12), std::string("HTTP/") + version + (version[2] == '1' ? " 400" : " 200"));
    }
    std::ofstream(dir.file("auth")) << "owuser:" << crypt("owpass", "$6$cimhost$") << "\n";
    start({"--auth-file", dir.file("auth")});
    {
        RawConnection unnamed(host->port());
        ASSERT_TRUE(unnamed.send("POST /cimom HTTP/1.1\r\nContent-Length: 0\r\n\r\n"));
        EXPECT_EQ(unnamed.receive(5000).substr(0, 12), "HTTP/1.1 401");
    }
    start({});
    std::string manyElements;
    for (int i = 0; i < 10001; ++i) manyElements += "<X/>";
    httplib::Headers crowded = call;
    for (int i = 0; i < 70; ++i) crowded.emplace("X-Filler-" + std::to_string(i), "x");
    struct BodyCase {
        httplib::Headers headers;
        std::string body;
        int status;
        std::string cimError;
    };
    const BodyCase bodyCases[] = {
        {call, withVersions("3.0", "2.0", "1.0"), 501, "unsupported-cim-version"},
        {call, withVersions("2.0", "3.0", "1.0"), 501, "unsupported-dtd-version"},
        {call, withVersions("2.0", "2.0", "2.0"), 501, "unsupported-protocol-version"},
        {call, withClassName("Test_\xC3("), 400, "request-not-well-formed"},
        {call, withClassName("Test_&widget;"), 400, "request-not-well-formed"},
        {call, withClassName("Test_Widget\"/>" + manyElements + "<X A=\""), 413, ""},
        {crowded, kEnumerate, 431, ""},
    };
    for (const BodyCase& c : bodyCases) {
        httplib::Result result = post(c.headers, c.body);
        ASSERT_TRUE(result) << c.status;
        EXPECT_EQ(result->status, c.status) << c.body.substr(0, 300);
        EXPECT_EQ(result->get_header_value("CIMError"), c.cimError);
    }
    // owcimomd's header checks: an answer the client does not accept, byte
    // ranges, or a body that is not XML.
    for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{
             {"Accept", "*/*"}, {"Accept-Charset", "iso-8859-1"}, {"Range", "bytes=0-10"}}) {
        httplib::Headers headers = call;
        headers.emplace(name, value);
        httplib::Result result = post(headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, 406) << name;
    }
    httplib::Result plain = post(call, kEnumerate, "text/plain");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->status, 415);
    // M-POST needs the extension framework, which is not offered: 501 tells
    // the client to fall back to POST.
    RawConnection raw(host->port());
    ASSERT_TRUE(raw.send("M-POST /cimom HTTP/1.1\r\nHost: x\r\nMan: http://www.dmtf.org/cim/mapping/http/v1.0;ns=73"
                         "\r\n73-CIMOperation: MethodCall\r\nContent-Length: 0\r\n\r\n"));
    EXPECT_EQ(raw.receive(5000).substr(0, 12), "HTTP/1.1 501");
    httplib::Result get = client->Get("/cimom");
    ASSERT_TRUE(get);
    EXPECT_EQ(get->status, 405);
}

TEST_F(HostOverHttp, WaitsForTheBodyAfterExpectContinue) {
    std::ofstream(dir.file("body.xml")) << kEnumerate;
    CommandResult result = runCommand(
        "curl -s -D - -o /dev/null -H 'Expect: 100-continue' -H 'Accept: text/xml' -H 'CIMOperation: MethodCall' -H 'CIMMethod: "
        "EnumerateInstanceNames' -H 'Content-Type: application/xml' --data-binary @" + dir.file("body.xml") +
            " http://127.0.0.1:" + std::to_string(host->port()) + "/cimom",
        dir);
    EXPECT_NE(result.out.find("HTTP/1.1 100 Continue"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("HTTP/1.1 200 OK"), std::string::npos) << result.out;
}

TEST_F(HostOverHttp, AnswersAChunkedBodyOverTheLimitWithoutReadingItAll) {
    RawConnection raw(host->port());
    ASSERT_TRUE(raw.send(postHead("EnumerateInstanceNames", "Transfer-Encoding: chunked\r\n")));
    const std::string chunk = "10000\r\n" + std::string(0x10000, ' ') + "\r\n";
    size_t sent = 0;
    // Up to 64 MiB, stopping at the answer.
    while (sent < 64u << 20 && !raw.readable(0) && raw.send(chunk)) sent += 0x10000;
    EXPECT_EQ(raw.receive(5000).substr(0, 12), "HTTP/1.1 413");
    EXPECT_LT(sent, 16u << 20);
    EXPECT_TRUE(logShows("refused a request body over 4194304 bytes")) << host->log();
}

TEST_F(HostOverHttp, CutsATricklingClientAtTheDeadlineAndServesOthersMeanwhile) {
    start({"--request-timeout", "2"});
    RawConnection trickler(host->port());
    std::string head = postHead("EnumerateInstanceNames", "Content-Length: 10\r\n");
    bool cut = false;
    // One byte every 100 ms: 2 s of it is cut, the whole head would take 14 s.
    for (size_t i = 0; i < head.size() && !cut; ++i) {
        cut = !trickler.send(head.substr(i, 1)) || trickler.readable(100);
        if (i == 3) {
            httplib::Result result = post({{"CIMOperation", "MethodCall"}, {"CIMMethod", "EnumerateInstanceNames"}});
            ASSERT_TRUE(result);
            EXPECT_EQ(result->status, 200);
        }
    }
    EXPECT_TRUE(cut);
    EXPECT_EQ(trickler.receive(1000), "");
    EXPECT_TRUE(logShows("request not complete within 2 s")) << host->log();
}

// What has arrived is parsed at once and the rest is waited for: requests
// sent back to back are answered in turn, a body that follows its head later
// is read, and a body that trickles after a whole head is cut at the deadline.
TEST_F(HostOverHttp, ParsesWhatArrivedAndWaitsForTheRestUnderTheDeadline) {
    start({"--request-timeout", "2"});
    const std::string body = kEnumerate;
    const std::string head = postHead("EnumerateInstanceNames", "Accept: application/xml\r\nContent-Length: " +
                                                                    std::to_string(body.size()) + "\r\n");
    const std::string request = head + body;

    RawConnection pipelined(host->port());
    ASSERT_TRUE(pipelined.send(request + request + head));
    std::string answers = pipelined.receive(300);
    EXPECT_EQ(occurrences(answers, "HTTP/1.1 200 OK"), 2u) << answers;
    EXPECT_EQ(occurrences(answers, "<MESSAGE ID=\"3\""), 2u) << answers;
    ASSERT_TRUE(pipelined.send(body));
    EXPECT_EQ(occurrences(pipelined.receive(300), "HTTP/1.1 200 OK"), 1u);

    RawConnection split(host->port());
    const size_t half = head.size() + body.size() / 2;
    ASSERT_TRUE(split.send(request.substr(0, half)));
    EXPECT_FALSE(split.readable(200));
    ASSERT_TRUE(split.send(request.substr(half)));
    EXPECT_EQ(occurrences(split.receive(300), "HTTP/1.1 200 OK"), 1u);

    RawConnection trickler(host->port());
    const auto sent = std::chrono::steady_clock::now();
    ASSERT_TRUE(trickler.send(head));
    bool cut = false;
    // One byte every 100 ms: the deadline of 2 s comes long before the last,
    // and before the 5 s a kept-alive connection may stay quiet.
    for (size_t i = 0; i < body.size() && !cut; ++i) {
        cut = !trickler.send(body.substr(i, 1)) || trickler.readable(100);
    }
    EXPECT_TRUE(cut);
    EXPECT_LT(std::chrono::steady_clock::now() - sent, std::chrono::milliseconds(4000));
    EXPECT_EQ(trickler.receive(1000), "");
    EXPECT_TRUE(logShows("request not complete within 2 s")) << host->log();
}

// An answer larger than the socket takes at once is written on as a client
// that reads slowly takes it, whole and once, and the connection then serves
// its next request.
TEST_F(HostOverHttp, WritesALargeAnswerAsASlowClientReadsIt) {
    const std::string id(3584 * 1024, 'w');
    const std::string body =
        "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"7\" "
        "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"GetInstance\"><LOCALNAMESPACEPATH><NAMESPACE "
        "NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH><IPARAMVALUE NAME=\"InstanceName\">"
        "<INSTANCENAME CLASSNAME=\"Test_Widget\"><KEYBINDING NAME=\"Id\"><KEYVALUE VALUETYPE=\"string\">" + id +
        "</KEYVALUE></KEYBINDING></INSTANCENAME></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    RawConnection slow(host->port(), 4096);
    ASSERT_TRUE(slow.send(postHead("GetInstance", "Accept: application/xml\r\nContent-Length: " +
                                                      std::to_string(body.size()) + "\r\n") + body));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    // Generous waits: under a sanitizer the host takes seconds over 3.5 MiB.
    std::string answer = slow.receiveAnswer(10000);
    const size_t headEnd = answer.find("\r\n\r\n");
    ASSERT_NE(headEnd, std::string::npos) << answer.substr(0, 200);
    const std::string head = answer.substr(0, headEnd);
    const size_t length = head.find("Content-Length: ");
    ASSERT_NE(length, std::string::npos) << head;
    EXPECT_EQ(std::stoul(head.substr(length + 16)), answer.size() - headEnd - 4);
    EXPECT_EQ(occurrences(answer, "HTTP/1.1 200 OK"), 1u) << head;
    EXPECT_NE(answer.find("<VALUE>" + id + "</VALUE>"), std::string::npos);
    EXPECT_EQ(answer.substr(answer.size() - 7), "</CIM>\n");

    ASSERT_TRUE(slow.send(postHead("EnumerateInstanceNames", "Accept: application/xml\r\nContent-Length: " +
                                                                 std::to_string(std::string(kEnumerate).size()) + "\r\n") +
                          kEnumerate));
    EXPECT_EQ(occurrences(slow.receiveAnswer(10000), "HTTP/1.1 200 OK"), 1u);
}

TEST_F(HostOverHttp, AnswersConnectionsOverTheLimitWith503) {
    start({"--max-connections", "2"});
    auto first = std::make_unique<RawConnection>(host->port());
    RawConnection second(host->port());
    ASSERT_TRUE(first->send("POST"));
    ASSERT_TRUE(second.send("POST"));
    RawConnection third(host->port());
    ASSERT_TRUE(third.send(postHead("EnumerateInstanceNames", "Content-Length: 0\r\n")));
    std::string refused = third.receive(5000);
    EXPECT_EQ(refused.substr(0, 12), "HTTP/1.1 503") << refused;
    EXPECT_NE(refused.find("Retry-After: 1"), std::string::npos);
    // Once one connection ends, the next client is served.
    first.reset();
    std::string served;
    for (int attempt = 0; attempt < 50 && served.substr(0, 12) != "HTTP/1.1 200"; ++attempt) {
        RawConnection next(host->port());
        next.send(postHead("EnumerateInstanceNames", "Connection: close\r\nContent-Length: " +
                                                         std::to_string(kEnumerate.size()) + "\r\n") +
                  kEnumerate);
        served = next.receive(5000);
    }
    EXPECT_EQ(served.substr(0, 12), "HTTP/1.1 200");
}

TEST_F(HostOverHttp, ServesHttpsWithTls12OrLater) {
    CommandResult made = runCommand("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
                                    "-subj /CN=127.0.0.1 -keyout " + dir.file("key.pem") + " -out " +
                                    dir.file("cert.pem"), dir);
    ASSERT_EQ(made.exitCode, 0) << made.err;
    start({"--tls-cert", dir.file("cert.pem"), "--tls-key", dir.file("key.pem")});
    std::ofstream(dir.file("body.xml")) << kEnumerate;
    std::string curl = "curl -s -o /dev/null -w '%{http_code}' -k -H 'Accept: application/xml' -H 'CIMOperation: MethodCall' -H 'CIMMethod: "
                       "EnumerateInstanceNames' -H 'Content-Type: application/xml' --data-binary @" +
                       dir.file("body.xml") + " https://127.0.0.1:" + std::to_string(host->port()) + "/cimom ";
    EXPECT_EQ(runCommand(curl + "--tlsv1.2 --tls-max 1.2", dir).out, "200");
    EXPECT_EQ(runCommand(curl + "--tlsv1.3", dir).out, "200");
    EXPECT_NE(runCommand(curl + "--tlsv1.1 --tls-max 1.1 --ciphers DEFAULT@SECLEVEL=0", dir).out, "200");
    EXPECT_NE(runCommand("curl -s -o /dev/null -w '%{http_code}' http://127.0.0.1:" + std::to_string(host->port()) +
                         "/cimom", dir).out, "200");
}

// cimhost started in the foreground with `provider` and the arguments after it.
CommandResult runHost(const TempDir& dir, const std::string& provider, const std::string& arguments) {
    return runCommand(std::string(CIMHOST_BINARY) + " --provider " + provider + " --mof " + CIMHOST_TEST_MOF + " " +
                          arguments, dir);
}

TEST(HostStartup, RefusesAPortAnotherHostListensOn) {
    TempDir dir;
    HostProcess first(CIMHOST_BINARY, {"--provider", CIMHOST_TEST_PROVIDER, "--mof", CIMHOST_TEST_MOF},
                      dir.file("first.log"));
    ASSERT_TRUE(first.running());
    CommandResult second = runHost(dir, CIMHOST_TEST_PROVIDER, "--log " + dir.file("second.log") +
                                                                   " --listen 127.0.0.1:" + std::to_string(first.port()));
    EXPECT_EQ(second.exitCode, 1);
    EXPECT_NE(second.err.find("cannot listen on 127.0.0.1:" + std::to_string(first.port()) +
                              ": Address already in use"), std::string::npos) << second.err;
}

TEST(HostStartup, RefusesAnOpenAddressWithoutCredentials) {
    TempDir dir;
    CommandResult refused = runHost(dir, CIMHOST_TEST_PROVIDER, "--listen 0.0.0.0:0");
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("without --auth-file; give --insecure"), std::string::npos) << refused.err;
}

TEST(HostStartup, RefusesAModuleBuiltForAnotherVersionOrWithoutFactory) {
    TempDir dir;
    // A library that is no provider module at all: no getOWVersion.
    CommandResult notModule = runHost(dir, CIMHOST_NOT_A_MODULE, "--listen 127.0.0.1:0");
    EXPECT_EQ(notModule.exitCode, 1);
    EXPECT_NE(notModule.err.find("has no getOWVersion"), std::string::npos) << notModule.err;
    // The right version, but the factory is named after another file name.
    std::filesystem::copy_file(CIMHOST_TEST_PROVIDER, dir.file("Renamed.so"));
    CommandResult renamed = runHost(dir, dir.file("Renamed.so"), "--listen 127.0.0.1:0");
    EXPECT_EQ(renamed.exitCode, 1);
    EXPECT_NE(renamed.err.find("does not contain createProviderRenamed"), std::string::npos) << renamed.err;
}

}  // namespace
}  // namespace cimhost::test
