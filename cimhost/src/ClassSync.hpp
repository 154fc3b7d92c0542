// What the object manager does to instances and object paths before a
// provider sees them: it fits them to the class definition the way
// OpenWBEM 3.0's CIMInstance::syncWithClass and CIMObjectPath::syncWithClass
// do (the provider API's own versions are gentler and differ between
// series, so the host keeps its own).
#pragma once

#include <OW_CIMClass.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>

namespace cimhost {

namespace OW = OpenWBEM;

// Drops properties the class does not define; replaces each remaining one by
// the class's property (its spelling, type, qualifiers and origin) carrying
// the given value converted to the class's type, or the class default when
// the given value is NULL; appends the class's missing properties with their
// defaults; rebuilds the keys from the Key properties. A value that does not
// convert is CIM_ERR_FAILED "Failed to convert ..." (or the conversion's own
// message).
void syncInstanceWithClass(OW::CIMInstance& instance, const OW::CIMClass& cls);

// The same for the keys of an instance path: unknown keys dropped, the
// class's key properties (with the given values, converted) in their place,
// missing ones appended. A class path stays as it is.
// `keys` are the class's key properties (cls.getKeys()).
void syncPathWithClass(OW::CIMObjectPath& path, const OW::CIMClass& cls, const OW::CIMPropertyArray& keys);

}  // namespace cimhost
