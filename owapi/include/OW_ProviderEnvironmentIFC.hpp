#ifndef OW_PROVIDERENVIRONMENTIFC_HPP_INCLUDE_GUARD_
#define OW_PROVIDERENVIRONMENTIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_ProviderFwd.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_Logger.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"

namespace OW_NAMESPACE
{

/// What the object manager offers a provider during a call.
class ProviderEnvironmentIFC : public IntrusiveCountableBase
{
public:
	virtual ~ProviderEnvironmentIFC();
	virtual CIMOMHandleIFCRef getCIMOMHandle() const = 0;
	virtual CIMOMHandleIFCRef getRepositoryCIMOMHandle() const = 0;
	virtual RepositoryIFCRef getRepository() const = 0;
#ifdef OWAPI_SERIES_3_0
	virtual LoggerRef getLogger() const = 0;
#else
	/// Deprecated: use getLogger(componentName).
	virtual LoggerRef getLogger() const OW_DEPRECATED = 0;
	/// A logger whose default component is componentName.
	virtual LoggerRef getLogger(const String& componentName) const = 0;
#endif
	/// The option's value, or defRetVal.
	virtual String getConfigItem(const String& name, const String& defRetVal = "") const = 0;
#ifndef OWAPI_SERIES_3_0
	virtual StringArray getMultiConfigItem(const String& itemName,
		const StringArray& defRetVal, const char* tokenizeSeparator = 0) const = 0;
#endif
	virtual String getUserName() const = 0;
	virtual OperationContext& getOperationContext() = 0;
#ifndef OWAPI_SERIES_3_0
	virtual ProviderEnvironmentIFCRef clone() const = 0;
#endif
};

} // end namespace OW_NAMESPACE

#endif
