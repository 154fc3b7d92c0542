// Checks on a request body that the XML parser takes on trust, made before
// the body is parsed: the text is UTF-8, every reference names one of the
// five predefined entities or a legal character, and the number and nesting
// of elements stay within a budget, so that a request of allowed size cannot
// make the parsed document and what is built from it arbitrarily large.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace cimhost {

struct XmlBudget {
    size_t maxElements = 10000;
    size_t maxDepth = 32;
};

// More elements or deeper nesting than the budget allows (HTTP 413).
class OverBudget : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws MalformedRequest for text that is not UTF-8 or not a legal XML
// character, for an undeclared entity or a bad character reference;
// InvalidRequest for a DOCTYPE; OverBudget beyond the budget. Leaves every
// other fault to the parser.
void screenRequestBody(std::string_view body, const XmlBudget& budget);

// Whether every byte sequence in `text` is UTF-8.
bool isUtf8(std::string_view text);

}  // namespace cimhost
