#include "Authenticator.hpp"

#include <crypt.h>
#include <openssl/evp.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <vector>

namespace cimhost {
namespace {

std::optional<std::string> decodeBase64(const std::string& text) {
    if (text.empty() || text.size() % 4 != 0) return std::nullopt;
    std::vector<unsigned char> out(text.size() / 4 * 3 + 1);
    int length = EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                 static_cast<int>(text.size()));
    if (length < 0) return std::nullopt;
    // EVP_DecodeBlock counts the padding as zero bytes; drop them.
    size_t padding = 0;
    if (text[text.size() - 1] == '=') ++padding;
    if (text[text.size() - 2] == '=') ++padding;
    return std::string(reinterpret_cast<const char*>(out.data()), static_cast<size_t>(length) - padding);
}

bool sameText(const std::string& a, const std::string& b) {
    // Compares every byte so that the time taken does not reveal where the
    // texts first differ.
    if (a.size() != b.size()) return false;
    unsigned char diff = 0;
    for (size_t i = 0; i < a.size(); ++i) diff |= static_cast<unsigned char>(a[i] ^ b[i]);
    return diff == 0;
}

}  // namespace

Authenticator Authenticator::fromFile(const std::string& path) {
    std::ifstream in(path);
    if (!in) throw std::runtime_error("cannot read auth file " + path);
    Authenticator auth;
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        size_t colon = line.find(':');
        if (colon == std::string::npos || colon == 0 || colon + 1 == line.size()) {
            throw std::runtime_error(path + ":" + std::to_string(number) + ": expected user:hash");
        }
        auth.hashes_[line.substr(0, colon)] = line.substr(colon + 1);
    }
    if (auth.hashes_.empty()) throw std::runtime_error("auth file " + path + " names no user");
    return auth;
}

std::optional<std::string> Authenticator::check(const std::string& authorizationHeader) const {
    const std::string scheme = "Basic ";
    if (authorizationHeader.compare(0, scheme.size(), scheme) != 0) return std::nullopt;
    std::optional<std::string> decoded = decodeBase64(authorizationHeader.substr(scheme.size()));
    if (!decoded) return std::nullopt;
    size_t colon = decoded->find(':');
    if (colon == std::string::npos) return std::nullopt;
    std::string user = decoded->substr(0, colon);
    std::string password = decoded->substr(colon + 1);
    auto it = hashes_.find(user);
    if (it == hashes_.end()) return std::nullopt;
    auto data = std::make_unique<crypt_data>();
    const char* hashed = crypt_r(password.c_str(), it->second.c_str(), data.get());
    if (!hashed || hashed[0] == '*') return std::nullopt;
    if (!sameText(hashed, it->second)) return std::nullopt;
    return user;
}

}  // namespace cimhost
