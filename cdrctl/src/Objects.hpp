// The CDR objects cdrctl manages: their CIM classes, properties, the value
// rule of every writable property and the methods. One table; every command
// works from it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace cdrctl {

// How a value given on the command line is checked and sent.
enum class Rule {
    None,          // read only
    Number,        // decimal whole number in [min, max]
    Boolean,       // true/false (also yes/no, on/off, 1/0)
    Text,          // printable ASCII, at most 511 characters
    Digits,        // digits, at most `max` characters
    SuppressCount, // digits, at most 2 characters, 0 to 16
    Time,          // H:MM or HH:MM, hour 0-23, minute 0-59
    Day,           // decimal number in [min, max]
    TransferType,  // 0 to 4, or daily/weekly/monthly
};

struct PropertySpec {
    const char* name;
    const char* cimType;
    Rule rule;
    unsigned long min;
    unsigned long max;
    // The module's own messages for a value above max (or too long) and
    // below min, when it has them; else cdrctl words the limit itself.
    const char* tooHigh;
    const char* tooLow;
    // Properties are written in ascending rank, then table order: a setting
    // others depend on is written after them.
    int writeRank;
    bool secret;
    // Why the limit exists, when the module itself would not refuse.
    const char* note = nullptr;
    // Digits: the module takes other characters and stores something else.
    bool storesOtherCharacters = false;
};

struct ObjectSpec {
    const char* name;       // as typed on the command line
    const char* className;
    const char* title;
    bool rows;              // several instances, chosen with --row
    std::vector<PropertySpec> properties;  // CIM order
    std::vector<const char*> methods;
};

const std::vector<ObjectSpec>& objects();
const ObjectSpec* findObject(const std::string& name);
const PropertySpec* findProperty(const ObjectSpec& object, const std::string& name);
std::string objectNames(const char* separator);

// What the object manager and the module would do with a value cdrctl
// refuses, had it been sent.
enum class IfSent {
    NotWritable,       // the property is read only
    ModuleRefuses,     // a CIM error carrying the module's own message, the reason given
    ModuleRefuses301,  // CIM error 1 with setter status 301
    NotConvertible,    // the object manager cannot convert the text to the property's type
    StoredOtherwise,   // accepted, but stored or read as another value than the text says
};

// Checks a value against the property's rule; on success gives the text to
// send (numbers normalised, booleans as true/false, transfer type names as
// numbers), else throws ValueRefused with the reason.
struct ValueRefused {
    std::string property;
    std::string reason;
    IfSent ifSent = IfSent::ModuleRefuses;
};
std::string checkedValue(const PropertySpec& property, const std::string& value);

// Words for the setter statuses the module reports as CIM error 1 messages.
const char* statusMeaning(const std::string& description);
// Words for a transfer type value, e.g. "daily".
std::string transferTypeMeaning(const std::string& value);

}  // namespace cdrctl
