#include "Terminal.hpp"

#include <termios.h>
#include <unistd.h>

#include <cstdio>

namespace cdrctl {

std::optional<std::string> askTerminal(const std::string& prompt, bool secret) {
    FILE* tty = std::fopen("/dev/tty", "r+");
    if (!tty) return std::nullopt;
    std::fputs(prompt.c_str(), tty);
    std::fflush(tty);
    termios saved{};
    bool restore = secret && tcgetattr(fileno(tty), &saved) == 0;
    if (restore) {
        termios quiet = saved;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(fileno(tty), TCSAFLUSH, &quiet);
    }
    char line[512];
    bool got = std::fgets(line, sizeof line, tty) != nullptr;
    if (restore) {
        tcsetattr(fileno(tty), TCSAFLUSH, &saved);
        std::fputs("\n", tty);
    }
    std::fclose(tty);
    if (!got) return std::nullopt;
    std::string text = line;
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
}

}  // namespace cdrctl
