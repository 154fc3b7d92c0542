#include "CimXmlRequest.hpp"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace cimhost {
namespace {

bool isElement(const pugi::xml_node& node, const char* name) {
    return node.type() == pugi::node_element && std::strcmp(node.name(), name) == 0;
}

std::vector<pugi::xml_node> elementChildren(const pugi::xml_node& node) {
    std::vector<pugi::xml_node> children;
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_element) children.push_back(child);
    }
    return children;
}

std::string requiredAttribute(const pugi::xml_node& node, const char* name) {
    pugi::xml_attribute a = node.attribute(name);
    if (!a) throw InvalidRequest(std::string(node.name()) + " lacks the attribute " + name);
    return a.value();
}

std::string optionalAttribute(const pugi::xml_node& node, const char* name) {
    return node.attribute(name).value();
}

// The text content of a VALUE, KEYVALUE or similar leaf element.
std::string leafText(const pugi::xml_node& node) {
    std::string text;
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            text += child.value();
        } else if (child.type() == pugi::node_element) {
            throw InvalidRequest(std::string(node.name()) + " must hold text only");
        }
    }
    return text;
}

// owcimomd's words for a LOCALNAMESPACEPATH without NAMESPACE.
const char* const kNoNamespace =
    "CIMXMLParser::mustGetChild(CIMXMLParser::tokenId tId=NAMESPACE) failed.  parser = m_good = 0\n"
    "</LOCALNAMESPACEPATH>\n";

// The namespace a LOCALNAMESPACEPATH names; empty when it names none.
std::string namespaceFromLocalPath(const pugi::xml_node& localPath) {
    if (!isElement(localPath, "LOCALNAMESPACEPATH")) throw InvalidRequest("expected LOCALNAMESPACEPATH");
    std::string ns;
    for (pugi::xml_node part : elementChildren(localPath)) {
        if (!isElement(part, "NAMESPACE")) throw InvalidRequest("LOCALNAMESPACEPATH holds only NAMESPACE");
        if (!ns.empty()) ns += '/';
        ns += requiredAttribute(part, "NAME");
    }
    return ns;
}

// An integer or a real number, as owcimomd converts numeric key text.
bool isNumber(const std::string& text) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) return false;
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return end && *end == '\0';
}

// owcimomd converts a numeric key as it reads the request: to a 64-bit
// integer (the empty text is 0), else to a real, else the request fails.
// The key then travels as that number's text.
std::string numericKeyText(const std::string& text) {
    if (text.empty()) return "0";
    if (!isNumber(text)) throw RequestFault(1, "Unable to convert \"" + text + "\" into Real64");
    char* end = nullptr;
    errno = 0;
    long long integer = std::strtoll(text.c_str(), &end, 10);
    if (*end == '\0' && errno == 0) return std::to_string(integer);
    return text;
}

InstanceNameText readInstanceName(const pugi::xml_node& node) {
    if (!isElement(node, "INSTANCENAME")) throw InvalidRequest("expected INSTANCENAME");
    InstanceNameText name;
    name.className = requiredAttribute(node, "CLASSNAME");
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() == 1 && isElement(children[0], "KEYVALUE")) {
        // A single unnamed key.
        name.keys.push_back({"", optionalAttribute(children[0], "VALUETYPE"),
                             optionalAttribute(children[0], "TYPE"), leafText(children[0])});
        if (name.keys.back().valueType == "numeric") name.keys.back().text = numericKeyText(name.keys.back().text);
        return name;
    }
    for (pugi::xml_node binding : children) {
        if (!isElement(binding, "KEYBINDING")) throw InvalidRequest("INSTANCENAME holds only KEYBINDING");
        KeyBindingText key;
        key.name = requiredAttribute(binding, "NAME");
        std::vector<pugi::xml_node> value = elementChildren(binding);
        std::vector<pugi::xml_node> referenced =
            value.size() == 1 && isElement(value[0], "VALUE.REFERENCE") ? elementChildren(value[0])
                                                                         : std::vector<pugi::xml_node>();
        if (referenced.size() == 1 && isElement(referenced[0], "CLASSNAME")) {
            // owcimomd keys by the reference's text, a class path without
            // namespace.
            key.valueType = "string";
            key.text = "/:" + requiredAttribute(referenced[0], "NAME");
            name.keys.push_back(std::move(key));
            continue;
        }
        if (value.size() != 1 || !isElement(value[0], "KEYVALUE")) {
            throw InvalidRequest("KEYBINDING " + key.name + " must hold one KEYVALUE");
        }
        key.valueType = optionalAttribute(value[0], "VALUETYPE");
        if (key.valueType.empty()) key.valueType = "string";
        key.type = optionalAttribute(value[0], "TYPE");
        key.text = leafText(value[0]);
        if (key.valueType == "numeric") key.text = numericKeyText(key.text);
        name.keys.push_back(std::move(key));
    }
    return name;
}

