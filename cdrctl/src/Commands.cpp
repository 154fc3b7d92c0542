#include "Commands.hpp"

#include <termios.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>

#include "CimClient.hpp"
#include "Objects.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

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
    json detail;
};

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

// "CIM error 1 (CIM_ERR_FAILED): 301: status 301: the device refused ..."
std::string describe(const CimError& error) {
    std::string text = "CIM error " + std::to_string(error.code()) + " (" + CimError::codeName(error.code()) + ")";
    if (!error.description().empty()) text += ": " + error.description();
    const char* meaning = error.code() == 1 ? statusMeaning(error.description()) : cimCodeMeaning(error.code());
    if (meaning) text += " (" + std::string(meaning) + ")";
    return text;
}

json errorJson(const CimError& error) {
    const char* meaning = error.code() == 1 ? statusMeaning(error.description()) : cimCodeMeaning(error.code());
    return {{"kind", "cim"},
            {"code", error.code()},
            {"name", CimError::codeName(error.code())},
            {"message", error.description()},
            {"meaning", meaning ? json(meaning) : json(nullptr)}};
}

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

// Reads a line from the terminal, without echo for secrets.
std::optional<std::string> askTerminal(const std::string& prompt, bool secret) {
    FILE* tty = std::fopen("/dev/tty", "r+");
    if (!tty) return std::nullopt;
    std::fputs(prompt.c_str(), tty);
    std::fflush(tty);
    termios saved{};
    bool restore = secret && tcgetattr(fileno(tty), &saved) == 0;
    if (restore) {
        termios quiet = saved;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(fileno(tty), TCSAFLUSH, &quiet);
    }
    char line[512];
    bool got = std::fgets(line, sizeof line, tty) != nullptr;
    if (restore) {
        tcsetattr(fileno(tty), TCSAFLUSH, &saved);
        std::fputs("\n", tty);
    }
    std::fclose(tty);
    if (!got) return std::nullopt;
    std::string text = line;
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

// The client, with the credentials asked for once when the object manager
// wants them and none were given.
class Session {
public:
    explicit Session(const Options& options) : options_(options), client_(options.connection) {
        if (!client_.connection().user.empty() && client_.connection().password.empty() && isatty(STDIN_FILENO)) {
            std::optional<std::string> password = askTerminal("Password for " + client_.connection().user + ": ", true);
            if (password) client_.setCredentials(client_.connection().user, *password);
            asked_ = true;
        }
    }

    template <class Call>
    auto operator()(Call call) -> decltype(call(std::declval<CimClient&>())) {
        try {
            return call(client_);
        } catch (const AuthenticationError&) {
            if (asked_ || !isatty(STDIN_FILENO)) throw;
            asked_ = true;
            std::string user = client_.connection().user;
            if (user.empty()) user = askTerminal("User: ", false).value_or("");
            std::optional<std::string> password = askTerminal("Password for " + user + ": ", true);
            if (user.empty() || !password) throw;
            client_.setCredentials(user, *password);
            return call(client_);
        }
    }

    const Options& options() const { return options_; }

private:
    const Options& options_;
    CimClient client_;
    bool asked_ = false;
};

// The row number at the end of a bin's key ("CDRServicePrefixBin_3" is 3).
std::optional<int> rowOf(const InstanceName& name) {
    if (name.keys.empty()) return std::nullopt;
    const std::string& key = name.keys.front().text;
    size_t underscore = key.rfind('_');
    if (underscore == std::string::npos) return std::nullopt;
    std::string digits = key.substr(underscore + 1);
    if (digits.empty() || digits.size() > 6 || !std::all_of(digits.begin(), digits.end(), ::isdigit))
        return std::nullopt;
    return std::atoi(digits.c_str());
}

// Instance names sorted by row, then by key text.
std::vector<InstanceName> instanceNames(Session& session, const ObjectSpec& object) {
    std::vector<InstanceName> names =
        session([&](CimClient& client) { return client.enumerateInstanceNames(object.className); });
    std::stable_sort(names.begin(), names.end(), [](const InstanceName& a, const InstanceName& b) {
        std::optional<int> ra = rowOf(a), rb = rowOf(b);
        if (ra && rb && *ra != *rb) return *ra < *rb;
        std::string ka = a.keys.empty() ? "" : a.keys.front().text;
        std::string kb = b.keys.empty() ? "" : b.keys.front().text;
        return ka < kb;
    });
    return names;
}

// The one instance a command acts on: the row for bins, else the first.
InstanceName targetInstance(Session& session, const ObjectSpec& object, std::optional<int> row) {
    std::vector<InstanceName> names = instanceNames(session, object);
    if (object.rows) {
        if (!row) throw CommandFailure{kUsage, std::string(object.name) + " has rows: name one with --row N", {}};
        for (const InstanceName& name : names) {
            if (rowOf(name) == row) return name;
        }
        std::string rows = names.empty() ? "none"
                                         : std::to_string(rowOf(names.front()).value_or(0)) + " to " +
                                               std::to_string(rowOf(names.back()).value_or(0));
        throw CommandFailure{kUsage, std::string(object.name) + " has no row " + std::to_string(*row) +
                                         " (rows: " + rows + ")", {}};
    }
    if (row) throw CommandFailure{kUsage, std::string(object.name) + " has no rows; leave out --row", {}};
    if (names.empty()) {
        throw CommandFailure{kCimError, std::string("the object manager has no ") + object.className + " instance",
                             {{"kind", "missing"}, {"message", "no instance"}}};
    }
    return names.front();
}

bool isKey(const InstanceName& name, const std::string& property) {
    return std::any_of(name.keys.begin(), name.keys.end(),
                       [&](const KeyBinding& key) { return key.name == property; });
}

// --- show --------------------------------------------------------------------

json typedValue(const PropertySpec& def, const CimValue& value) {
    if (value.isNull) return nullptr;
    const std::string& text = value.text();
    std::string type = def.cimType;
    if (type == "boolean") return text == "true" || text == "TRUE";
    if (type.rfind("uint", 0) == 0 && !text.empty() && std::all_of(text.begin(), text.end(), ::isdigit))
        return std::stoull(text);
    return text;
}

std::string shownValue(const PropertySpec& def, const CimProperty& property, bool showSecrets) {
    if (property.value.isNull) return "(null)";
    std::string text = property.value.text();
    if (def.secret && !showSecrets && !text.empty()) return "******** (--show-secrets shows it)";
    if (def.rule == Rule::TransferType) return text + " (" + transferTypeMeaning(text) + ")";
    if (std::string(def.cimType) == "string" && text.empty()) return "\"\"";
    if (const CimQualifier* valid = property.qualifier("ValidValueMap")) {
        std::string list;
        for (const std::string& item : valid->value.elements) list += (list.empty() ? "" : ", ") + item;
        text += " (valid: " + list + ")";
    }
    return text;
}

struct ShownInstance {
    InstanceName name;
    std::vector<std::pair<const PropertySpec*, std::string>> cells;  // text per shown property
    json properties = json::object();
    json notApplicable = json::array();
    json unreadable = json::array();
};

ShownInstance showInstance(const ObjectSpec& object, const InstanceName& name, const Instance& instance,
                           bool showSecrets) {
    ShownInstance shown{name, {}, json::object(), json::array(), json::array()};
    for (const PropertySpec& def : object.properties) {
        if (isKey(name, def.name)) continue;
        const CimProperty* property = instance.property(def.name);
        std::string cell;
        if (!property) {
            cell = "could not be read";
            shown.unreadable.push_back(def.name);
            shown.properties[def.name] = nullptr;
        } else if (!property->applicable()) {
            cell = "not applicable";
            shown.notApplicable.push_back(def.name);
            shown.properties[def.name] = nullptr;
        } else {
            cell = shownValue(def, *property, showSecrets);
            shown.properties[def.name] =
                def.secret && !showSecrets && !property->value.text().empty() ? json("********")
                                                                              : typedValue(def, property->value);
        }
        shown.cells.emplace_back(&def, cell);
    }
    return shown;
}

void printTable(const ObjectSpec& object, const std::vector<ShownInstance>& instances) {
    std::cout << object.name << ": " << object.title << " (" << object.className << ")\n";
    if (instances.empty()) {
        std::cout << "  no instance\n";
        return;
    }
    if (!object.rows) {
        for (const ShownInstance& shown : instances) {
            for (const KeyBinding& key : shown.name.keys) std::cout << "  " << key.name << " = " << key.text << "\n";
            size_t width = 0;
            for (const auto& cell : shown.cells) width = std::max(width, std::strlen(cell.first->name));
            for (const auto& [def, text] : shown.cells) {
                std::cout << "  " << def->name << std::string(width - std::strlen(def->name) + 2, ' ') << text
                          << "\n";
            }
        }
        return;
    }
    std::vector<size_t> widths;
    for (const auto& cell : instances.front().cells) widths.push_back(std::strlen(cell.first->name));
    for (const ShownInstance& shown : instances) {
        for (size_t i = 0; i < shown.cells.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], shown.cells[i].second.size());
    }
    std::cout << "  row";
    for (size_t i = 0; i < widths.size(); ++i) {
        const char* name = instances.front().cells[i].first->name;
        std::cout << "  " << name << std::string(widths[i] - std::strlen(name), ' ');
    }
    std::cout << "\n";
    for (const ShownInstance& shown : instances) {
        std::optional<int> row = rowOf(shown.name);
        std::string label = row ? std::to_string(*row) : shown.name.keys.front().text;
        std::cout << "  " << label << std::string(label.size() < 3 ? 3 - label.size() : 0, ' ');
        for (size_t i = 0; i < shown.cells.size(); ++i) {
            const std::string& text = shown.cells[i].second;
            std::cout << "  " << text << std::string(text.size() < widths[i] ? widths[i] - text.size() : 0, ' ');
        }
        std::cout << "\n";
    }
}

