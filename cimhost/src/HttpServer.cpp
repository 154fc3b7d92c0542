#include "HttpServer.hpp"

#include <arpa/inet.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <type_traits>
#include <vector>

#include <boost/asio.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

#include "ClassDefinition.hpp"

namespace cimhost {

namespace net = boost::asio;
namespace ssl = boost::asio::ssl;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using tcp = net::ip::tcp;
using boost::system::error_code;
using std::chrono::seconds;

namespace {

const char* const kXmlContentType = "application/xml; charset=\"utf-8\"";
constexpr size_t kReadChunk = 16 * 1024;
// Read and dropped after an answer that closes the connection, so that a
// client still sending sees the answer rather than a reset.
constexpr size_t kDrainBytes = 256 * 1024;
constexpr seconds kDrainTime{2};
// Requests or answers at least this large give their memory back to the
// system once answered.
constexpr size_t kTrimBytes = 256 * 1024;
// Connections beyond the limit still being answered 503; more are closed
// at once.
constexpr int kMaxRefusing = 64;

using Request = http::request<http::string_body>;

struct Answer {
    http::status status = http::status::ok;
    std::string cimError;
    std::string body;
    bool close = false;
};

// The next of the two-digit numbers owcimomd prefixes its CIM headers with:
// 01, 02, ... 99, 00, 01, ... over the process's answers.
std::string nextHeaderNamespace() {
    static std::atomic<unsigned> answers{0};
    unsigned n = (answers.fetch_add(1) + 1) % 100;
    return std::string{static_cast<char>('0' + n / 10), static_cast<char>('0' + n % 10)};
}

Answer refusal(http::status status, const std::string& cimError = "") {
    Answer answer;
    answer.status = status;
    answer.cimError = cimError;
    answer.close = true;
    return answer;
}

// As owcimomd's HTTP server, before the credentials and the body: a POST
// whose Accept or Accept-Charset leaves out what the answer would be, one
// naming byte ranges or one without a Content-Type is 406, one whose
// content is not XML 415.
std::optional<Answer> refusedByHeaders(const Request& request) {
    auto has = [&request](const char* name) { return request.find(name) != request.end(); };
    auto value = [&request](const char* name) { return std::string(request[name]); };
    if (has("Accept") && value("Accept").find("text/xml") == std::string::npos &&
        value("Accept").find("application/xml") == std::string::npos) {
        return refusal(http::status::not_acceptable);
    }
    if (has("Accept-Charset") && value("Accept-Charset").find("utf-8") == std::string::npos) {
        return refusal(http::status::not_acceptable);
    }
    for (const char* name : {"Accept-Ranges", "Content-Range", "If-Range", "Range"}) {
        if (has(name)) return refusal(http::status::not_acceptable);
    }
    if (!has("Content-Type")) return refusal(http::status::not_acceptable);
    std::string type = lowerCase(value("Content-Type").substr(0, value("Content-Type").find(';')));
    if (type != "application/xml" && type != "text/xml") return refusal(http::status::unsupported_media_type);
    return std::nullopt;
}

// The credentials last accepted on a connection: a client repeating them
// is not hashed again.
struct AcceptedCredentials {
    bool accepted = false;
    std::string header;
    std::string user;
};

}  // namespace

bool isLoopbackAddress(const std::string& host) {
    if (host == "localhost" || host == "::1") return true;
    in_addr address{};
    if (inet_pton(AF_INET, host.c_str(), &address) == 1) {
        return (ntohl(address.s_addr) >> 24) == 127;
    }
    return false;
}

class HttpServer::Impl {
public:
    Impl(RequestHandler& handler, const Authenticator* authenticator, HostLog& log, ServerLimits limits)
        : handler(handler), authenticator(authenticator), log(log), limits(limits), loops(makeLoops(limits.threads)),
          acceptor(*loops.front()), acceptPause(*loops.front()) {}

    static std::vector<std::unique_ptr<net::io_context>> makeLoops(int count) {
        std::vector<std::unique_ptr<net::io_context>> made;
        for (int i = 0; i < std::max(count, 1); ++i) made.push_back(std::make_unique<net::io_context>(1));
        return made;
    }
    // The loop the next accepted connection lives on, in turn.
    net::io_context& nextLoop() { return *loops[acceptedCount++ % loops.size()]; }

    void accept();
    void startSession(tcp::socket socket);
    void noteRefusal(const std::string& remote);
    Answer answer(const Request& request, const std::string& remote, AcceptedCredentials& credentials);
    Answer answerCimCall(const Request& request, const std::string& remote, const std::string& user);