InstanceNameText readInstancePath(const pugi::xml_node& node) {
    // INSTANCEPATH (NAMESPACEPATH, INSTANCENAME) or LOCALINSTANCEPATH; the
    // namespace of a reference is not used.
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() != 2) throw InvalidRequest(std::string(node.name()) + " needs a path and a name");
    return readInstanceName(children[1]);
}

std::optional<InstanceNameText> readReferenceValue(const pugi::xml_node& node) {
    // VALUE.REFERENCE holding INSTANCEPATH, LOCALINSTANCEPATH or INSTANCENAME.
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() != 1) throw InvalidRequest("VALUE.REFERENCE must hold one path");
    const pugi::xml_node& path = children[0];
    if (isElement(path, "INSTANCENAME")) return readInstanceName(path);
    if (isElement(path, "INSTANCEPATH") || isElement(path, "LOCALINSTANCEPATH")) return readInstancePath(path);
    throw InvalidRequest("unsupported reference form " + std::string(path.name()));
}

TextValue readValueArray(const pugi::xml_node& node) {
    std::vector<std::string> items;
    for (pugi::xml_node item : elementChildren(node)) {
        if (!isElement(item, "VALUE")) throw InvalidRequest("VALUE.ARRAY holds only VALUE");
        items.push_back(leafText(item));
    }
    return TextValue::array(std::move(items));
}

PropertyText readProperty(const pugi::xml_node& node) {
    PropertyText p;
    p.name = requiredAttribute(node, "NAME");
    p.type = optionalAttribute(node, "TYPE");
    p.isArray = isElement(node, "PROPERTY.ARRAY");
    p.isReference = isElement(node, "PROPERTY.REFERENCE");
    if (p.isReference) {
        p.type = "reference";
        p.referenceClass = optionalAttribute(node, "REFERENCECLASS");
    }
    for (pugi::xml_node child : elementChildren(node)) {
        if (isElement(child, "QUALIFIER")) continue;  // qualifiers on instances are ignored
        if (isElement(child, "VALUE") && !p.isArray && !p.isReference) {
            p.value = TextValue::scalar(leafText(child));
        } else if (isElement(child, "VALUE.ARRAY") && p.isArray) {
            p.value = readValueArray(child);
        } else if (isElement(child, "VALUE.REFERENCE") && p.isReference) {
            p.referenceValue = readReferenceValue(child);
            p.value.isNull = false;
        } else {
            throw InvalidRequest("unexpected " + std::string(child.name()) + " in property " + p.name);
        }
    }
    return p;
}

InstanceText readInstance(const pugi::xml_node& node) {
    if (!isElement(node, "INSTANCE")) throw InvalidRequest("expected INSTANCE");
    InstanceText inst;
    inst.className = requiredAttribute(node, "CLASSNAME");
    for (pugi::xml_node child : elementChildren(node)) {
        if (isElement(child, "QUALIFIER")) continue;
        if (isElement(child, "PROPERTY") || isElement(child, "PROPERTY.ARRAY") ||
            isElement(child, "PROPERTY.REFERENCE")) {
            inst.properties.push_back(readProperty(child));
        } else {
            throw InvalidRequest("unexpected " + std::string(child.name()) + " in INSTANCE");
        }
    }
    return inst;
}

