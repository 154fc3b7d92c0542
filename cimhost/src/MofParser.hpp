// Reads the subset of MOF the project's class definitions use: qualifier
// declarations, classes with qualifiers, properties (scalar, array,
// reference), keys, default values and methods with parameters. Pragmas are
// skipped; instance declarations are not supported.
#pragma once

#include <stdexcept>
#include <string>

#include "ClassDefinition.hpp"

namespace cimhost {

class MofError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Parses `text` (named `sourceName` in error messages) into `repository`.
// Throws MofError with "<sourceName>:<line>: <what>" on the first problem.
void parseMof(const std::string& text, const std::string& sourceName, ClassRepository& repository);

// Reads and parses a MOF file. Throws MofError when it cannot be read.
void loadMofFile(const std::string& path, ClassRepository& repository);

}  // namespace cimhost
