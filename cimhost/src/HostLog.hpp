// The host's log: one line per event, to a file or to standard error, safe
// to use from every request thread.
#pragma once

#include <cstdio>
#include <mutex>
#include <string>

namespace cimhost {

class HostLog {
public:
    // Logs to standard error.
    HostLog();
    // Appends to `path`; throws std::runtime_error when it cannot be opened.
    explicit HostLog(const std::string& path);
    ~HostLog();
    HostLog(const HostLog&) = delete;
    HostLog& operator=(const HostLog&) = delete;

    // Writes "<local time> <level> <message>" as one line.
    void write(const std::string& level, const std::string& message);
    void info(const std::string& message) { write("INFO", message); }
    void error(const std::string& message) { write("ERROR", message); }

private:
    std::mutex mutex_;
    FILE* file_;
    bool ownsFile_;
};

}  // namespace cimhost
