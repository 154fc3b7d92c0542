// Diagnostics log: registered modules append lines to $ZPO_ROOT/log/<file>.
#ifndef ZPO_DIAGNOSTIC_LOG_HPP
#define ZPO_DIAGNOSTIC_LOG_HPP

#include <ctime>
#include <string>
#include <vector>

namespace zpo {

// "2026-11-21T10:15:02.123 CDROAM cat=2 level=4 id=-1 text" and a line end;
// line ends inside the text become blanks so an entry stays one line.
std::string formatLogLine(const struct timespec& when, const std::string& moduleName, int category, int level,
                          int identifier, const char* text);

// Closes every log file of this process and forgets its handles.
void forgetDiagnosticModules();

// "<module file> <component> <module> <log file>" of every module this
// process has registered and not yet deregistered, in handle order.
std::vector<std::string> diagnosticRegistrations();

}  // namespace zpo

#endif