    RequestHandler& handler;
    const Authenticator* authenticator;
    HostLog& log;
    const ServerLimits limits;
    // Each run by one thread; the acceptor lives on the first.
    std::vector<std::unique_ptr<net::io_context>> loops;
    size_t acceptedCount = 0;  // touched by the first loop only
    tcp::acceptor acceptor;
    net::steady_timer acceptPause;
    std::optional<ssl::context> tls;
    std::atomic<int> connections{0};
    std::atomic<int> refusing{0};
    std::atomic<long> refusedSinceLog{0};
    std::atomic<long long> lastRefusalLog{0};
    std::string bindError;
};

namespace {

// One client connection, on one event loop. Between requests it waits
// without a thread; a request is read under one deadline, answered on the
// loop's thread, and its answer written under another.
template <class Stream>
class Session : public std::enable_shared_from_this<Session<Stream>> {
public:
    static constexpr bool kTls = !std::is_same_v<Stream, beast::tcp_stream>;

    template <class... StreamArgs>
    Session(HttpServer::Impl& server, std::string remote, bool refusing, StreamArgs&&... streamArgs)
        : server_(server), limits_(server.limits), remote_(std::move(remote)), refusing_(refusing),
          stream_(std::forward<StreamArgs>(streamArgs)...) {}
    ~Session() { --(refusing_ ? server_.refusing : server_.connections); }

    void start() {
        if constexpr (kTls) {
            lowest().expires_after(timeout(limits_.requestTimeoutSeconds));
            stream_.async_handshake(ssl::stream_base::server, [self = this->shared_from_this()](error_code ec) {
                if (ec) return self->close();
                self->waitForRequest();
            });
        } else {
            waitForRequest();
        }
    }

private:
    beast::tcp_stream& lowest() { return beast::get_lowest_layer(stream_); }

    // A connection refused for the limit gets short deadlines.
    seconds timeout(int configured) const { return refusing_ ? std::min(kDrainTime, seconds(configured)) : seconds(configured); }

    void waitForRequest() {
        parser_.emplace();
        parser_->body_limit(limits_.maxBodyBytes);
        parser_->header_limit(static_cast<std::uint32_t>(limits_.maxHeaderBytes));
        if (buffer_.size() > 0) return readHeader();
        lowest().expires_after(timeout(limits_.keepAliveTimeoutSeconds));
        stream_.async_read_some(buffer_.prepare(kReadChunk),
                                [self = this->shared_from_this()](error_code ec, size_t bytes) {
                                    if (ec) return self->close();
                                    self->buffer_.commit(bytes);
                                    self->readHeader();
                                });
    }

    // What the buffer holds is parsed at once, without a round through the
    // event loop; only a request not yet whole waits for more bytes. The
    // deadline runs from the first wait for the rest of a request to its
    // last byte.
    void readHeader() {
        requestDeadlineSet_ = false;
        error_code ec;
        if (parseBuffered(false, ec)) return onHeader(ec);
        startRequestDeadline();
        http::async_read_header(stream_, buffer_, *parser_, [self = this->shared_from_this()](error_code ec, size_t) {
            self->onHeader(ec);
        });
    }

    // Feeds the parser the buffered bytes. True when it has the header (with
    // `whole`, the request) or failed, as ec says; false when it needs more.
    bool parseBuffered(bool whole, error_code& ec) {
        parser_->eager(whole);
        auto done = [this, whole] { return whole ? parser_->is_done() : parser_->is_header_done(); };
        while (!done() && buffer_.size() > 0) {
            const size_t used = parser_->put(buffer_.data(), ec);
            buffer_.consume(used);
            if (ec == http::error::need_more || (!ec && used == 0)) {
                ec = {};
                return false;
            }
            if (ec) return true;
        }
        return done();
    }

    void startRequestDeadline() {
        if (requestDeadlineSet_) return;
        requestDeadlineSet_ = true;
        lowest().expires_after(timeout(limits_.requestTimeoutSeconds));
    }

