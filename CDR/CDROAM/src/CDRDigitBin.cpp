#include "CDRDigitBin.hpp"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include "CDRRegistryAccess.hpp"

const CDRDigitBinTable CDR_PREFIX_BIN_TABLE = {"PREFIX BIN", CDR_PREFIX_BIN_ENTRY_SIZE, 8, 8};
const CDRDigitBinTable CDR_ACCESS_BIN_TABLE = {"ACCESS BIN", CDR_ACCESS_BIN_ENTRY_SIZE, 6, 5};

const char* cdrGetBinDigit(char* text, const char* row, int length) {
  int count = 0;
  while (count < length && count < CDR_BIN_TEXT_SIZE - 1) {
    unsigned char digit = static_cast<unsigned char>(row[count]);
    if (digit >= CDR_BIN_EMPTY_DIGIT) break;
    text[count] = static_cast<char>(digit + '0');
    ++count;
  }
  text[count] = '\0';
  return text;
}

int cdrSetBinDigit(char* row, const char* text, int length) {
  int textLength = static_cast<int>(strlen(text));
  memset(row, CDR_BIN_EMPTY_DIGIT, length);
  for (int i = 0; i < length && i < textLength; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      row[i] = CDR_BIN_EMPTY_DIGIT;
      break;
    }
    row[i] = static_cast<char>(text[i] - '0');
  }
  return textLength;
}

int cdrCheckAllDigits(void* text, int maxLength) {
  char* characters = static_cast<char*>(text);
  int length = static_cast<int>(strlen(characters));
  if (length > maxLength) {
    characters[maxLength] = '\0';
    length = maxLength;
  }
  for (int i = 0; i < length; ++i) {
    if (!isdigit(static_cast<unsigned char>(characters[i]))) return 0;
  }
  return 1;
}

int cdrAssignDigits(void* text, unsigned char lowest, unsigned char highest,
                    unsigned char* destination) {
  if (text == 0 || destination == 0) return -1;
  if (cdrCheckAllDigits(text, static_cast<int>(strlen(static_cast<char*>(text)))) == 0) return -1;
  // Only the low 8 bits count: 272 is taken as 16.
  unsigned char value = static_cast<unsigned char>(atoi(static_cast<char*>(text)));
  if (value < lowest || value > highest) return -1;
  *destination = value;
  return 0;
}

void cdrEmptyDigitBinTable(const CDRDigitBinTable& table, char* entry) {
  memset(entry, 0, table.entrySize);
  for (int offset = 0; offset < table.entrySize; offset += table.rowSize) {
    memset(entry + offset, CDR_BIN_EMPTY_DIGIT, table.digitCount);
  }
}

namespace {

uint32_t readEntry(const CDRDigitBinTable& table, char* entry) {
  return ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, table.key, entry,
                              table.entrySize);
}

}  // namespace

int cdrReadDigitBinForGet(const CDRDigitBinTable& table, char* entry, const char* operation,
                          std::string& value) {
  uint32_t status = readEntry(table, entry);
  if (status != 0) {
    writeError(operation, status);
    value.assign(1, '\0');
    return CDR_STATUS_READ_FAILED;
  }
  return CDR_STATUS_OK;
}

void cdrReadDigitBinForSet(const CDRDigitBinTable& table, char* entry) {
  // A set after a failed read rebuilds the whole entry from the empty table.
  if (readEntry(table, entry) != 0) cdrEmptyDigitBinTable(table, entry);
}

int cdrWriteDigitBin(const CDRDigitBinTable& table, const char* entry, const char* operation) {
  uint32_t status = ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, table.key,
                                         entry, table.entrySize);
  if (status != 0) {
    writeError(operation, status);
    return CDR_STATUS_WRITE_FAILED;
  }
  return CDR_STATUS_OK;
}

int cdrGetRowDigits(const CDRDigitBinTable& table, char* entry, int row, char* text,
                    const char* operation, std::string& value) {
  int status = cdrReadDigitBinForGet(table, entry, operation, value);
  if (status != CDR_STATUS_OK) return status;
  value = cdrGetBinDigit(text, entry + row * table.rowSize, table.digitCount);
  return CDR_STATUS_OK;
}

int cdrSetRowDigits(const CDRDigitBinTable& table, char* entry, int row, std::string& value,
                    const char* operation) {
  cdrReadDigitBinForSet(table, entry);
  if (cdrCheckAllDigits(&value[0], table.digitCount) == 0) {
    cdrLog(CDR_LOG_ERROR, "CheckAllDigits error");
    return CDR_STATUS_INVALID;
  }
  cdrSetBinDigit(entry + row * table.rowSize, value.c_str(), table.digitCount);
  return cdrWriteDigitBin(table, entry, operation);
}
