// Builds response XML as text. The client's response scanner accepts
// self-closed tags only for CLASSNAME, NAMESPACE and ERROR, so every other
// element is written with explicit start and end tags, even when empty.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cimhost {

// Attributes of one call; the texts must outlive it.
using XmlAttributes = std::initializer_list<std::pair<std::string_view, std::string_view>>;
// Attributes collected at run time.
using XmlAttributeList = std::vector<std::pair<std::string_view, std::string>>;

class XmlWriter {
public:
    // Room for a typical answer, so that writing it seldom reallocates.
    XmlWriter() { out_.reserve(8192); }

    XmlWriter& start(std::string_view name, XmlAttributes attributes = {}) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += '>';
        return *this;
    }
    XmlWriter& start(std::string_view name, const XmlAttributeList& attributes) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += '>';
        return *this;
    }
    XmlWriter& end(std::string_view name) {
        out_ += "</";
        out_ += name;
        out_ += '>';
        return *this;
    }
    // Only for CLASSNAME, NAMESPACE and ERROR.
    XmlWriter& selfClosed(std::string_view name, XmlAttributes attributes = {}) {
        out_ += '<';
        out_ += name;
        writeAttributes(attributes);
        out_ += "/>";
        return *this;
    }
    XmlWriter& text(std::string_view content) {
        appendEscaped(out_, content, false);
        return *this;
    }
    // <name attrs>content</name>
    XmlWriter& leaf(std::string_view name, std::string_view content, XmlAttributes attributes = {}) {
        return start(name, attributes).text(content).end(name);
    }
    // A start tag written piece by piece: open, any attributes, close.
    XmlWriter& open(std::string_view name) {
        out_ += '<';
        out_ += name;
        return *this;
    }
    XmlWriter& attribute(std::string_view name, std::string_view value) {
        out_ += ' ';
        out_ += name;
        out_ += "=\"";
        appendEscaped(out_, value, true);
        out_ += '"';
        return *this;
    }
    XmlWriter& close() {
        out_ += '>';
        return *this;
    }
    XmlWriter& raw(std::string_view markup) {
        out_ += markup;
        return *this;
    }
    const std::string& str() const { return out_; }
    std::string take() { return std::move(out_); }
    // What is written so far, and dropping what came after it.
    size_t size() const { return out_.size(); }
    void truncate(size_t size) { out_.resize(size); }

    // Escapes &, <, > and carriage returns always, and ", line feeds and tabs
    // inside attributes, as owcimomd does where a parser would change them.
    static void appendEscaped(std::string& out, std::string_view content, bool attribute) {
        // Most texts have nothing to escape: find the first character that
        // may need it before going character by character.
        size_t at = 0;
        while (at < content.size() && !mayEscape(content[at])) ++at;
        if (at == content.size()) {
            out += content;
            return;
        }
        size_t done = 0;
        for (; at < content.size(); ++at) {
            const char* replacement = nullptr;
            switch (content[at]) {
                case '&': replacement = "&amp;"; break;
                case '<': replacement = "&lt;"; break;
                case '>': replacement = "&gt;"; break;
                case '\r': replacement = "&#13;"; break;
                case '"': replacement = attribute ? "&quot;" : nullptr; break;
                case '\n': replacement = attribute ? "&#10;" : nullptr; break;
                case '\t': replacement = attribute ? "&#9;" : nullptr; break;
                default: continue;
            }
            if (!replacement) continue;
            out.append(content.data() + done, at - done);
            out += replacement;
            done = at + 1;
        }
        out.append(content.data() + done, content.size() - done);
    }
    static std::string escape(std::string_view content, bool attribute) {
        std::string escaped;
        escaped.reserve(content.size());
        appendEscaped(escaped, content, attribute);
        return escaped;
    }

private:
    static bool mayEscape(char c) {
        return c == '&' || c == '<' || c == '>' || c == '"' || static_cast<unsigned char>(c) < 0x20;
    }

    template <class Attributes>
    void writeAttributes(const Attributes& attributes) {
        for (const auto& [name, value] : attributes) {
            out_ += ' ';
            out_ += name;
            out_ += "=\"";
            appendEscaped(out_, value, true);
            out_ += '"';
        }
    }

    std::string out_;
};

}  // namespace cimhost
