#include "Authenticator.hpp"

#include "ClassDefinition.hpp"

#include <crypt.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>

#include <fstream>
#include <memory>
#include <mutex>
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

// Header values verified lately, keyed by their HMAC-SHA-256 under a key
// drawn when the host starts, with the user each names and when it was
// verified.
struct Authenticator::Verified {
    struct Entry {
        std::string user;
        std::chrono::steady_clock::time_point at;
    };
    std::mutex mutex;
    unsigned char key[32];
    size_t maxEntries = 256;
    std::chrono::steady_clock::duration maxAge = std::chrono::minutes(5);
    std::map<std::string, Entry> entries;

    Verified() {
        if (RAND_bytes(key, sizeof key) != 1) throw std::runtime_error("no random bytes for the credentials cache");
    }

    std::string digest(const std::string& header) const {
        unsigned char out[EVP_MAX_MD_SIZE];
        unsigned int length = 0;
        HMAC(EVP_sha256(), key, sizeof key, reinterpret_cast<const unsigned char*>(header.data()), header.size(), out,
             &length);
        return std::string(reinterpret_cast<const char*>(out), length);
    }

    std::optional<std::string> find(const std::string& digest) {
        std::lock_guard<std::mutex> lock(mutex);
        auto it = entries.find(digest);
        if (it == entries.end()) return std::nullopt;
        if (std::chrono::steady_clock::now() - it->second.at >= maxAge) {
            entries.erase(it);
            return std::nullopt;
        }
        return it->second.user;
    }

    void remember(const std::string& digest, const std::string& user) {
        std::lock_guard<std::mutex> lock(mutex);
        if (maxEntries == 0) return;
        if (entries.size() >= maxEntries && !entries.count(digest)) {
            // Full: the oldest goes.
            auto oldest = entries.begin();
            for (auto it = entries.begin(); it != entries.end(); ++it) {
                if (it->second.at < oldest->second.at) oldest = it;
            }
            entries.erase(oldest);
        }
        entries[digest] = {user, std::chrono::steady_clock::now()};
    }
};

void Authenticator::rememberVerified(size_t maxEntries, std::chrono::steady_clock::duration maxAge) {
    std::lock_guard<std::mutex> lock(verified_->mutex);
    verified_->maxEntries = maxEntries;
    verified_->maxAge = maxAge;
    verified_->entries.clear();
}

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
    auth.verified_ = std::make_shared<Verified>();
    return auth;
}

std::optional<std::string> Authenticator::check(const std::string& authorizationHeader) const {
    std::string digest = verified_->digest(authorizationHeader);
    if (std::optional<std::string> user = verified_->find(digest)) return user;
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
    verified_->remember(digest, user);
    return user;
}

}  // namespace cimhost
