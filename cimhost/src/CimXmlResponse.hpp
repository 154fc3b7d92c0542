// Writes CIM-XML response elements in the forms the client's scanner reads:
// XML declaration, no comments, no self-closed elements other than
// CLASSNAME, NAMESPACE and ERROR, NULL as an element without VALUE.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_CIMValue.hpp>

#include "ClassDefinition.hpp"
#include "XmlWriter.hpp"

namespace cimhost {

// What a response shows of classes and instances.
struct OutputFilter {
    bool localOnly = false;
    bool includeQualifiers = false;
    bool includeClassOrigin = false;
    // nullopt: every property; otherwise only the listed ones.
    std::optional<std::vector<std::string>> propertyList;

    bool shows(const std::string& propertyName) const;
};

// "<?xml ...?><CIM ...><MESSAGE ID=...><SIMPLERSP>" and the matching end.
void startResponse(XmlWriter& xml, const std::string& messageId);
void endResponse(XmlWriter& xml);

void writeError(XmlWriter& xml, int code, const std::string& description);

void writeValue(XmlWriter& xml, const OpenWBEM::CIMValue& value);
void writeInstancePath(XmlWriter& xml, const OpenWBEM::CIMObjectPath& path, const std::string& host,
                       const std::string& nameSpace);
// Key values carry VALUETYPE only; a key without a value is CIM_ERR_FAILED.
void writeInstanceName(XmlWriter& xml, const OpenWBEM::CIMObjectPath& path);
// An instance as the provider returned it: every property, with its
// qualifiers and class origin where it has them (the object manager leaves
// IncludeQualifiers, IncludeClassOrigin and PropertyList to the provider).
void writeInstance(XmlWriter& xml, const OpenWBEM::CIMInstance& instance);
void writeClass(XmlWriter& xml, const ClassDefinition& cls, const OutputFilter& filter);

}  // namespace cimhost
