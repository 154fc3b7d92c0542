#ifndef OW_CPPPROVIDERINCLUDES_HPP_INCLUDE_GUARD_
#define OW_CPPPROVIDERINCLUDES_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIM.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_Logger.hpp"
#include "OW_LogMessage.hpp"
#include "OW_DateTime.hpp"
#include "OW_UTF8Utils.hpp"
#include "OW_CIMValueCast.hpp"
#endif
