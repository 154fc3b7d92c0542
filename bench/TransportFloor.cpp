// The transport floor for bench/run: a responder on one Asio event loop that
// reads each HTTP request (headers and a Content-Length body) and answers it
// with the same bytes every time, a given body behind a 200 status line. It
// parses nothing and calls no provider, so its CPU per request is what the
// kernel's loopback TCP, the event loop and wrk's request pattern cost
// before any CIM work: the least a host of this design can spend.
//
//   cdr_transport_floor BODY_FILE   listens on 127.0.0.1, an ephemeral port,
//                                   and prints "listening on 127.0.0.1:PORT"
#include <boost/asio.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <strings.h>

namespace net = boost::asio;
using net::ip::tcp;

namespace {

std::string response(const std::string& body, bool close) {
  return std::string("HTTP/1.1 200 OK\r\nContent-Type: application/xml; charset=\"utf-8\"\r\n") +
         (close ? "Connection: close\r\n" : "") + "CIMOperation: MethodResponse\r\nContent-Length: " +
         std::to_string(body.size()) + "\r\n\r\n" + body;
}

// The value of a header in `head` (up to its blank line), or null.
const char* headerValue(const std::string& head, const char* name) {
  const size_t length = std::strlen(name);
  for (size_t line = head.find("\r\n"); line != std::string::npos && line + 2 < head.size();
       line = head.find("\r\n", line + 2)) {
    if (strncasecmp(head.c_str() + line + 2, name, length) == 0 && head[line + 2 + length] == ':') {
      return head.c_str() + line + 3 + length;
    }
  }
  return nullptr;
}

struct Answers {
  std::string keepAlive, close;
};

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  Connection(tcp::socket socket, const Answers& answers) : socket_(std::move(socket)), answers_(answers) {}

  void read() {
    auto self = shared_from_this();
    socket_.async_read_some(net::buffer(chunk_), [self](boost::system::error_code ec, size_t bytes) {
      if (ec) return;
      self->pending_.append(self->chunk_, bytes);
      self->answer();
    });
  }

 private:
  void answer() {
    const size_t headEnd = pending_.find("\r\n\r\n");
    if (headEnd == std::string::npos) return read();
    const std::string head = pending_.substr(0, headEnd + 2);
    const char* length = headerValue(head, "Content-Length");
    const size_t total = headEnd + 4 + (length != nullptr ? std::strtoul(length, nullptr, 10) : 0);
    if (pending_.size() < total) return read();
    const char* connection = headerValue(head, "Connection");
    const bool close = connection != nullptr && strncasecmp(connection + std::strspn(connection, " "), "close", 5) == 0;
    pending_.erase(0, total);
    auto self = shared_from_this();
    net::async_write(socket_, net::buffer(close ? answers_.close : answers_.keepAlive),
                     [self, close](boost::system::error_code ec, size_t) {
                       if (ec) return;
                       if (close) {
                         self->socket_.shutdown(tcp::socket::shutdown_send, ec);
                         return;
                       }
                       self->answer();
                     });
  }

  tcp::socket socket_;
  const Answers& answers_;
  std::string pending_;
  char chunk_[16384];
};

void accept(tcp::acceptor& acceptor, const Answers& answers) {
  acceptor.async_accept([&acceptor, &answers](boost::system::error_code ec, tcp::socket socket) {
    if (!ec) {
      socket.set_option(tcp::no_delay(true), ec);
      std::make_shared<Connection>(std::move(socket), answers)->read();
    }
    accept(acceptor, answers);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: cdr_transport_floor BODY_FILE\n";
    return 2;
  }
  std::ifstream file(argv[1], std::ios::binary);
  if (!file) {
    std::cerr << "cdr_transport_floor: cannot read " << argv[1] << "\n";
    return 1;
  }
  std::ostringstream body;
  body << file.rdbuf();
  const Answers answers{response(body.str(), false), response(body.str(), true)};

  net::io_context loop(1);
  tcp::acceptor acceptor(loop, tcp::endpoint(net::ip::make_address("127.0.0.1"), 0));
  std::cout << "listening on 127.0.0.1:" << acceptor.local_endpoint().port() << std::endl;
  accept(acceptor, answers);
  loop.run();
}
