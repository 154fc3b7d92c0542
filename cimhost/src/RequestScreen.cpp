#include "RequestScreen.hpp"

#include <string>

#include "CimXmlRequest.hpp"

namespace cimhost {
namespace {

bool isXmlChar(unsigned long c) {
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

// Decodes the UTF-8 sequence at `at`; 0 when it is not one (overlong forms
// and surrogates included).
size_t utf8Length(std::string_view text, size_t at, unsigned long& code) {
    unsigned char lead = static_cast<unsigned char>(text[at]);
    size_t length = 0;
    unsigned long minimum = 0;
    if (lead < 0x80) {
        code = lead;
        return 1;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2, code = lead & 0x1F, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, code = lead & 0x0F, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, code = lead & 0x07, minimum = 0x10000;
    } else {
        return 0;
    }
    if (at + length > text.size()) return 0;
    for (size_t i = 1; i < length; ++i) {
        unsigned char next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) return 0;
        code = (code << 6) | (next & 0x3F);
    }
    if (code < minimum || (code >= 0xD800 && code <= 0xDFFF)) return 0;
    return length;
}

void checkCharacters(std::string_view body) {
    for (size_t at = 0; at < body.size();) {
        unsigned long code = 0;
        size_t length = utf8Length(body, at, code);
        if (length == 0) throw MalformedRequest("not UTF-8 at offset " + std::to_string(at));
        if (!isXmlChar(code) && !(at == 0 && code == 0xFEFF)) {
            throw MalformedRequest("character not allowed in XML at offset " + std::to_string(at));
        }
        at += length;
    }
}

// The reference starting with '&' at `at`; returns the offset after it.
size_t checkReference(std::string_view body, size_t at) {
    size_t end = body.find(';', at);
    if (end == std::string_view::npos || end - at > 12) {
        throw MalformedRequest("'&' does not start a reference at offset " + std::to_string(at));
    }
    std::string_view name = body.substr(at + 1, end - at - 1);
    if (name == "lt" || name == "gt" || name == "amp" || name == "apos" || name == "quot") return end + 1;
    if (name.size() > 1 && name[0] == '#') {
        bool hex = name[1] == 'x';
        std::string_view digits = name.substr(hex ? 2 : 1);
        unsigned long code = 0;
        bool valid = !digits.empty();
        for (char c : digits) {
            int digit = c >= '0' && c <= '9' ? c - '0'
                        : hex && c >= 'a' && c <= 'f' ? c - 'a' + 10
                        : hex && c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                    : -1;
            if (digit < 0 || code > 0x10FFFF) valid = false;
            else code = code * (hex ? 16 : 10) + static_cast<unsigned long>(digit);
        }
        if (!valid || !isXmlChar(code)) {
            throw MalformedRequest("bad character reference &" + std::string(name) + ";");
        }
        return end + 1;
    }
    throw MalformedRequest("undeclared entity &" + std::string(name) + ";");
}

size_t skipPast(std::string_view body, size_t from, std::string_view terminator) {
    size_t end = body.find(terminator, from);
    return end == std::string_view::npos ? body.size() : end + terminator.size();
}

bool startsAt(std::string_view body, size_t at, std::string_view prefix) {
    return body.compare(at, prefix.size(), prefix) == 0;
}

}  // namespace

bool isUtf8(std::string_view text) {
    unsigned long code = 0;
    for (size_t at = 0, length = 0; at < text.size(); at += length) {
        length = utf8Length(text, at, code);
        if (length == 0) return false;
    }
    return true;
}

void screenRequestBody(std::string_view body, const XmlBudget& budget) {
    checkCharacters(body);
    size_t elements = 0;
    size_t depth = 0;
    for (size_t at = 0; at < body.size();) {
        char c = body[at];
        if (c == '&') {
            at = checkReference(body, at);
        } else if (c != '<') {
            ++at;
        } else if (startsAt(body, at, "<!--")) {
            at = skipPast(body, at + 4, "-->");
        } else if (startsAt(body, at, "<![CDATA[")) {
            at = skipPast(body, at + 9, "]]>");
        } else if (startsAt(body, at, "<?")) {
            at = skipPast(body, at + 2, "?>");
        } else if (startsAt(body, at, "<!")) {
            // owcimomd's parser cannot read a DOCTYPE: request-not-well-formed.
            throw MalformedRequest("DOCTYPE and entity declarations are refused");
        } else if (startsAt(body, at, "</")) {
            if (depth > 0) --depth;
            at = skipPast(body, at + 2, ">");
        } else {
            if (++elements > budget.maxElements) {
                throw OverBudget("more than " + std::to_string(budget.maxElements) + " elements");
            }
            if (++depth > budget.maxDepth) {
                throw OverBudget("elements nested deeper than " + std::to_string(budget.maxDepth));
            }
            // The start tag; attribute values may hold '>' and references.
            char quote = 0;
            for (++at; at < body.size(); ++at) {
                char t = body[at];
                if (quote) {
                    if (t == quote) quote = 0;
                    else if (t == '&') at = checkReference(body, at) - 1;
                } else if (t == '"' || t == '\'') {
                    quote = t;
                } else if (t == '>') {
                    if (body[at - 1] == '/') --depth;
                    break;
                }
            }
            ++at;
        }
    }
}

}  // namespace cimhost
