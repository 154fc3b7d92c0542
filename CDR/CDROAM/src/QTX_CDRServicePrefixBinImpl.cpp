#include "QTX_CDRServicePrefixBinImpl.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

char QTX_CDRServicePrefixBinImpl::s_digitText[CDR_BIN_TEXT_SIZE];

QTX_CDRServicePrefixBinImpl::QTX_CDRServicePrefixBinImpl(const std::string& key, int row)
    : QTX_CDRServicePrefixBin(key), m_row(row) {
  cdrEmptyDigitBinTable(CDR_PREFIX_BIN_TABLE, m_entry);
}

QTX_CDRServicePrefixBinImpl::~QTX_CDRServicePrefixBinImpl() {}

int QTX_CDRServicePrefixBinImpl::getPrefixBin(std::string& value, Array<CIMQualifier>&) const {
  return cdrGetRowDigits(CDR_PREFIX_BIN_TABLE, m_entry, m_row, s_digitText,
                         "getPrefixBin", value);
}

int QTX_CDRServicePrefixBinImpl::setPrefixBin(std::string value) {
  return cdrSetRowDigits(CDR_PREFIX_BIN_TABLE, m_entry, m_row, value, "setPrefixBin");
}

const char* QTX_CDRServicePrefixBinImpl::GetBinDigit(char* row, int length) const {
  return cdrGetBinDigit(s_digitText, row, length);
}

int QTX_CDRServicePrefixBinImpl::SetBinDigit(char* row, const char* text, int length) {
  return cdrSetBinDigit(row, text, length);
}

int QTX_CDRServicePrefixBinImpl::CheckAllDigits(void* text, int maxLength) {
  return cdrCheckAllDigits(text, maxLength);
}
