// show: one table per object, or one JSON document.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <iostream>

#include "Commands.hpp"
#include "Instances.hpp"
#include "Objects.hpp"
#include "Subcommands.hpp"

namespace cdrctl {

namespace {

using nlohmann::json;

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
            shown.properties[def.name] = def.secret && !showSecrets && !property->value.text().empty()
                                             ? json("********")
                                             : typedValue(def, property->value);
        }
        shown.cells.emplace_back(&def, cell);
    }
    return shown;
}

json instanceJson(const ObjectSpec& object, const ShownInstance& shown) {
    json keys = json::object();
    for (const KeyBinding& key : shown.name.keys) keys[key.name] = key.text;
    std::optional<int> row = rowOf(shown.name);
    return {{"keys", keys},
            {"row", object.rows && row ? json(*row) : json(nullptr)},
            {"properties", shown.properties},
            {"notApplicable", shown.notApplicable},
            {"unreadable", shown.unreadable}};
}

// The keys, then one line per property with the values in a column.
void printProperties(const ShownInstance& shown) {
    for (const KeyBinding& key : shown.name.keys) std::cout << "  " << key.name << " = " << key.text << "\n";
    size_t width = 0;
    for (const auto& cell : shown.cells) width = std::max(width, std::strlen(cell.first->name));
    for (const auto& [def, text] : shown.cells)
        std::cout << "  " << def->name << std::string(width - std::strlen(def->name) + 2, ' ') << text << "\n";
}

// One line per row under a header of the property names.
void printRows(const std::vector<ShownInstance>& instances) {
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

void printTable(const ObjectSpec& object, const std::vector<ShownInstance>& instances) {
    std::cout << object.name << ": " << object.title << " (" << object.className << ")\n";
    if (instances.empty()) {
        std::cout << "  no instance\n";
    } else if (object.rows) {
        printRows(instances);
    } else {
        for (const ShownInstance& shown : instances) printProperties(shown);
    }
}

}  // namespace

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
            instances.push_back(instanceJson(object, shown.back()));
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

}  // namespace cdrctl