int showCommand(Session& session, const std::string& objectName) {
    json result = {{"objects", json::array()}};
    bool first = true;
    for (const ObjectSpec& object : objects()) {
        if (!objectName.empty() && object.name != objectName) continue;
        std::vector<ShownInstance> shown;
        json instances = json::array();
        for (const InstanceName& name : instanceNames(session, object)) {
            Instance instance = session([&](CimClient& client) { return client.getInstance(name); });
            shown.push_back(showInstance(object, name, instance, session.options().showSecrets));
            json keys = json::object();
            for (const KeyBinding& key : name.keys) keys[key.name] = key.text;
            std::optional<int> row = rowOf(name);
            instances.push_back({{"keys", keys},
                                 {"row", object.rows && row ? json(*row) : json(nullptr)},
                                 {"properties", shown.back().properties},
                                 {"notApplicable", shown.back().notApplicable},
                                 {"unreadable", shown.back().unreadable}});
        }
        result["objects"].push_back({{"object", object.name}, {"class", object.className}, {"instances", instances}});
        if (!session.options().json) {
            if (!first) std::cout << "\n";
            printTable(object, shown);
        }
        first = false;
    }
    if (session.options().json) std::cout << result.dump(2) << "\n";
    return kSuccess;
}

// --- set ---------------------------------------------------------------------

