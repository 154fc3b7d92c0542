// HTTP Basic credentials checked against a file of "user:hash" lines, the
// hashes in crypt(3) form (e.g. made with `mkpasswd -m sha-512`).
#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace cimhost {

class Authenticator {
public:
    // Reads the file; blank lines and lines starting with '#' are skipped.
    // Throws std::runtime_error when it cannot be read, holds a line without
    // ':' or whose hash is not a "$id$" crypt(3) hash, or holds no user.
    static Authenticator fromFile(const std::string& path);

    // The user name when the Authorization header value (scheme "Basic" in
    // any case) carries a known user and the right password, else nullopt.
    // Takes as long for an unknown user as for a wrong password. A header
    // value verified lately is remembered (by a keyed hash of it, never the
    // password) and passes without hashing the password again; a different
    // value, a wrong password among them, is checked in full.
    std::optional<std::string> check(const std::string& authorizationHeader) const;

    // How many verified header values are remembered, and for how long
    // (default 256 for 5 minutes); 0 entries remembers none.
    void rememberVerified(size_t maxEntries, std::chrono::steady_clock::duration maxAge);

private:
    struct Verified;

    std::map<std::string, std::string> hashes_;
    std::string unknownUserHash_;
    std::shared_ptr<Verified> verified_;
};

}  // namespace cimhost
