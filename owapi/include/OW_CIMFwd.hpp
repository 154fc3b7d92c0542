#ifndef OW_CIM_FWD_HPP_INCLUDE_GUARD_
#define OW_CIM_FWD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_ArrayFwd.hpp"

namespace OW_NAMESPACE
{

class CIMDateTime;
class CIMBase;
class CIMDataType;
class CIMScope;
class CIMUrl;
class CIMNameSpace;
class CIMElement;
class CIMFlavor;
class CIMProperty;
class CIMObjectPath;
class CIMQualifierType;
class CIMQualifier;
class CIMMethod;
class CIMClass;
class CIMParameter;
class CIMParamValue;
class CIMInstance;
class CIMValue;
class CIMName;

typedef Array<CIMDateTime> CIMDateTimeArray;
typedef Array<CIMDataType> CIMDataTypeArray;
typedef Array<CIMScope> CIMScopeArray;
typedef Array<CIMFlavor> CIMFlavorArray;
typedef Array<CIMProperty> CIMPropertyArray;
typedef Array<CIMObjectPath> CIMObjectPathArray;
typedef Array<CIMQualifierType> CIMQualifierTypeArray;
typedef Array<CIMQualifier> CIMQualifierArray;
typedef Array<CIMMethod> CIMMethodArray;
typedef Array<CIMClass> CIMClassArray;
typedef Array<CIMParameter> CIMParameterArray;
typedef Array<CIMParamValue> CIMParamValueArray;
typedef Array<CIMInstance> CIMInstanceArray;
typedef Array<CIMValue> CIMValueArray;
typedef Array<CIMName> CIMNameArray;

} // end namespace OW_NAMESPACE

#endif
