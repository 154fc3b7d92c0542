// set: every value checked first, then one request per property in write
// order, and on a failure what was written before it and what was not.
#include <algorithm>
#include <iostream>

#include "Commands.hpp"
#include "Instances.hpp"
#include "Objects.hpp"
#include "Subcommands.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

struct Assignment {
    const PropertySpec* def;
    size_t tableIndex;
    std::string value;  // as sent
};

std::string shownAssignment(const Assignment& assignment, bool showSecrets) {
    return std::string(assignment.def->name) + "=" +
           (assignment.def->secret && !showSecrets ? std::string("********") : assignment.value);
}

std::string shownAssignments(std::vector<Assignment>::const_iterator from, std::vector<Assignment>::const_iterator to,
                             bool showSecrets) {
    std::string text;
    for (auto a = from; a != to; ++a) text += (text.empty() ? "" : ", ") + shownAssignment(*a, showSecrets);
    return text;
}

CommandFailure unknownProperty(const ObjectSpec& object, const std::string& name) {
    std::string writable;
    for (const PropertySpec& p : object.properties)
        if (p.rule != Rule::None) writable += (writable.empty() ? "" : ", ") + std::string(p.name);
    std::string settable = writable.empty() ? "nothing of it can be set" : "it can set: " + writable;
    return {kUsage, std::string(object.name) + " has no property \"" + name + "\"; " + settable, {}};
}

CommandFailure refusal(const std::vector<ValueRefused>& reasons) {
    std::string message;
    json list = json::array();
    for (const ValueRefused& r : reasons) {
        message += (message.empty() ? "" : "\n") + r.reason;
        list.push_back({{"property", r.property}, {"reason", r.reason}});
    }
    message += "\nnothing was written";
    return {kValueRefused, message, {{"kind", "refused"}, {"refused", list}}};
}

// The NAME=VALUE texts as checked assignments; throws CommandFailure for a
// text of another form, an unknown or repeated property, and (naming every
// one) refused values.
std::vector<Assignment> checkedAssignments(const ObjectSpec& object, const std::vector<std::string>& texts) {
    std::vector<Assignment> assignments;
    std::vector<ValueRefused> refused;
    for (const std::string& text : texts) {
        size_t equals = text.find('=');
        if (equals == std::string::npos || equals == 0)
            throw CommandFailure{kUsage, "\"" + text + "\" is not of the form NAME=VALUE", {}};
        const PropertySpec* def = findProperty(object, text.substr(0, equals));
        if (!def) throw unknownProperty(object, text.substr(0, equals));
        for (const Assignment& a : assignments)
            if (a.def == def) throw CommandFailure{kUsage, std::string(def->name) + " is given twice", {}};
        try {
            assignments.push_back({def, static_cast<size_t>(def - object.properties.data()),
                                   checkedValue(*def, text.substr(equals + 1))});
        } catch (const ValueRefused& reason) {
            refused.push_back(reason);
        }
    }
    if (!refused.empty()) throw refusal(refused);
    return assignments;
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
        throw refusal({{"TransferType",
                        std::string("TransferType ") + dependency.type + " (" + dependency.kind + ") needs " +
                            dependency.dayProperty + "=... in the same command: the " + object.name +
                            " setting is not " + dependency.kind + " now, so its stored day does not apply"}});
    }
}

// Ascending write rank, then table order: a setting others depend on last.
void sortForWriting(std::vector<Assignment>& assignments) {
    std::stable_sort(assignments.begin(), assignments.end(), [](const Assignment& a, const Assignment& b) {
        return a.def->writeRank != b.def->writeRank ? a.def->writeRank < b.def->writeRank
                                                      : a.tableIndex < b.tableIndex;
    });
}

json namesOf(std::vector<Assignment>::const_iterator from, std::vector<Assignment>::const_iterator to) {
    json names = json::array();
    for (auto a = from; a != to; ++a) names.push_back(a->def->name);
    return names;
}

// The failure of the write of *failed, naming the properties written before
// it and those not written; a write that got no answer may have happened.
CommandFailure partialWriteFailure(const ObjectSpec& object, const std::vector<Assignment>& assignments,
                                   std::vector<Assignment>::const_iterator failed, const std::exception& error,
                                   bool showSecrets) {
    CommandFailure failure = failureOf(error);
    bool unknown = failure.exitCode == kNoAnswer;
    std::string writtenText = shownAssignments(assignments.begin(), failed, showSecrets);
    std::string notWrittenText = shownAssignments(failed + 1, assignments.end(), showSecrets);
    failure.message = std::string(object.name) + ": " + shownAssignment(*failed, showSecrets) +
                      (unknown ? " may or may not have been written: " : " was not written: ") + failure.message +
                      "\n  written before it: " + (writtenText.empty() ? "nothing" : writtenText) +
                      "\n  not written: " + (notWrittenText.empty() ? "nothing else" : notWrittenText);
    failure.detail = {{"kind", failure.detail.value("kind", "")},
                      {"cause", failure.detail},
                      {"object", object.name},
                      {"written", namesOf(assignments.begin(), failed)},
                      {"failed", failed->def->name},
                      {"notWritten", namesOf(failed + 1, assignments.end())}};
    return failure;
}

// One request per property, in order: a failure then names exactly what
// was written before it (the module applies a request's properties one by
// one and stops at the first failure, without rollback).
void writeEach(Session& session, const ObjectSpec& object, const InstanceName& name,
               const std::vector<Assignment>& assignments) {
    for (auto a = assignments.begin(); a != assignments.end(); ++a) {
        try {
            session([&](CimClient& client) {
                client.modifyInstance(name, {{a->def->name, a->def->cimType, CimValue::scalar(a->value), {}}});
                return 0;
            });
        } catch (const std::exception& error) {
            throw partialWriteFailure(object, assignments, a, error, session.options().showSecrets);
        }
    }
}

}  // namespace

int setCommand(Session& session, const std::string& objectName, std::optional<int> row,
               const std::vector<std::string>& texts) {
    const ObjectSpec& object = *findObject(objectName);
    std::vector<Assignment> assignments = checkedAssignments(object, texts);
    InstanceName name = targetInstance(session, object, row);
    checkDependencies(session, object, name, assignments);
    sortForWriting(assignments);
    writeEach(session, object, name, assignments);
    if (session.options().json) {
        std::cout << json{{"object", object.name}, {"written", namesOf(assignments.begin(), assignments.end())}}.dump(2)
                  << "\n";
    } else {
        std::cout << object.name << ": wrote "
                  << shownAssignments(assignments.begin(), assignments.end(), session.options().showSecrets) << "\n";
    }
    return kSuccess;
}

}  // namespace cdrctl
