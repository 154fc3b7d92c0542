// The checks made before anything is sent. They follow what the module
// accepts and, where the module would accept a value only to store something
// else, refuse it with the reason.
#include <cctype>
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

[[noreturn]] void refuse(const PropertySpec& property, const std::string& reason) {
    throw ValueRefused{property.name, reason};
}

// A decimal whole number, or refused with "NAME must be ...".
unsigned long wholeNumber(const PropertySpec& property, const std::string& value) {
    if (value.empty() || value.size() > 10 || !allDigits(value)) {
        refuse(property, std::string(property.name) + " must be a whole number from " + std::to_string(property.min) +
                             " to " + std::to_string(property.max));
    }
    return std::stoul(value);
}

void checkRange(const PropertySpec& property, unsigned long number) {
    auto reason = [&](const char* own, const char* relation, unsigned long bound) {
        if (own) return std::string(own);
        std::string limit = std::string(property.name) + " must be " + relation + " " + std::to_string(bound);
        return property.note ? limit + ": " + property.note : limit;
    };
    if (number > property.max) refuse(property, reason(property.tooHigh, "<=", property.max));
    if (number < property.min) refuse(property, reason(property.tooLow, ">=", property.min));
}

// Printable ASCII only: the device keeps text as ISO 8859-1 and hands it out
// converted to UTF-8, so anything beyond ASCII comes back changed.
void checkText(const PropertySpec& property, const std::string& value) {
    for (unsigned char c : value) {
        if (c >= 0x80) {
            refuse(property, std::string(property.name) +
                                 " holds a non-ASCII character: the device stores text as ISO 8859-1 and reads it "
                                 "back converted to UTF-8 once more, so the text would come back changed (\"ü\" as "
                                 "\"Ã¼\"); use ASCII characters only");
        }
        if (std::iscntrl(c)) {
            refuse(property, std::string(property.name) +
                                 " holds a control character: the device reads such a text back as empty");
        }
    }
    if (value.size() > property.max) {
        refuse(property, std::string(property.name) + " must be at most " + std::to_string(property.max) +
                             " characters: the device reads texts into 512 bytes");
    }
}

std::string checkTime(const PropertySpec& property, const std::string& value) {
    size_t colon = value.find(':');
    std::string hour = value.substr(0, colon);
    std::string minute = colon == std::string::npos ? "" : value.substr(colon + 1);
    bool shaped = !hour.empty() && hour.size() <= 2 && minute.size() == 2 && allDigits(hour) && allDigits(minute);
    if (!shaped || std::stoi(hour) > 23 || std::stoi(minute) > 59) {
        refuse(property, std::string(property.name) +
                             " must be HH:MM with hour 0-23 and minute 00-59; the device refuses anything else "
                             "(status 301)");
    }
    return value;
}

}  // namespace

std::string checkedValue(const PropertySpec& property, const std::string& value) {
    switch (property.rule) {
        case Rule::None:
            refuse(property, std::string(property.name) + " is read only");
        case Rule::Number: {
            unsigned long number = wholeNumber(property, value);
            checkRange(property, number);
            return std::to_string(number);
        }
        case Rule::Boolean: {
            std::string lower;
            for (unsigned char c : value) lower += static_cast<char>(std::tolower(c));
            if (lower == "true" || lower == "yes" || lower == "on" || lower == "1") return "true";
            if (lower == "false" || lower == "no" || lower == "off" || lower == "0") return "false";
            refuse(property, std::string(property.name) + " must be true or false");
        }
        case Rule::Text:
            checkText(property, value);
            return value;
        case Rule::Digits:
            if (value.size() > property.max) refuse(property, property.tooHigh);
            if (!allDigits(value)) refuse(property, std::string(property.name) + " " + property.note);
            return value;
        case Rule::SuppressCount:
            if (value.size() > 2) refuse(property, property.tooHigh);
            if (value.empty() || !allDigits(value) || std::stoul(value) > property.max) {
                refuse(property, std::string(property.name) +
                                     " must be a number from 0 to 16; the device refuses anything else (status 301)");
            }
            return value;
        case Rule::Time:
            return checkTime(property, value);
        case Rule::Day:
            if (value.empty() || value.size() > 2 || !allDigits(value) || std::stoul(value) < property.min ||
                std::stoul(value) > property.max) {
                refuse(property, std::string(property.name) + " must be a number from " +
                                     std::to_string(property.min) + " to " + std::to_string(property.max) +
                                     "; the device refuses anything else (status 301)");
            }
            return std::to_string(std::stoul(value));
        case Rule::TransferType: {
            static const char* const names[] = {"daily", "weekly", "monthly"};
            for (unsigned long i = 0; i < 3; ++i) {
                if (value == names[i]) return std::to_string(i);
            }
            if (value.size() != 1 || !allDigits(value) || std::stoul(value) > property.max) {
                refuse(property, std::string(property.name) +
                                     " must be 0 or daily, 1 or weekly, 2 or monthly, 3 or 4 (no scheduled push)");
            }
            return value;
        }
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
