#ifndef OW_NULLCOWINTRUSIVEREFERENCEEXCEPTION_HPP_INCLUDE_GUARD_
#define OW_NULLCOWINTRUSIVEREFERENCEEXCEPTION_HPP_INCLUDE_GUARD_
// Library-internal: thrown for a member call on a null CIM handle. Callers
// catch it as Exception.
#include "OW_config.h"
#include "OW_Exception.hpp"

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(NULLCOWIntrusiveReference, OW_COMMON_API)

} // end namespace OW_NAMESPACE

#endif
