#ifndef OW_CIMNULL_HPP_INCLUDE_GUARD_
#define OW_CIMNULL_HPP_INCLUDE_GUARD_
#include "OW_config.h"

namespace OW_NAMESPACE
{

/// Tag for building null CIM handles, as in CIMValue(CIMNULL).
enum CIMNULL_t { CIMNULL };

} // end namespace OW_NAMESPACE

#endif
