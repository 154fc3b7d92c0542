#ifndef OW_CPPINSTANCEPROVIDERIFC_HPP_INCLUDE_GUARD_
#define OW_CPPINSTANCEPROVIDERIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_InstanceProviderInfo.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_Array.hpp"
#include "OW_CIMFwd.hpp"

namespace OW_NAMESPACE
{

/// Interface of an instance provider.
class CppInstanceProviderIFC : public virtual CppProviderBaseIFC
{
public:
	CppInstanceProviderIFC();
	virtual ~CppInstanceProviderIFC();

#ifndef OWAPI_SERIES_3_0
	/// Calls getInstanceProviderInfo(info).
	virtual void getInstanceProviderInfoWithEnv(
		const ProviderRegistrationEnvironmentIFCRef& env,
		InstanceProviderInfo& info);
#endif
	/// Registers nothing by default.
	virtual void getInstanceProviderInfo(InstanceProviderInfo& info);

	virtual void enumInstanceNames(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const String& className,
		CIMObjectPathResultHandlerIFC& result,
		const CIMClass& cimClass) = 0;

	/// By default enumerates the names and hands getInstance() of each to
	/// result; deep and requestedClass are ignored.
	virtual void enumInstances(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const String& className,
		CIMInstanceResultHandlerIFC& result,
		WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EDeepFlag deep,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList,
		const CIMClass& requestedClass,
		const CIMClass& cimClass);

	virtual CIMInstance getInstance(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const CIMObjectPath& instanceName,
		WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList,
		const CIMClass& cimClass) = 0;

#ifndef OW_DISABLE_INSTANCE_MANIPULATION
	virtual CIMObjectPath createInstance(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const CIMInstance& cimInstance) = 0;

	virtual void modifyInstance(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const CIMInstance& modifiedInstance,
		const CIMInstance& previousInstance,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		const StringArray* propertyList,
		const CIMClass& theClass) = 0;

	virtual void deleteInstance(
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		const CIMObjectPath& cop) = 0;
#endif

	virtual CppInstanceProviderIFC* getInstanceProvider();
};

} // end namespace OW_NAMESPACE

#endif
