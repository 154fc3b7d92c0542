#ifndef OW_UTF8UTILS_HPP_INCLUDE_GUARD_
#define OW_UTF8UTILS_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_Exception.hpp"

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(InvalidUTF8, OW_COMMON_API)

namespace UTF8Utils
{

/// Number of characters (bytes that are not continuation bytes).
size_t charCount(const char* utf8str);
/// Decodes the character starting at utf8char.
UInt16 UTF8toUCS2(const char* utf8char);
UInt32 UTF8toUCS4(const char* utf8char);
/// Encodes one character in 1 to 4 bytes.
String UCS2toUTF8(UInt16 ucs2char);
String UCS4toUTF8(UInt32 ucs4char);
/// Case-insensitive comparison; only the sign matters.
int compareToIgnoreCase(const char* str1, const char* str2);
bool toUpperCaseInPlace(char* input);
String toUpperCase(const char* input);
bool toLowerCaseInPlace(char* input);
String toLowerCase(const char* input);

/// Converts the NUL-terminated ISO 8859-1 text input into UTF-8 at output,
/// writing at most outputSize bytes including the terminating NUL. Never
/// writes a partial character; the output is NUL-terminated whenever
/// outputSize > 0. Returns the number of bytes written, without the NUL.
size_t ISO8859ToUTF8(const char* input, char* output, size_t outputSize);

} // end namespace UTF8Utils

} // end namespace OW_NAMESPACE

#endif
