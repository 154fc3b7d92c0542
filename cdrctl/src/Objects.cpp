#include "Objects.hpp"

#include <cctype>

namespace cdrctl {

namespace {

PropertySpec readOnly(const char* name, const char* cimType) {
    return {name, cimType, Rule::None, 0, 0, nullptr, nullptr, 0, false};
}
PropertySpec number(const char* name, const char* cimType, unsigned long max, const char* note = nullptr) {
    return {name, cimType, Rule::Number, 0, max, nullptr, nullptr, 0, false, note};
}
// Enumerations and counts the device keeps in one byte.
PropertySpec byte(const char* name, const char* cimType = "uint8") {
    return number(name, cimType, 255);
}
// A 32-bit property the device narrows to one byte: 256 would be stored as 0.
PropertySpec narrowed(const char* name) {
    return number(name, "uint32", 255, "the device keeps one byte, so a larger value would be stored modulo 256");
}
PropertySpec flag(const char* name) {
    return {name, "boolean", Rule::Boolean, 0, 1, nullptr, nullptr, 0, false};
}
PropertySpec text(const char* name, bool secret = false) {
    return {name, "string", Rule::Text, 0, 511, nullptr, nullptr, 0, secret};
}
PropertySpec digits(const char* name, unsigned long max, const char* tooLong) {
    return {name,  "string", Rule::Digits, 0, max, tooLong, nullptr, 0,
            false, "takes the digits 0-9 only; the device refuses anything else (status 301)"};
}
PropertySpec day(const char* name, unsigned long min, unsigned long max) {
    // Written before the transfer type that reads it.
    return {name, "string", Rule::Day, min, max, nullptr, nullptr, -1, false};
}

std::vector<ObjectSpec> buildObjects() {
    return {
        {"service", "QTX_CDRService", "CDR report settings", false,
         {
             byte("Format"),
             byte("ReportType"),
             byte("Language"),
             byte("ReportFilter"),
             // Three characters pass; the device keeps the first two.
             {"FeatureCode", "string", Rule::Digits, 0, 3, "FeatureCode length must be must be <= 3", nullptr, 0,
              false, "takes digits only: the device stores any other character as 0", true},
             byte("DateFormat"),
             byte("HeaderFormat"),
             flag("DNISInfo"),
             byte("ConnectChar"),
             byte("DigitsSuppress"),
             {"DigitsLimit", "uint16", Rule::Number, 3, 24, "DigitsLimit must be <= 24", "DigitsLimit must be >= 3", 0,
              false},
             byte("ClipFileSchedule"),
             narrowed("ClipFileSize_100K"),
             number("CDRDiskSpaceLimit_MB", "uint32", 4294967295UL),
             flag("CLIDWithName"),
             flag("LongCLIDSupport"),
             flag("CLIDWithCallType"),
             flag("SupportCallCharge"),
             flag("AnswerSupervision"),
             narrowed("CallFilterDuration"),
             flag("HospitalityRecords"),
             readOnly("SystemCreationClassName", "string"),
             readOnly("SystemName", "string"),
             readOnly("CreationClassName", "string"),
             readOnly("Name", "string"),
         },
         {"Refresh", "ClipFile"}},
        {"prefix-bins", "QTX_CDRServicePrefixBin", "prefix digit bins", true,
         {digits("PrefixBin", 8, "PrefixBin length must be must be <= 8"), readOnly("InstanceID", "string")},
         {}},
        {"access-bins", "QTX_CDRServiceAccessBin", "access digit bins", true,
         {digits("AccessBin", 5, "AccessBin length must be must be <= 5"),
          {"SuppressBin", "string", Rule::SuppressCount, 0, 16, "SuppressBin length must be must be <= 2", nullptr, 0,
           false},
          readOnly("InstanceID", "string")},
         {}},
        {"push", "QTX_CDRPushSetting", "push transfer settings", false,
         {
             // Switching the schedule reads the stored time and day, so the
             // transfer type is written last.
             {"TransferType", "uint8", Rule::TransferType, 0, 4, nullptr, nullptr, 1, false},
             text("IPAddress"),
             text("UserName"),
             text("Password", true),
             text("DestFolder"),
             narrowed("NumRetry"),
             flag("DeleteFlag"),
             flag("CompressFlag"),
             flag("IncludeMetricsFlag"),
             {"TransferTime", "string", Rule::Time, 0, 0, nullptr, nullptr, -1, false},
             day("TransferDayOfMonth", 1, 31),
             day("TransferDayOfWeek", 0, 6),
             readOnly("InstanceID", "string"),
         },
         {"PushFileNow"}},
        {"push-stats", "QTX_CDRPushStatistics", "push statistics", false,
         {readOnly("Name", "string"), readOnly("LastTransferTime", "datetime")},
         {"Refresh"}},
        {"pull-stats", "QTX_CDRPullStatistics", "pull statistics", false,
         {
             readOnly("Name", "string"),
             readOnly("MostRecentSuccessfulTransfer", "string"),
             flag("IncludeMetricsFlag"),
             readOnly("NumberOfSuccessfulTransfers", "uint32"),
             readOnly("MostRecentFailedTransfer", "string"),
             readOnly("ReasonForFailure", "string"),
             readOnly("NumberOfFailedTransfers", "uint32"),
             readOnly("LargestFileTransferred", "uint32"),
             readOnly("SmallestFileTransferred", "uint32"),
             readOnly("TotalNumberOfBytesTransferred", "uint32"),
             readOnly("TotalNumberOfFileTransferred", "uint32"),
         },
         {"Refresh"}},
    };
}

bool sameName(const std::string& a, const char* b) {
    size_t i = 0;
    for (; i < a.size() && b[i]; ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return i == a.size() && !b[i];
}

}  // namespace

const std::vector<ObjectSpec>& objects() {
    static const std::vector<ObjectSpec> table = buildObjects();
    return table;
}

const ObjectSpec* findObject(const std::string& name) {
    for (const ObjectSpec& object : objects()) {
        if (sameName(name, object.name)) return &object;
    }
    return nullptr;
}

const PropertySpec* findProperty(const ObjectSpec& object, const std::string& name) {
    for (const PropertySpec& property : object.properties) {
        if (sameName(name, property.name)) return &property;
    }
    return nullptr;
}

std::string objectNames(const char* separator) {
    std::string names;
    for (const ObjectSpec& object : objects()) names += (names.empty() ? "" : separator) + std::string(object.name);
    return names;
}

}  // namespace cdrctl
