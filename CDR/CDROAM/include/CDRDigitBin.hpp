// Digit bins: tables of dialled-digit rows packed into one binary registry
// entry of section "CDRService".
//
// Each digit position is one byte holding the digit's value 0 to 9; 12 marks
// an empty position. A row's digits are left-aligned and followed by 12s. A
// table's rows follow each other in the entry; a row may end with extra bytes
// after its digits (the access bins' suppress count), which are 0 when empty.
#ifndef CDR_DIGIT_BIN_HPP
#define CDR_DIGIT_BIN_HPP

#include <stdint.h>
#include <string>

// The byte of an empty digit position.
const unsigned char CDR_BIN_EMPTY_DIGIT = 12;
// Size of the text buffer a decoded row is written into.
const int CDR_BIN_TEXT_SIZE = 20;

// Sizes of the two registry entries.
const int CDR_PREFIX_BIN_ENTRY_SIZE = 64;
const int CDR_ACCESS_BIN_ENTRY_SIZE = 30;

// Layout of one table.
struct CDRDigitBinTable {
  const char* key;  // registry key in section "CDRService"
  int entrySize;    // bytes of the whole entry
  int rowSize;      // bytes per row
  int digitCount;   // digit positions at the start of each row
};

// "PREFIX BIN": 8 rows of 8 digits, 64 bytes.
extern const CDRDigitBinTable CDR_PREFIX_BIN_TABLE;
// "ACCESS BIN": 5 rows of 5 digits and a suppress count, 30 bytes.
extern const CDRDigitBinTable CDR_ACCESS_BIN_TABLE;

// ---- Encoding -------------------------------------------------------------

// Decodes up to `length` bytes of `row` into `text` (CDR_BIN_TEXT_SIZE bytes),
// stopping at the first byte of 12 or more; bytes 10 and 11 come out as ':'
// and ';'. Returns `text`.
const char* cdrGetBinDigit(char* text, const char* row, int length);

// Fills `length` bytes of `row` with 12, then stores the digits of `text`
// from the first, stopping at the first non-digit (which leaves 12 there).
// Returns strlen(text).
int cdrSetBinDigit(char* row, const char* text, int length);

// 1 when every character of the text up to `maxLength` is a decimal digit
// (the empty text included), else 0. A longer text is cut in place: a NUL
// is written at position `maxLength`.
int cdrCheckAllDigits(void* text, int maxLength);

// Converts an all-digit text to a number, keeps its low 8 bits and stores
// them in `*destination` when within [lowest, highest]; returns 0. Returns
// -1, storing nothing, for a null argument, a non-digit or a value out of
// range.
int cdrAssignDigits(void* text, unsigned char lowest, unsigned char highest,
                    unsigned char* destination);

// ---- Entry access ---------------------------------------------------------

// Sets every digit position of `entry` to 12 and every other byte to 0.
void cdrEmptyDigitBinTable(const CDRDigitBinTable& table, char* entry);

// Reads the whole entry of a getter. On a failed read logs the failure of
// `operation` (writeError), sets `value` to a text of one NUL character and
// returns 100; otherwise returns 0.
int cdrReadDigitBinForGet(const CDRDigitBinTable& table, char* entry, const char* operation,
                          std::string& value);

// Reads the whole entry of a setter; after a failed read `entry` is the
// empty table (nothing logged).
void cdrReadDigitBinForSet(const CDRDigitBinTable& table, char* entry);

// Writes the whole entry; on failure logs the failure of `operation`
// (writeError) and returns 101, otherwise 0.
int cdrWriteDigitBin(const CDRDigitBinTable& table, const char* entry, const char* operation);

// The digit getter of row `row`: reads the entry (see cdrReadDigitBinForGet)
// and decodes the row's digits through `text` into `value`.
int cdrGetRowDigits(const CDRDigitBinTable& table, char* entry, int row, char* text,
                    const char* operation, std::string& value);

// The digit setter of row `row`: reloads the entry, checks `value` (cut to
// the row's digit count in place), encodes it into the row and writes the
// entry back. 301 after logging "CheckAllDigits error" when a non-digit is
// found (nothing written), 101 when the write fails, else 0. Other rows
// keep what the registry held, or are empty after a failed read.
int cdrSetRowDigits(const CDRDigitBinTable& table, char* entry, int row, std::string& value,
                    const char* operation);

#endif
