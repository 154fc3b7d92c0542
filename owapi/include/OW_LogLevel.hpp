#ifndef OW_LOGLEVEL_HPP_INCLUDE_GUARD_
#define OW_LOGLEVEL_HPP_INCLUDE_GUARD_
#include "OW_config.h"

namespace OW_NAMESPACE
{

/// A message is emitted when the logger's level is >= the message's level.
enum ELogLevel
{
	E_NONE_LEVEL,
	E_FATAL_ERROR_LEVEL,
	E_ERROR_LEVEL,
	E_INFO_LEVEL,
	E_DEBUG_LEVEL,
	E_ALL_LEVEL
};

} // end namespace OW_NAMESPACE

#endif
