#ifndef OW_IFCS_FWD_HPP_INCLUDE_GUARD_
#define OW_IFCS_FWD_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveReference.hpp"
#include "OW_CommonFwd.hpp"
#include "OW_CIMFwd.hpp"

namespace OW_NAMESPACE
{

class CIMOMHandleIFC;
typedef IntrusiveReference<CIMOMHandleIFC> CIMOMHandleIFCRef;

class RepositoryIFC;
typedef IntrusiveReference<RepositoryIFC> RepositoryIFCRef;

template <class T> class ResultHandlerIFC;
typedef ResultHandlerIFC<CIMClass> CIMClassResultHandlerIFC;
typedef ResultHandlerIFC<CIMInstance> CIMInstanceResultHandlerIFC;
typedef ResultHandlerIFC<CIMObjectPath> CIMObjectPathResultHandlerIFC;
typedef ResultHandlerIFC<String> StringResultHandlerIFC;
typedef ResultHandlerIFC<CIMQualifierType> CIMQualifierTypeResultHandlerIFC;

} // end namespace OW_NAMESPACE

#endif
