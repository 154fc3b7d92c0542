// The command line: options, subcommands and their help, and how a failure
// is reported.
#include "Commands.hpp"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <iostream>

#include "Objects.hpp"
#include "Session.hpp"
#include "Subcommands.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

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

// What the command line asks for.
struct CommandLine {
    Options options;
    std::string objectName, methodName, refreshName;
    std::optional<int> row;
    std::vector<std::string> assignments;
    CLI::App* show = nullptr;
    CLI::App* set = nullptr;
    CLI::App* call = nullptr;
    CLI::App* refresh = nullptr;
    CLI::App* clip = nullptr;
};

void addGlobalOptions(CLI::App& app, Options& options) {
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
}

CLI::IsMember objectCheck() {
    std::vector<std::string> names;
    for (const ObjectSpec& object : objects()) names.push_back(object.name);
    return CLI::IsMember(names, CLI::ignore_case);
}

void addShowAndSet(CLI::App& app, CommandLine& line) {
    line.show = app.add_subcommand("show", "show the settings or statistics as tables");
    line.show->add_option("object", line.objectName, "one of: " + objectNames(", ") + " (all when left out)")
        ->transform(objectCheck());
    line.show->footer("Properties that do not apply in the current state (for example the push server while no push\n"
                      "is scheduled) are shown as \"not applicable\"; properties the device could not read as\n"
                      "\"could not be read\".");

    line.set = app.add_subcommand("set", "change settings: sends only the named properties");
    line.set->add_option("object", line.objectName, "one of: " + objectNames(", "))
        ->required()
        ->transform(objectCheck());
    line.set->add_option("assignments", line.assignments, "NAME=VALUE (property names as shown by show)")->required();
    line.set->add_option("--row", line.row, "the row of prefix-bins (0-7) or access-bins (0-4)");
    line.set->footer("Every value is checked first with the device's own rules; if one fails nothing is sent.\n"
                     "Then each property is written by itself, the day and time before the TransferType that\n"
                     "reads them, and nothing else is written. On a failure cdrctl names the properties written\n"
                     "before it and those not written. Texts must be ASCII. Examples:\n"
                     "  cdrctl set push TransferType=monthly TransferDayOfMonth=15 TransferTime=02:30\n"
                     "  cdrctl set service DigitsLimit=20 DNISInfo=true\n"
                     "  cdrctl set prefix-bins --row 0 PrefixBin=9123\n"
                     "Setter statuses in CIM error 1 messages: 100 the value could not be read from the registry,\n"
                     "101 it could not be written, 301 the device refused the value as invalid.");
}

void addMethodCommands(CLI::App& app, CommandLine& line) {
    line.call = app.add_subcommand("call", "invoke a method, e.g. call push PushFileNow");
    line.call->add_option("object", line.objectName, "one of: " + objectNames(", "))
        ->required()
        ->transform(objectCheck());
    line.call->add_option("method", line.methodName, "PushFileNow (push), Refresh, ClipFile (service)")->required();
    line.call->add_option("--row", line.row, "the row, for objects with rows");

    line.refresh = app.add_subcommand("refresh", "Refresh push-stats, pull-stats or service");
    line.refresh->add_option("object", line.refreshName, "push-stats, pull-stats or service")
        ->required()
        ->transform(CLI::IsMember({"push-stats", "pull-stats", "service"}, CLI::ignore_case));
    line.refresh->footer("pull-stats: clears the pull statistics on the device. The answer is the number of "
                         "refreshes\nsince the object manager loaded the module.");

    line.clip = app.add_subcommand("clip", "close (clip) the current CDR record file now");
}

void defineCommandLine(CLI::App& app, CommandLine& line) {
    app.require_subcommand(1);
    app.fallthrough();
    addGlobalOptions(app, line.options);
    addShowAndSet(app, line);
    addMethodCommands(app, line);
    for (CLI::App* command : {line.show, line.set, line.call, line.refresh, line.clip}) {
        command->footer(command->get_footer() + (command->get_footer().empty() ? "" : "\n\n") + exitCodeText());
    }
    app.footer("Run cdrctl COMMAND --help for a command's own help.\n\n" + exitCodeText());
}

int dispatch(Session& session, const CommandLine& line) {
    if (*line.show) return showCommand(session, line.objectName.empty() ? "" : findObject(line.objectName)->name);
    if (*line.set) return setCommand(session, line.objectName, line.row, line.assignments);
    if (*line.call) return callCommand(session, line.objectName, line.methodName, line.row);
    if (*line.refresh) return callCommand(session, line.refreshName, "Refresh", std::nullopt);
    if (*line.clip) return callCommand(session, "service", "ClipFile", std::nullopt);
    return kUsage;
}

// The message on standard error and, with --json, the error as JSON.
int report(const CommandFailure& failure, bool asJson) {
    std::cerr << "cdrctl: " << failure.message << "\n";
    if (asJson) {
        json detail = failure.detail.is_null() ? json{{"kind", "usage"}, {"message", failure.message}} : failure.detail;
        if (!detail.contains("message")) detail["message"] = failure.message;
        std::cout << json{{"error", detail}}.dump(2) << "\n";
    }
    return failure.exitCode;
}

}  // namespace

int run(int argc, char** argv) {
    CLI::App app{"cdrctl: shows and changes the CDR settings of a telephone system through its CIM object "
                 "manager (CIM-XML over HTTP or HTTPS)."};
    CommandLine line;
    defineCommandLine(app, line);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSuccess : kUsage;
    }
    if (const char* password = std::getenv("CDRCTL_PASSWORD")) line.options.connection.password = password;
    try {
        Session session(line.options);
        return dispatch(session, line);
    } catch (const CommandFailure& failure) {
        return report(failure, line.options.json);
    } catch (const std::exception& error) {
        return report(failureOf(error), line.options.json);
    }
}

}  // namespace cdrctl
