// The client against servers that do not give a CIM answer: each failure
// says why, in words. No object manager is needed.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "CimClient.hpp"
#include "HostProcess.hpp"

namespace cdrctl::test {
namespace {

using cimhost::test::runCommand;
using cimhost::test::TempDir;

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// The message of the TransportError a request to `url` ends with.
std::string failureOf(Connection connection) {
    try {
        CimClient(connection).enumerateInstanceNames("QTX_CDRService");
    } catch (const TransportError& error) {
        return error.what();
    }
    return "no failure";
}
std::string failureOf(const std::string& url, int timeoutSeconds = 60) {
    Connection connection;
    connection.url = url;
    connection.timeoutSeconds = timeoutSeconds;
    return failureOf(connection);
}

// A loopback socket listening with a backlog of `backlog` that nobody accepts.
class SilentListener {
public:
    explicit SilentListener(int backlog) : fd_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (bind(fd_, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(fd_, backlog) != 0)
            throw std::runtime_error("cannot listen");
        getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
        port_ = ntohs(address.sin_port);
    }
    ~SilentListener() {
        for (int fd : fillers_) close(fd);
        close(fd_);
    }
    std::string url(const char* scheme = "http") const {
        return std::string(scheme) + "://127.0.0.1:" + std::to_string(port_);
    }
    // Fills the accept queue so that further connections get no answer.
    void fillQueue() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(port_));
        for (int i = 0; i < 3; ++i) {
            int fd = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
            fillers_.push_back(fd);
        }
        usleep(100000);
    }

private:
    int fd_;
    int port_ = 0;
    std::vector<int> fillers_;
};

TEST(TransportFailures, ConnectionFailuresNameTheirReason) {
    int port;
    {
        SilentListener closed(1);
        port = std::stoi(closed.url().substr(17));
    }
    EXPECT_EQ(failureOf("http://127.0.0.1:" + std::to_string(port)),
              "no answer from http://127.0.0.1:" + std::to_string(port) + ": connection refused");
    EXPECT_PRED2(contains, failureOf("http://cdrctl-test.invalid:5988"),
                 "no answer from http://cdrctl-test.invalid:5988: cannot resolve cdrctl-test.invalid");
    EXPECT_EQ(failureOf("ftp://x"), "the URL \"ftp://x\" is not of the form http[s]://HOST[:PORT][/PATH]");
}

// --timeout bounds the connection (at most 10 s), the wait for the answer
// and the TLS handshake.
TEST(TransportFailures, TimeoutsSayHowLongWasWaited) {
    SilentListener full(0);
    full.fillQueue();
    EXPECT_EQ(failureOf(full.url(), 1), "no answer from " + full.url() + ": timed out after 1 s");
    SilentListener silent(8);
    EXPECT_EQ(failureOf(silent.url(), 1), "no answer from " + silent.url() + ": timed out after 1 s");
    EXPECT_EQ(failureOf(silent.url("https"), 1), "no answer from " + silent.url("https") + ": timed out after 1 s");
}

TEST(TransportFailures, TlsFailuresGiveTheVerificationError) {
    TempDir keys;
    ASSERT_EQ(runCommand("openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
                         "-subj /CN=127.0.0.1 -keyout " + keys.file("key.pem") + " -out " + keys.file("cert.pem"),
                         keys).exitCode, 0);
    httplib::SSLServer server(keys.file("cert.pem").c_str(), keys.file("key.pem").c_str());
    server.Post("/cimom", [](const httplib::Request&, httplib::Response& response) { response.status = 500; });
    int port = server.bind_to_any_port("127.0.0.1");
    std::thread serving([&] { server.listen_after_bind(); });
    const std::string url = "https://127.0.0.1:" + std::to_string(port);

    EXPECT_EQ(failureOf(url), "no answer from " + url +
                                  ": certificate verify failed: self-signed certificate (give --cacert FILE to trust "
                                  "the server's certificate, or --insecure)");
    Connection trusting;
    trusting.url = "https://localhost:" + std::to_string(port);
    trusting.caFile = keys.file("cert.pem");
    EXPECT_PRED2(contains, failureOf(trusting),
                 "certificate verify failed: the certificate is not issued for localhost");
    trusting.url = url;
    EXPECT_EQ(failureOf(trusting), "the object manager answered HTTP 500 Internal Server Error");
    Connection insecure;
    insecure.url = url;
    insecure.verifyCertificate = false;
    EXPECT_EQ(failureOf(insecure), "the object manager answered HTTP 500 Internal Server Error");
    // Plain HTTP spoken to a TLS server.
    EXPECT_PRED2(contains, failureOf("http://127.0.0.1:" + std::to_string(port)),
                 ": the connection closed ");
    server.stop();
    serving.join();
}

// Whatever answers that is not CIM-XML is named for what it is.
TEST(TransportFailures, AnswersThatAreNotCimXmlAreNamed) {
    struct Answer {
        int status;
        const char* cimError;
        const char* body;
        const char* message;
    };
    const Answer answers[] = {
        {400, "request-not-valid", "",
         "the object manager answered HTTP 400 Bad Request (CIMError: request-not-valid)"},
        {200, nullptr, "<html></html>", "the answer is not a CIM-XML response (no IMETHODRESPONSE)"},
        {200, nullptr, "<CIM><", "the answer is not well-formed XML"},
    };
    std::atomic<size_t> current{0};
    httplib::Server server;
    server.Post("/cimom", [&](const httplib::Request& request, httplib::Response& response) {
        // OpenWBEM 3.0 refuses requests that do not accept XML.
        if (request.get_header_value("Accept") != "application/xml") {
            response.status = 406;
            return;
        }
        const Answer& answer = answers[current];
        response.status = answer.status;
        if (answer.cimError) response.set_header("CIMError", answer.cimError);
        response.set_content(answer.body, "application/xml");
    });
    int port = server.bind_to_any_port("127.0.0.1");
    std::thread serving([&] { server.listen_after_bind(); });
    for (size_t i = 0; i < std::size(answers); ++i) {
        current = i;
        EXPECT_PRED2(contains, failureOf("http://127.0.0.1:" + std::to_string(port)), answers[i].message);
    }
    // TLS spoken to a plain HTTP server, which hangs up: OpenSSL's reason.
    EXPECT_EQ(failureOf("https://127.0.0.1:" + std::to_string(port)),
              "no answer from https://127.0.0.1:" + std::to_string(port) + ": TLS handshake failed: shutdown while in "
              "init");
    server.stop();
    serving.join();
}

}  // namespace
}  // namespace cdrctl::test
