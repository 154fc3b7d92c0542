// call, refresh, clip: a method invoked on the object's instance.
#include <algorithm>
#include <cctype>
#include <iostream>

#include "Commands.hpp"
#include "Instances.hpp"
#include "Objects.hpp"
#include "Subcommands.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

bool sameName(const std::string& a, const std::string& b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}

const char* findMethod(const ObjectSpec& object, const std::string& methodName) {
    const char* method = nullptr;
    for (const char* m : object.methods) {
        if (sameName(m, methodName)) method = m;
    }
    if (method) return method;
    std::string list;
    for (const char* m : object.methods) list += (list.empty() ? "" : ", ") + std::string(m);
    throw CommandFailure{kUsage, std::string(object.name) + " has no method \"" + methodName + "\"" +
                                     (list.empty() ? std::string("; it has none") : "; it has: " + list), {}};
}

}  // namespace

int callCommand(Session& session, const std::string& objectName, const std::string& methodName,
                std::optional<int> row) {
    const ObjectSpec& object = *findObject(objectName);
    const char* method = findMethod(object, methodName);
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

}  // namespace cdrctl
