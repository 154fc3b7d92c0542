#include "TransportFailure.hpp"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <openssl/err.h>
#include <openssl/x509.h>

#include <cerrno>
#include <cstring>
#include <memory>

namespace cdrctl {

namespace {

// The system's words for errno, in lower case as the rest of a message.
std::string systemWords(int error) {
    switch (error) {
        case ECONNREFUSED: return "connection refused";
        case ETIMEDOUT: return "timed out";
        default: break;
    }
    std::string words = std::strerror(error);
    if (!words.empty()) words[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(words[0])));
    return words;
}

// 0 once connected, else the errno of the failure; ETIMEDOUT after the wait.
int tryConnect(const addrinfo& address, int timeoutSeconds) {
    int fd = socket(address.ai_family, address.ai_socktype, address.ai_protocol);
    if (fd < 0) return errno;
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    int error = 0;
    if (connect(fd, address.ai_addr, address.ai_addrlen) != 0) {
        error = errno;
        if (error == EINPROGRESS) {
            pollfd waiting{fd, POLLOUT, 0};
            int ready = poll(&waiting, 1, timeoutSeconds * 1000);
            socklen_t length = sizeof error;
            if (ready == 0) error = ETIMEDOUT;
            else if (ready < 0) error = errno;
            else if (getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) error = errno;
        }
    }
    close(fd);
    return error;
}

}  // namespace

std::string connectFailure(const std::string& host, int port, int timeoutSeconds) {
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    int resolved = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (resolved != 0) return "cannot resolve " + host + ": " + gai_strerror(resolved);
    std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> addresses(found, freeaddrinfo);
    int error = 0;
    for (const addrinfo* address = found; address; address = address->ai_next) {
        error = tryConnect(*address, timeoutSeconds);
        if (error == 0) return "the connection failed";  // it works again now
    }
    if (error == ETIMEDOUT) return "timed out after " + std::to_string(timeoutSeconds) + " s";
    return systemWords(error);
}

std::string certificateFailure(long verifyResult, const std::string& host) {
    if (verifyResult == X509_V_OK) return "certificate verify failed: the certificate is not issued for " + host;
    return std::string("certificate verify failed: ") + X509_verify_cert_error_string(verifyResult);
}

std::string handshakeFailure() {
    unsigned long error = ERR_get_error();
    unsigned long last = error;
    while (error != 0) {
        last = error;
        error = ERR_get_error();
    }
    const char* reason = last ? ERR_reason_error_string(last) : nullptr;
    return reason ? std::string("TLS handshake failed: ") + reason : "TLS handshake failed";
}

}  // namespace cdrctl
