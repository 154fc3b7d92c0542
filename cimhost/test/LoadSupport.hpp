// Test support for the crash and load tests: a host whose process id is
// known (for SIGKILL and its resident memory), a keep-alive CIM-XML client,
// the requests the tests send, and reading the registry through zpo.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <httplib.h>

#include <pugixml.hpp>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "HostProcess.hpp"

namespace cimhost::test {

// cimhost serving the CDR module, started and killed by process id.
class KillableHost {
public:
    KillableHost(const std::string& stateDir, int generation) : logPath_(stateDir + "/host" + std::to_string(generation) + ".log") {
        pid_ = fork();
        if (pid_ == 0) {
            FILE* traces = std::fopen((logPath_ + ".stdout").c_str(), "w");
            if (traces) dup2(fileno(traces), STDOUT_FILENO);
            execl(CIMHOST_BINARY, CIMHOST_BINARY, "--provider", CDR_PROVIDER, "--mof", CDR_MOF, "--listen",
                  "127.0.0.1:0", "--log", logPath_.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        const std::string marker = "listening on 127.0.0.1:";
        for (int i = 0; i < 1000 && port_ == 0; ++i) {
            std::string log = readFile(logPath_);
            size_t at = log.find(marker);
            if (at != std::string::npos) port_ = std::atoi(log.c_str() + at + marker.size());
            else std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    ~KillableHost() { stop(SIGTERM); }
    KillableHost(const KillableHost&) = delete;
    KillableHost& operator=(const KillableHost&) = delete;

    int port() const { return port_; }
    std::string log() const { return readFile(logPath_); }

    // Sends `signal` and reaps the process; returns its wait status.
    int stop(int signal) {
        int status = 0;
        if (pid_ > 0) {
            kill(pid_, signal);
            waitpid(pid_, &status, 0);
            pid_ = -1;
        }
        return status;
    }

    // VmRSS from /proc, in KiB; 0 when unknown.
    long residentKiB() const {
        std::string status = readFile("/proc/" + std::to_string(pid_) + "/status");
        size_t at = status.find("VmRSS:");
        return at == std::string::npos ? 0 : std::atol(status.c_str() + at + 6);
    }

private:
    std::string logPath_;
    pid_t pid_ = -1;
    int port_ = 0;
};

// One CIM-XML answer: the HTTP status, the body, and what the body says.
struct CimAnswer {
    int httpStatus = 0;        // 0: no answer (connection failed or closed)
    std::string body;
    bool wellFormed = false;   // CIM/MESSAGE/SIMPLERSP with one response element
    int cimError = 0;          // the ERROR CODE, 0 when none
};

inline CimAnswer readAnswer(int httpStatus, const std::string& body) {
    CimAnswer answer;
    answer.httpStatus = httpStatus;
    answer.body = body;
    pugi::xml_document document;
    if (!document.load_buffer(body.data(), body.size())) return answer;
    pugi::xml_node response = document.child("CIM").child("MESSAGE").child("SIMPLERSP").first_child();
    std::string name = response.name();
    answer.wellFormed = name == "IMETHODRESPONSE" || name == "METHODRESPONSE";
    if (pugi::xml_node error = response.child("ERROR")) answer.cimError = error.attribute("CODE").as_int(-1);
    return answer;
}

// A keep-alive connection to the host.
class CimClient {
public:
    explicit CimClient(int port) : http_("127.0.0.1", port) {
        http_.set_keep_alive(true);
        http_.set_read_timeout(30, 0);
    }

    CimAnswer call(const std::string& method, const std::string& body) {
        httplib::Headers headers = {{"CIMOperation", "MethodCall"}, {"CIMMethod", method}, {"Accept", "application/xml"}};
        auto result = http_.Post("/cimom", headers, body, "application/xml; charset=utf-8");
        if (!result) return {};
        return readAnswer(result->status, result->body);
    }

private:
    httplib::Client http_;
};

// A request the tests send: the CIMMethod header and the body.
struct CimCall {
    std::string method;
    std::string body;
};

inline std::string xmlEscape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '&': out += "&amp;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

inline std::string keyBindings(const std::vector<std::pair<std::string, std::string>>& keys) {
    std::string out;
    for (const auto& [name, value] : keys)
        out += "<KEYBINDING NAME=\"" + name + "\"><KEYVALUE VALUETYPE=\"string\">" + xmlEscape(value) +
               "</KEYVALUE></KEYBINDING>";
    return out;
}

inline std::string requestEnvelope(const std::string& simpleRequest) {
    return "<?xml version=\"1.0\" encoding=\"utf-8\" ?><CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"1\" "
           "PROTOCOLVERSION=\"1.0\"><SIMPLEREQ>" + simpleRequest + "</SIMPLEREQ></MESSAGE></CIM>";
}

const char* const kNamespace = "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"/><NAMESPACE NAME=\"cimv2\"/></LOCALNAMESPACEPATH>";

inline CimCall intrinsicCall(const std::string& name, const std::string& params) {
    return {name, requestEnvelope("<IMETHODCALL NAME=\"" + name + "\">" + kNamespace + params + "</IMETHODCALL>")};
}

inline CimCall enumerateInstances(const std::string& className) {
    return intrinsicCall("EnumerateInstances",
                         "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"" + className + "\"/></IPARAMVALUE>");
}

inline CimCall enumerateInstanceNames(const std::string& className) {
    return intrinsicCall("EnumerateInstanceNames",
                         "<IPARAMVALUE NAME=\"ClassName\"><CLASSNAME NAME=\"" + className + "\"/></IPARAMVALUE>");
}

using Keys = std::vector<std::pair<std::string, std::string>>;

inline const Keys& serviceKeys() {
    static const Keys keys = {{"SystemCreationClassName", "QTX_System"}, {"SystemName", "QTX"},
                              {"CreationClassName", "QTX_CDRService"}, {"Name", "CDRService"}};
    return keys;
}

inline CimCall getInstance(const std::string& className, const Keys& keys) {
    return intrinsicCall("GetInstance", "<IPARAMVALUE NAME=\"InstanceName\"><INSTANCENAME CLASSNAME=\"" + className +
                                            "\">" + keyBindings(keys) + "</INSTANCENAME></IPARAMVALUE>");
}

// ModifyInstance of one property: the instance carries its keys (the module
// finds the object by them) and the changed property, and the PropertyList
// names those (OpenWBEM fills in the class's other properties with their
// defaults, and 3.2 then keeps only the listed ones).
inline CimCall modifyInstance(const std::string& className, const Keys& keys, const std::string& property,
                              const std::string& type, const std::string& value) {
    std::string keyProperties;
    std::string listed;
    for (const auto& [name, keyValue] : keys) {
        keyProperties += "<PROPERTY NAME=\"" + name + "\" TYPE=\"string\"><VALUE>" + xmlEscape(keyValue) +
                         "</VALUE></PROPERTY>";
        listed += "<VALUE>" + name + "</VALUE>";
    }
    return intrinsicCall(
        "ModifyInstance",
        "<IPARAMVALUE NAME=\"ModifiedInstance\"><VALUE.NAMEDINSTANCE><INSTANCENAME CLASSNAME=\"" + className + "\">" +
            keyBindings(keys) + "</INSTANCENAME><INSTANCE CLASSNAME=\"" + className + "\">" + keyProperties +
            "<PROPERTY NAME=\"" + property + "\" TYPE=\"" + type + "\"><VALUE>" + xmlEscape(value) +
            "</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE></IPARAMVALUE><IPARAMVALUE NAME=\"PropertyList\">"
            "<VALUE.ARRAY>" + listed + "<VALUE>" + property + "</VALUE></VALUE.ARRAY></IPARAMVALUE>");
}

inline CimCall invokeMethod(const std::string& className, const Keys& keys, const std::string& method) {
    return {method, requestEnvelope("<METHODCALL NAME=\"" + method + "\"><LOCALINSTANCEPATH>" + kNamespace +
                                    "<INSTANCENAME CLASSNAME=\"" + className + "\">" + keyBindings(keys) +
                                    "</INSTANCENAME></LOCALINSTANCEPATH></METHODCALL>")};
}

inline Keys rowKeys(const std::string& prefix, int row) { return {{"InstanceID", prefix + std::to_string(row)}}; }

// EnumerateInstances and EnumerateInstanceNames of each class in turn
// (the service first, then the prefix rows: calls 2 and 3), then
// GetInstance of one instance of each class.
inline std::vector<CimCall> enumerationsAndGets() {
    const char* classes[] = {"QTX_CDRService", "QTX_CDRServicePrefixBin", "QTX_CDRServiceAccessBin",
                             "QTX_CDRPushSetting", "QTX_CDRPushStatistics", "QTX_CDRPullStatistics"};
    std::vector<CimCall> calls;
    for (const char* cls : classes) {
        calls.push_back(enumerateInstances(cls));
        calls.push_back(enumerateInstanceNames(cls));
    }
    calls.push_back(getInstance("QTX_CDRService", serviceKeys()));
    calls.push_back(getInstance("QTX_CDRServicePrefixBin", rowKeys("CDRServicePrefixBin_", 5)));
    calls.push_back(getInstance("QTX_CDRServiceAccessBin", rowKeys("CDRServiceAccessBin_", 2)));
    calls.push_back(getInstance("QTX_CDRPushSetting", {{"InstanceID", "CDRPushSetting"}}));
    calls.push_back(getInstance("QTX_CDRPushStatistics", {{"Name", "CDRPushStatistic"}}));
    calls.push_back(getInstance("QTX_CDRPullStatistics", {{"Name", "CDRPullStatistic"}}));
    return calls;
}

// The bytes of a binary registry entry as `zpo reg get` prints them; nullopt
// when the entry is missing or not binary.
inline std::optional<std::vector<unsigned>> registryBinary(const std::string& section, const std::string& key,
                                                           const TempDir& scratch) {
    CommandResult got = runCommand(zpoCommand() + " reg get CDR " + section + " '" + key + "'", scratch);
    if (got.exitCode != 0 || got.out.rfind("binary", 0) != 0) return std::nullopt;
    std::vector<unsigned> bytes;
    std::istringstream words(got.out.substr(6));
    std::string word;
    while (words >> word) bytes.push_back(static_cast<unsigned>(std::stoul(word, nullptr, 16)));
    return bytes;
}

// The digits of one row of a digit-bin table: raw digits at the start of
// the row, up to the first byte that is not one or `digitCount`.
inline std::string binRowText(const std::vector<unsigned>& table, size_t row, size_t rowLength, size_t digitCount) {
    std::string text;
    for (size_t i = row * rowLength; i < row * rowLength + digitCount && i < table.size() && table[i] <= 9; ++i)
        text += static_cast<char>('0' + table[i]);
    return text;
}

}  // namespace cimhost::test
