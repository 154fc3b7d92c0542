// Builds response XML as text. The client's response scanner accepts
// self-closed tags only for CLASSNAME, NAMESPACE and ERROR, so every other
// element is written with explicit start and end tags, even when empty.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace cimhost {

using XmlAttributes = std::initializer_list<std::pair<const char*, std::string>>;
// Attributes collected at run time.
using XmlAttributeList = std::vector<std::pair<const char*, std::string>>;

class XmlWriter {
public:
    XmlWriter& start(const char* name, XmlAttributes attributes = {}) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += '>';
        return *this;
    }
    XmlWriter& start(const char* name, const XmlAttributeList& attributes) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += '>';
        return *this;
    }
    XmlWriter& end(const char* name) {
        out_ += "</";
        out_ += name;
        out_ += '>';
        return *this;
    }
    // Only for CLASSNAME, NAMESPACE and ERROR.
    XmlWriter& selfClosed(const char* name, XmlAttributes attributes = {}) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += "/>";
        return *this;
    }
    XmlWriter& text(const std::string& content) {
        out_ += escape(content, false);
        return *this;
    }
    // <name attrs>content</name>
    XmlWriter& leaf(const char* name, const std::string& content, XmlAttributes attributes = {}) {
        return start(name, attributes).text(content).end(name);
    }
    XmlWriter& raw(const std::string& markup) {
        out_ += markup;
        return *this;
    }
    const std::string& str() const { return out_; }

    // Escapes &, <, > and carriage returns always, and ", line feeds and tabs
    // inside attributes, as owcimomd does where a parser would change them.
    static std::string escape(const std::string& content, bool attribute) {
        std::string escaped;
        escaped.reserve(content.size());
        for (char c : content) {
            switch (c) {
                case '&': escaped += "&amp;"; break;
                case '<': escaped += "&lt;"; break;
                case '>': escaped += "&gt;"; break;
                case '"': escaped += attribute ? "&quot;" : "\""; break;
                case '\n': escaped += attribute ? "&#10;" : "\n"; break;
                case '\r': escaped += "&#13;"; break;
                case '\t': escaped += attribute ? "&#9;" : "\t"; break;
                default: escaped += c; break;
            }
        }
        return escaped;
    }

private:
    template <class Attributes>
    void writeAttributes(const Attributes& attributes) {
        for (const auto& [name, value] : attributes) {
            out_ += ' ';
            out_ += name;
            out_ += "=\"";
            out_ += escape(value, true);
            out_ += '"';
        }
    }

    std::string out_;
};

}  // namespace cimhost
