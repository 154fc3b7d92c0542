// Command-line options of cimhost.
#pragma once

#include <stdexcept>
#include <string>

namespace cimhost {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Options {
    std::string providerPath;
    std::string mofPath;
    std::string listenHost = "127.0.0.1";
    int listenPort = 5988;  // 5989 with --tls-cert
    std::string nameSpace = "root/cimv2";
    std::string authFile;
    std::string logFile;  // empty: standard error
    std::string tlsCertificate;  // both set: HTTPS
    std::string tlsKey;
    int maxConnections = 512;
    int requestTimeoutSeconds = 10;
    int providerTtlMinutes = 5;  // OpenWBEM's cppprovifc.prov_TTL; -1: never unload
    int unloadPollSeconds = 60;  // OpenWBEM's unloader polls once a minute
    std::string series = "3.0";  // the OpenWBEM series followed where 3.0 and 3.2 differ
    bool insecure = false;
    bool help = false;
};

// Parses argv. `defaultProvider` and `defaultMof` fill the paths not given.
// Throws UsageError for unknown options, missing values and bad addresses.
Options parseOptions(int argc, char** argv, const std::string& defaultProvider, const std::string& defaultMof);

const char* usageText();

}  // namespace cimhost