ParamValueText readParamValue(const pugi::xml_node& node) {
    ParamValueText p;
    p.name = requiredAttribute(node, "NAME");
    p.paramType = optionalAttribute(node, "PARAMTYPE");
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() > 1) throw InvalidRequest("PARAMVALUE " + p.name + " holds more than one value");
    if (children.empty()) return p;  // NULL
    const pugi::xml_node& v = children[0];
    if (isElement(v, "VALUE")) {
        p.value = TextValue::scalar(leafText(v));
    } else if (isElement(v, "VALUE.ARRAY")) {
        p.value = readValueArray(v);
    } else if (isElement(v, "VALUE.REFERENCE")) {
        p.referenceValue = readReferenceValue(v);
        p.value.isNull = false;
        if (p.paramType.empty()) p.paramType = "reference";
    } else {
        throw InvalidRequest("unsupported value " + std::string(v.name()) + " in PARAMVALUE " + p.name);
    }
    return p;
}

void readExtrinsicTarget(CimRequest& request, const pugi::xml_node& path) {
    std::vector<pugi::xml_node> parts = elementChildren(path);
    if (parts.size() != 2) throw InvalidRequest(std::string(path.name()) + " needs a namespace and a name");
    request.nameSpace = namespaceFromLocalPath(parts[0]);
    if (request.nameSpace.empty()) request.nameSpaceFault = kNoNamespace;
    if (isElement(path, "LOCALINSTANCEPATH")) {
        try {
            request.target = readInstanceName(parts[1]);
        } catch (const RequestFault& fault) {
            request.target.className = optionalAttribute(parts[1], "CLASSNAME");
            request.fault = fault.what();
            request.faultCode = fault.code;
        }
    } else {
        if (!isElement(parts[1], "CLASSNAME")) throw InvalidRequest("LOCALCLASSPATH needs a CLASSNAME");
        request.target.className = requiredAttribute(parts[1], "NAME");
        request.target.isClassPath = true;
    }
}

// Only the major number is compared: minor versions are compatible.
void requireMajorVersion(const pugi::xml_node& node, const char* attribute, const char* major,
                         const char* cimError) {
    std::string version = requiredAttribute(node, attribute);
    std::string wanted = std::string(major) + ".";
    if (version != major && version.compare(0, wanted.size(), wanted) != 0) {
        throw UnsupportedVersion(cimError);
    }
}

}  // namespace

pugi::xml_node CimRequest::findParam(const std::string& name) const {
    for (const auto& [paramName, node] : intrinsicParams) {
        if (namesEqual(paramName, name)) return node;
    }
    return pugi::xml_node();
}

namespace {

// An intrinsic parameter of the wrong form, worded as owcimomd words it.
InvalidRequest wrongType(const std::string& name, const std::string& expected) {
    return InvalidRequest("Parameter " + name + " is the wrong type.  Expected <" + expected + "> tag.");
}

}  // namespace

bool CimRequest::hasParam(const std::string& name) const { return static_cast<bool>(findParam(name)); }

std::optional<bool> CimRequest::booleanParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.empty()) return std::nullopt;
    if (children.size() != 1 || !isElement(children[0], "VALUE")) {
        throw wrongType(name, "VALUE");
    }
    std::string text = leafText(children[0]);
    // owcimomd reads an empty VALUE as false.
    if (text.empty()) return false;
    if (namesEqual(text, "true")) return true;
    if (namesEqual(text, "false")) return false;
    // owcimomd's words (its CIMValue conversion of the parameter).
    throw InvalidRequest("Unable to convert \"" + text + "\" into bool");
}

