// Built only against an OpenWBEM installation that lacks the conversion.
#include "CDRUTF8.hpp"

namespace OW_NAMESPACE {
namespace UTF8Utils {

size_t ISO8859ToUTF8(const char* input, char* output, size_t outputSize) {
  if (outputSize == 0) return 0;
  size_t written = 0;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(input); p && *p; ++p) {
    size_t width = *p < 0x80 ? 1 : 2;
    if (written + width + 1 > outputSize) break;  // never a partial character
    if (width == 1) {
      output[written++] = static_cast<char>(*p);
    } else {
      output[written++] = static_cast<char>(0xC0 | (*p >> 6));
      output[written++] = static_cast<char>(0x80 | (*p & 0x3F));
    }
  }
  output[written] = '\0';
  return written;
}

}  // namespace UTF8Utils
}  // namespace OW_NAMESPACE