    void onHeader(error_code ec) {
        if (ec) return failRead(ec);
        const Request& request = parser_->get();
        version_ = request.version();
        keepAlive_ = request.keep_alive();
        if (refusing_) return reply(refusal(http::status::service_unavailable));
        if (static_cast<size_t>(std::distance(request.begin(), request.end())) > limits_.maxHeaderFields) {
            server_.log.error("refused a request with over " + std::to_string(limits_.maxHeaderFields) +
                              " header fields from " + remote_);
            return reply(refusal(http::status::request_header_fields_too_large));
        }
        if (request.method() != http::verb::post) {
            // M-POST needs the HTTP extension framework, which is not
            // offered: 501 tells a client to fall back to POST.
            if (request.method_string() == "M-POST") return reply(refusal(http::status::not_implemented));
            return reply(refusal(http::status::method_not_allowed));
        }
        if (beast::iequals(request[http::field::expect], "100-continue")) {
            auto proceed = std::make_shared<http::response<http::empty_body>>(http::status::continue_, version_);
            http::async_write(stream_, *proceed, [self = this->shared_from_this(), proceed](error_code ec, size_t) {
                if (ec) return self->close();
                self->readBody();
            });
            return;
        }
        readBody();
    }

    void readBody() {
        error_code ec;
        if (parseBuffered(true, ec)) return onBody(ec);
        startRequestDeadline();
        http::async_read(stream_, buffer_, *parser_, [self = this->shared_from_this()](error_code ec, size_t) {
            self->onBody(ec);
        });
    }

    void onBody(error_code ec) {
        if (ec) return failRead(ec);
        lowest().expires_never();
        dispatch();
    }

    void failRead(error_code ec) {
        if (ec == http::error::body_limit) {
            server_.log.error("refused a request body over " + std::to_string(limits_.maxBodyBytes) +
                              " bytes from " + remote_);
            parser_.reset();
            trimAfterReply_ = true;
            return reply(refusal(http::status::payload_too_large));
        }
        if (ec == http::error::header_limit) {
            server_.log.error("refused request headers over " + std::to_string(limits_.maxHeaderBytes) +
                              " bytes from " + remote_);
            return reply(refusal(http::status::request_header_fields_too_large));
        }
        if (ec == beast::error::timeout) {
            // The stream is closed already: nothing can be answered.
            server_.log.error("closed a connection from " + remote_ + ": request not complete within " +
                              std::to_string(limits_.requestTimeoutSeconds) + " s");
            return;
        }
        if (ec.category() == http::make_error_code(http::error::bad_method).category() &&
            ec != http::error::end_of_stream && ec != http::error::partial_message) {
            return reply(refusal(http::status::bad_request));
        }
        close();
    }

    // The request is answered here, on the connection's loop: handing it to
    // another thread and the answer back costs more than most answers. The
    // connection reads nothing more until the answer is written.
    void dispatch() {
        Answer answer;
        {
            Request request = parser_->release();
            parser_.reset();
            try {
                answer = server_.answer(request, remote_, credentials_);
            } catch (const std::exception& e) {
                server_.log.error("request from " + remote_ + " failed: " + e.what());
                answer = refusal(http::status::internal_server_error);
            }
            trimAfterReply_ = request.body().size() >= kTrimBytes || answer.body.size() >= kTrimBytes;
        }
        reply(std::move(answer));
    }

    void reply(Answer answer) {
        auto response = std::make_shared<http::response<http::string_body>>(answer.status, version_);
        if (answer.status == http::status::ok) {
            // owcimomd answers every POST it runs in the extension
            // framework's form: "Man" with a namespace number counted over
            // the process's answers (01 to 99, two digits), and the CIM
            // header under that number.
            std::string ns = nextHeaderNamespace();
            response->set(http::field::content_type, kXmlContentType);
            response->set("Man", "http://www.dmtf.org/cim/mapping/http/v1.0 ; ns=" + ns);
            response->set(ns + "-CIMOperation", "MethodResponse");
        }
        if (!answer.cimError.empty()) response->set("CIMError", answer.cimError);
        if (answer.status == http::status::unauthorized) {
            response->set(http::field::www_authenticate, "Basic realm=\"cimhost\"");
        }
        if (answer.status == http::status::method_not_allowed) response->set(http::field::allow, "POST");
        if (answer.status == http::status::service_unavailable) response->set(http::field::retry_after, "1");
        response->body() = std::move(answer.body);
        bool keepAlive = keepAlive_ && !answer.close;
        response->keep_alive(keepAlive);
        response->prepare_payload();
        lowest().expires_after(timeout(limits_.writeTimeoutSeconds));
        http::async_write(stream_, *response,
                          [self = this->shared_from_this(), response, keepAlive](error_code ec, size_t) {
                              if (ec) return self->close();
                              self->afterReply();
                              if (!keepAlive) return self->finish();
                              self->waitForRequest();
                          });
    }

