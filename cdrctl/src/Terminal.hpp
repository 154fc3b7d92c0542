// Asking the user on the terminal.
#pragma once

#include <optional>
#include <string>

namespace cdrctl {

// Shows `prompt` on /dev/tty and reads a line, without echo for secrets;
// nullopt when there is no terminal or nothing was typed.
std::optional<std::string> askTerminal(const std::string& prompt, bool secret);

}  // namespace cdrctl
