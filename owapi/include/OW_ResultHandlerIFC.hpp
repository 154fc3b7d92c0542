#ifndef OW_RESULTHANDLERIFC_HPP_INCLUDE_GUARD_
#define OW_RESULTHANDLERIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IfcsFwd.hpp"
#include "OW_String.hpp"

namespace OW_NAMESPACE
{

/// Receives the results of an operation one at a time. Providers call
/// handle(); the receiver implements doHandle(). Exceptions from doHandle
/// propagate back to the caller of handle().
template <typename T>
class ResultHandlerIFC
{
public:
	virtual ~ResultHandlerIFC() {}
	void handle(const T& x)
	{
		doHandle(x);
	}
protected:
	virtual void doHandle(const T& x) = 0;
};

} // end namespace OW_NAMESPACE

#endif
