#include "CimClient.hpp"

#include <httplib.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <regex>

#include "TransportFailure.hpp"
#include "XmlWriter.hpp"

namespace cdrctl {

using cimhost::XmlWriter;

namespace {

bool equalsIgnoreCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

CimValue readValue(const pugi::xml_node& holder) {
    CimValue value;
    if (pugi::xml_node scalar = holder.child("VALUE")) {
        value = CimValue::scalar(scalar.text().get());
    } else if (pugi::xml_node array = holder.child("VALUE.ARRAY")) {
        value.isNull = false;
        value.isArray = true;
        for (pugi::xml_node item : array.children("VALUE")) value.elements.push_back(item.text().get());
    }
    return value;
}

InstanceName readInstanceName(const pugi::xml_node& node) {
    InstanceName name;
    name.className = node.attribute("CLASSNAME").value();
    for (pugi::xml_node binding : node.children("KEYBINDING")) {
        pugi::xml_node key = binding.child("KEYVALUE");
        const char* valueType = key.attribute("VALUETYPE").value();
        name.keys.push_back({binding.attribute("NAME").value(), *valueType ? valueType : "string", key.text().get()});
    }
    return name;
}

Instance readInstance(const pugi::xml_node& node) {
    Instance instance;
    instance.className = node.attribute("CLASSNAME").value();
    for (pugi::xml_node child : node.children()) {
        std::string element = child.name();
        if (element != "PROPERTY" && element != "PROPERTY.ARRAY") continue;
        CimProperty property{child.attribute("NAME").value(), child.attribute("TYPE").value(), readValue(child), {}};
        for (pugi::xml_node q : child.children("QUALIFIER"))
            property.qualifiers.push_back({q.attribute("NAME").value(), q.attribute("TYPE").value(), readValue(q)});
        instance.properties.push_back(std::move(property));
    }
    return instance;
}

void writeNameSpace(XmlWriter& xml, const std::string& nameSpace) {
    xml.start("LOCALNAMESPACEPATH");
    size_t from = 0;
    while (from <= nameSpace.size()) {
        size_t slash = nameSpace.find('/', from);
        if (slash == std::string::npos) slash = nameSpace.size();
        if (slash > from) xml.selfClosed("NAMESPACE", {{"NAME", nameSpace.substr(from, slash - from)}});
        from = slash + 1;
    }
    xml.end("LOCALNAMESPACEPATH");
}

void writeInstanceName(XmlWriter& xml, const InstanceName& name) {
    xml.start("INSTANCENAME", {{"CLASSNAME", name.className}});
    for (const KeyBinding& key : name.keys) {
        xml.start("KEYBINDING", {{"NAME", key.name}})
            .leaf("KEYVALUE", key.text, {{"VALUETYPE", key.valueType}})
            .end("KEYBINDING");
    }
    xml.end("INSTANCENAME");
}

void writeProperty(XmlWriter& xml, const CimProperty& property) {
    xml.start("PROPERTY", {{"NAME", property.name}, {"TYPE", property.type}});
    if (!property.value.isNull) xml.leaf("VALUE", property.value.text());
    xml.end("PROPERTY");
}

std::string envelope(const std::function<void(XmlWriter&)>& call) {
    XmlWriter xml;
    xml.raw("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n")
        .start("CIM", {{"CIMVERSION", "2.0"}, {"DTDVERSION", "2.0"}})
        .start("MESSAGE", {{"ID", "1001"}, {"PROTOCOLVERSION", "1.0"}})
        .start("SIMPLEREQ");
    call(xml);
    xml.end("SIMPLEREQ").end("MESSAGE").end("CIM");
    return xml.str();
}

std::string intrinsic(const std::string& nameSpace, const char* operation,
                      const std::function<void(XmlWriter&)>& parameters) {
    return envelope([&](XmlWriter& xml) {
        xml.start("IMETHODCALL", {{"NAME", operation}});
        writeNameSpace(xml, nameSpace);
        parameters(xml);
        xml.end("IMETHODCALL");
    });
}

void booleanParameter(XmlWriter& xml, const char* name, bool value) {
    xml.start("IPARAMVALUE", {{"NAME", name}}).leaf("VALUE", value ? "TRUE" : "FALSE").end("IPARAMVALUE");
}

// The response's IRETURNVALUE or METHODRESPONSE, after checking for ERROR.
pugi::xml_node answer(const pugi::xml_document& document, const char* responseElement) {
    pugi::xml_node response =
        document.child("CIM").child("MESSAGE").child("SIMPLERSP").child(responseElement);
    if (!response)
        throw TransportError("the answer is not a CIM-XML response (no " + std::string(responseElement) + ")");
    if (pugi::xml_node error = response.child("ERROR")) {
        throw CimError(std::atoi(error.attribute("CODE").value()), error.attribute("DESCRIPTION").value());
    }
    return response;
}

// Percent-encodes the CIMObject header value as DSP0200 asks.
std::string headerEncode(const std::string& text) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : text) {
        if (std::isalnum(c) || c == '_' || c == '.' || c == '-' || c == '/' || c == '=' || c == ',') {
            out += static_cast<char>(c);
        } else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

std::string objectHeader(const std::string& nameSpace, const InstanceName& name) {
    std::string text = nameSpace + ":" + name.className;
    for (size_t i = 0; i < name.keys.size(); ++i)
        text += (i ? "," : ".") + name.keys[i].name + "=\"" + name.keys[i].text + "\"";
    return headerEncode(text);
}

}  // namespace

const std::string& CimValue::text() const {
    static const std::string empty;
    return elements.empty() ? empty : elements.front();
}

const CimQualifier* CimProperty::qualifier(const std::string& qualifierName) const {
    for (const CimQualifier& q : qualifiers)
        if (equalsIgnoreCase(q.name, qualifierName)) return &q;
    return nullptr;
}

bool CimProperty::applicable() const {
    const CimQualifier* q = qualifier("Applicable");
    return !q || q->value.isNull || !equalsIgnoreCase(q->value.text(), "false");
}

std::string InstanceName::keyText(const std::string& keyName) const {
    for (const KeyBinding& key : keys)
        if (equalsIgnoreCase(key.name, keyName)) return key.text;
    return {};
}

const CimProperty* Instance::property(const std::string& propertyName) const {
    for (const CimProperty& p : properties)
        if (equalsIgnoreCase(p.name, propertyName)) return &p;
    return nullptr;
}

CimError::CimError(int code, std::string description)
    : std::runtime_error("CIM error " + std::to_string(code)), code_(code), description_(std::move(description)) {}

const char* CimError::codeName(int code) {
    static const char* const names[] = {
        "",
        "CIM_ERR_FAILED",
        "CIM_ERR_ACCESS_DENIED",
        "CIM_ERR_INVALID_NAMESPACE",
        "CIM_ERR_INVALID_PARAMETER",
        "CIM_ERR_INVALID_CLASS",
        "CIM_ERR_NOT_FOUND",
        "CIM_ERR_NOT_SUPPORTED",
        "CIM_ERR_CLASS_HAS_CHILDREN",
        "CIM_ERR_CLASS_HAS_INSTANCES",
        "CIM_ERR_INVALID_SUPERCLASS",
        "CIM_ERR_ALREADY_EXISTS",
        "CIM_ERR_NO_SUCH_PROPERTY",
        "CIM_ERR_TYPE_MISMATCH",
        "CIM_ERR_QUERY_LANGUAGE_NOT_SUPPORTED",
        "CIM_ERR_INVALID_QUERY",
        "CIM_ERR_METHOD_NOT_AVAILABLE",
        "CIM_ERR_METHOD_NOT_FOUND",
    };
    return code >= 1 && code <= 17 ? names[code] : "CIM_ERR_UNKNOWN";
}

CimClient::CimClient(Connection connection) : connection_(std::move(connection)) {
    static const std::regex form(R"(^(https?)://(\[[^\]/]+\]|[^:/]+)(?::([0-9]{1,5}))?(/.*)?$)", std::regex::icase);
    std::smatch parts;
    std::string url = connection_.url;
    if (url.find("://") == std::string::npos) url = "http://" + url;
    if (!std::regex_match(url, parts, form))
        throw TransportError("the URL \"" + connection_.url + "\" is not of the form http[s]://HOST[:PORT][/PATH]");
    std::string scheme = parts[1].str();
    std::transform(scheme.begin(), scheme.end(), scheme.begin(), ::tolower);
    host_ = parts[2].str();
    if (host_.front() == '[') host_ = host_.substr(1, host_.size() - 2);
    port_ = parts[3].matched ? std::stoi(parts[3].str()) : scheme == "https" ? 443 : 80;
    path_ = parts[4].matched && parts[4].str() != "/" ? parts[4].str() : "/cimom";
    http_ = std::make_unique<httplib::Client>(parts[1].str() + "://" + parts[2].str() +
                                              (parts[3].matched ? ":" + parts[3].str() : ""));
    if (!http_->is_valid()) throw TransportError("the URL \"" + connection_.url + "\" cannot be used");
    http_->set_keep_alive(true);
    // The request goes out in two writes (headers, then body): without this
    // the body of a request on a kept-alive connection waits for the delayed
    // acknowledgement of the headers.
    http_->set_tcp_nodelay(true);
    http_->set_connection_timeout(connectTimeoutSeconds());
    http_->set_read_timeout(connection_.timeoutSeconds);
    http_->set_write_timeout(connection_.timeoutSeconds);
    http_->enable_server_certificate_verification(connection_.verifyCertificate);
    if (!connection_.caFile.empty()) http_->set_ca_cert_path(connection_.caFile.c_str());
    if (!connection_.user.empty()) http_->set_basic_auth(connection_.user, connection_.password);
}

CimClient::~CimClient() = default;

void CimClient::setCredentials(std::string user, std::string password) {
    connection_.user = std::move(user);
    connection_.password = std::move(password);
    http_->set_basic_auth(connection_.user, connection_.password);
}

std::string CimClient::post(const std::string& cimMethod, const std::string& cimObject, const std::string& body) {
    // OpenWBEM 3.0 answers 406 to a request that does not accept XML.
    httplib::Headers headers{{"Accept", "application/xml"},
                             {"CIMOperation", "MethodCall"},
                             {"CIMMethod", cimMethod},
                             {"CIMObject", cimObject},
                             {"CIMProtocolVersion", "1.0"}};
    auto sent = std::chrono::steady_clock::now();
    httplib::Result result = http_->Post(path_, headers, body, "application/xml; charset=\"utf-8\"");
    if (!result) {
        throw TransportError("no answer from " + connection_.url + ": " +
                             failureReason(result.error(), std::chrono::steady_clock::now() - sent));
    }
    if (result->status == 401) {
        throw AuthenticationError(connection_.user.empty()
                                      ? "the object manager asks for a user name and password"
                                      : "the object manager refused the user name or password");
    }
    if (result->status != 200) {
        std::string text = "HTTP " + std::to_string(result->status) + " " + result->reason;
        if (result->has_header("CIMError")) text += " (CIMError: " + result->get_header_value("CIMError") + ")";
        throw TransportError("the object manager answered " + text);
    }
    return result->body;
}

int CimClient::connectTimeoutSeconds() const { return std::max(1, std::min(10, connection_.timeoutSeconds)); }

std::string CimClient::failureReason(httplib::Error error, std::chrono::steady_clock::duration waited) const {
    switch (error) {
        case httplib::Error::Connection:
            return connectFailure(host_, port_, connectTimeoutSeconds());
        case httplib::Error::ConnectionTimeout:
            return "timed out after " + std::to_string(connectTimeoutSeconds()) + " s";
        default:
            break;
    }
    // Reading, writing and the TLS handshake wait at most timeoutSeconds.
    if (waited >= std::chrono::seconds(connection_.timeoutSeconds))
        return "timed out after " + std::to_string(connection_.timeoutSeconds) + " s";
    switch (error) {
        case httplib::Error::Read:
            return "the connection closed before the answer";
        case httplib::Error::Write:
            return "the connection closed while the request was sent";
        case httplib::Error::SSLConnection:
            return handshakeFailure();
        case httplib::Error::SSLLoadingCerts:
            return "cannot load the certificates of " + connection_.caFile;
        case httplib::Error::SSLServerVerification:
            return certificateFailure(http_->get_openssl_verify_result(), host_) +
                   " (give --cacert FILE to trust the server's certificate, or --insecure)";
        default:
            return httplib::to_string(error);
    }
}

namespace {

pugi::xml_document parseResponse(const std::string& body) {
    pugi::xml_document document;
    pugi::xml_parse_result parsed = document.load_buffer(body.data(), body.size());
    if (!parsed) throw TransportError(std::string("the answer is not well-formed XML: ") + parsed.description());
    return document;
}

}  // namespace

std::vector<InstanceName> CimClient::enumerateInstanceNames(const std::string& className) {
    std::string body = intrinsic(connection_.nameSpace, "EnumerateInstanceNames", [&](XmlWriter& xml) {
        xml.start("IPARAMVALUE", {{"NAME", "ClassName"}})
            .selfClosed("CLASSNAME", {{"NAME", className}})
            .end("IPARAMVALUE");
    });
    pugi::xml_document document =
        parseResponse(post("EnumerateInstanceNames", headerEncode(connection_.nameSpace), body));
    std::vector<InstanceName> names;
    for (pugi::xml_node name : answer(document, "IMETHODRESPONSE").child("IRETURNVALUE").children("INSTANCENAME"))
        names.push_back(readInstanceName(name));
    return names;
}

Instance CimClient::getInstance(const InstanceName& name) {
    std::string body = intrinsic(connection_.nameSpace, "GetInstance", [&](XmlWriter& xml) {
        booleanParameter(xml, "LocalOnly", false);
        booleanParameter(xml, "IncludeQualifiers", true);
        booleanParameter(xml, "IncludeClassOrigin", false);
        xml.start("IPARAMVALUE", {{"NAME", "InstanceName"}});
        writeInstanceName(xml, name);
        xml.end("IPARAMVALUE");
    });
    pugi::xml_document document = parseResponse(post("GetInstance", headerEncode(connection_.nameSpace), body));
    pugi::xml_node instance = answer(document, "IMETHODRESPONSE").child("IRETURNVALUE").child("INSTANCE");
    if (!instance) throw TransportError("the GetInstance answer holds no INSTANCE");
    return readInstance(instance);
}

std::string CimClient::modifyInstanceBody(const InstanceName& name, const std::vector<CimProperty>& properties) const {
    return intrinsic(connection_.nameSpace, "ModifyInstance", [&](XmlWriter& xml) {
        xml.start("IPARAMVALUE", {{"NAME", "ModifiedInstance"}}).start("VALUE.NAMEDINSTANCE");
        writeInstanceName(xml, name);
        xml.start("INSTANCE", {{"CLASSNAME", name.className}});
        for (const KeyBinding& key : name.keys)
            writeProperty(xml, {key.name, "string", CimValue::scalar(key.text), {}});
        for (const CimProperty& property : properties) writeProperty(xml, property);
        xml.end("INSTANCE").end("VALUE.NAMEDINSTANCE").end("IPARAMVALUE");
        booleanParameter(xml, "IncludeQualifiers", false);
        // The object manager keeps only the listed properties (in the
        // list's order) and would otherwise add every other property of the
        // class; the keys are listed so the provider still finds them.
        xml.start("IPARAMVALUE", {{"NAME", "PropertyList"}}).start("VALUE.ARRAY");
        for (const KeyBinding& key : name.keys) xml.leaf("VALUE", key.name);
        for (const CimProperty& property : properties) xml.leaf("VALUE", property.name);
        xml.end("VALUE.ARRAY").end("IPARAMVALUE");
    });
}

void CimClient::modifyInstance(const InstanceName& name, const std::vector<CimProperty>& properties) {
    std::string body = modifyInstanceBody(name, properties);
    pugi::xml_document document = parseResponse(post("ModifyInstance", headerEncode(connection_.nameSpace), body));
    answer(document, "IMETHODRESPONSE");
}

CimValue CimClient::invokeMethod(const InstanceName& name, const std::string& method) {
    std::string body = envelope([&](XmlWriter& xml) {
        xml.start("METHODCALL", {{"NAME", method}}).start("LOCALINSTANCEPATH");
        writeNameSpace(xml, connection_.nameSpace);
        writeInstanceName(xml, name);
        xml.end("LOCALINSTANCEPATH").end("METHODCALL");
    });
    pugi::xml_document document = parseResponse(post(method, objectHeader(connection_.nameSpace, name), body));
    return readValue(answer(document, "METHODRESPONSE").child("RETURNVALUE"));
}

}  // namespace cdrctl
