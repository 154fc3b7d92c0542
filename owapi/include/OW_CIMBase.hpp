#ifndef OW_CIMBASE_HPP_INCLUDE_GUARD_
#define OW_CIMBASE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_Types.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CIMFwd.hpp"
#include "OW_CIMNULL.hpp"
#include "OW_SafeBool.hpp"
#include "OW_COWIntrusiveReference.hpp"
#include "OW_Exception.hpp"
#include <iosfwd>

namespace OW_NAMESPACE
{

/// Common base of the CIM object handles.
class CIMBase
{
public:
	virtual ~CIMBase();
	/// Releases the data; the handle becomes null.
	virtual void setNull() = 0;
	virtual String toString() const = 0;
	virtual String toMOF() const = 0;
};

std::ostream& operator<<(std::ostream& ostr, const CIMBase& cb);

} // end namespace OW_NAMESPACE

#endif
