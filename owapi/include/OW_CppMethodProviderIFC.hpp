#ifndef OW_CPPMETHODPROVIDERIFC_HPP_INCLUDE_GUARD_
#define OW_CPPMETHODPROVIDERIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_MethodProviderInfo.hpp"
#include "OW_Array.hpp"
#include "OW_CIMFwd.hpp"

namespace OW_NAMESPACE
{

/// Interface of a method provider.
class CppMethodProviderIFC : public virtual CppProviderBaseIFC
{
public:
	virtual ~CppMethodProviderIFC();

#ifndef OWAPI_SERIES_3_0
	/// Calls getMethodProviderInfo(info).
	virtual void getMethodProviderInfoWithEnv(
		const ProviderRegistrationEnvironmentIFCRef& env,
		MethodProviderInfo& info);
#endif
	/// Registers nothing by default.
	virtual void getMethodProviderInfo(MethodProviderInfo& info);

	/// Runs methodName on path. in holds the input parameters in declaration
	/// order; out arrives with one named entry per output parameter. Returns
	/// the method's return value.
	virtual CIMValue invokeMethod(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const CIMObjectPath& path,
		const String& methodName,
		const CIMParamValueArray& in,
		CIMParamValueArray& out) = 0;

	virtual CppMethodProviderIFC* getMethodProvider();
};

} // end namespace OW_NAMESPACE

#endif
