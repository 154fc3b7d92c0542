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
    // ':' or whose hash is not a "$id$" crypt(3) hash, or holds no user.
    static Authenticator fromFile(const std::string& path);

    // The user name when the Authorization header value (scheme "Basic" in
    // any case) carries a known user and the right password, else nullopt.
    // Takes as long for an unknown user as for a wrong password.
    std::optional<std::string> check(const std::string& authorizationHeader) const;

private:
    std::map<std::string, std::string> hashes_;
    std::string unknownUserHash_;
};

}  // namespace cimhost
