#ifndef OW_ASSOCIATORPROVIDERINFO_HPP_INCLUDE_GUARD_
#define OW_ASSOCIATORPROVIDERINFO_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_ProviderInfoBase.hpp"

namespace OW_NAMESPACE
{

/// Registration of an associator provider.
class AssociatorProviderInfo : public ProviderInfoBase<InstClassInfo>
{
public:
	typedef ProviderInfoBase<InstClassInfo>::ClassInfo ClassInfo;
	typedef ProviderInfoBase<InstClassInfo>::ClassInfoArray ClassInfoArray;
};

typedef Array<AssociatorProviderInfo> AssociatorProviderInfoArray;

} // end namespace OW_NAMESPACE

#endif
