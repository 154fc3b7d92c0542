#include "Authenticator.hpp"

#include "ClassDefinition.hpp"

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

// A crypt(3) hash of one of the "$id$" schemes: hashing with it as the
// setting gives a text of the same form and length.
bool isCryptHash(const std::string& hash) {
    if (hash.size() < 4 || hash[0] != '$') return false;
    auto data = std::make_unique<crypt_data>();
    const char* probe = crypt_r("probe", hash.c_str(), data.get());
    return probe && probe[0] == '$' && std::string(probe).size() == hash.size() &&
           hash.compare(0, hash.rfind('$'), probe, hash.rfind('$')) == 0;
}

// The credentials of a Basic Authorization value; the scheme name is
// matched ignoring case.
std::optional<std::string> basicCredentials(const std::string& header) {
    size_t space = header.find(' ');
    if (space == std::string::npos || lowerCase(header.substr(0, space)) != "basic") return std::nullopt;
    size_t token = header.find_first_not_of(' ', space);
    if (token == std::string::npos) return std::nullopt;
    return decodeBase64(header.substr(token));
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
        std::string hash = line.substr(colon + 1);
        if (!isCryptHash(hash)) {
            throw std::runtime_error(path + ":" + std::to_string(number) + ": the entry of " +
                                     line.substr(0, colon) + " is not a crypt(3) hash");
        }
        auth.hashes_[line.substr(0, colon)] = hash;
    }
    if (auth.hashes_.empty()) throw std::runtime_error("auth file " + path + " names no user");
    auth.unknownUserHash_ = auth.hashes_.begin()->second;
    return auth;
}

std::optional<std::string> Authenticator::check(const std::string& authorizationHeader) const {
    std::optional<std::string> decoded = basicCredentials(authorizationHeader);
    if (!decoded || decoded->find('\0') != std::string::npos) return std::nullopt;
    size_t colon = decoded->find(':');
    if (colon == std::string::npos) return std::nullopt;
    std::string user = decoded->substr(0, colon);
    std::string password = decoded->substr(colon + 1);
    // An unknown user costs the same hashing as a known one, so that the
    // time taken does not tell which users exist.
    auto it = hashes_.find(user);
    const std::string& hash = it == hashes_.end() ? unknownUserHash_ : it->second;
    auto data = std::make_unique<crypt_data>();
    const char* hashed = crypt_r(password.c_str(), hash.c_str(), data.get());
    bool matches = hashed && hashed[0] != '*' && sameText(hashed, hash);
    if (!matches || it == hashes_.end()) return std::nullopt;
    return user;
}

}  // namespace cimhost
