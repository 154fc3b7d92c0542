#include "HostLog.hpp"

#include <chrono>
#include <ctime>
#include <stdexcept>

namespace cimhost {

HostLog::HostLog() : file_(stderr), ownsFile_(false) {}

HostLog::HostLog(const std::string& path) : file_(std::fopen(path.c_str(), "a")), ownsFile_(true) {
    if (!file_) throw std::runtime_error("cannot open log file " + path);
}

HostLog::~HostLog() {
    if (ownsFile_) std::fclose(file_);
}

void HostLog::write(const std::string& level, const std::string& message) {
    using namespace std::chrono;
    auto now = system_clock::now();
    std::time_t seconds = system_clock::to_time_t(now);
    int millis = static_cast<int>(duration_cast<milliseconds>(now.time_since_epoch()).count() % 1000);
    std::tm local{};
    localtime_r(&seconds, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%S", &local);
    // Line ends inside a message would split the entry; keep it one line.
    std::string oneLine;
    oneLine.reserve(message.size());
    for (char c : message) oneLine += (c == '\n') ? std::string("\\n") : std::string(1, c);
    std::lock_guard<std::mutex> lock(mutex_);
    std::fprintf(file_, "%s.%03d %s %s\n", stamp, millis, level.c_str(), oneLine.c_str());
    std::fflush(file_);
}

}  // namespace cimhost
