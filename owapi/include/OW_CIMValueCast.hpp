#ifndef OW_CIMVALUECAST_HPP_INCLUDE_GUARD_
#define OW_CIMVALUECAST_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Exception.hpp"
#include "OW_CIMFwd.hpp"

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(ValueCast, OW_COMMON_API)

namespace CIMValueCast
{
	/// The value converted to the data type, through its text for differing
	/// types. A null value or type gives a null value; the same type and
	/// array kind is returned unchanged. An incompatible pair or a parse
	/// failure throws CIMException(FAILED).
	CIMValue castValueToDataType(const CIMValue& value, const CIMDataType& dataType);
}

} // end namespace OW_NAMESPACE

#endif
