// The HTTP side of the host: accepts CIM-XML requests on POST, checks the
// credentials and the CIM headers, parses the body and hands the request to
// a RequestHandler. Every CIM-level answer is a 200 response.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "Authenticator.hpp"
#include "CimXmlRequest.hpp"
#include "HostLog.hpp"

namespace httplib {
class Server;
}

namespace cimhost {

class RequestHandler {
public:
    virtual ~RequestHandler() = default;
    // Answers one parsed request with a complete CIM-XML response body.
    // Throws only InvalidRequest, for parameters of the wrong form.
    virtual std::string handle(const CimRequest& request, const std::string& userName) = 0;
};

struct ServerLimits {
    size_t maxBodyBytes = 4 * 1024 * 1024;
    int readTimeoutSeconds = 10;
    int writeTimeoutSeconds = 10;
    int keepAliveTimeoutSeconds = 5;
    int workerThreads = 16;
};

class HttpServer {
public:
    // `authenticator` may be null: no credentials are asked for.
    HttpServer(RequestHandler& handler, const Authenticator* authenticator, HostLog& log,
               ServerLimits limits = {});
    ~HttpServer();

    // Binds the address; port 0 picks a free port. Returns the bound port,
    // or -1 when the address cannot be bound.
    int bind(const std::string& host, int port);
    // Serves until stop(); returns false when serving failed.
    bool serve();
    // Safe from any thread.
    void stop();

private:
    void installRoutes();

    RequestHandler& handler_;
    const Authenticator* authenticator_;
    HostLog& log_;
    ServerLimits limits_;
    std::unique_ptr<httplib::Server> server_;
};

// True for 127.0.0.0/8, ::1 and "localhost".
bool isLoopbackAddress(const std::string& host);

}  // namespace cimhost
