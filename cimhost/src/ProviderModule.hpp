// Loads a provider module as OpenWBEM's C++ provider interface does: the
// library is opened with dlopen, its getOWVersion must equal the host's
// OW_VERSION, and createProvider<id> makes the one provider object, where
// <id> is the file name without a leading "lib" and without ".so".
#pragma once

#include <memory>
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

class ProviderModule {
public:
    // Opens the library and creates its provider. Throws ProviderLoadError
    // with a message naming the library on any failure (missing file,
    // missing getOWVersion or createProvider<id>, other version, null
    // provider).
    ProviderModule(const std::string& path, HostLog& log);
    ~ProviderModule();
    ProviderModule(const ProviderModule&) = delete;
    ProviderModule& operator=(const ProviderModule&) = delete;

    const std::string& id() const { return id_; }
    const std::string& path() const { return path_; }

    // Runs the provider's initialize once; exceptions propagate.
    void initialize(const OW::ProviderEnvironmentIFCRef& env);
    void shuttingDown(const OW::ProviderEnvironmentIFCRef& env);

    // The provider's interfaces; null when it does not offer one.
    OW::CppInstanceProviderIFC* instanceProvider() const;
    OW::CppMethodProviderIFC* methodProvider() const;
    OW::CppAssociatorProviderIFC* associatorProvider() const;

private:
    std::string path_;
    std::string id_;
    void* library_ = nullptr;
    OW::IntrusiveReference<OW::CppProviderBaseIFC> provider_;
};

}  // namespace cimhost
