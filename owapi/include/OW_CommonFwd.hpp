#ifndef OW_COMMON_FWD_HPP_INCLUDE_GUARD_
#define OW_COMMON_FWD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_ArrayFwd.hpp"
#include "OW_IntrusiveReference.hpp"

namespace OW_NAMESPACE
{

struct LogMessage;
class Logger;
typedef IntrusiveReference<Logger> LoggerRef;

class String;
typedef Array<String> StringArray;

class Char16;
typedef Array<Char16> Char16Array;

class Bool;
typedef Array<Bool> BoolArray;

class StringBuffer;
class DateTime;
class OperationContext;

} // end namespace OW_NAMESPACE

#endif