struct Assignment {
    const PropertySpec* def;
    size_t tableIndex;
    std::string value;  // as sent
};

std::string shownAssignment(const Assignment& assignment, bool showSecrets) {
    return std::string(assignment.def->name) + "=" +
           (assignment.def->secret && !showSecrets ? std::string("********") : assignment.value);
}

// A transfer type that arms a schedule on a day needs that day: while the
// push is of another kind the stored day does not apply and cannot be read.
struct DayDependency {
    const char* type;
    const char* dayProperty;
    const char* kind;
};
const DayDependency kDayDependencies[] = {{"1", "TransferDayOfWeek", "weekly"},
                                          {"2", "TransferDayOfMonth", "monthly"}};

void checkDependencies(Session& session, const ObjectSpec& object, const InstanceName& name,
                       const std::vector<Assignment>& assignments) {
    auto given = [&](const char* property) -> const Assignment* {
        for (const Assignment& a : assignments)
            if (std::string(a.def->name) == property) return &a;
        return nullptr;
    };
    const Assignment* type = given("TransferType");
    if (!type) return;
    for (const DayDependency& dependency : kDayDependencies) {
        if (type->value != dependency.type || given(dependency.dayProperty)) continue;
        Instance current = session([&](CimClient& client) { return client.getInstance(name); });
        const CimProperty* stored = current.property("TransferType");
        if (stored && stored->value.text() == dependency.type) continue;
        throw ValueRefused{"TransferType",
                           std::string("TransferType ") + dependency.type + " (" + dependency.kind + ") needs " +
                               dependency.dayProperty + "=... in the same command: the " + object.name +
                               " setting is not " + dependency.kind + " now, so its stored day does not apply"};
    }
}

