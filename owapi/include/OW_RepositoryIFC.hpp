#ifndef OW_REPOSITORYIFC_HPP_INCLUDE_GUARD_
#define OW_REPOSITORYIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IfcsFwd.hpp"

namespace OW_NAMESPACE
{

/// The object manager's class and instance store. Hosts of this build keep
/// no repository, so the interface carries no operations; it exists so that
/// RepositoryIFCRef can be created and released.
class RepositoryIFC : public IntrusiveCountableBase
{
public:
	virtual ~RepositoryIFC();
};

} // end namespace OW_NAMESPACE

#endif
