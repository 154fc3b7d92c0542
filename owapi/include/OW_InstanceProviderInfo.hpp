#ifndef OW_INSTANCEPROVIDERINFO_HPP_INCLUDE_GUARD_
#define OW_INSTANCEPROVIDERINFO_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_ProviderInfoBase.hpp"

namespace OW_NAMESPACE
{

/// Registration of an instance provider.
class InstanceProviderInfo : public ProviderInfoBase<InstClassInfo>
{
public:
	typedef ProviderInfoBase<InstClassInfo>::ClassInfo ClassInfo;
	typedef ProviderInfoBase<InstClassInfo>::ClassInfoArray ClassInfoArray;
};

typedef Array<InstanceProviderInfo> InstanceProviderInfoArray;

} // end namespace OW_NAMESPACE

#endif
