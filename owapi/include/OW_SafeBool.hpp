#ifndef OW_SAFE_BOOL_HPP_INCLUDE_GUARD_
#define OW_SAFE_BOOL_HPP_INCLUDE_GUARD_
#include "OW_config.h"

/// Truth test through a pointer to member, so a handle never converts to an integer.
#define OW_SAFE_BOOL_IMPL(classname, type, variable, test) \
	typedef type classname::*safe_bool; \
	operator safe_bool() const \
	{ return (test) ? &classname::variable : 0; } \
	bool operator!() const \
	{ return !(test); }

#endif
