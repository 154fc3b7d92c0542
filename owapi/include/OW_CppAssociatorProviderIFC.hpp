#ifndef OW_CPPASSOCIATORPROVIDERIFC_HPP_INCLUDE_GUARD_
#define OW_CPPASSOCIATORPROVIDERIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_AssociatorProviderInfo.hpp"

#ifndef OW_DISABLE_ASSOCIATION_TRAVERSAL

namespace OW_NAMESPACE
{

/// Interface of an associator provider (also an instance provider).
/// Empty assocClass, resultClass, role and resultRole mean no filter.
class CppAssociatorProviderIFC : public virtual CppInstanceProviderIFC
{
public:
	virtual ~CppAssociatorProviderIFC();

#ifndef OWAPI_SERIES_3_0
	/// Calls getAssociatorProviderInfo(info).
	virtual void getAssociatorProviderInfoWithEnv(
		const ProviderRegistrationEnvironmentIFCRef& env,
		AssociatorProviderInfo& info);
#endif
	/// Registers nothing by default.
	virtual void getAssociatorProviderInfo(AssociatorProviderInfo& info);

	virtual void associators(
		const ProviderEnvironmentIFCRef& env,
		CIMInstanceResultHandlerIFC& result,
		const String& ns,
		const CIMObjectPath& objectName,
		const String& assocClass,
		const String& resultClass,
		const String& role,
		const String& resultRole,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList) = 0;

	virtual void associatorNames(
		const ProviderEnvironmentIFCRef& env,
		CIMObjectPathResultHandlerIFC& result,
		const String& ns,
		const CIMObjectPath& objectName,
		const String& assocClass,
		const String& resultClass,
		const String& role,
		const String& resultRole) = 0;

	virtual void references(
		const ProviderEnvironmentIFCRef& env,
		CIMInstanceResultHandlerIFC& result,
		const String& ns,
		const CIMObjectPath& objectName,
		const String& resultClass,
		const String& role,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList) = 0;

	virtual void referenceNames(
		const ProviderEnvironmentIFCRef& env,
		CIMObjectPathResultHandlerIFC& result,
		const String& ns,
		const CIMObjectPath& objectName,
		const String& resultClass,
		const String& role) = 0;

	virtual CppAssociatorProviderIFC* getAssociatorProvider();
};

} // end namespace OW_NAMESPACE

#endif

#endif
