#ifndef OW_TYPES_HPP_INCLUDE_GUARD_
#define OW_TYPES_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include <cstddef>

namespace OW_NAMESPACE
{

typedef unsigned char UInt8;
typedef signed char Int8;
typedef unsigned short UInt16;
typedef short Int16;
typedef unsigned int UInt32;
typedef int Int32;
#define OW_INT32_IS_INT 1
#if __SIZEOF_LONG__ == 8
typedef unsigned long UInt64;
typedef long Int64;
#define OW_INT64_IS_LONG 1
#else
typedef unsigned long long UInt64;
typedef long long Int64;
#define OW_INT64_IS_LONG_LONG 1
#endif
typedef float Real32;
typedef double Real64;

} // end namespace OW_NAMESPACE

#define OW_SHAREDLIB_EXTENSION ".so"
#define OW_FILENAME_SEPARATOR "/"
#define OW_PATHNAME_SEPARATOR ":"

#endif
