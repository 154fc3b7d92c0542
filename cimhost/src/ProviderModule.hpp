// Loads a provider module as OpenWBEM's C++ provider interface does: the
// library is opened with dlopen, its getOWVersion must equal the host's
// OW_VERSION, and createProvider<id> makes the one provider object, where
// <id> is the file name without a leading "lib" and without ".so". Idle
// providers are unloaded and loaded again as OpenWBEM 3.2 does.
#pragma once

#include <ctime>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

#include <OW_CppAssociatorProviderIFC.hpp>
#include <OW_CppInstanceProviderIFC.hpp>
#include <OW_CppMethodProviderIFC.hpp>
#include <OW_CppProviderBaseIFC.hpp>
#include <OW_Logger.hpp>
#include <OW_ProviderEnvironmentIFC.hpp>

#include "HostLog.hpp"

namespace cimhost {

namespace OW = OpenWBEM;

class ProviderLoadError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "CDRProvider" for ".../CDRProvider.so" and ".../libCDRProvider.so".
std::string providerIdFromPath(const std::string& path);

// Writes the module's log calls to the host's log.
class HostLogger : public OW::Logger {
public:
    HostLogger(HostLog& log, const OW::String& component);

protected:
    void doProcessLogMessage(const OW::LogMessage& message) const override;
    OW::LoggerRef doClone() const override;

private:
    HostLog& log_;
};

// What a provider sees of the host: a logger, the user of the request, no
// configuration items and no CIMOM handle.
class HostProviderEnvironment : public OW::ProviderEnvironmentIFC {
public:
    HostProviderEnvironment(HostLog& log, std::string userName);

    OW::CIMOMHandleIFCRef getCIMOMHandle() const override;
    OW::CIMOMHandleIFCRef getRepositoryCIMOMHandle() const override;
    OW::RepositoryIFCRef getRepository() const override;
    OW::LoggerRef getLogger() const override;
    OW::LoggerRef getLogger(const OW::String& componentName) const override;
    OW::String getConfigItem(const OW::String& name, const OW::String& defRetVal = "") const override;
    OW::StringArray getMultiConfigItem(const OW::String& itemName, const OW::StringArray& defRetVal,
                                       const char* tokenizeSeparator = 0) const override;
    OW::String getUserName() const override;
    // The host keeps no operation context; throws CIMException NOT_SUPPORTED.
    OW::OperationContext& getOperationContext() override;
    OW::ProviderEnvironmentIFCRef clone() const override;

private:
    HostLog& log_;
    std::string userName_;
};

// One load of a provider library: the library and the one provider object
// its createProvider<id> made. Requests hold it while they run, so an unload
// never pulls a provider from under a call: the provider object is destroyed,
// and then the library closed, when the last holder lets go.
class LoadedProvider {
public:
    // Opens the library and creates its provider. Throws ProviderLoadError
    // with a message naming the library on any failure (missing file,
    // missing getOWVersion or createProvider<id>, other version, null
    // provider).
    LoadedProvider(const std::string& path, const std::string& id, HostLog& log);
    ~LoadedProvider();
    LoadedProvider(const LoadedProvider&) = delete;
    LoadedProvider& operator=(const LoadedProvider&) = delete;

    OW::CppProviderBaseIFC& provider() const { return *provider_; }
    // The provider's interfaces; null when it does not offer one.
    OW::CppInstanceProviderIFC* instanceProvider() const { return provider_->getInstanceProvider(); }
    OW::CppMethodProviderIFC* methodProvider() const { return provider_->getMethodProvider(); }

    // Set once the object manager has dropped this load: the library is
    // closed with the provider. A load that is never dropped stays mapped,
    // and the module's static objects are destroyed at process exit.
    void closeLibraryWithProvider() { closeLibrary_ = true; }

private:
    void* library_ = nullptr;
    bool closeLibrary_ = false;
    OW::IntrusiveReference<OW::CppProviderBaseIFC> provider_;
};

// The provider of one library, as the object manager's C++ provider
// interface keeps it: loaded and initialised at start-up, handed to each
// request (which marks it accessed), unloaded by the idle unloader when it
// allows it, and loaded and initialised again by the next request.
class ProviderModule {
public:
    // Loads the library and creates its provider (see LoadedProvider).
    ProviderModule(const std::string& path, HostLog& log);
    ~ProviderModule();
    ProviderModule(const ProviderModule&) = delete;
    ProviderModule& operator=(const ProviderModule&) = delete;

    const std::string& id() const { return id_; }
    const std::string& path() const { return path_; }

    // Runs the provider's initialize; exceptions propagate.
    void initialize(const OW::ProviderEnvironmentIFCRef& env);
    // Tells the provider, if it is loaded, that the host stops.
    void shuttingDown(const OW::ProviderEnvironmentIFCRef& env);

    // The loaded provider for one request, marked accessed now. After an
    // unload the library is loaded and the provider initialised again (with
    // `env`) first; a failure there throws (ProviderLoadError, or what
    // initialize threw) and leaves the provider unloaded.
    std::shared_ptr<LoadedProvider> acquire(const OW::ProviderEnvironmentIFCRef& env);

    // OpenWBEM's unloader: drops the provider when it is loaded, not
    // persistent, last accessed more than `ttlMinutes` minutes ago and its
    // canUnload() answers true. A negative TTL never unloads. True when it
    // dropped it.
    bool unloadIfIdle(int ttlMinutes, time_t now = time(nullptr));
    bool loaded() const;

private:
    std::string path_;
    std::string id_;
    HostLog& log_;
    mutable std::mutex mutex_;  // guards current_ and serialises loading
    std::shared_ptr<LoadedProvider> current_;
};

}  // namespace cimhost
