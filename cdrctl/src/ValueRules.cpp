// The checks made before anything is sent. They follow what the module
// accepts and, where the module would accept a value only to store something
// else, refuse it with the reason.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Objects.hpp"

namespace cdrctl {

namespace {

bool allDigits(const std::string& value) {
    for (unsigned char c : value) {
        if (!std::isdigit(c)) return false;
    }
    return true;
}

[[noreturn]] void refuse(const PropertySpec& property, const std::string& reason, IfSent ifSent) {
    throw ValueRefused{property.name, reason, ifSent};
}

// The leading decimal number of a text, 0 when it has none, as the device
// reads numbers kept as text.
long leadingNumber(const std::string& value) { return std::atol(value.c_str()); }

void checkRange(const PropertySpec& property, unsigned long number);

// A decimal whole number, or refused with "NAME must be ...". The object
// manager reads an empty value as 0.
unsigned long wholeNumber(const PropertySpec& property, const std::string& value) {
    if (value.empty()) {
        checkRange(property, 0);
        refuse(property, std::string(property.name) + " is empty: the object manager would store 0",
               IfSent::StoredOtherwise);
    }
    if (value.size() > 10 || !allDigits(value)) {
        refuse(property,
               std::string(property.name) + " must be a whole number from " + std::to_string(property.min) + " to " +
                   std::to_string(property.max),
               IfSent::NotConvertible);
    }
    return std::stoul(value);
}

// Outside [min, max]: the module's own message where it has one; a limit with
// a note is one the module would not enforce; else the limit is the type's.
void checkRange(const PropertySpec& property, unsigned long number) {
    auto refuseBeyond = [&](const char* own, const char* relation, unsigned long bound) {
        if (own) refuse(property, own, IfSent::ModuleRefuses);
        std::string limit = std::string(property.name) + " must be " + relation + " " + std::to_string(bound);
        if (property.note) refuse(property, limit + ": " + property.note, IfSent::StoredOtherwise);
        refuse(property, limit, IfSent::NotConvertible);
    };
    if (number > property.max) refuseBeyond(property.tooHigh, "<=", property.max);
    if (number < property.min) refuseBeyond(property.tooLow, ">=", property.min);
}

std::string checkNumber(const PropertySpec& property, const std::string& value) {
    unsigned long number = wholeNumber(property, value);
    checkRange(property, number);
    return std::to_string(number);
}

std::string checkBoolean(const PropertySpec& property, const std::string& value) {
    std::string lower;
    for (unsigned char c : value) lower += static_cast<char>(std::tolower(c));
    if (lower == "true" || lower == "yes" || lower == "on" || lower == "1") return "true";
    if (lower == "false" || lower == "no" || lower == "off" || lower == "0") return "false";
    if (value.empty()) {
        refuse(property, std::string(property.name) + " is empty: the object manager would store false",
               IfSent::StoredOtherwise);
    }
    refuse(property, std::string(property.name) + " must be true or false", IfSent::NotConvertible);
}

// Printable ASCII only: the device keeps text as ISO 8859-1 and hands it out
// converted to UTF-8, so anything beyond ASCII comes back changed.
std::string checkText(const PropertySpec& property, const std::string& value) {
    for (unsigned char c : value) {
        if (c >= 0x80) {
            refuse(property,
                   std::string(property.name) +
                       " holds a non-ASCII character: the device stores text as ISO 8859-1 and reads it back "
                       "converted to UTF-8 once more, so the text would come back changed (\"ü\" as \"Ã¼\"); use "
                       "ASCII characters only",
                   IfSent::StoredOtherwise);
        }
        if (std::iscntrl(c)) {
            refuse(property,
                   std::string(property.name) +
                       " holds a control character: the device reads such a text back as empty",
                   IfSent::StoredOtherwise);
        }
    }
    if (value.size() > property.max) {
        refuse(property,
               std::string(property.name) + " must be at most " + std::to_string(property.max) +
                   " characters: the device reads texts into 512 bytes",
               IfSent::StoredOtherwise);
    }
    return value;
}

std::string checkDigits(const PropertySpec& property, const std::string& value) {
    if (value.size() > property.max) refuse(property, property.tooHigh, IfSent::ModuleRefuses);
    if (!allDigits(value)) {
        refuse(property, std::string(property.name) + " " + property.note,
               property.storesOtherCharacters ? IfSent::StoredOtherwise : IfSent::ModuleRefuses301);
    }
    return value;
}

std::string checkSuppressCount(const PropertySpec& property, const std::string& value) {
    if (value.size() > 2) refuse(property, property.tooHigh, IfSent::ModuleRefuses);
    if (value.empty()) {
        refuse(property, std::string(property.name) + " is empty: the device would store 0", IfSent::StoredOtherwise);
    }
    if (!allDigits(value) || std::stoul(value) > property.max) {
        refuse(property,
               std::string(property.name) + " must be a number from 0 to 16; the device refuses anything else (status "
                                            "301)",
               IfSent::ModuleRefuses301);
    }
    return value;
}

// How the device reads a time text: split at ':' skipping empty parts, each
// of the first two counted by its leading number, a part that counts 0 other
// than "0" or "00" refused. Gives false when the device refuses the text.
bool deviceReadsTime(const std::string& value, long& hour, long& minute) {
    long* parts[2] = {&hour, &minute};
    hour = minute = 0;
    size_t from = 0;
    for (int i = 0; i < 2 && from < value.size();) {
        size_t colon = value.find(':', from);
        std::string part = value.substr(from, colon == std::string::npos ? std::string::npos : colon - from);
        from = colon == std::string::npos ? value.size() : colon + 1;
        if (part.empty()) continue;
        *parts[i] = leadingNumber(part);
        if (*parts[i] == 0 && part != "0" && part != "00") return false;
        ++i;
    }
    return hour >= 0 && hour <= 23 && minute >= 0 && minute <= 59;
}

// H:MM, HH:MM, or with a one-digit minute: hour 0-23, minute 0-59.
std::string checkTime(const PropertySpec& property, const std::string& value) {
    size_t colon = value.find(':');
    std::string hour = value.substr(0, colon);
    std::string minute = colon == std::string::npos ? "" : value.substr(colon + 1);
    bool shaped = !hour.empty() && hour.size() <= 2 && !minute.empty() && minute.size() <= 2 && allDigits(hour) &&
                  allDigits(minute);
    if (shaped && std::stoi(hour) <= 23 && std::stoi(minute) <= 59) return value;
    std::string rule = std::string(property.name) + " must be HH:MM with hour 0-23 and minute 00-59";
    long readHour = 0, readMinute = 0;
    if (!deviceReadsTime(value, readHour, readMinute))
        refuse(property, rule + "; the device refuses anything else (status 301)", IfSent::ModuleRefuses301);
    char read[8];
    std::snprintf(read, sizeof read, "%02ld:%02ld", readHour, readMinute);
    refuse(property, rule + ": the device would read \"" + value + "\" as " + read, IfSent::StoredOtherwise);
}

// A day is counted by its leading number, so the device takes any text
// whose leading number is in range.
std::string checkDay(const PropertySpec& property, const std::string& value) {
    std::string rule = std::string(property.name) + " must be a number from " + std::to_string(property.min) +
                       " to " + std::to_string(property.max);
    long day = leadingNumber(value);
    bool inRange = day >= static_cast<long>(property.min) && day <= static_cast<long>(property.max);
    if (!inRange || value.size() > 10)
        refuse(property, rule + "; the device refuses anything else (status 301)", IfSent::ModuleRefuses301);
    if (value.empty() || !allDigits(value)) {
        refuse(property, rule + ": the device would read \"" + value + "\" as " + std::to_string(day),
               IfSent::StoredOtherwise);
    }
    return std::to_string(day);
}

// The device stores any byte and pushes daily for one it does not know.
std::string checkTransferType(const PropertySpec& property, const std::string& value) {
    static const char* const names[] = {"daily", "weekly", "monthly"};
    for (unsigned long i = 0; i < 3; ++i) {
        if (value == names[i]) return std::to_string(i);
    }
    if (value.size() == 1 && allDigits(value) && std::stoul(value) <= property.max) return value;
    std::string rule = std::string(property.name) + " must be 0 or daily, 1 or weekly, 2 or monthly, 3 or 4 (no " +
                       "scheduled push)";
    if (value.empty()) refuse(property, rule + ": the object manager would store 0 (daily)", IfSent::StoredOtherwise);
    if (value.size() > 3 || !allDigits(value) || std::stoul(value) > 255)
        refuse(property, rule, IfSent::NotConvertible);
    refuse(property, rule + ": the device would store " + std::to_string(std::stoul(value)) + " and push daily",
           IfSent::StoredOtherwise);
}

}  // namespace

std::string checkedValue(const PropertySpec& property, const std::string& value) {
    switch (property.rule) {
        case Rule::None: refuse(property, std::string(property.name) + " is read only", IfSent::NotWritable);
        case Rule::Number: return checkNumber(property, value);
        case Rule::Boolean: return checkBoolean(property, value);
        case Rule::Text: return checkText(property, value);
        case Rule::Digits: return checkDigits(property, value);
        case Rule::SuppressCount: return checkSuppressCount(property, value);
        case Rule::Time: return checkTime(property, value);
        case Rule::Day: return checkDay(property, value);
        case Rule::TransferType: return checkTransferType(property, value);
    }
    return value;
}

const char* statusMeaning(const std::string& description) {
    // OpenWBEM 3.0 puts the provider's message in parentheses after the
    // code's own text: "general error (301)".
    std::string message = description;
    size_t open = description.rfind(" (");
    if (open != std::string::npos && description.back() == ')')
        message = description.substr(open + 2, description.size() - open - 3);
    if (message == "100") return "status 100: the device could not read the value from its registry";
    if (message == "101") return "status 101: the device could not write the value to its registry";
    if (message == "301") return "status 301: the device refused the value as invalid";
    return nullptr;
}

std::string transferTypeMeaning(const std::string& value) {
    if (value == "0") return "daily";
    if (value == "1") return "weekly";
    if (value == "2") return "monthly";
    if (value == "3") return "no scheduled push; pull statistics apply";
    if (value == "4") return "no scheduled push";
    return "unknown";
}

}  // namespace cdrctl
