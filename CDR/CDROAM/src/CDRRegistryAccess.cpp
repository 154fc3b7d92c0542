#include "CDRRegistryAccess.hpp"

#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include "OW_CIMDataType.hpp"
#include "OW_CIMQualifierType.hpp"
#include "OW_CIMValue.hpp"
#include "CDRUTF8.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMDataType;
using OW_NAMESPACE::CIMQualifier;
using OW_NAMESPACE::CIMQualifierType;
using OW_NAMESPACE::CIMValue;
using OW_NAMESPACE::UInt32;

uint32_t zpoHandle = 0;
char controlLogBuffer[256];

const char* const CDR_REG_COMPONENT = "CDR";
const char* const CDR_REG_SECTION_SERVICE = "CDRService";
const char* const CDR_REG_SECTION_PUSH = "CDRPush";
const char* const CDR_REG_SECTION_PULL = "CDRPull";

namespace {
const int kLogCategory = 2;
const int kLogIdentifier = -1;
}  // namespace

uint32_t cdrLog(int level, const char* text) {
  return ZpoDiagAddLogEntry(zpoHandle, kLogCategory, level, kLogIdentifier, text);
}

uint32_t cdrLogError(int level, const char* operation, unsigned long status) {
  char text[256];
  snprintf(text, sizeof text, "%s error = %i", operation, static_cast<int>(status));
  return cdrLog(level, text);
}

uint32_t writeError(const char* operation, unsigned long code) {
  return cdrLogError(CDR_LOG_ERROR, operation, code);
}

int isControlCharacter(char* text) {
  if (text == 0 || *text == '\0') return -1;
  for (const char* p = text; *p; ++p) {
    if (iscntrl(static_cast<unsigned char>(*p))) return -1;
  }
  return 0;
}

namespace {

CIMQualifier buildApplicableQualifier(bool applicable) {
  CIMQualifierType type("boolean");
  type.setDataType(CIMDataType::BOOLEAN);
  CIMQualifier qualifier(type);
  qualifier.setName("Applicable");
  qualifier.setValue(CIMValue(applicable));
  return qualifier;
}

}  // namespace

CIMQualifier cdrApplicableQualifier(bool applicable) {
  // Every property carries one of these two; they are built once and each
  // instance shares them until it changes its own copy.
  static const CIMQualifier qualifiers[2] = {buildApplicableQualifier(false), buildApplicableQualifier(true)};
  return qualifiers[applicable ? 1 : 0];
}

CIMQualifier cdrValidValueMapQualifier(const Array<UInt32>& values) {
  CIMQualifierType type("string");
  type.setDataType(CIMDataType::STRING);
  CIMQualifier qualifier(type);
  qualifier.setName("ValidValueMap");
  qualifier.setValue(CIMValue(values));
  return qualifier;
}

uint32_t cdrReadText(const char* section, const char* key, char* field) {
  char buffer[CDR_TEXT_SIZE];
  memset(buffer, 0, sizeof buffer);
  uint32_t status = ZpoGetRegEntryString(CDR_REG_COMPONENT, section, key, buffer, sizeof buffer);
  buffer[CDR_TEXT_SIZE - 1] = '\0';
  OW_NAMESPACE::UTF8Utils::ISO8859ToUTF8(buffer, field, CDR_TEXT_SIZE);
  return status;
}

bool cdrCheckText(char* field, const char* entryName, const char* defaultText) {
  if (isControlCharacter(field) == 0) return true;
  snprintf(controlLogBuffer, sizeof controlLogBuffer, "ControlCharacters Found in PDR:%s", entryName);
  cdrLog(CDR_LOG_WARNING, controlLogBuffer);
  snprintf(field, CDR_TEXT_SIZE, "%s", defaultText);
  return false;
}

uint32_t cdrReadTransferType(unsigned char& type) {
  return ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, "TransferType", &type, 1);
}

int cdrAppendApplicable(Array<CIMQualifier>& qualifiers, bool applicable) {
  qualifiers.push_back(cdrApplicableQualifier(applicable));
  return applicable ? 1 : 0;
}

int cdrReadStatisticsText(const char* section, const char* key, const char* operation,
                          const char* entryName, char* field, const std::string& missingValue,
                          std::string& value) {
  uint32_t status = cdrReadText(section, key, field);
  if (status == CDR_REG_ENTRY_ABSENT) {
    value = missingValue;
    return CDR_STATUS_OK;
  }
  if (status != 0) {
    writeError(operation, status);
    value = missingValue;
    return CDR_STATUS_READ_FAILED;
  }
  cdrCheckText(field, entryName, "");
  value = field;
  return CDR_STATUS_OK;
}
