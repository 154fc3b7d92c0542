#include "ProviderModule.hpp"

#include <dlfcn.h>

#include <cstring>

#include <OW_CIMException.hpp>
#include <OW_LogMessage.hpp>
#if __has_include(<OW_RepositoryIFC.hpp>)
#include <OW_RepositoryIFC.hpp>
#else
namespace OW_NAMESPACE {
// The API subset declares RepositoryIFC without defining it. The host has
// no repository, so its repository references are always null and these
// are never called; they only let a null reference be returned.
inline void IntrusiveReferenceAddRef(RepositoryIFC*) {}
inline void IntrusiveReferenceRelease(RepositoryIFC*) {}
}  // namespace OW_NAMESPACE
#endif
#include <OW_config.h>

namespace cimhost {

std::string providerIdFromPath(const std::string& path) {
    size_t slash = path.rfind('/');
    std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    const std::string extension = ".so";
    if (name.size() > extension.size() && name.compare(name.size() - extension.size(), extension.size(), extension) == 0) {
        name.erase(name.size() - extension.size());
    }
    if (name.compare(0, 3, "lib") == 0 && name.size() > 3) name.erase(0, 3);
    return name;
}

HostLogger::HostLogger(HostLog& log, const OW::String& component)
    : OW::Logger(component, OW::E_DEBUG_LEVEL), log_(log) {}

void HostLogger::doProcessLogMessage(const OW::LogMessage& message) const {
    std::string line = std::string("[") + message.component.c_str() + "] " + message.message.c_str();
    if (message.filename && message.filename[0]) {
        line += " (" + std::string(message.filename) + ":" + std::to_string(message.fileline) + ")";
    }
    log_.write(message.category.c_str(), line);
}

OW::LoggerRef HostLogger::doClone() const { return OW::LoggerRef(new HostLogger(log_, getDefaultComponent())); }

HostProviderEnvironment::HostProviderEnvironment(HostLog& log, std::string userName)
    : log_(log), userName_(std::move(userName)) {}

OW::CIMOMHandleIFCRef HostProviderEnvironment::getCIMOMHandle() const { return OW::CIMOMHandleIFCRef(); }
OW::CIMOMHandleIFCRef HostProviderEnvironment::getRepositoryCIMOMHandle() const { return OW::CIMOMHandleIFCRef(); }
OW::RepositoryIFCRef HostProviderEnvironment::getRepository() const { return OW::RepositoryIFCRef(); }

OW::LoggerRef HostProviderEnvironment::getLogger() const { return getLogger("cimhost"); }

OW::LoggerRef HostProviderEnvironment::getLogger(const OW::String& componentName) const {
    return OW::LoggerRef(new HostLogger(log_, componentName));
}

OW::String HostProviderEnvironment::getConfigItem(const OW::String&, const OW::String& defRetVal) const {
    return defRetVal;
}

OW::StringArray HostProviderEnvironment::getMultiConfigItem(const OW::String&, const OW::StringArray& defRetVal,
                                                            const char*) const {
    return defRetVal;
}

OW::String HostProviderEnvironment::getUserName() const { return OW::String(userName_.c_str()); }

OW::OperationContext& HostProviderEnvironment::getOperationContext() {
    throw OW::CIMException(__FILE__, __LINE__, OW::CIMException::NOT_SUPPORTED,
                           "this host keeps no operation context");
}

OW::ProviderEnvironmentIFCRef HostProviderEnvironment::clone() const {
    return OW::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log_, userName_));
}

LoadedProvider::LoadedProvider(const std::string& path, const std::string& id, HostLog& log) {
    library_ = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!library_) throw ProviderLoadError("cannot load provider library " + path + ": " + dlerror());
    try {
        using VersionFunction = const char* (*)();
        auto version = reinterpret_cast<VersionFunction>(dlsym(library_, "getOWVersion"));
        if (!version) throw ProviderLoadError("provider library " + path + " has no getOWVersion: not a provider module");
        const char* moduleVersion = version();
        if (!moduleVersion || std::strcmp(moduleVersion, OW_VERSION) != 0) {
            throw ProviderLoadError("provider library " + path + " was built for provider interface version " +
                                    (moduleVersion ? moduleVersion : "(none)") + ", this host has " + OW_VERSION);
        }
        std::string factoryName = "createProvider" + id;
        using FactoryFunction = OW::CppProviderBaseIFC* (*)();
        auto factory = reinterpret_cast<FactoryFunction>(dlsym(library_, factoryName.c_str()));
        if (!factory) throw ProviderLoadError("provider library " + path + " does not contain " + factoryName);
        OW::CppProviderBaseIFC* provider = factory();
        if (!provider) throw ProviderLoadError(factoryName + " of " + path + " returned no provider");
        provider_ = OW::IntrusiveReference<OW::CppProviderBaseIFC>(provider);
        log.info("loaded provider " + id + " from " + path + " (interface version " + moduleVersion + ")");
    } catch (...) {
        // The library opened but holds no usable provider: the object
        // manager closes it again.
        dlclose(library_);
        throw;
    }
}

LoadedProvider::~LoadedProvider() {
    provider_ = OW::IntrusiveReference<OW::CppProviderBaseIFC>();
    if (closeLibrary_) dlclose(library_);
}

ProviderModule::ProviderModule(const std::string& path, HostLog& log)
    : path_(path), id_(providerIdFromPath(path)), log_(log),
      current_(std::make_shared<LoadedProvider>(path_, id_, log_)) {}

ProviderModule::~ProviderModule() = default;

void ProviderModule::initialize(const OW::ProviderEnvironmentIFCRef& env) { acquire(env)->provider().initialize(env); }

void ProviderModule::shuttingDown(const OW::ProviderEnvironmentIFCRef& env) {
    std::shared_ptr<LoadedProvider> current;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        current = current_;
    }
    if (current) current->provider().shuttingDown(env);
}

std::shared_ptr<LoadedProvider> ProviderModule::acquire(const OW::ProviderEnvironmentIFCRef& env) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (!current_) {
        // Loaded again after an unload; requests for it wait meanwhile, as
        // owcimomd's wait for a provider another thread initialises.
        auto loaded = std::make_shared<LoadedProvider>(path_, id_, log_);
        try {
            loaded->provider().initialize(env);
        } catch (...) {
            loaded->closeLibraryWithProvider();
            throw;
        }
        current_ = loaded;
    }
    current_->provider().updateAccessTime();
    return current_;
}

bool ProviderModule::unloadIfIdle(int ttlMinutes, time_t now) {
    if (ttlMinutes < 0) return false;
    std::lock_guard<std::mutex> lock(mutex_);
    if (!current_) return false;
    OW::CppProviderBaseIFC& provider = current_->provider();
    if (provider.getPersist()) return false;
    OW::DateTime expires(provider.getLastAccessTime().get() + static_cast<time_t>(ttlMinutes) * 60);
    if (!(expires < OW::DateTime(now)) || !provider.canUnload()) return false;
    log_.info("Unloading Provider " + id_);
    current_->closeLibraryWithProvider();
    current_.reset();
    return true;
}

bool ProviderModule::loaded() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return current_ != nullptr;
}

}  // namespace cimhost
