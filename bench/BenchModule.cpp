#include "BenchModule.hpp"

#include <cstdint>
#include <cstdlib>
#include <string>

#include "ZpoShared.h"

namespace cdrbench {

const char* const kClasses[6] = {"QTX_CDRService",     "QTX_CDRServicePrefixBin", "QTX_CDRServiceAccessBin",
                                 "QTX_CDRPushSetting", "QTX_CDRPushStatistics",   "QTX_CDRPullStatistics"};

namespace {

struct SeedEntry {
  const char* section;
  const char* key;
  char kind;          // 'b' binary (hex bytes), 'i' int, 's' string
  const char* value;  // hex bytes, decimal number or text
};

const SeedEntry kConfiguredDevice[] = {
    {"CDRService", "FORMAT", 'b', "01"},        {"CDRService", "TYPE", 'b', "00"},
    {"CDRService", "LANG", 'b', "00"},          {"CDRService", "FILTER", 'b', "00"},
    {"CDRService", "FEATURE CODE", 'b', "f912"}, {"CDRService", "DATE", 'b', "00"},
    {"CDRService", "HEADER", 'b', "00"},        {"CDRService", "DNIS", 'b', "00"},
    {"CDRService", "CONNECT", 'b', "00"},       {"CDRService", "DIGITSSUPP", 'b', "00"},
    {"CDRService", "DIGITSLIMIT", 'b', "0010"}, {"CDRService", "SCHEDULE", 'b', "00"},
    {"CDRService", "FILESIZE", 'b', "0a"},      {"CDRService", "DISKLIMIT", 'i', "100"},
    {"CDRService", "NAME", 'b', "00"},          {"CDRService", "LONGID", 'b', "00"},
    {"CDRService", "CALLTYPE", 'b', "00"},      {"CDRService", "CHARGE", 'b', "00"},
    {"CDRService", "SUPERVISE", 'b', "00"},     {"CDRService", "TIME", 'b', "00"},
    {"CDRService", "HOSPITAL", 'b', "00"},
    // 8 prefix rows of 8 digits ("90", "91", ...), 5 access rows of 5 digits
    // ("80", "81", ...) each with a suppress count of 2.
    {"CDRService", "PREFIX BIN", 'b',
     "09000c0c0c0c0c0c" "09010c0c0c0c0c0c" "09020c0c0c0c0c0c" "09030c0c0c0c0c0c"
     "09040c0c0c0c0c0c" "09050c0c0c0c0c0c" "09060c0c0c0c0c0c" "09070c0c0c0c0c0c"},
    {"CDRService", "ACCESS BIN", 'b', "08000c0c0c02" "08010c0c0c02" "08020c0c0c02" "08030c0c0c02" "08040c0c0c02"},
    {"CDRPush", "TransferType", 'b', "01"},     {"CDRPush", "NumRetry", 'b', "03"},
    {"CDRPush", "DeleteFlag", 'b', "00"},       {"CDRPush", "CompressFlag", 'b', "01"},
    {"CDRPush", "IncludeMetricsFlag", 'b', "01"}, {"CDRPush", "IpAddr", 's', "192.0.2.10"},
    {"CDRPush", "UserName", 's', "cdr"},        {"CDRPush", "Password", 's', "cdr-secret"},
    {"CDRPush", "DestFolder", 's', "/cdr/reports"}, {"CDRPush", "TranTime", 's', "02:30"},
    {"CDRPush", "TranDateOfMonth", 's', "15"},  {"CDRPush", "TranDateOfWeek", 's', "3"},
    {"CDRPush", "LastTransferTime", 's', "20261121023000.000000+000"},
};

}  // namespace

void seedConfiguredDevice() {
  for (const SeedEntry& entry : kConfiguredDevice) {
    ZpoStatus status;
    if (entry.kind == 'i') {
      status = ZpoSetRegEntryInt("CDR", entry.section, entry.key, uint32_t(std::strtoul(entry.value, nullptr, 10)));
    } else if (entry.kind == 's') {
      status = ZpoSetRegEntryString("CDR", entry.section, entry.key, entry.value);
    } else {
      std::vector<unsigned char> bytes;
      for (const char* hex = entry.value; hex[0] && hex[1]; hex += 2) {
        bytes.push_back(static_cast<unsigned char>(std::strtoul(std::string(hex, 2).c_str(), nullptr, 16)));
      }
      status = ZpoSetRegEntryBinary("CDR", entry.section, entry.key, bytes.data(), uint32_t(bytes.size()));
    }
    if (status != ZPO_OK) throw std::runtime_error(std::string("cannot seed ") + entry.section + "/" + entry.key);
  }
}


}  // namespace cdrbench