    void afterReply() {
        if (buffer_.capacity() > kReadChunk * 4 && buffer_.size() == 0) buffer_.shrink_to_fit();
        if (trimAfterReply_) malloc_trim(0);
        trimAfterReply_ = false;
    }

    // Ends the connection after its last answer.
    void finish() {
        lowest().expires_after(kDrainTime);
        if constexpr (kTls) {
            stream_.async_shutdown([self = this->shared_from_this()](error_code) { self->close(); });
        } else {
            error_code ignored;
            lowest().socket().shutdown(tcp::socket::shutdown_send, ignored);
            buffer_.consume(buffer_.size());
            drain();
        }
    }

    void drain() {
        stream_.async_read_some(buffer_.prepare(kReadChunk), [self = this->shared_from_this()](error_code ec, size_t bytes) {
            self->drained_ += bytes;
            if (ec || self->drained_ >= kDrainBytes) return self->close();
            self->drain();
        });
    }

    void close() {
        error_code ignored;
        lowest().socket().shutdown(tcp::socket::shutdown_both, ignored);
        lowest().close();
    }

    HttpServer::Impl& server_;
    const ServerLimits& limits_;
    std::string remote_;
    bool refusing_;
    Stream stream_;
    beast::flat_buffer buffer_;
    std::optional<http::request_parser<http::string_body>> parser_;
    unsigned version_ = 11;
    bool keepAlive_ = false;
    bool trimAfterReply_ = false;
    bool requestDeadlineSet_ = false;
    size_t drained_ = 0;
    AcceptedCredentials credentials_;
};

}  // namespace

void HttpServer::Impl::accept() {
    acceptor.async_accept(nextLoop().get_executor(), [this](error_code ec, tcp::socket socket) {
        if (ec == net::error::operation_aborted) return;
        if (!ec) {
            startSession(std::move(socket));
            return accept();
        }
        // Out of descriptors or memory: wait a little rather than spin.
        log.error("accepting a connection failed: " + ec.message());
        acceptPause.expires_after(std::chrono::milliseconds(100));
        acceptPause.async_wait([this](error_code) { accept(); });
    });
}

void HttpServer::Impl::startSession(tcp::socket socket) {
    error_code ec;
    // Answers go out at once, without waiting for delayed acknowledgements.
    socket.set_option(tcp::no_delay(true), ec);
    tcp::endpoint peer = socket.remote_endpoint(ec);
    if (ec) return;
    std::string remote = peer.address().to_string();
    bool overLimit = connections.load() >= limits.maxConnections;
    if (overLimit) {
        if (refusing.load() >= kMaxRefusing) return;  // the socket closes here
        ++refusing;
        noteRefusal(remote);
    } else {
        ++connections;
    }
    if (tls) {
        std::make_shared<Session<beast::ssl_stream<beast::tcp_stream>>>(*this, remote, overLimit, std::move(socket), *tls)
            ->start();
    } else {
        std::make_shared<Session<beast::tcp_stream>>(*this, remote, overLimit, std::move(socket))->start();
    }
}

// One log line a second at most, however many connections are refused.
void HttpServer::Impl::noteRefusal(const std::string& remote) {
    long long now = std::chrono::duration_cast<seconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
    long refused = ++refusedSinceLog;
    long long last = lastRefusalLog.load();
    if (now > last && lastRefusalLog.compare_exchange_strong(last, now)) {
        refusedSinceLog -= refused;
        log.error("refused " + std::to_string(refused) + " connection(s), the last from " + remote + ": " +
                  std::to_string(limits.maxConnections) + " connections are open");
    }
}

// As owcimomd's HTTPSvrConnection::processHeaders: the credentials first,
// then the Host an HTTP/1.1 request must name, then the headers about the
// content. The CIM headers (CIMOperation, CIMMethod, CIMObject,
// CIMProtocolVersion) are not looked at: the body says what is asked.
Answer HttpServer::Impl::answer(const Request& request, const std::string& remote, AcceptedCredentials& credentials) {
    std::string user;
    if (authenticator) {
        std::string header(request[http::field::authorization]);
        if (!credentials.accepted || header != credentials.header) {
            credentials.accepted = false;
            std::optional<std::string> checked = authenticator->check(header);
            if (!checked) {
                log.error("refused credentials from " + remote);
                Answer challenge;
                challenge.status = http::status::unauthorized;
                return challenge;
            }
            credentials = {true, header, *checked};
        }
        user = credentials.user;
    }
    if (request.version() == 11 && request.find(http::field::host) == request.end()) {
        log.error("HTTP/1.1 request from " + remote + " without Host");
        return refusal(http::status::bad_request);
    }
    if (std::optional<Answer> refused = refusedByHeaders(request)) return *refused;
    return answerCimCall(request, remote, user);
}

Answer HttpServer::Impl::answerCimCall(const Request& request, const std::string& remote, const std::string& user) {
    CimRequest cimRequest;
    try {
        screenRequestBody(request.body(), limits.xml);
        cimRequest = parseCimRequest(request.body());
    } catch (const MalformedRequest& e) {
        log.error("request from " + remote + " is not well-formed: " + e.what());
        return refusal(http::status::bad_request, "request-not-well-formed");
    } catch (const InvalidRequest& e) {
        log.error("request from " + remote + " is not valid: " + e.what());
        return refusal(http::status::bad_request, "request-not-valid");
    } catch (const OverBudget& e) {
        log.error("refused a request from " + remote + ": " + e.what());
        return refusal(http::status::payload_too_large);
    } catch (const UnsupportedVersion& e) {
        log.error("request from " + remote + ": " + e.what());
        return refusal(http::status::not_implemented, e.what());
    } catch (const MultipleRequestsUnsupported&) {
        return refusal(http::status::not_implemented, "multiple-requests-unsupported");
    }
    Answer answer;
    try {
        answer.body = handler.handle(cimRequest, user);
    } catch (const InvalidRequest& e) {
        log.error("request from " + remote + " is not valid: " + e.what());
        return refusal(http::status::bad_request, "request-not-valid");
    }
    return answer;
}

int ServerLimits::defaultThreads() {
    return static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 2u, 4u));
}

