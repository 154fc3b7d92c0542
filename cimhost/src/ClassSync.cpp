#include "ClassSync.hpp"

#include "CimValues.hpp"

#include <OW_CIMDataType.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMValue.hpp>
#include <OW_String.hpp>

namespace cimhost {
namespace {

// Drops the properties `cls` does not define, then puts the class's version
// of each of `classProperties` in place of the given one with the same name
// (ignoring case), or appends it.
OW::CIMPropertyArray fitToClass(OW::CIMPropertyArray given, const OW::CIMPropertyArray& classProperties,
                                const OW::CIMClass& cls) {
    for (size_t i = 0; i < given.size();) {
        if (cls.getProperty(OW::CIMName(given[i].getName()))) ++i;
        else given.erase(given.begin() + i);
    }
    for (const OW::CIMProperty& classProperty : classProperties) {
        bool found = false;
        for (OW::CIMProperty& property : given) {
            if (!property.getName().equalsIgnoreCase(classProperty.getName())) continue;
            OW::CIMValue value = property.getValue();
            property = classProperty.clone();
            if (value) {
                if (value.getType() != property.getDataType().getType()) {
                    value = castValue(value, property.getDataType());
                }
                property.setValue(value);
            }
            found = true;
            break;
        }
        if (!found) given.push_back(classProperty.clone());
    }
    return given;
}

}  // namespace

void syncInstanceWithClass(OW::CIMInstance& instance, const OW::CIMClass& cls) {
    if (!cls) return;
    instance.setProperties(fitToClass(instance.getProperties(), cls.getAllProperties(), cls));
}

void syncPathWithClass(OW::CIMObjectPath& path, const OW::CIMClass& cls, const OW::CIMPropertyArray& keys) {
    if (!cls || path.getKeys().empty()) return;
    path.setKeys(fitToClass(path.getKeys(), keys, cls));
}

}  // namespace cimhost
