#include "Options.hpp"

#include <cstdlib>

namespace cimhost {

const char* usageText() {
    return "usage: cimhost [options]\n"
           "Serves a CIM provider module over CIM-XML/HTTP.\n"
           "  --provider PATH     provider module to load (default: CDRProvider.so beside the host)\n"
           "  --mof PATH          class definitions (default: the project's QTX_CDR.mof)\n"
           "  --listen ADDR:PORT  address to listen on (default 127.0.0.1:5988, 5989 with TLS; port 0 picks one)\n"
           "  --namespace NS      namespace served (default root/cimv2)\n"
           "  --auth-file FILE    require HTTP Basic credentials from FILE (user:crypt-hash lines)\n"
           "  --insecure          allow a non-loopback address without --auth-file\n"
           "  --tls-cert FILE     serve HTTPS (TLS 1.2 or later) with this PEM certificate chain\n"
           "  --tls-key FILE      and this PEM private key\n"
           "  --max-connections N connections served at once; more are answered 503 (default 512)\n"
           "  --request-timeout S seconds a client has to send one request (default 10)\n"
           "  --provider-ttl MIN  unload the provider after MIN idle minutes when it allows it, as\n"
           "                      cppprovifc.prov_TTL (default 5; 0: at the next poll; -1: never)\n"
           "  --unload-poll S     seconds between two checks for idle providers (default 60)\n"
           "  --series 3.0|3.2    the OpenWBEM series to follow where the two differ (default 3.0,\n"
           "                      the device's)\n"
           "  --log FILE          log to FILE (default: standard error)\n"
           "  --help              this text\n"
           "The platform state directory comes from ZPO_ROOT.\n";
}

namespace {

int positiveNumber(const std::string& option, const std::string& text) {
    char* end = nullptr;
    long number = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || number < 1 || number > 1000000) {
        throw UsageError(option + " needs a positive number, not " + text);
    }
    return static_cast<int>(number);
}

}  // namespace

Options parseOptions(int argc, char** argv, const std::string& defaultProvider, const std::string& defaultMof) {
    Options options;
    options.providerPath = defaultProvider;
    options.mofPath = defaultMof;
    bool listenGiven = false;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        auto value = [&]() -> std::string {
            if (i + 1 >= argc) throw UsageError(arg + " needs a value");
            return argv[++i];
        };
        if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else if (arg == "--provider") {
            options.providerPath = value();
        } else if (arg == "--mof") {
            options.mofPath = value();
        } else if (arg == "--namespace") {
            options.nameSpace = value();
        } else if (arg == "--auth-file") {
            options.authFile = value();
        } else if (arg == "--log") {
            options.logFile = value();
        } else if (arg == "--tls-cert") {
            options.tlsCertificate = value();
        } else if (arg == "--tls-key") {
            options.tlsKey = value();
        } else if (arg == "--max-connections") {
            options.maxConnections = positiveNumber(arg, value());
        } else if (arg == "--request-timeout") {
            options.requestTimeoutSeconds = positiveNumber(arg, value());
        } else if (arg == "--provider-ttl") {
            std::string minutes = value();
            try {
                options.providerTtlMinutes = minutes == "-1" ? -1 : minutes == "0" ? 0 : positiveNumber(arg, minutes);
            } catch (const UsageError&) {
                throw UsageError("--provider-ttl needs minutes (a whole number, 0, or -1 for never), not " + minutes);
            }
        } else if (arg == "--unload-poll") {
            options.unloadPollSeconds = positiveNumber(arg, value());
        } else if (arg == "--series") {
            options.series = value();
            if (options.series != "3.0" && options.series != "3.2") {
                throw UsageError("--series is 3.0 or 3.2, not " + options.series);
            }
        } else if (arg == "--insecure") {
            options.insecure = true;
        } else if (arg == "--listen") {
            std::string address = value();
            size_t colon = address.rfind(':');
            if (colon == std::string::npos || colon == 0) throw UsageError("--listen needs ADDR:PORT");
            std::string port = address.substr(colon + 1);
            char* end = nullptr;
            long number = std::strtol(port.c_str(), &end, 10);
            if (port.empty() || *end != '\0' || number < 0 || number > 65535) {
                throw UsageError("bad port in --listen " + address);
            }
            options.listenHost = address.substr(0, colon);
            if (options.listenHost.size() > 2 && options.listenHost.front() == '[' && options.listenHost.back() == ']') {
                options.listenHost = options.listenHost.substr(1, options.listenHost.size() - 2);
            }
            options.listenPort = static_cast<int>(number);
            listenGiven = true;
        } else {
            throw UsageError("unknown option " + arg);
        }
    }
    if (options.tlsCertificate.empty() != options.tlsKey.empty()) {
        throw UsageError("--tls-cert and --tls-key go together");
    }
    if (!options.tlsCertificate.empty() && !listenGiven) options.listenPort = 5989;
    return options;
}

}  // namespace cimhost
