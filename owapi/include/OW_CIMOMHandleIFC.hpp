#ifndef OW_CIMOMHANDLEIFC_HPP_INCLUDE_GUARD_
#define OW_CIMOMHANDLEIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"

namespace OW_NAMESPACE
{

/// Handle for calling back into the object manager. This build's hosts
/// offer no callbacks, so the interface carries no operations.
class CIMOMHandleIFC : public IntrusiveCountableBase
{
public:
	virtual ~CIMOMHandleIFC();
};

} // end namespace OW_NAMESPACE

#endif
