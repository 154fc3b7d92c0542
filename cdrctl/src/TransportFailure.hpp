// Words for why a request got no answer, as a user reads them: the
// connection's reason, the wait's, the TLS handshake's.
#pragma once

#include <string>

namespace cdrctl {

// Connects to host:port once more, waiting at most timeoutSeconds, to learn
// why the client's connection failed: "connection refused", "timed out after
// 10 s", "cannot resolve HOST: ..." or the system's words for the error.
std::string connectFailure(const std::string& host, int port, int timeoutSeconds);

// OpenSSL's words for a certificate verification result, e.g. "certificate
// verify failed: self-signed certificate"; for a result of X509_V_OK (the
// chain was trusted) the certificate was issued for another name than host.
std::string certificateFailure(long verifyResult, const std::string& host);

// The reason OpenSSL left for a failed handshake, e.g. "TLS handshake failed:
// wrong version number"; clears OpenSSL's error queue.
std::string handshakeFailure();

}  // namespace cdrctl
