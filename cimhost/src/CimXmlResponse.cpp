#include "CimXmlResponse.hpp"

#include <OW_CIMDataType.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMQualifier.hpp>
#include <OW_CIMQualifierType.hpp>
#include <OW_String.hpp>

#include "CimValues.hpp"

#include <charconv>

namespace cimhost {
namespace {

using OW::CIMDataType;
using OW::CIMValue;

const char* keyValueType(CIMDataType::Type type) {
    if (type == CIMDataType::BOOLEAN) return "boolean";
    if (type == CIMDataType::CHAR16 || type == CIMDataType::DATETIME || type == CIMDataType::STRING) return "string";
    return "numeric";
}

void writeTextValue(XmlWriter& xml, const TextValue& value) {
    if (value.isNull) return;
    if (!value.isArray) {
        xml.leaf("VALUE", value.elements.empty() ? "" : value.elements.front());
        return;
    }
    xml.start("VALUE.ARRAY");
    for (const std::string& item : value.elements) xml.leaf("VALUE", item);
    xml.end("VALUE.ARRAY");
}


// Flavors are written where they differ from the defaults, as OpenWBEM
// writes them: OVERRIDABLE="false" for DisableOverride, TOSUBCLASS="false"
// for Restricted, TRANSLATABLE="true".
void writeDefinedQualifier(XmlWriter& xml, const Qualifier& q) {
    XmlAttributeList attributes{{"NAME", q.name}, {"TYPE", q.type}};
    if (!q.flavors.overridable) attributes.emplace_back("OVERRIDABLE", "false");
    if (!q.flavors.toSubclass) attributes.emplace_back("TOSUBCLASS", "false");
    if (q.flavors.translatable) attributes.emplace_back("TRANSLATABLE", "true");
    xml.start("QUALIFIER", attributes);
    writeTextValue(xml, q.value);
    xml.end("QUALIFIER");
}

void writeDefinedQualifiers(XmlWriter& xml, const std::vector<Qualifier>& qualifiers, const OutputFilter& filter) {
    if (!filter.includeQualifiers) return;
    for (const Qualifier& q : qualifiers) writeDefinedQualifier(xml, q);
}

void writeApiQualifier(XmlWriter& xml, const OW::CIMQualifier& q) {
    CIMValue value = q.getValue();
    std::string type = "string";
    if (value) {
        type = cimTypeName(value.getType());
    } else if (q.getDefaults() && q.getDefaults().getDataType()) {
        type = cimTypeName(q.getDefaults().getDataType().getType());
    }
    xml.start("QUALIFIER", {{"NAME", q.getName().c_str()}, {"TYPE", type}});
    if (value) writeValue(xml, value);
    xml.end("QUALIFIER");
}

// An integer or boolean scalar, written as CIMValue::toString() gives it
// without building the String; false for the other types.
bool writeNumber(XmlWriter& xml, const CIMValue& value) {
    char digits[24];
    auto written = [&](auto number) { return std::to_chars(digits, digits + sizeof digits, number).ptr; };
    char* end = nullptr;
    switch (value.getType()) {
        case CIMDataType::BOOLEAN: xml.leaf("VALUE", value.toBool() ? "true" : "false"); return true;
        case CIMDataType::UINT8: end = written(value.toUInt8()); break;
        case CIMDataType::SINT8: end = written(value.toInt8()); break;
        case CIMDataType::UINT16: end = written(value.toUInt16()); break;
        case CIMDataType::SINT16: end = written(value.toInt16()); break;
        case CIMDataType::UINT32: end = written(value.toUInt32()); break;
        case CIMDataType::SINT32: end = written(value.toInt32()); break;
        case CIMDataType::UINT64: end = written(value.toUInt64()); break;
        case CIMDataType::SINT64: end = written(value.toInt64()); break;
        default: return false;
    }
    xml.start("VALUE").raw(std::string_view(digits, end - digits)).end("VALUE");
    return true;
}

}  // namespace

bool OutputFilter::shows(const std::string& propertyName) const {
    if (!propertyList) return true;
    for (const std::string& listed : *propertyList) {
        if (namesEqual(listed, propertyName)) return true;
    }
    return false;
}

void startResponse(XmlWriter& xml, const std::string& messageId) {
    xml.raw("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n");
    xml.start("CIM", {{"CIMVERSION", "2.0"}, {"DTDVERSION", "2.0"}});
    xml.start("MESSAGE", {{"ID", messageId}, {"PROTOCOLVERSION", "1.0"}});
    xml.start("SIMPLERSP");
}

void endResponse(XmlWriter& xml) { xml.end("SIMPLERSP").end("MESSAGE").end("CIM").raw("\n"); }

void writeError(XmlWriter& xml, int code, const std::string& description) {
    xml.selfClosed("ERROR", {{"CODE", std::to_string(code)}, {"DESCRIPTION", description}});
}

void writeValue(XmlWriter& xml, const CIMValue& value) {
    if (!value) return;
    if (value.getType() == CIMDataType::REFERENCE && !value.isArray()) {
        xml.start("VALUE.REFERENCE");
        xml.start("INSTANCEPATH");
        OW::CIMObjectPath path = value.toCIMObjectPath();
        writeInstancePath(xml, path, "localhost", path.getNameSpace().c_str());
        xml.end("INSTANCEPATH");
        xml.end("VALUE.REFERENCE");
        return;
    }
    if (!value.isArray() && value.getType() != CIMDataType::DATETIME) {
        if (writeNumber(xml, value)) return;
        OW::String text = value.toString();
        xml.leaf("VALUE", std::string_view(text.c_str(), text.length()));
        return;
    }
    std::vector<std::string> texts = valueTexts(value);
    writeTextValue(xml, value.isArray() ? TextValue::array(texts) : TextValue::scalar(texts.front()));
}

void writeInstanceName(XmlWriter& xml, const OW::CIMObjectPath& path) {
    xml.start("INSTANCENAME", {{"CLASSNAME", path.getClassName().c_str()}});
    for (const OW::CIMProperty& key : path.getKeys()) {
        const CIMValue& value = key.getValue();
        if (!value) throw OW::CIMException(__FILE__, __LINE__, OW::CIMException::FAILED, "No key value");
        xml.start("KEYBINDING", {{"NAME", key.getName().c_str()}});
        if (value.getType() == CIMDataType::REFERENCE) {
            writeValue(xml, value);
        } else if (value.getType() == CIMDataType::DATETIME || value.isArray()) {
            xml.leaf("KEYVALUE", valueTexts(value).front(), {{"VALUETYPE", keyValueType(value.getType())}});
        } else {
            xml.leaf("KEYVALUE", value.toString().c_str(), {{"VALUETYPE", keyValueType(value.getType())}});
        }
        xml.end("KEYBINDING");
    }
    xml.end("INSTANCENAME");
}

void writeInstancePath(XmlWriter& xml, const OW::CIMObjectPath& path, const std::string& host,
                       const std::string& nameSpace) {
    xml.start("NAMESPACEPATH");
    xml.leaf("HOST", host);
    xml.start("LOCALNAMESPACEPATH");
    size_t begin = 0;
    while (begin <= nameSpace.size()) {
        size_t slash = nameSpace.find('/', begin);
        std::string part = nameSpace.substr(begin, slash == std::string::npos ? std::string::npos : slash - begin);
        if (!part.empty()) xml.selfClosed("NAMESPACE", {{"NAME", part}});
        if (slash == std::string::npos) break;
        begin = slash + 1;
    }
    xml.end("LOCALNAMESPACEPATH");
    xml.end("NAMESPACEPATH");
    writeInstanceName(xml, path);
}

void writeInstance(XmlWriter& xml, const OW::CIMInstance& instance) {
    xml.start("INSTANCE", {{"CLASSNAME", instance.getClassName().c_str()}});
    for (const OW::CIMQualifier& q : instance.getQualifiers()) writeApiQualifier(xml, q);
    for (const OW::CIMProperty& property : instance.getProperties()) {
        const CIMValue& value = property.getValue();
        const CIMDataType& dataType = property.getDataType();
        bool typed = static_cast<bool>(dataType);
        CIMDataType::Type type = typed ? dataType.getType() : value ? value.getType() : CIMDataType::STRING;
        bool isArray = typed ? dataType.isArrayType() : value ? value.isArray() : false;
        const char* element = type == CIMDataType::REFERENCE ? "PROPERTY.REFERENCE"
                              : isArray                      ? "PROPERTY.ARRAY"
                                                             : "PROPERTY";
        xml.open(element).attribute("NAME", property.getName().c_str());
        if (type == CIMDataType::REFERENCE) {
            xml.attribute("REFERENCECLASS", typed ? dataType.getRefClassName().c_str() : "");
        } else {
            xml.attribute("TYPE", cimTypeName(type));
        }
        const OW::String& origin = property.getOriginClass();
        if (!origin.empty()) xml.attribute("CLASSORIGIN", origin.c_str());
        xml.close();
        for (const OW::CIMQualifier& q : property.getQualifiers()) writeApiQualifier(xml, q);
        writeValue(xml, value);
        xml.end(element);
    }
    xml.end("INSTANCE");
}

void writeClass(XmlWriter& xml, const ClassDefinition& cls, const OutputFilter& filter) {
    if (cls.superClass.empty()) xml.start("CLASS", {{"NAME", cls.name}});
    else xml.start("CLASS", {{"NAME", cls.name}, {"SUPERCLASS", cls.superClass}});
    writeDefinedQualifiers(xml, cls.qualifiers, filter);
    for (const PropertyDefinition& p : cls.properties) {
        if (!filter.shows(p.name)) continue;
        if (filter.localOnly && p.classOrigin != cls.name) continue;
        const char* element = p.type == "reference" ? "PROPERTY.REFERENCE" : p.isArray ? "PROPERTY.ARRAY" : "PROPERTY";
        std::string typeAttribute = p.type == "reference" ? "REFERENCECLASS" : "TYPE";
        std::string typeValue = p.type == "reference" ? p.referenceClass : p.type;
        if (filter.includeClassOrigin) {
            xml.start(element, {{"NAME", p.name}, {typeAttribute.c_str(), typeValue}, {"CLASSORIGIN", p.classOrigin}});
        } else {
            xml.start(element, {{"NAME", p.name}, {typeAttribute.c_str(), typeValue}});
        }
        writeDefinedQualifiers(xml, p.qualifiers, filter);
        if (p.type != "reference") writeTextValue(xml, p.defaultValue);
        xml.end(element);
    }
    for (const MethodDefinition& m : cls.methods) {
        if (filter.localOnly && m.classOrigin != cls.name) continue;
        if (filter.includeClassOrigin) {
            xml.start("METHOD", {{"NAME", m.name}, {"TYPE", m.returnType}, {"CLASSORIGIN", m.classOrigin}});
        } else {
            xml.start("METHOD", {{"NAME", m.name}, {"TYPE", m.returnType}});
        }
        writeDefinedQualifiers(xml, m.qualifiers, filter);
        for (const ParameterDefinition& p : m.parameters) {
            const char* element = p.type == "reference" ? "PARAMETER.REFERENCE"
                                  : p.isArray           ? "PARAMETER.ARRAY"
                                                        : "PARAMETER";
            if (p.type == "reference") xml.start(element, {{"NAME", p.name}, {"REFERENCECLASS", p.referenceClass}});
            else xml.start(element, {{"NAME", p.name}, {"TYPE", p.type}});
            // The client needs In/Out to know which parameters it may send.
            writeDefinedQualifiers(xml, p.qualifiers, filter);
            xml.end(element);
        }
        xml.end("METHOD");
    }
    xml.end("CLASS");
}

}  // namespace cimhost
