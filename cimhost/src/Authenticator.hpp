// HTTP Basic credentials checked against a file of "user:hash" lines, the
// hashes in crypt(3) form (e.g. made with `mkpasswd -m sha-512`).
#pragma once

#include <map>
#include <optional>
#include <string>

namespace cimhost {

class Authenticator {
public:
    // Reads the file; blank lines and lines starting with '#' are skipped.
    // Throws std::runtime_error when it cannot be read, holds a line without
    // ':' or holds no user at all.
    static Authenticator fromFile(const std::string& path);

    // The user name when the Authorization header value carries a known user
    // and the right password, else nullopt.
    std::optional<std::string> check(const std::string& authorizationHeader) const;

private:
    std::map<std::string, std::string> hashes_;
};

}  // namespace cimhost
