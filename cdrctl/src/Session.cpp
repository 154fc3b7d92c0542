#include "Session.hpp"

#include <unistd.h>

#include "Commands.hpp"
#include "Objects.hpp"
#include "Terminal.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

const char* cimCodeMeaning(int code) {
    switch (code) {
        case 2: return "access denied";
        case 3: return "the object manager has no such namespace";
        case 5: return "the object manager does not serve this class";
        case 6: return "no such instance";
        case 7: return "the operation is not supported for this class";
        case 12: return "no such property";
        case 17: return "the class has no such method";
        default: return nullptr;
    }
}

const char* meaningOf(const CimError& error) {
    return error.code() == 1 ? statusMeaning(error.description()) : cimCodeMeaning(error.code());
}

// "CIM error 1 (CIM_ERR_FAILED): 301: status 301: the device refused ..."
std::string describe(const CimError& error) {
    std::string text = "CIM error " + std::to_string(error.code()) + " (" + CimError::codeName(error.code()) + ")";
    if (!error.description().empty()) text += ": " + error.description();
    if (const char* meaning = meaningOf(error)) text += " (" + std::string(meaning) + ")";
    return text;
}

json errorJson(const CimError& error) {
    const char* meaning = meaningOf(error);
    return {{"kind", "cim"},
            {"code", error.code()},
            {"name", CimError::codeName(error.code())},
            {"message", error.description()},
            {"meaning", meaning ? json(meaning) : json(nullptr)}};
}

}  // namespace

CommandFailure failureOf(const std::exception& error) {
    if (auto* cim = dynamic_cast<const CimError*>(&error)) return {kCimError, describe(*cim), errorJson(*cim)};
    if (auto* auth = dynamic_cast<const AuthenticationError*>(&error)) {
        std::string text = std::string(auth->what()) +
                           "; give the user with --user or CDRCTL_USER and the password in CDRCTL_PASSWORD "
                           "(or run on a terminal to be asked)";
        return {kNoAnswer, text, {{"kind", "authentication"}, {"message", text}}};
    }
    return {kNoAnswer, error.what(), {{"kind", "transport"}, {"message", error.what()}}};
}

Session::Session(const Options& options) : options_(options), client_(options.connection) {
    if (!client_.connection().user.empty() && client_.connection().password.empty() && isatty(STDIN_FILENO)) {
        std::optional<std::string> password = askTerminal("Password for " + client_.connection().user + ": ", true);
        if (password) client_.setCredentials(client_.connection().user, *password);
        asked_ = true;
    }
}

bool Session::askCredentials() {
    if (asked_ || !isatty(STDIN_FILENO)) return false;
    asked_ = true;
    std::string user = client_.connection().user;
    if (user.empty()) user = askTerminal("User: ", false).value_or("");
    std::optional<std::string> password = askTerminal("Password for " + user + ": ", true);
    if (user.empty() || !password) return false;
    client_.setCredentials(user, *password);
    return true;
}

}  // namespace cdrctl
