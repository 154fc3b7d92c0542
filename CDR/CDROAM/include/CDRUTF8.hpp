// UTF8Utils::ISO8859ToUTF8 is part of the device's OpenWBEM build. Against
// an OpenWBEM installation without it, the module supplies the same function
// itself (CDR_SUPPLY_ISO8859TOUTF8, set by the build).
#ifndef CDR_UTF8_HPP
#define CDR_UTF8_HPP

#include <stddef.h>

#include "CDROWConfig.hpp"
#include "OW_UTF8Utils.hpp"

#ifdef CDR_SUPPLY_ISO8859TOUTF8
namespace OW_NAMESPACE {
namespace UTF8Utils {
size_t ISO8859ToUTF8(const char* input, char* output, size_t outputSize);
}
}
#endif

#endif