std::optional<std::string> CimRequest::classNameParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.empty()) return std::nullopt;
    if (children.size() != 1 || !isElement(children[0], "CLASSNAME")) {
        throw wrongType(name, "CLASSNAME");
    }
    return requiredAttribute(children[0], "NAME");
}

std::optional<std::string> CimRequest::stringParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.empty()) return std::nullopt;
    if (children.size() != 1 || !isElement(children[0], "VALUE")) {
        throw wrongType(name, "VALUE");
    }
    return leafText(children[0]);
}

std::optional<std::vector<std::string>> CimRequest::stringArrayParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.empty()) return std::nullopt;
    if (children.size() != 1 || !isElement(children[0], "VALUE.ARRAY")) {
        throw wrongType(name, "VALUE.ARRAY");
    }
    return readValueArray(children[0]).elements;
}

std::optional<InstanceNameText> CimRequest::objectNameParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() != 1) throw wrongType(name, "INSTANCENAME> or <CLASSNAME");
    if (isElement(children[0], "CLASSNAME")) {
        InstanceNameText classPath;
        classPath.className = requiredAttribute(children[0], "NAME");
        classPath.isClassPath = true;
        return classPath;
    }
    return readInstanceName(children[0]);
}

std::optional<InstanceText> CimRequest::instanceParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() != 1) throw wrongType(name, "INSTANCE");
    return readInstance(children[0]);
}

std::optional<std::pair<InstanceNameText, InstanceText>> CimRequest::namedInstanceParam(
    const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.size() != 1 || !isElement(children[0], "VALUE.NAMEDINSTANCE")) {
        throw wrongType(name, "VALUE.NAMEDINSTANCE");
    }
    std::vector<pugi::xml_node> parts = elementChildren(children[0]);
    if (parts.size() != 2) throw InvalidRequest("VALUE.NAMEDINSTANCE needs INSTANCENAME and INSTANCE");
    return std::make_pair(readInstanceName(parts[0]), readInstance(parts[1]));
}

std::optional<TextValue> CimRequest::valueParam(const std::string& name) const {
    pugi::xml_node node = findParam(name);
    if (!node) return std::nullopt;
    std::vector<pugi::xml_node> children = elementChildren(node);
    if (children.empty()) return TextValue::null();
    if (children.size() != 1) throw wrongType(name, "VALUE> or <VALUE.ARRAY");
    if (isElement(children[0], "VALUE")) return TextValue::scalar(leafText(children[0]));
    if (isElement(children[0], "VALUE.ARRAY")) return readValueArray(children[0]);
    throw wrongType(name, "VALUE> or <VALUE.ARRAY");
}

namespace {

// Whether the call element of a body ends before `offset`.
bool completeCallBefore(const std::string& body, std::ptrdiff_t offset) {
    for (const char* end : {"</IMETHODCALL>", "</METHODCALL>"}) {
        std::size_t at = body.rfind(end);
        if (at != std::string::npos && static_cast<std::ptrdiff_t>(at + std::strlen(end)) <= offset) return true;
    }
    return false;
}

}  // namespace

