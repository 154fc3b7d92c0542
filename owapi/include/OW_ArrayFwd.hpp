#ifndef OW_ARRAY_FWD_HPP_INCLUDE_GUARD_
#define OW_ARRAY_FWD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"

namespace OW_NAMESPACE
{

template <class T> class Array;

typedef Array<UInt8> UInt8Array;
typedef Array<Int8> Int8Array;
typedef Array<UInt16> UInt16Array;
typedef Array<Int16> Int16Array;
typedef Array<UInt32> UInt32Array;
typedef Array<Int32> Int32Array;
typedef Array<UInt64> UInt64Array;
typedef Array<Int64> Int64Array;
typedef Array<Real64> Real64Array;
typedef Array<Real32> Real32Array;

} // end namespace OW_NAMESPACE

#endif
