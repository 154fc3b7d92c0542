#ifndef OW_CIMELEMENT_HPP_INCLUDE_GUARD_
#define OW_CIMELEMENT_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CIMBase.hpp"

namespace OW_NAMESPACE
{

/// A named CIM element. Comparisons look at the names only, ignoring case.
class CIMElement : public CIMBase
{
public:
	virtual ~CIMElement();
	virtual String getName() const = 0;
	virtual void setName(const CIMName& name) = 0;
	bool operator==(const CIMElement& arg);
	bool operator!=(const CIMElement& arg) { return !(*this == arg); }
	bool equals(const CIMElement& arg) { return *this == arg; }
	int compare(const CIMElement& arg);
};

} // end namespace OW_NAMESPACE

#endif