int setCommand(Session& session, const std::string& objectName, std::optional<int> row,
               const std::vector<std::string>& texts) {
    const ObjectSpec& object = *findObject(objectName);
    const bool showSecrets = session.options().showSecrets;
    std::vector<Assignment> assignments;
    std::vector<ValueRefused> refused;
    for (const std::string& text : texts) {
        size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw CommandFailure{kUsage, "\"" + text + "\" is not of the form NAME=VALUE", {}};
        std::string name = text.substr(0, equals);
        const PropertySpec* def = findProperty(object, name);
        if (!def) {
            std::string writable;
            for (const PropertySpec& p : object.properties)
                if (p.rule != Rule::None) writable += (writable.empty() ? "" : ", ") + std::string(p.name);
            std::string settable = writable.empty() ? "nothing of it can be set" : "it can set: " + writable;
            throw CommandFailure{kUsage, std::string(object.name) + " has no property \"" + name + "\"; " + settable,
                                 {}};
        }
        for (const Assignment& a : assignments)
            if (a.def == def) throw CommandFailure{kUsage, std::string(def->name) + " is given twice", {}};
        try {
            assignments.push_back({def, static_cast<size_t>(def - object.properties.data()),
                                   checkedValue(*def, text.substr(equals + 1))});
        } catch (const ValueRefused& reason) {
            refused.push_back(reason);
        }
    }
    auto refuse = [&](const std::vector<ValueRefused>& reasons) {
        std::string message;
        json list = json::array();
        for (const ValueRefused& r : reasons) {
            message += (message.empty() ? "" : "\n") + r.reason;
            list.push_back({{"property", r.property}, {"reason", r.reason}});
        }
        message += "\nnothing was written";
        return CommandFailure{kValueRefused, message, {{"kind", "refused"}, {"refused", list}}};
    };
    if (!refused.empty()) throw refuse(refused);

    InstanceName name = targetInstance(session, object, row);
    try {
        checkDependencies(session, object, name, assignments);
    } catch (const ValueRefused& reason) {
        throw refuse({reason});
    }
    std::stable_sort(assignments.begin(), assignments.end(), [](const Assignment& a, const Assignment& b) {
        return a.def->writeRank != b.def->writeRank ? a.def->writeRank < b.def->writeRank
                                                      : a.tableIndex < b.tableIndex;
    });

    // One request per property, in order: a failure then names exactly what
    // was written before it (the module applies a request's properties one by
    // one and stops at the first failure, without rollback).
    json written = json::array();
    std::string writtenText;
    for (size_t i = 0; i < assignments.size(); ++i) {
        const Assignment& a = assignments[i];
        try {
            session([&](CimClient& client) {
                client.modifyInstance(name, {{a.def->name, a.def->cimType, CimValue::scalar(a.value), {}}});
                return 0;
            });
        } catch (const std::exception& error) {
            CommandFailure failure = failureOf(error);
            bool unknown = failure.exitCode == kNoAnswer;
            json notWritten = json::array();
            std::string notWrittenText;
            for (size_t j = i + 1; j < assignments.size(); ++j) {
                notWritten.push_back(assignments[j].def->name);
                notWrittenText += (notWrittenText.empty() ? "" : ", ") + shownAssignment(assignments[j], showSecrets);
            }
            failure.message = std::string(object.name) + ": " + shownAssignment(a, showSecrets) +
                              (unknown ? " may or may not have been written: " : " was not written: ") +
                              failure.message + "\n  written before it: " +
                              (writtenText.empty() ? "nothing" : writtenText) +
                              "\n  not written: " + (notWrittenText.empty() ? "nothing else" : notWrittenText);
            failure.detail = {{"kind", failure.detail.value("kind", "")},
                              {"cause", failure.detail},
                              {"object", object.name},
                              {"written", written},
                              {"failed", a.def->name},
                              {"notWritten", notWritten}};
            throw failure;
        }
        written.push_back(a.def->name);
        writtenText += (writtenText.empty() ? "" : ", ") + shownAssignment(a, showSecrets);
    }
    if (session.options().json) {
        std::cout << json{{"object", object.name}, {"written", written}}.dump(2) << "\n";
    } else {
        std::cout << object.name << ": wrote " << writtenText << "\n";
    }
    return kSuccess;
}

