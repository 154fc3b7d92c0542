// What every command works with: the options of the command line, the
// client with its credentials, and the failure that ends a command.
#pragma once

#include <nlohmann/json.hpp>

#include <exception>
#include <optional>
#include <string>

#include "CimClient.hpp"

namespace cdrctl {

struct Options {
    Connection connection;
    bool json = false;
    bool showSecrets = false;
};

// A failure that ends the command with its exit code; `detail` is the JSON
// description of the error for --json.
struct CommandFailure {
    int exitCode;
    std::string message;
    nlohmann::json detail;
};

// The failure a CimError, an AuthenticationError or another TransportError
// ends a command with, in words.
CommandFailure failureOf(const std::exception& error);

// The client, with the credentials asked for once when the object manager
// wants them and none were given (only when standard input is a terminal).
class Session {
public:
    explicit Session(const Options& options);

    // Runs call(client); after an AuthenticationError, asks for the
    // credentials once and runs it again.
    template <class Call>
    auto operator()(Call call) -> decltype(call(std::declval<CimClient&>())) {
        try {
            return call(client_);
        } catch (const AuthenticationError&) {
            if (!askCredentials()) throw;
            return call(client_);
        }
    }

    const Options& options() const { return options_; }

private:
    // False when they were asked before, or cannot be asked.
    bool askCredentials();

    const Options& options_;
    CimClient client_;
    bool asked_ = false;
};

}  // namespace cdrctl
