#include "Instances.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "Commands.hpp"

namespace cdrctl {

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

namespace {

InstanceName rowInstance(const ObjectSpec& object, const std::vector<InstanceName>& names, std::optional<int> row) {
    if (!row) throw CommandFailure{kUsage, std::string(object.name) + " has rows: name one with --row N", {}};
    for (const InstanceName& name : names) {
        if (rowOf(name) == row) return name;
    }
    std::string rows = names.empty() ? "none"
                                     : std::to_string(rowOf(names.front()).value_or(0)) + " to " +
                                           std::to_string(rowOf(names.back()).value_or(0));
    throw CommandFailure{kUsage, std::string(object.name) + " has no row " + std::to_string(*row) + " (rows: " + rows +
                                     ")", {}};
}

}  // namespace

InstanceName targetInstance(Session& session, const ObjectSpec& object, std::optional<int> row) {
    std::vector<InstanceName> names = instanceNames(session, object);
    if (object.rows) return rowInstance(object, names, row);
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

}  // namespace cdrctl