// --- methods -----------------------------------------------------------------

int callCommand(Session& session, const std::string& objectName, const std::string& methodName,
                std::optional<int> row) {
    const ObjectSpec& object = *findObject(objectName);
    const char* method = nullptr;
    for (const char* m : object.methods) {
        if (CLI::detail::to_lower(m) == CLI::detail::to_lower(methodName)) method = m;
    }
    if (!method) {
        std::string list;
        for (const char* m : object.methods) list += (list.empty() ? "" : ", ") + std::string(m);
        throw CommandFailure{kUsage, std::string(object.name) + " has no method \"" + methodName + "\"" +
                                         (list.empty() ? std::string("; it has none") : "; it has: " + list), {}};
    }
    InstanceName name = targetInstance(session, object, row);
    CimValue result = session([&](CimClient& client) { return client.invokeMethod(name, method); });
    if (session.options().json) {
        json value = result.isNull ? json(nullptr) : json(result.text());
        if (!result.isNull && !result.text().empty() &&
            std::all_of(result.text().begin(), result.text().end(), ::isdigit))
            value = std::stoull(result.text());
        std::cout << json{{"object", object.name}, {"method", method}, {"returnValue", value}}.dump(2) << "\n";
    } else {
        std::cout << object.name << " " << method << ": " << (result.isNull ? "(no value)" : result.text()) << "\n";
    }
    return kSuccess;
}

std::string exitCodeText() {
    return "Exit codes:\n"
           "  0  success\n"
           "  2  bad command line (unknown object, property or method, --row missing)\n"
           "  3  a value failed the checks; nothing was sent\n"
           "  4  no CIM answer: connection, TLS, HTTP error, credentials missing or refused\n"
           "  5  the object manager or the module answered with a CIM error\n"
           "Environment: CDRCTL_URL, CDRCTL_USER, CDRCTL_PASSWORD. Without CDRCTL_PASSWORD the\n"
           "password is asked on the terminal when the object manager wants one.";
}

}  // namespace

