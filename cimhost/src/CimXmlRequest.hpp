// Reads a CIM-XML request body (one SIMPLEREQ) into plain text structures.
// Values stay text here; they get their CIM types in the dispatcher, which
// knows the class definitions.
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include "ClassDefinition.hpp"

namespace cimhost {

// The body is not well-formed XML (HTTP 400, request-not-well-formed).
class MalformedRequest : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Well-formed, but not a CIM-XML request we accept (HTTP 400,
// request-not-valid). Also used for DOCTYPE and entity declarations.
class InvalidRequest : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A CIM, DTD or protocol version of another major number (HTTP 501); the
// message is the CIMError value.
class UnsupportedVersion : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A request that owcimomd fails with a CIM error while it reads it (a
// numeric key that is no number: CIM error 1); answered as that CIM error.
class RequestFault : public std::runtime_error {
public:
    RequestFault(int code, const std::string& message) : std::runtime_error(message), code(code) {}
    int code;
};

// A MULTIREQ (HTTP 501, multiple-requests-unsupported).
class MultipleRequestsUnsupported : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct KeyBindingText {
    std::string name;
    std::string valueType;  // "string", "boolean" or "numeric"
    std::string type;       // the TYPE attribute; empty when absent
    std::string text;
};

// An INSTANCENAME, or a class path when `keys` is empty and isClassPath.
struct InstanceNameText {
    std::string className;
    std::vector<KeyBindingText> keys;
    bool isClassPath = false;
};

struct PropertyText {
    std::string name;
    std::string type;  // the TYPE attribute; empty when absent
    bool isArray = false;
    bool isReference = false;
    std::string referenceClass;
    TextValue value;
    std::optional<InstanceNameText> referenceValue;
};

struct InstanceText {
    std::string className;
    std::vector<PropertyText> properties;
};

struct ParamValueText {
    std::string name;
    std::string paramType;  // may be empty: wbemcli sends none
    TextValue value;
    std::optional<InstanceNameText> referenceValue;
};

class CimRequest {
public:
    std::string messageId;
    bool intrinsic = true;
    std::string methodName;
    std::string nameSpace;
    // Set when the LOCALNAMESPACEPATH names no NAMESPACE: owcimomd's XML
    // parser then fails the request, whatever it asks, with CIM error 4 and
    // this text.
    std::string nameSpaceFault;
    // Set when reading the method call's target failed as owcimomd's would
    // (RequestFault): answered with CIM error `faultCode` and this text.
    std::string fault;
    int faultCode = 0;
    // Extrinsic calls: the target object (instance path or class path) and
    // the parameters in request order.
    InstanceNameText target;
    std::vector<ParamValueText> parameters;

    // Intrinsic parameters by name (case-insensitive). Each reader throws
    // InvalidRequest when the parameter is present in the wrong form.
    bool hasParam(const std::string& name) const;
    std::optional<bool> booleanParam(const std::string& name) const;
    std::optional<std::string> classNameParam(const std::string& name) const;
    std::optional<std::string> stringParam(const std::string& name) const;
    // Absent or NULL gives nullopt; an empty VALUE.ARRAY an empty list.
    std::optional<std::vector<std::string>> stringArrayParam(const std::string& name) const;
    // INSTANCENAME, or for ObjectName also a CLASSNAME (a class path).
    std::optional<InstanceNameText> objectNameParam(const std::string& name) const;
    std::optional<InstanceText> instanceParam(const std::string& name) const;
    // VALUE.NAMEDINSTANCE: the name and the instance.
    std::optional<std::pair<InstanceNameText, InstanceText>> namedInstanceParam(const std::string& name) const;
    // A single VALUE (SetProperty's NewValue); nullopt when absent.
    std::optional<TextValue> valueParam(const std::string& name) const;

    std::shared_ptr<pugi::xml_document> document;
    std::vector<std::pair<std::string, pugi::xml_node>> intrinsicParams;

private:
    pugi::xml_node findParam(const std::string& name) const;
};

// Parses a request body. Throws MalformedRequest, InvalidRequest,
// UnsupportedVersion or MultipleRequestsUnsupported.
CimRequest parseCimRequest(const std::string& body);

}  // namespace cimhost
