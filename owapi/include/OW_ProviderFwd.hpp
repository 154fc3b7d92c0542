#ifndef OW_PROVIDER_FWD_HPP_INCLUDE_GUARD_
#define OW_PROVIDER_FWD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveReference.hpp"

namespace OW_NAMESPACE
{

class ProviderEnvironmentIFC;
typedef IntrusiveReference<ProviderEnvironmentIFC> ProviderEnvironmentIFCRef;

class ProviderRegistrationEnvironmentIFC;
typedef IntrusiveReference<ProviderRegistrationEnvironmentIFC> ProviderRegistrationEnvironmentIFCRef;

class CppProviderBaseIFC;
class CppInstanceProviderIFC;
class CppSecondaryInstanceProviderIFC;
class CppMethodProviderIFC;
class CppAssociatorProviderIFC;
class CppIndicationExportProviderIFC;
class CppPolledProviderIFC;
class CppIndicationProviderIFC;

class InstanceProviderInfo;
class SecondaryInstanceProviderInfo;
class MethodProviderInfo;
class AssociatorProviderInfo;
class IndicationProviderInfo;

} // end namespace OW_NAMESPACE

#endif
