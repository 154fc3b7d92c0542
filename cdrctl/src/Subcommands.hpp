// The commands run() dispatches to; each prints its result (as JSON with
// --json), returns kSuccess and throws CommandFailure or the client's
// errors on failure.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Session.hpp"

namespace cdrctl {

// Tables of every object, or of the one named.
int showCommand(Session& session, const std::string& objectName);

// Checks every NAME=VALUE, then writes each property by itself in write
// order; on a failure names what was written before it and what was not.
int setCommand(Session& session, const std::string& objectName, std::optional<int> row,
               const std::vector<std::string>& assignments);

// Invokes a method of the object (its name matched ignoring case).
int callCommand(Session& session, const std::string& objectName, const std::string& methodName,
                std::optional<int> row);

}  // namespace cdrctl