int run(int argc, char** argv) {
    Options options;
    CLI::App app{"cdrctl: shows and changes the CDR settings of a telephone system through its CIM object "
                 "manager (CIM-XML over HTTP or HTTPS)."};
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--url", options.connection.url, "object manager, http[s]://HOST[:PORT][/PATH]")
        ->envname("CDRCTL_URL")
        ->capture_default_str();
    app.add_option("--namespace", options.connection.nameSpace, "CIM namespace")->capture_default_str();
    app.add_option("--user", options.connection.user, "user name (the password comes from CDRCTL_PASSWORD or "
                                                      "the terminal)")
        ->envname("CDRCTL_USER");
    app.add_flag("--insecure", [&](int64_t) { options.connection.verifyCertificate = false; },
                 "HTTPS: do not verify the server's certificate");
    app.add_option("--cacert", options.connection.caFile, "HTTPS: trust the certificates in this PEM file")
        ->check(CLI::ExistingFile);
    app.add_option("--timeout", options.connection.timeoutSeconds,
                   "seconds to wait for an answer (and at most 10 to connect)")
        ->capture_default_str();
    app.add_flag("--json", options.json, "print results and errors as JSON on standard output");
    app.add_flag("--show-secrets", options.showSecrets, "show the push password instead of ********");

    auto objectCheck = [] {
        std::vector<std::string> names;
        for (const ObjectSpec& object : objects()) names.push_back(object.name);
        return CLI::IsMember(names, CLI::ignore_case);
    };
    std::string objectName, methodName;
    std::optional<int> row;
    std::vector<std::string> assignments;

    CLI::App* show = app.add_subcommand("show", "show the settings or statistics as tables");
    show->add_option("object", objectName, "one of: " + objectNames(", ") + " (all when left out)")
        ->transform(objectCheck());
    show->footer("Properties that do not apply in the current state (for example the push server while no push\n"
                 "is scheduled) are shown as \"not applicable\"; properties the device could not read as\n"
                 "\"could not be read\".");

    CLI::App* set = app.add_subcommand("set", "change settings: sends only the named properties");
    set->add_option("object", objectName, "one of: " + objectNames(", "))->required()->transform(objectCheck());
    set->add_option("assignments", assignments, "NAME=VALUE (property names as shown by show)")->required();
    set->add_option("--row", row, "the row of prefix-bins (0-7) or access-bins (0-4)");
    set->footer("Every value is checked first with the device's own rules; if one fails nothing is sent.\n"
                "Then each property is written by itself, the day and time before the TransferType that\n"
                "reads them, and nothing else is written. On a failure cdrctl names the properties written\n"
                "before it and those not written. Texts must be ASCII. Examples:\n"
                "  cdrctl set push TransferType=monthly TransferDayOfMonth=15 TransferTime=02:30\n"
                "  cdrctl set service DigitsLimit=20 DNISInfo=true\n"
                "  cdrctl set prefix-bins --row 0 PrefixBin=9123\n"
                "Setter statuses in CIM error 1 messages: 100 the value could not be read from the registry,\n"
                "101 it could not be written, 301 the device refused the value as invalid.");

    CLI::App* call = app.add_subcommand("call", "invoke a method, e.g. call push PushFileNow");
    call->add_option("object", objectName, "one of: " + objectNames(", "))->required()->transform(objectCheck());
    call->add_option("method", methodName, "PushFileNow (push), Refresh, ClipFile (service)")->required();
    call->add_option("--row", row, "the row, for objects with rows");

    std::string refreshName;
    CLI::App* refresh = app.add_subcommand("refresh", "Refresh push-stats, pull-stats or service");
    refresh->add_option("object", refreshName, "push-stats, pull-stats or service")
        ->required()
        ->transform(CLI::IsMember({"push-stats", "pull-stats", "service"}, CLI::ignore_case));
    refresh->footer("pull-stats: clears the pull statistics on the device. The answer is the number of refreshes\n"
                    "since the object manager loaded the module.");

    CLI::App* clip = app.add_subcommand("clip", "close (clip) the current CDR record file now");

    for (CLI::App* command : {show, set, call, refresh, clip}) {
        command->footer(command->get_footer() + (command->get_footer().empty() ? "" : "\n\n") + exitCodeText());
    }
    app.footer("Run cdrctl COMMAND --help for a command's own help.\n\n" + exitCodeText());

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        int code = app.exit(error);
        return code == 0 ? kSuccess : kUsage;
    }

    auto report = [&](const CommandFailure& failure) {
        std::cerr << "cdrctl: " << failure.message << "\n";
        if (options.json) {
            json detail = failure.detail.is_null() ? json{{"kind", "usage"}, {"message", failure.message}}
                                                   : failure.detail;
            if (!detail.contains("message")) detail["message"] = failure.message;
            std::cout << json{{"error", detail}}.dump(2) << "\n";
        }
        return failure.exitCode;
    };
    if (const char* password = std::getenv("CDRCTL_PASSWORD")) options.connection.password = password;
    try {
        Session session(options);
        if (*show) return showCommand(session, objectName.empty() ? "" : findObject(objectName)->name);
        if (*set) return setCommand(session, objectName, row, assignments);
        if (*call) return callCommand(session, objectName, methodName, row);
        if (*refresh) return callCommand(session, refreshName, "Refresh", std::nullopt);
        if (*clip) return callCommand(session, "service", "ClipFile", std::nullopt);
    } catch (const CommandFailure& failure) {
        return report(failure);
    } catch (const std::exception& error) {
        return report(failureOf(error));
    }
    return kUsage;
}

}  // namespace cdrctl
