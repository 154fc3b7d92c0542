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

}  // namespace

int main(int argc, char** argv) {
    using namespace cimhost;
    Options options;
    try {
        options = parseOptions(argc, argv, defaultProviderPath(), CIMHOST_DEFAULT_MOF);
    } catch (const UsageError& e) {
        std::cerr << "cimhost: " << e.what() << "\n" << usageText();
        return 2;
    }
    if (options.help) {
        std::cout << usageText();
        return 0;
    }
    if (!isLoopbackAddress(options.listenHost) && options.authFile.empty() && !options.insecure) {
        std::cerr << "cimhost: refusing to listen on " << options.listenHost
                  << " without --auth-file; give --insecure to allow it\n";
        return 2;
    }

    // Signals are taken by one thread, so that Ctrl-C stops the server
    // cleanly whatever the request threads are doing.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    // Two allocator arenas whatever the number of threads, and blocks of
    // 128 KiB or more (request bodies, large answers) mapped on their own,
    // so that the memory a large request took goes back to the system when
    // it is answered. A fixed threshold also stops glibc from raising it
    // after the first large block is freed.
    mallopt(M_ARENA_MAX, 2);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);

    std::unique_ptr<HostLog> log;
    try {
        log = options.logFile.empty() ? std::make_unique<HostLog>() : std::make_unique<HostLog>(options.logFile);
    } catch (const std::exception& e) {
        std::cerr << "cimhost: " << e.what() << "\n";
        return 1;
    }

    ClassRepository classes;
    std::optional<Authenticator> authenticator;
    std::unique_ptr<ProviderModule> module;
    try {
        loadMofFile(options.mofPath, classes);
        log->info("read " + std::to_string(classes.classes().size()) + " classes from " + options.mofPath);
        if (!options.authFile.empty()) authenticator = Authenticator::fromFile(options.authFile);
        module = std::make_unique<ProviderModule>(options.providerPath, *log);
        module->initialize(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(*log, "")));
    } catch (const OpenWBEM::Exception& e) {
        log->error(std::string("provider initialization failed: ") + e.getMessage());
        return 1;
    } catch (const std::exception& e) {
        log->error(e.what());
        std::cerr << "cimhost: " << e.what() << "\n";
        return 1;
    }

    OperationDispatcher dispatcher(classes, module.get(), *log, options.nameSpace, options.listenHost);
    if (options.series == "3.2") dispatcher.followSeries32();
    for (const std::string& name : dispatcher.boundClasses()) log->info("class " + name + " is served by " + module->id());
    ServerLimits limits;
    limits.maxConnections = options.maxConnections;
    limits.requestTimeoutSeconds = options.requestTimeoutSeconds;
    HttpServer server(dispatcher, authenticator ? &*authenticator : nullptr, *log, limits);
    bool tls = !options.tlsCertificate.empty();
    try {
        if (tls) server.useTls(options.tlsCertificate, options.tlsKey);
    } catch (const std::exception& e) {
        log->error(e.what());
        std::cerr << "cimhost: " << e.what() << "\n";
        return 1;
    }
    int port = server.bind(options.listenHost, options.listenPort);
    if (port < 0) {
        std::string message = "cannot listen on " + options.listenHost + ":" + std::to_string(options.listenPort) +
                              ": " + server.bindError();
        log->error(message);
        if (!options.logFile.empty()) std::cerr << "cimhost: " << message << "\n";
        return 1;
    }
    log->info("listening on " + options.listenHost + ":" + std::to_string(port) + ", " + (tls ? "HTTPS" : "HTTP") +
              ", namespace " + options.nameSpace + (authenticator ? ", credentials required" : ""));

    // A signal may arrive before the server runs; stop() is repeated until
    // serving has ended.
    std::atomic<bool> serving{true};
    std::thread signalWaiter([&server, &log, &serving, stopSignals] {
        int signal = 0;
        sigwait(&stopSignals, &signal);
        log->info(std::string("stopping on ") + (signal == SIGINT ? "SIGINT" : "SIGTERM"));
        while (serving) {
            server.stop();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    });
    // OpenWBEM's unloader: a polled provider that drops idle providers.
    std::mutex unloaderMutex;
    std::condition_variable unloaderWake;
    bool unloaderStops = false;
    std::thread unloader;
    if (options.providerTtlMinutes >= 0) {
        unloader = std::thread([&] {
            std::unique_lock<std::mutex> lock(unloaderMutex);
            while (!unloaderWake.wait_for(lock, std::chrono::seconds(options.unloadPollSeconds),
                                          [&] { return unloaderStops; })) {
                lock.unlock();
                module->unloadIfIdle(options.providerTtlMinutes);
                lock.lock();
            }
        });
    }
    bool served = server.serve();
    serving = false;
    if (served) signalWaiter.join();
    else signalWaiter.detach();
    if (unloader.joinable()) {
        {
            std::lock_guard<std::mutex> lock(unloaderMutex);
            unloaderStops = true;
        }
        unloaderWake.notify_all();
        unloader.join();
    }
    module->shuttingDown(OpenWBEM::ProviderEnvironmentIFCRef(new HostProviderEnvironment(*log, "")));
    log->info("stopped");
    return served ? 0 : 1;
}
