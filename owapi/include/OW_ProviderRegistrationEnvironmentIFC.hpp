#ifndef OW_PROVIDERREGISTRATIONENVIRONMENTIFC_HPP_INCLUDE_GUARD_
#define OW_PROVIDERREGISTRATIONENVIRONMENTIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_ProviderFwd.hpp"
#include "OW_IfcsFwd.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"

namespace OW_NAMESPACE
{

/// What the object manager offers a provider while it registers.
class ProviderRegistrationEnvironmentIFC : public IntrusiveCountableBase
{
public:
	virtual ~ProviderRegistrationEnvironmentIFC();
	virtual RepositoryIFCRef getRepository() const = 0;
	virtual LoggerRef getLogger(const String& componentName) const = 0;
	virtual String getConfigItem(const String& name, const String& defRetVal = "") const = 0;
	virtual StringArray getMultiConfigItem(const String& itemName,
		const StringArray& defRetVal, const char* tokenizeSeparator = 0) const = 0;
	virtual ProviderRegistrationEnvironmentIFCRef clone() const = 0;
};

} // end namespace OW_NAMESPACE

#endif
