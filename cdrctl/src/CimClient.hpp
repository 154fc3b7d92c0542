// A small CIM-XML client: the intrinsic operations cdrctl needs and extrinsic
// method calls, over HTTP or HTTPS with Basic credentials.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace httplib {
class Client;
enum class Error;
}

namespace cdrctl {

// A value as text: null, a scalar, or an array.
struct CimValue {
    bool isNull = true;
    bool isArray = false;
    std::vector<std::string> elements;  // one element for a scalar

    static CimValue scalar(std::string text) { return {false, false, {std::move(text)}}; }
    const std::string& text() const;  // the scalar's text; empty for null
};

struct CimQualifier {
    std::string name;
    std::string type;
    CimValue value;
};

struct CimProperty {
    std::string name;
    std::string type;
    CimValue value;
    std::vector<CimQualifier> qualifiers;

    const CimQualifier* qualifier(const std::string& qualifierName) const;
    // The "Applicable" qualifier's value; true when the property has none.
    bool applicable() const;
};

struct KeyBinding {
    std::string name;
    std::string valueType;  // "string", "numeric" or "boolean"
    std::string text;
};

struct InstanceName {
    std::string className;
    std::vector<KeyBinding> keys;
    std::string keyText(const std::string& keyName) const;
};

struct Instance {
    std::string className;
    std::vector<CimProperty> properties;
    const CimProperty* property(const std::string& propertyName) const;
};

// The object manager answered with <ERROR CODE DESCRIPTION>.
class CimError : public std::runtime_error {
public:
    CimError(int code, std::string description);
    int code() const { return code_; }
    const std::string& description() const { return description_; }
    static const char* codeName(int code);

private:
    int code_;
    std::string description_;
};

// The request did not get a CIM answer: connection, TLS, HTTP status or a
// response that is not CIM-XML.
class TransportError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// HTTP 401: credentials missing or refused.
class AuthenticationError : public TransportError {
public:
    using TransportError::TransportError;
};

struct Connection {
    std::string url = "http://127.0.0.1:5988";
    std::string nameSpace = "root/cimv2";
    std::string user;
    std::string password;
    bool verifyCertificate = true;
    std::string caFile;
    int timeoutSeconds = 60;  // for an answer; for the connection at most 10
};

class CimClient {
public:
    explicit CimClient(Connection connection);
    ~CimClient();

    const Connection& connection() const { return connection_; }
    void setCredentials(std::string user, std::string password);

    std::vector<InstanceName> enumerateInstanceNames(const std::string& className);
    // Properties with their qualifiers (the "Applicable" qualifier says
    // whether a property means anything in the object's current state).
    Instance getInstance(const InstanceName& name);
    // Sends `properties` inside the instance together with the key
    // properties, and a PropertyList naming exactly those, so the object
    // manager neither adds class properties nor loses the keys.
    void modifyInstance(const InstanceName& name, const std::vector<CimProperty>& properties);
    CimValue invokeMethod(const InstanceName& name, const std::string& method);

private:
    std::string modifyInstanceBody(const InstanceName& name, const std::vector<CimProperty>& properties) const;
    std::string post(const std::string& cimMethod, const std::string& cimObject, const std::string& body);
    // At most 10 s to connect, less when the answer is awaited for less.
    int connectTimeoutSeconds() const;
    // Why a request that waited `waited` got no answer, in words.
    std::string failureReason(httplib::Error error, std::chrono::steady_clock::duration waited) const;

    Connection connection_;
    std::string host_;
    int port_ = 0;
    std::string path_;
    std::unique_ptr<httplib::Client> http_;
};

}  // namespace cdrctl
