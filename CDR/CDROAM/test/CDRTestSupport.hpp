// Shared pieces of the module's tests: a provider environment whose logger
// records what it is given, result handlers that collect, a way to look at a
// CIMException as the client would, and a fixture with a private device
// state and the module's diagnostic log registered.
#ifndef CDR_TEST_SUPPORT_HPP
#define CDR_TEST_SUPPORT_HPP

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "OW_config.h"
#include "OW_CIMException.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMQualifier.hpp"
#include "OW_CIMValue.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include "CDRRegistryAccess.hpp"
#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

namespace cdrtest {

namespace OW = OW_NAMESPACE;

// Everything the provider environment's logger was given, as
// "<component> <category>: <message>".
typedef std::shared_ptr<std::vector<std::string>> LogRecord;

// A provider environment for tests; its logger appends to `record`.
OW::ProviderEnvironmentIFCRef makeEnvironment(LogRecord record = LogRecord());

template <class T>
class Collector : public OW::ResultHandlerIFC<T> {
 public:
  std::vector<T> items;

 protected:
  void doHandle(const T& item) override { items.push_back(item); }
};
typedef Collector<OW::CIMInstance> InstanceCollector;
typedef Collector<OW::CIMObjectPath> PathCollector;

// A CIMException as a client sees it.
struct CIMError {
  bool thrown = false;
  int code = 0;
  std::string file;
  int line = 0;
  std::string message;  // the raw message; "" when none was given
  bool hasMessage = false;
};

template <class Operation>
CIMError catchCIMError(Operation operation) {
  CIMError error;
  try {
    operation();
  } catch (const OW::CIMException& e) {
    error.thrown = true;
    error.code = e.getErrNo();
    error.file = e.getFile();
    error.line = e.getLine();
    error.hasMessage = e.getDescription() != nullptr;
    error.message = e.getDescription() ? e.getDescription() : "";
  }
  return error;
}

// The value of a property as text ("<absent>" when the instance lacks it).
std::string propertyText(const OW::CIMInstance& instance, const char* name);
// The value of the qualifier `qualifier` of property `property`, as text
// ("<absent>" when missing).
std::string qualifierText(const OW::CIMInstance& instance, const char* property,
                          const char* qualifier);
// An instance of `className` holding the given properties in order.
OW::CIMInstance makeInstance(const char* className,
                             const std::vector<std::pair<const char*, OW::CIMValue>>& properties);
// A path of `className` with string keys.
OW::CIMObjectPath makePath(const char* className,
                           const std::vector<std::pair<const char*, const char*>>& keys);

// A fresh device state for each test, with the module's diagnostic log
// registered as the module registers it.
class ModuleTest : public ::testing::Test {
 protected:
  ModuleTest() {
    ZpoDiagRegisterModule("CDRProvider.so", "CDR", "CDROAM", "CdrOAM.log", &zpoHandle);
  }
  std::vector<std::string> log() const { return root.logLines("CdrOAM.log"); }
  std::vector<uint8_t> entry(const char* section, const char* key) const {
    return root.binary("CDR", section, key);
  }

  zpotest::TempZpoRoot root;
};

// A class provider initialised as the module initialises it, and the CIM
// calls tests make on it. The instance manager it installs is freed and the
// default one made current again at the end (after the test's own objects).
template <class Provider, class Managed>
class ProviderTest : public ModuleTest {
 protected:
  ProviderTest() : env(makeEnvironment()) { provider.initialize(env); }
  ~ProviderTest() override {
    auto* installed = Managed::getInstanceManager();
    Managed::ClearInstanceManager();
    delete installed;
  }

  OW::CIMInstance getInstance(const OW::CIMObjectPath& path) {
    return provider.getInstance(env, "root/cimv2", path, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                                OW::WBEMFlags::E_INCLUDE_QUALIFIERS,
                                OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, OW::CIMClass(OW::CIMNULL));
  }
  OW::CIMValue invokeMethod(const OW::CIMObjectPath& path, const char* method) {
    OW::CIMParamValueArray in, out;
    return provider.invokeMethod(env, "root/cimv2", path, method, in, out);
  }
  // The instance as a client's ModifyInstance carries it.
  void modifyInstance(const OW::CIMInstance& instance) {
    provider.modifyInstance(env, "root/cimv2", instance, OW::CIMInstance(OW::CIMNULL),
                            OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, 0, OW::CIMClass(OW::CIMNULL));
  }

  OW::ProviderEnvironmentIFCRef env;
  Provider provider;
};

}  // namespace cdrtest

#endif
