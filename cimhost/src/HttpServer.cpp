#include "HttpServer.hpp"

#include <arpa/inet.h>
#include <httplib.h>

#include "ClassDefinition.hpp"

namespace cimhost {
namespace {

const char* const kXmlContentType = "application/xml; charset=\"utf-8\"";

void refuse(httplib::Response& res, int status, const std::string& cimError) {
    res.status = status;
    if (!cimError.empty()) res.set_header("CIMError", cimError);
    res.set_header("Connection", "close");
}

bool isXmlContentType(const std::string& value) {
    std::string lower = lowerCase(value);
    return lower.rfind("application/xml", 0) == 0 || lower.rfind("text/xml", 0) == 0;
}

}  // namespace

bool isLoopbackAddress(const std::string& host) {
    if (host == "localhost" || host == "::1") return true;
    in_addr address{};
    if (inet_pton(AF_INET, host.c_str(), &address) == 1) {
        return (ntohl(address.s_addr) >> 24) == 127;
    }
    return false;
}

HttpServer::HttpServer(RequestHandler& handler, const Authenticator* authenticator, HostLog& log,
                       ServerLimits limits)
    : handler_(handler), authenticator_(authenticator), log_(log), limits_(limits),
      server_(std::make_unique<httplib::Server>()) {
    int threads = limits_.workerThreads;
    server_->new_task_queue = [threads] { return new httplib::ThreadPool(static_cast<size_t>(threads)); };
    server_->set_payload_max_length(limits_.maxBodyBytes);
    server_->set_read_timeout(limits_.readTimeoutSeconds, 0);
    server_->set_write_timeout(limits_.writeTimeoutSeconds, 0);
    server_->set_keep_alive_timeout(limits_.keepAliveTimeoutSeconds);
    server_->set_keep_alive_max_count(1000);
    // Responses go out at once: without it, each keep-alive response waits
    // for the client's delayed acknowledgement.
    server_->set_tcp_nodelay(true);
    installRoutes();
}

HttpServer::~HttpServer() = default;

int HttpServer::bind(const std::string& host, int port) {
    if (port == 0) return server_->bind_to_any_port(host.c_str());
    return server_->bind_to_port(host.c_str(), port) ? port : -1;
}

bool HttpServer::serve() { return server_->listen_after_bind(); }

void HttpServer::stop() { server_->stop(); }

void HttpServer::installRoutes() {
    auto notAllowed = [](const httplib::Request&, httplib::Response& res) {
        res.status = 405;
        res.set_header("Allow", "POST");
    };
    server_->Get(".*", notAllowed);
    server_->Put(".*", notAllowed);
    server_->Delete(".*", notAllowed);
    server_->Patch(".*", notAllowed);
    server_->Options(".*", notAllowed);

    server_->set_error_handler([this](const httplib::Request& req, httplib::Response& res) {
        if (res.status == 413) {
            log_.error("refused a request body over " + std::to_string(limits_.maxBodyBytes) + " bytes from " +
                       req.remote_addr);
        }
    });

    server_->Post(".*", [this](const httplib::Request& req, httplib::Response& res) {
        std::string user;
        if (authenticator_) {
            std::optional<std::string> checked = authenticator_->check(req.get_header_value("Authorization"));
            if (!checked) {
                log_.error("refused credentials from " + req.remote_addr);
                res.status = 401;
                res.set_header("WWW-Authenticate", "Basic realm=\"cimhost\"");
                return;
            }
            user = *checked;
        }
        if (!namesEqual(req.get_header_value("CIMOperation"), "MethodCall")) {
            refuse(res, 400, "unsupported-operation");
            return;
        }
        std::string version = req.get_header_value("CIMProtocolVersion");
        if (!version.empty() && version.rfind("1.", 0) != 0) {
            refuse(res, 501, "unsupported-protocol-version");
            return;
        }
        std::string contentType = req.get_header_value("Content-Type");
        if (!contentType.empty() && !isXmlContentType(contentType)) {
            refuse(res, 400, "request-not-valid");
            return;
        }
        CimRequest request;
        try {
            request = parseCimRequest(req.body);
        } catch (const MalformedRequest& e) {
            log_.error("request from " + req.remote_addr + " is not well-formed: " + e.what());
            refuse(res, 400, "request-not-well-formed");
            return;
        } catch (const InvalidRequest& e) {
            log_.error("request from " + req.remote_addr + " is not valid: " + e.what());
            refuse(res, 400, "request-not-valid");
            return;
        } catch (const MultipleRequestsUnsupported&) {
            refuse(res, 501, "multiple-requests-unsupported");
            return;
        }
        if (!namesEqual(req.get_header_value("CIMMethod"), request.methodName)) {
            log_.error("CIMMethod header does not name " + request.methodName);
            refuse(res, 400, "header-mismatch");
            return;
        }
        std::string response;
        try {
            response = handler_.handle(request, user);
        } catch (const InvalidRequest& e) {
            log_.error("request from " + req.remote_addr + " is not valid: " + e.what());
            refuse(res, 400, "request-not-valid");
            return;
        }
        res.status = 200;
        res.set_header("CIMOperation", "MethodResponse");
        res.set_content(response, kXmlContentType);
    });
}

}  // namespace cimhost
