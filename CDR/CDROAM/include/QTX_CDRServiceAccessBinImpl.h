// One row of the access digit bins, kept in the registry entry
// "CDR"/"CDRService"/"ACCESS BIN" (5 rows of 5 digit positions and a
// suppress count). Every get and set reads the whole entry; every successful
// set writes it back.
#ifndef QTX_CDRSERVICEACCESSBINIMPL_H
#define QTX_CDRSERVICEACCESSBINIMPL_H

#include "CDRDigitBin.hpp"
#include "QTX_CDRServiceAccessBin.h"

class QTX_CDRServiceAccessBinImpl : public QTX_CDRServiceAccessBin {
 public:
  // Number of rows in the table.
  static const int MAX_ACCESS_BIN_ENTRIES_VALUE = 5;

  // Registers the row `row` (0 to 4) under `key`; the registry is not touched.
  QTX_CDRServiceAccessBinImpl(const std::string& key, int row);
  virtual ~QTX_CDRServiceAccessBinImpl();

  // The row's digits; 100 with a one-NUL text after a failed read (logged).
  virtual int getAccessBin(std::string& value,
                           OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Stores up to 5 digits (a longer value is cut to 5) in the row, keeping
  // the suppress count and the other rows; 301 for a non-digit, 101 for a
  // failed write (logged).
  virtual int setAccessBin(std::string value);
  // The row's suppress count in decimal; 100 with a one-NUL text after a
  // failed read (logged).
  virtual int getSuppressBin(std::string& value,
                             OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Stores a count of 0 to 16 (the empty text is 0; only the low 8 bits of
  // the number count); 301 otherwise, 101 for a failed write (logged).
  virtual int setSuppressBin(std::string value);

  // Digit encoding of a row (see CDRDigitBin.hpp). GetBinDigit returns the
  // class's shared text buffer, valid until its next call.
  const char* GetBinDigit(char* row, int length) const;
  int SetBinDigit(char* row, const char* text, int length);
  int CheckAllDigits(void* text, int maxLength);
  int AssignDigits(void* text, unsigned char lowest, unsigned char highest,
                   unsigned char* destination);

 private:
  char* row() const;

  int m_row;
  // Scratch copy of the whole entry, overwritten by every get and set.
  mutable char m_entry[CDR_ACCESS_BIN_ENTRY_SIZE];

  static char s_digitText[CDR_BIN_TEXT_SIZE];
};

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRServiceAccessBin)

#endif