CimRequest parseCimRequest(const std::string& body) {
    auto document = std::make_shared<pugi::xml_document>();
    // Whitespace-only text is kept when it is a value's only content. Text
    // reaches the operation as sent: owcimomd's parser turns neither a
    // carriage return into a line feed nor a tab in an attribute into a space.
    unsigned int options = (pugi::parse_default & ~(pugi::parse_eol | pugi::parse_wconv_attribute)) |
                           pugi::parse_doctype | pugi::parse_ws_pcdata_single;
    pugi::xml_parse_result parsed = document->load_buffer(body.data(), body.size(), options, pugi::encoding_utf8);
    if (!parsed && parsed.status == pugi::status_end_element_mismatch && completeCallBefore(body, parsed.offset)) {
        // owcimomd's parser runs the call once it has read it: end tags
        // that do not match after it are not seen.
        parsed.status = pugi::status_ok;
    }
    if (!parsed) {
        throw MalformedRequest(std::string(parsed.description()) + " at offset " +
                               std::to_string(parsed.offset));
    }
    for (pugi::xml_node node : document->children()) {
        // owcimomd's parser cannot read a DOCTYPE: request-not-well-formed.
        if (node.type() == pugi::node_doctype) throw MalformedRequest("DOCTYPE and entity declarations are refused");
    }
    pugi::xml_node cim = document->document_element();
    if (!isElement(cim, "CIM")) throw InvalidRequest("the root element must be CIM");
    requireMajorVersion(cim, "CIMVERSION", "2", "unsupported-cim-version");
    requireMajorVersion(cim, "DTDVERSION", "2", "unsupported-dtd-version");
    std::vector<pugi::xml_node> top = elementChildren(cim);
    if (top.size() != 1 || !isElement(top[0], "MESSAGE")) throw InvalidRequest("CIM must hold one MESSAGE");
    CimRequest request;
    request.document = document;
    request.messageId = requiredAttribute(top[0], "ID");
    std::vector<pugi::xml_node> message = elementChildren(top[0]);
    if (message.size() == 1 && isElement(message[0], "MULTIREQ")) {
        throw MultipleRequestsUnsupported("MULTIREQ is not supported");
    }
    requireMajorVersion(top[0], "PROTOCOLVERSION", "1", "unsupported-protocol-version");
    if (message.size() != 1 || !isElement(message[0], "SIMPLEREQ")) {
        throw InvalidRequest("MESSAGE must hold one SIMPLEREQ");
    }
    std::vector<pugi::xml_node> calls = elementChildren(message[0]);
    if (calls.size() != 1) throw InvalidRequest("SIMPLEREQ must hold one call");
    const pugi::xml_node& call = calls[0];
    if (!isElement(call, "IMETHODCALL") && !isElement(call, "METHODCALL")) {
        // owcimomd answers this one with a CIM error.
        request.intrinsic = true;
        request.methodName = call.name();
        request.fault = "No <METHODCALL> or <IMETHODCALL> element";
        request.faultCode = 1;
        return request;
    }
    request.methodName = requiredAttribute(call, "NAME");
    std::vector<pugi::xml_node> parts = elementChildren(call);
    if (isElement(call, "IMETHODCALL")) {
        request.intrinsic = true;
        if (parts.empty()) throw InvalidRequest("IMETHODCALL needs a LOCALNAMESPACEPATH");
        request.nameSpace = namespaceFromLocalPath(parts[0]);
        if (request.nameSpace.empty()) request.nameSpaceFault = kNoNamespace;
        for (size_t i = 1; i < parts.size(); ++i) {
            if (!isElement(parts[i], "IPARAMVALUE")) throw InvalidRequest("IMETHODCALL holds only IPARAMVALUE");
            std::string name = requiredAttribute(parts[i], "NAME");
            // As owcimomd reads parameters, one given again replaces the first.
            bool known = false;
            for (auto& param : request.intrinsicParams) {
                if (namesEqual(param.first, name)) {
                    param.second = parts[i];
                    known = true;
                }
            }
            if (!known) request.intrinsicParams.emplace_back(name, parts[i]);
        }
    } else if (isElement(call, "METHODCALL")) {
        request.intrinsic = false;
        if (parts.empty() || !(isElement(parts[0], "LOCALINSTANCEPATH") || isElement(parts[0], "LOCALCLASSPATH"))) {
            throw InvalidRequest("METHODCALL needs LOCALINSTANCEPATH or LOCALCLASSPATH");
        }
        readExtrinsicTarget(request, parts[0]);
        for (size_t i = 1; i < parts.size(); ++i) {
            if (!isElement(parts[i], "PARAMVALUE")) throw InvalidRequest("METHODCALL holds only PARAMVALUE");
            request.parameters.push_back(readParamValue(parts[i]));
        }
    } else {
        throw InvalidRequest("SIMPLEREQ must hold IMETHODCALL or METHODCALL");
    }
    return request;
}

}  // namespace cimhost
