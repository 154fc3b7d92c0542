// The HTTP side of the host: accepts CIM-XML requests on POST, checks the
// credentials and the CIM headers, parses the body and hands the request to
// a RequestHandler. Every CIM-level answer is a 200 response.
//
// Every resource a client can take is bounded: connections (beyond the limit
// a client is answered 503), the time to send one request (headers and body
// together), header size and count, body size (chunked bodies too), the
// elements of the XML body, and the time to take a response. Connections
// waiting between requests hold no thread. A fixed number of threads each
// run an event loop of their own; a connection stays on the loop that
// accepted it and its requests are answered there, one at a time, without
// passing between threads.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "Authenticator.hpp"
#include "CimXmlRequest.hpp"
#include "HostLog.hpp"
#include "RequestScreen.hpp"

namespace cimhost {

class RequestHandler {
public:
    virtual ~RequestHandler() = default;
    // Answers one parsed request with a complete CIM-XML response body.
    // Throws only InvalidRequest, for parameters of the wrong form. Called
    // from several threads at once.
    virtual std::string handle(const CimRequest& request, const std::string& userName) = 0;
};

struct ServerLimits {
    size_t maxBodyBytes = 4 * 1024 * 1024;
    size_t maxHeaderBytes = 16 * 1024;
    size_t maxHeaderFields = 64;
    XmlBudget xml;
    int maxConnections = 512;
    int requestTimeoutSeconds = 10;  // from the first byte of a request to its last
    int writeTimeoutSeconds = 10;
    int keepAliveTimeoutSeconds = 5;
    // Event loops, each answering the requests of its connections: one per
    // core, at least 2 (a slow provider call holds one loop's connections
    // only) and at most 4. More loops than cores only queue behind the
    // module's lock and the client's own threads: on two cores 4 loops gave
    // a p99 half again as long as 2 at 256 connections.
    int threads = defaultThreads();

    static int defaultThreads();
};

class HttpServer {
public:
    // `authenticator` may be null: no credentials are asked for.
    HttpServer(RequestHandler& handler, const Authenticator* authenticator, HostLog& log,
               ServerLimits limits = {});
    ~HttpServer();

    // Serves HTTPS (TLS 1.2 or later) with the PEM certificate chain and key.
    // Throws std::runtime_error when they cannot be used.
    void useTls(const std::string& certificateFile, const std::string& keyFile);
    // Binds the address exclusively; port 0 picks a free port. Returns the
    // bound port, or -1 with bindError() telling why.
    int bind(const std::string& host, int port);
    const std::string& bindError() const;
    // Serves until stop(); returns false when serving failed.
    bool serve();
    // Safe from any thread, also before serve().
    void stop();

    class Impl;

private:
    std::unique_ptr<Impl> impl_;
};

// True for 127.0.0.0/8, ::1 and "localhost".
bool isLoopbackAddress(const std::string& host);

}  // namespace cimhost