HttpServer::HttpServer(RequestHandler& handler, const Authenticator* authenticator, HostLog& log,
                       ServerLimits limits)
    : impl_(std::make_unique<Impl>(handler, authenticator, log, limits)) {}

HttpServer::~HttpServer() = default;

void HttpServer::useTls(const std::string& certificateFile, const std::string& keyFile) {
    ssl::context& context = impl_->tls.emplace(ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
    SSL_CTX_set_options(context.native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    error_code ec;
    context.use_certificate_chain_file(certificateFile, ec);
    if (ec) throw std::runtime_error("cannot use the certificate " + certificateFile + ": " + ec.message());
    context.use_private_key_file(keyFile, ssl::context::pem, ec);
    if (ec) throw std::runtime_error("cannot use the key " + keyFile + ": " + ec.message());
    if (SSL_CTX_check_private_key(context.native_handle()) != 1) {
        throw std::runtime_error("the key " + keyFile + " does not belong to the certificate " + certificateFile);
    }
}

int HttpServer::bind(const std::string& host, int port) {
    error_code ec;
    net::ip::address address = net::ip::make_address(host == "localhost" ? "127.0.0.1" : host, ec);
    if (ec) {
        impl_->bindError = host + " is not an IP address";
        return -1;
    }
    tcp::endpoint endpoint(address, static_cast<unsigned short>(port));
    tcp::acceptor& acceptor = impl_->acceptor;
    // SO_REUSEADDR only: a port left in TIME_WAIT can be taken again, one
    // another process listens on cannot.
    acceptor.open(endpoint.protocol(), ec);
    if (!ec) acceptor.set_option(tcp::acceptor::reuse_address(true), ec);
    if (!ec) acceptor.bind(endpoint, ec);
    if (!ec) acceptor.listen(net::socket_base::max_listen_connections, ec);
    if (ec) {
        impl_->bindError = ec.message();
        if (ec == net::error::address_in_use) impl_->bindError += " (is another host serving it?)";
        error_code ignored;
        acceptor.close(ignored);
        return -1;
    }
    return acceptor.local_endpoint().port();
}

const std::string& HttpServer::bindError() const { return impl_->bindError; }

bool HttpServer::serve() {
    if (!impl_->acceptor.is_open()) return false;
    impl_->accept();
    // The loops wait for connections even while they have none.
    std::vector<net::executor_work_guard<net::io_context::executor_type>> waiting;
    for (auto& loop : impl_->loops) waiting.push_back(net::make_work_guard(*loop));
    std::vector<std::thread> more;
    for (size_t i = 1; i < impl_->loops.size(); ++i) {
        more.emplace_back([this, i] { impl_->loops[i]->run(); });
    }
    impl_->loops.front()->run();
    // No provider call runs once serving has ended.
    for (std::thread& thread : more) thread.join();
    return true;
}

void HttpServer::stop() {
    for (auto& loop : impl_->loops) loop->stop();
}

}  // namespace cimhost
