#include "QTX_CDRServiceAccessBinImpl.h"

#include <stdio.h>

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

namespace {
// Highest suppress count a row accepts.
const unsigned char kMaxSuppressCount = 16;
}  // namespace

char QTX_CDRServiceAccessBinImpl::s_digitText[CDR_BIN_TEXT_SIZE];

QTX_CDRServiceAccessBinImpl::QTX_CDRServiceAccessBinImpl(const std::string& key, int row)
    : QTX_CDRServiceAccessBin(key), m_row(row) {
  cdrEmptyDigitBinTable(CDR_ACCESS_BIN_TABLE, m_entry);
}

QTX_CDRServiceAccessBinImpl::~QTX_CDRServiceAccessBinImpl() {}

char* QTX_CDRServiceAccessBinImpl::row() const {
  return m_entry + m_row * CDR_ACCESS_BIN_TABLE.rowSize;
}

int QTX_CDRServiceAccessBinImpl::getAccessBin(std::string& value, Array<CIMQualifier>&) const {
  return cdrGetRowDigits(CDR_ACCESS_BIN_TABLE, m_entry, m_row, s_digitText,
                         "getAccessBin", value);
}

int QTX_CDRServiceAccessBinImpl::setAccessBin(std::string value) {
  return cdrSetRowDigits(CDR_ACCESS_BIN_TABLE, m_entry, m_row, value, "setAccessBin");
}

int QTX_CDRServiceAccessBinImpl::getSuppressBin(std::string& value, Array<CIMQualifier>&) const {
  int status = cdrReadDigitBinForGet(CDR_ACCESS_BIN_TABLE, m_entry, "getSuppressBin", value);
  if (status != CDR_STATUS_OK) return status;
  char text[8];
  snprintf(text, sizeof text, "%i",
           static_cast<unsigned char>(row()[CDR_ACCESS_BIN_TABLE.digitCount]));
  value = text;
  return CDR_STATUS_OK;
}

int QTX_CDRServiceAccessBinImpl::setSuppressBin(std::string value) {
  cdrReadDigitBinForSet(CDR_ACCESS_BIN_TABLE, m_entry);
  unsigned char* count = reinterpret_cast<unsigned char*>(row() + CDR_ACCESS_BIN_TABLE.digitCount);
  if (AssignDigits(&value[0], 0, kMaxSuppressCount, count) != 0) {
    cdrLog(CDR_LOG_ERROR, "AssignDigits error");
    return CDR_STATUS_INVALID;
  }
  return cdrWriteDigitBin(CDR_ACCESS_BIN_TABLE, m_entry, "setSuppressBin");
}

const char* QTX_CDRServiceAccessBinImpl::GetBinDigit(char* row, int length) const {
  return cdrGetBinDigit(s_digitText, row, length);
}

int QTX_CDRServiceAccessBinImpl::SetBinDigit(char* row, const char* text, int length) {
  return cdrSetBinDigit(row, text, length);
}

int QTX_CDRServiceAccessBinImpl::CheckAllDigits(void* text, int maxLength) {
  return cdrCheckAllDigits(text, maxLength);
}

int QTX_CDRServiceAccessBinImpl::AssignDigits(void* text, unsigned char lowest,
                                              unsigned char highest, unsigned char* destination) {
  return cdrAssignDigits(text, lowest, highest, destination);
}
