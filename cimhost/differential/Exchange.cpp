#include "Exchange.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <array>
#include <chrono>
#include <cstdio>
#include <sstream>
#include <stdexcept>

#include <boost/asio/buffer.hpp>
#include <boost/beast/http.hpp>
#include <pugixml.hpp>

#include <OW_CIMException.hpp>

namespace cimdiff {
namespace {

namespace http = boost::beast::http;
using Parser = http::response_parser<http::string_body>;

// Parses `bytes` as one HTTP answer; true when it is complete.
bool parse(const std::string& bytes, Parser& parser, boost::system::error_code& error) {
    parser.eager(true);
    parser.header_limit(1 << 20);
    parser.body_limit(64 << 20);
    std::size_t used = 0;
    while (used < bytes.size() && !parser.is_done()) {
        std::size_t n = parser.put(boost::asio::buffer(bytes.data() + used, bytes.size() - used), error);
        if (error == http::error::need_more) {
            error = {};
            if (n == 0) return false;
        } else if (error) {
            return false;
        }
        used += n;
    }
    return parser.is_done();
}

std::string visible(const std::string& text) {
    std::string out;
    for (unsigned char c : text) {
        if (c == '\n') out += "\\n";
        else if (c == '\r') out += "\\r";
        else if (c == '\t') out += "\\t";
        else if (c < 0x20 || c == 0x7f) {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02x", c);
            out += hex;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

// Children of these elements are compared as sets ordered by name:
// properties, qualifiers, methods, parameters and key bindings.
int rank(const std::string& element) {
    if (element == "QUALIFIER") return 0;
    if (element.rfind("PROPERTY", 0) == 0) return 1;
    if (element == "METHOD") return 2;
    if (element.rfind("PARAMETER", 0) == 0) return 3;
    if (element == "KEYBINDING") return 4;
    return -1;
}

void dump(const pugi::xml_node& node, int depth, std::string& out) {
    std::string name = node.name();
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
    out += name;
    std::vector<std::pair<std::string, std::string>> attributes;
    for (const pugi::xml_attribute& a : node.attributes()) attributes.push_back({a.name(), a.value()});
    std::sort(attributes.begin(), attributes.end());
    for (const auto& a : attributes) out += " " + a.first + "=\"" + visible(a.second) + "\"";
    std::string text;
    std::vector<pugi::xml_node> children;
    for (const pugi::xml_node& child : node.children()) {
        if (child.type() == pugi::node_element) children.push_back(child);
        else if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += child.value();
    }
    // The HOST element names the server; nothing else in an answer does.
    if (name != "HOST" && (!text.empty() || (children.empty() && name == "VALUE"))) out += " = \"" + visible(text) + "\"";
    out += "\n";
    std::stable_sort(children.begin(), children.end(), [](const pugi::xml_node& a, const pugi::xml_node& b) {
        int ra = rank(a.name()), rb = rank(b.name());
        if (ra < 0 || rb < 0) return false;
        if (ra != rb) return ra < rb;
        return lower(a.attribute("NAME").value()) < lower(b.attribute("NAME").value());
    });
    for (const pugi::xml_node& child : children) dump(child, depth + 1, out);
}

std::string canonicalBody(const std::string& body) {
    pugi::xml_document document;
    pugi::xml_parse_result parsed = document.load_buffer(body.data(), body.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!parsed) return "body not XML (" + std::string(parsed.description()) + "): " + visible(body.substr(0, 200)) + "\n";
    pugi::xml_node response = document.select_node("/CIM/MESSAGE/SIMPLERSP/*").node();
    pugi::xml_node error = response.child("ERROR");
    if (error) {
        return "error " + std::string(error.attribute("CODE").value()) + "\ndescription " +
               visible(error.attribute("DESCRIPTION").value()) + "\n";
    }
    std::string out;
    dump(document.document_element(), 0, out);
    return out;
}

std::string quoted(const std::string& text) {
    std::string out = "'";
    for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::string run(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) throw std::runtime_error("cannot run " + command);
    std::array<char, 4096> buffer;
    std::size_t n;
    while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0) out.append(buffer.data(), n);
    pclose(pipe);
    return out;
}

std::string zpo(const Target& target, const std::string& arguments) {
    return run("ZPO_ROOT=" + quoted(target.zpoRoot) + " " + target.zpo + " " + arguments + " 2>&1");
}

}  // namespace

std::string exchange(const Target& target, const Request& request, int timeoutSeconds) {
    std::string raw = request.raw;
    std::size_t head = raw.find("\r\n\r\n");
    std::size_t at = raw.find(kHostPlaceholder);
    if (at != std::string::npos && at < head) {
        raw.replace(at, std::string(kHostPlaceholder).size(), "127.0.0.1:" + std::to_string(target.port));
    }
    int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) throw std::runtime_error("socket failed");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(target.port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        close(fd);
        return "";
    }
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSeconds);
    auto remainingMs = [&] {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        return static_cast<int>(std::max<long>(0, left.count()));
    };
    std::size_t sent = 0;
    std::string answer;
    bool complete = false;
    while (!complete && remainingMs() > 0) {
        pollfd p{fd, static_cast<short>(POLLIN | (sent < raw.size() ? POLLOUT : 0)), 0};
        if (poll(&p, 1, remainingMs()) <= 0) break;
        if ((p.revents & POLLOUT) && sent < raw.size()) {
            ssize_t n = send(fd, raw.data() + sent, raw.size() - sent, MSG_NOSIGNAL);
            if (n > 0) sent += static_cast<std::size_t>(n);
            else sent = raw.size();  // the server stopped reading; its answer may follow
        }
        if (p.revents & (POLLIN | POLLHUP | POLLERR)) {
            char buffer[16384];
            ssize_t n = recv(fd, buffer, sizeof buffer, 0);
            if (n <= 0) break;
            answer.append(buffer, static_cast<std::size_t>(n));
            Parser parser;
            boost::system::error_code error;
            complete = parse(answer, parser, error);
        }
    }
    close(fd);
    return answer;
}

std::string canonicalAnswer(const std::string& response) {
    if (response.empty()) return "no answer\n";
    Parser parser;
    boost::system::error_code error;
    if (!parse(response, parser, error)) {
        // An answer without status line and headers: the body alone.
        if (response.rfind("<?xml", 0) == 0) return "status none\n" + canonicalBody(response);
        return "not HTTP (" + (error ? error.message() : std::string("cut short")) + "): " +
               visible(response.substr(0, 120)) + "\n";
    }
    const auto& message = parser.get();
    std::string out = "status " + std::to_string(message.result_int()) + "\n";
    // owcimomd answers a POST in the extension framework's form too ("Man:
    // ...; ns=NN" and "NN-CIMOperation", NN counting its answers); the
    // header's name without its prefix is what a client reads.
    for (const auto& field : message) {
        std::string name(field.name_string());
        if (name.size() > 3 && std::isdigit(static_cast<unsigned char>(name[0])) &&
            std::isdigit(static_cast<unsigned char>(name[1])) && name[2] == '-') {
            name = name.substr(3);
        }
        for (const char* header : {"CIMError", "CIMOperation", "CIMStatusCode", "CIMStatusCodeDescription"}) {
            if (lower(name) == lower(header)) out += "header " + std::string(header) + ": " + std::string(field.value()) + "\n";
        }
    }
    auto challenge = message.find(http::field::www_authenticate);
    if (challenge != message.end()) {
        std::string value(challenge->value());
        out += "header WWW-Authenticate: " + value.substr(0, value.find(' ')) + "\n";
    }
    if (message.result_int() == 200) out += canonicalBody(message.body());
    return out;
}

std::string inSeries32Words(const std::string& canonical) {
    std::istringstream lines(canonical);
    std::string line, out;
    int code = 0;
    while (std::getline(lines, line)) {
        if (line.rfind("error ", 0) == 0) code = std::atoi(line.c_str() + 6);
        if (line.rfind("description ", 0) == 0 && code > 0) {
            std::string text = line.substr(12);
            std::string words = OpenWBEM::CIMException::getCodeDescription(
                static_cast<OpenWBEM::CIMException::ErrNoType>(code));
            if (text == words) text.clear();
            else if (text.rfind(words + " (", 0) == 0 && text.back() == ')') {
                text = text.substr(words.size() + 2, text.size() - words.size() - 3);
            }
            line = "description " + text;
        }
        std::size_t at = line.find("00000000000000.000000+000");
        if (at != std::string::npos) line.replace(at, 25, "00000000000000.000000:000");
        out += line + "\n";
    }
    return out;
}

std::string withoutReturnValueType(const std::string& canonical) {
    std::istringstream lines(canonical);
    std::string line, out;
    while (std::getline(lines, line)) {
        std::size_t start = line.find_first_not_of(' ');
        if (start != std::string::npos && line.compare(start, 11, "RETURNVALUE") == 0) {
            std::size_t type = line.find(" PARAMTYPE=\"");
            if (type != std::string::npos) line.erase(type, line.find('"', type + 12) + 1 - type);
        }
        out += line + "\n";
    }
    return out;
}

std::string deviceState(const Target& target) {
    if (target.zpo.empty()) return "";
    return "registry\n" + zpo(target, "reg list") + "tasks\n" + zpo(target, "sched list");
}

std::string takeQueuedMessages(const Target& target) {
    if (target.zpo.empty()) return "";
    std::string out = zpo(target, "queue listen CDRService --timeout 0.05");
    // zpo ends with "timeout" once the queue stays empty.
    const std::string end = "timeout\n";
    if (out.size() >= end.size() && out.compare(out.size() - end.size(), end.size(), end) == 0) {
        out.erase(out.size() - end.size());
    }
    return out;
}

void copyRegistry(const Target& from, const Target& to, const std::string& scratchFile) {
    zpo(from, "reg backup " + quoted(scratchFile));
    zpo(to, "reg restore " + quoted(scratchFile));
    zpo(to, "queue listen CDRService --timeout 0.05");
}

}  // namespace cimdiff
