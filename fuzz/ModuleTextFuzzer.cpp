// The module's text inputs through ModifyInstance: the first byte picks the
// property, the rest is the value the client sends.
#include <cstddef>
#include <cstdint>
#include <string>

#include "ModuleHarness.hpp"

namespace {

struct TextInput {
    const char* className;
    const char* keys;  // KEYBINDINGs
    const char* property;
    const char* type;
};

const char* const kServiceKeys =
    "<KEYBINDING NAME=\"SystemCreationClassName\"><KEYVALUE>QTX_System</KEYVALUE></KEYBINDING>"
    "<KEYBINDING NAME=\"SystemName\"><KEYVALUE>QTX</KEYVALUE></KEYBINDING>"
    "<KEYBINDING NAME=\"CreationClassName\"><KEYVALUE>QTX_CDRService</KEYVALUE></KEYBINDING>"
    "<KEYBINDING NAME=\"Name\"><KEYVALUE>CDRService</KEYVALUE></KEYBINDING>";
const char* const kPrefixKeys = "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE>CDRServicePrefixBin_3</KEYVALUE></KEYBINDING>";
const char* const kAccessKeys = "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE>CDRServiceAccessBin_2</KEYVALUE></KEYBINDING>";
const char* const kPushKeys = "<KEYBINDING NAME=\"InstanceID\"><KEYVALUE>CDRPushSetting</KEYVALUE></KEYBINDING>";
const char* const kPushStatisticsKeys = "<KEYBINDING NAME=\"Name\"><KEYVALUE>CDRPushStatistic</KEYVALUE></KEYBINDING>";

const TextInput kInputs[] = {
    {"QTX_CDRServicePrefixBin", kPrefixKeys, "PrefixBin", "string"},
    {"QTX_CDRServiceAccessBin", kAccessKeys, "AccessBin", "string"},
    {"QTX_CDRServiceAccessBin", kAccessKeys, "SuppressBin", "string"},
    {"QTX_CDRService", kServiceKeys, "DigitsSuppress", "uint8"},
    {"QTX_CDRService", kServiceKeys, "DigitsLimit", "uint16"},
    {"QTX_CDRService", kServiceKeys, "FeatureCode", "string"},
    {"QTX_CDRService", kServiceKeys, "CallFilterDuration", "uint32"},
    {"QTX_CDRPushSetting", kPushKeys, "TransferTime", "string"},
    {"QTX_CDRPushSetting", kPushKeys, "TransferDayOfMonth", "string"},
    {"QTX_CDRPushSetting", kPushKeys, "TransferDayOfWeek", "string"},
    {"QTX_CDRPushSetting", kPushKeys, "TransferType", "uint8"},
    {"QTX_CDRPushSetting", kPushKeys, "IPAddress", "string"},
    {"QTX_CDRPushStatistics", kPushStatisticsKeys, "LastTransferTime", "datetime"},
};

std::string xmlText(const uint8_t* data, size_t size) {
    std::string out;
    for (size_t i = 0; i < size; ++i) {
        char c = static_cast<char>(data[i]);
        if (c == '<') out += "&lt;";
        else if (c == '&') out += "&amp;";
        else if (c != '\0') out += c;
    }
    return out;
}

}  // namespace

// The module is loaded before the first input, so that what it keeps
// for the whole run is not taken for a leak of one input.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    cimhost::fuzz::harness();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return -1;
    const TextInput& input = kInputs[data[0] % (sizeof kInputs / sizeof kInputs[0])];
    std::string body =
        std::string("<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">"
                    "<MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"ModifyInstance\">"
                    "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>"
                    "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"") +
        input.className + "\">" + input.keys + "</INSTANCENAME><INSTANCE CLASSNAME=\"" + input.className +
        "\"><PROPERTY NAME=\"" + input.property + "\" TYPE=\"" + input.type + "\"><VALUE>" +
        xmlText(data + 1, size - 1) +
        "</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE></IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>";
    cimhost::fuzz::harness().serve(body);
    return 0;
}
