// One row of the prefix digit bins, kept in the registry entry
// "CDR"/"CDRService"/"PREFIX BIN" (8 rows of 8 digit positions). Every get
// and set reads the whole entry; every successful set writes it back.
#ifndef QTX_CDRSERVICEPREFIXBINIMPL_H
#define QTX_CDRSERVICEPREFIXBINIMPL_H

#include "CDRDigitBin.hpp"
#include "QTX_CDRServicePrefixBin.h"

class QTX_CDRServicePrefixBinImpl : public QTX_CDRServicePrefixBin {
 public:
  // Number of rows in the table.
  static const int MAX_PREFIX_ENTRIES_VALUE = 8;

  // Registers the row `row` (0 to 7) under `key`; the registry is not touched.
  QTX_CDRServicePrefixBinImpl(const std::string& key, int row);
  virtual ~QTX_CDRServicePrefixBinImpl();

  // The row's digits; 100 with a one-NUL text after a failed read (logged).
  virtual int getPrefixBin(std::string& value,
                           OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Stores up to 8 digits (a longer value is cut to 8) in the row, keeping
  // the other rows; 301 for a non-digit, 101 for a failed write (logged).
  virtual int setPrefixBin(std::string value);

  // Digit encoding of a row (see CDRDigitBin.hpp). GetBinDigit returns the
  // class's shared text buffer, valid until its next call.
  const char* GetBinDigit(char* row, int length) const;
  int SetBinDigit(char* row, const char* text, int length);
  int CheckAllDigits(void* text, int maxLength);

 private:
  int m_row;
  // Scratch copy of the whole entry, overwritten by every get and set.
  mutable char m_entry[CDR_PREFIX_BIN_ENTRY_SIZE];

  static char s_digitText[CDR_BIN_TEXT_SIZE];
};

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRServicePrefixBin)

#endif
