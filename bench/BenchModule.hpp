// CDRProvider.so loaded as a CIM object manager loads it, on a device state
// seeded as a configured device: shared by the benchmarks and the
// instruction counts.
#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <vector>

#include "OW_config.h"
#include "OW_CIMClass.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_RepositoryIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

namespace cdrbench {

namespace OW = OW_NAMESPACE;

const char* const kNamespace = "root/cimv2";
const OW::CIMClass kNoClass(OW::CIMNULL);

// The six classes, in the MOF's order.
extern const char* const kClasses[6];

// The CIM object manager's side.
class DiscardingLogger : public OW::Logger {
 public:
  DiscardingLogger() : OW::Logger("bench", OW::E_ERROR_LEVEL) {}

 protected:
  void doProcessLogMessage(const OW::LogMessage&) const override {}
  OW::LoggerRef doClone() const override { return OW::LoggerRef(new DiscardingLogger); }
};

class BenchEnvironment : public OW::ProviderEnvironmentIFC {
 public:
  OW::CIMOMHandleIFCRef getCIMOMHandle() const override { return OW::CIMOMHandleIFCRef(); }
  OW::CIMOMHandleIFCRef getRepositoryCIMOMHandle() const override { return OW::CIMOMHandleIFCRef(); }
  OW::RepositoryIFCRef getRepository() const override { return OW::RepositoryIFCRef(); }
  OW::LoggerRef getLogger() const override { return OW::LoggerRef(new DiscardingLogger); }
  OW::LoggerRef getLogger(const OW::String&) const override { return OW::LoggerRef(new DiscardingLogger); }
  OW::String getConfigItem(const OW::String&, const OW::String& defRetVal) const override { return defRetVal; }
  OW::StringArray getMultiConfigItem(const OW::String&, const OW::StringArray& defRetVal,
                                     const char*) const override {
    return defRetVal;
  }
  OW::String getUserName() const override { return "bench"; }
  OW::OperationContext& getOperationContext() override { throw std::logic_error("no operation context"); }
  OW::ProviderEnvironmentIFCRef clone() const override { return OW::ProviderEnvironmentIFCRef(new BenchEnvironment); }
};

// The module loaded and initialised once for the whole run; its objects live
// until the process ends, as in an object manager.
struct LoadedModule {
  OW::ProviderEnvironmentIFCRef env{new BenchEnvironment};
  OW::IntrusiveReference<OW::CppProviderBaseIFC> base;
  OW::CppInstanceProviderIFC* instances = nullptr;

  explicit LoadedModule(const char* path) {
    void* handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    auto factory = reinterpret_cast<OW::CppProviderBaseIFC* (*)()>(dlsym(handle, "createProviderCDRProvider"));
    if (factory == nullptr) throw std::runtime_error("createProviderCDRProvider not exported");
    base = OW::IntrusiveReference<OW::CppProviderBaseIFC>(factory());
    base->initialize(env);
    instances = base->getInstanceProvider();
    if (instances == nullptr) throw std::runtime_error("the module has no instance provider");
  }

  std::vector<OW::CIMObjectPath> names(const char* className) {
    struct Collector : OW::CIMObjectPathResultHandlerIFC {
      std::vector<OW::CIMObjectPath> items;
      void doHandle(const OW::CIMObjectPath& path) override { items.push_back(path); }
    } collector;
    instances->enumInstanceNames(env, kNamespace, className, collector, kNoClass);
    return collector.items;
  }
  OW::CIMInstance get(const OW::CIMObjectPath& path) {
    return instances->getInstance(env, kNamespace, path, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                                  OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, OW::WBEMFlags::E_INCLUDE_CLASS_ORIGIN,
                                  nullptr, kNoClass);
  }
};

// Writes the settings of a configured device that pushes its reports into
// the registry of $ZPO_ROOT, so that every read the module makes finds its
// entry (a failed read would add diagnostic log lines and defaults written
// back).
void seedConfiguredDevice();

}  // namespace cdrbench
