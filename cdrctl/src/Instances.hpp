// Finding the instances a command acts on.
#pragma once

#include <optional>
#include <vector>

#include "Objects.hpp"
#include "Session.hpp"

namespace cdrctl {

// The row number at the end of a bin's key ("CDRServicePrefixBin_3" is 3).
std::optional<int> rowOf(const InstanceName& name);

// The object's instance names sorted by row, then by key text.
std::vector<InstanceName> instanceNames(Session& session, const ObjectSpec& object);

// The one instance a command acts on: the row for objects with rows, else
// the first. Throws CommandFailure when the row is missing, given where
// there are none, or unknown, or the object manager has no instance.
InstanceName targetInstance(Session& session, const ObjectSpec& object, std::optional<int> row);

bool isKey(const InstanceName& name, const std::string& property);

}  // namespace cdrctl
