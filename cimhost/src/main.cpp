// cimhost: serves a CIM provider module over CIM-XML/HTTP.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <optional>
#include <pthread.h>
#include <thread>
#include <unistd.h>

#include <OW_CIMException.hpp>

#include "Authenticator.hpp"
#include "HostLog.hpp"
#include "HttpServer.hpp"
#include "MofParser.hpp"
#include "OperationDispatcher.hpp"
#include "Options.hpp"
#include "ProviderModule.hpp"

namespace {

// build/bin/cimhost finds the module in build/lib.
std::string defaultProviderPath() {
    char self[4096];
    ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0) return "CDRProvider.so";
    std::string path(self, static_cast<size_t>(length));
    std::string dir = path.substr(0, path.rfind('/'));
    return dir + "/../lib/CDRProvider.so";
}

// Ends the start with this exit status; the reason is reported already.
struct Exit {
    int status;
};

cimhost::Options readOptions(int argc, char** argv) {
    using namespace cimhost;
    Options options;
    try {
        options = parseOptions(argc, argv, defaultProviderPath(), CIMHOST_DEFAULT_MOF);
    } catch (const UsageError& e) {
        std::cerr << "cimhost: " << e.what() << "\n" << usageText();
        throw Exit{2};
    }
    if (options.help) {
        std::cout << usageText();
        throw Exit{0};
    }
    if (!isLoopbackAddress(options.listenHost) && options.authFile.empty() && !options.insecure) {
        std::cerr << "cimhost: refusing to listen on " << options.listenHost
                  << " without --auth-file; give --insecure to allow it\n";
        throw Exit{2};
    }
    return options;
}

// Signals are taken by one thread, so that Ctrl-C stops the server cleanly
// whatever the request threads are doing. Returns the signals that stop.
sigset_t takeStopSignals() {
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return stopSignals;
}

// Two allocator arenas whatever the number of threads, and blocks of 128 KiB
// or more (request bodies, large answers) mapped on their own, so that the
// memory a large request took goes back to the system when it is answered.
// A fixed threshold also stops glibc from raising it after the first large
// block is freed.
void tuneAllocator() {
    mallopt(M_ARENA_MAX, 2);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
}

std::unique_ptr<cimhost::HostLog> openLog(const cimhost::Options& options) {
    try {
        return options.logFile.empty() ? std::make_unique<cimhost::HostLog>()
                                       : std::make_unique<cimhost::HostLog>(options.logFile);
    } catch (const std::exception& e) {
        std::cerr << "cimhost: " << e.what() << "\n";
        throw Exit{1};
    }
}

// What the host serves: the MOF's classes, the credentials and the module,
// initialised.
struct Served {
    cimhost::ClassRepository classes;
    std::optional<cimhost::Authenticator> authenticator;
    std::unique_ptr<cimhost::ProviderModule> module;
};

void load(const cimhost::Options& options, cimhost::HostLog& log, Served& served) {
    using namespace cimhost;
    try {
        loadMofFile(options.mofPath, served.classes);
        log.info("read " + std::to_string(served.classes.classes().size()) + " classes from " + options.mofPath);
        if (!options.authFile.empty()) served.authenticator = Authenticator::fromFile(options.authFile);
        served.module = std::make_unique<ProviderModule>(options.providerPath, log);
        served.module->initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log, "")));
    } catch (const OpenWBEM::Exception& e) {
        log.error(std::string("provider initialization failed: ") + e.getMessage());
        throw Exit{1};
    } catch (const std::exception& e) {
        log.error(e.what());
        std::cerr << "cimhost: " << e.what() << "\n";
        throw Exit{1};
    }
}

void listen(cimhost::HttpServer& server, const cimhost::Options& options, cimhost::HostLog& log, bool credentials) {
    bool tls = !options.tlsCertificate.empty();
    try {
        if (tls) server.useTls(options.tlsCertificate, options.tlsKey);
    } catch (const std::exception& e) {
        log.error(e.what());
        std::cerr << "cimhost: " << e.what() << "\n";
        throw Exit{1};
    }
    int port = server.bind(options.listenHost, options.listenPort);
    if (port < 0) {
        std::string message = "cannot listen on " + options.listenHost + ":" + std::to_string(options.listenPort) +
                              ": " + server.bindError();
        log.error(message);
        if (!options.logFile.empty()) std::cerr << "cimhost: " << message << "\n";
        throw Exit{1};
    }
    log.info("listening on " + options.listenHost + ":" + std::to_string(port) + ", " + (tls ? "HTTPS" : "HTTP") +
             ", namespace " + options.nameSpace + (credentials ? ", credentials required" : ""));
}

// OpenWBEM's unloader: a polled provider that drops idle providers, from
// its start to its end.
class Unloader {
public:
    Unloader(cimhost::ProviderModule& module, int ttlMinutes, int pollSeconds) {
        if (ttlMinutes < 0) return;
        thread_ = std::thread([this, &module, ttlMinutes, pollSeconds] {
            std::unique_lock<std::mutex> lock(mutex_);
            while (!wake_.wait_for(lock, std::chrono::seconds(pollSeconds), [this] { return stops_; })) {
                lock.unlock();
                module.unloadIfIdle(ttlMinutes);
                lock.lock();
            }
        });
    }
    ~Unloader() {
        if (!thread_.joinable()) return;
        {
            std::lock_guard<std::mutex> lock(mutex_);
            stops_ = true;
        }
        wake_.notify_all();
        thread_.join();
    }

private:
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stops_ = false;
    std::thread thread_;
};

// Serves until SIGINT or SIGTERM; true when serving ended cleanly.
bool serveUntilStopped(cimhost::HttpServer& server, cimhost::HostLog& log, const sigset_t& stopSignals) {
    // A signal may arrive before the server runs; stop() is repeated until
    // serving has ended.
    std::atomic<bool> serving{true};
    std::thread signalWaiter([&server, &log, &serving, stopSignals] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        log.info(std::string("stopping on ") + (signal == SIGINT ? "SIGINT" : "SIGTERM"));
        while (serving) {
            server.stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    bool served = server.serve();
    serving = false;
    if (served) signalWaiter.join();
    else signalWaiter.detach();
    return served;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace cimhost;
    try {
        Options options = readOptions(argc, argv);
        sigset_t stopSignals = takeStopSignals();
        tuneAllocator();
        std::unique_ptr<HostLog> log = openLog(options);
        Served served;
        load(options, *log, served);

        OperationDispatcher dispatcher(served.classes, served.module.get(), *log, options.nameSpace,
                                       options.listenHost);
        if (options.series == "3.2") dispatcher.followSeries32();
        for (const std::string& name : dispatcher.boundClasses()) {
            log->info("class " + name + " is served by " + served.module->id());
        }
        ServerLimits limits;
        limits.maxConnections = options.maxConnections;
        limits.requestTimeoutSeconds = options.requestTimeoutSeconds;
        HttpServer server(dispatcher, served.authenticator ? &*served.authenticator : nullptr, *log, limits);
        listen(server, options, *log, served.authenticator.has_value());
        bool ended;
        {
            Unloader unloader(*served.module, options.providerTtlMinutes, options.unloadPollSeconds);
            ended = serveUntilStopped(server, *log, stopSignals);
        }
        served.module->shuttingDown(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(*log, "")));
        log->info("stopped");
        return ended ? 0 : 1;
    } catch (const Exit& exit) {
        return exit.status;
    }
}
