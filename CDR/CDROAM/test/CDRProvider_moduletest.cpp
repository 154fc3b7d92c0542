// Loads the built CDRProvider.so as a CIM object manager does and serves the
// six classes through the one provider it exports.
#include <dlfcn.h>
#include <stdio.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "OW_config.h"
#include "OW_CIMClass.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"

#include "CDRTestSupport.hpp"
#include "ZpoShared.h"
#include "ZpoTestRoot.hpp"

namespace {

namespace OW = OW_NAMESPACE;
using cdrtest::catchCIMError;
using cdrtest::CIMError;

const OW::CIMClass kNoClass(OW::CIMNULL);

class LoadedModuleTest : public ::testing::Test {
 protected:
  LoadedModuleTest() : log(std::make_shared<std::vector<std::string>>()), env(cdrtest::makeEnvironment(log)) {
    handle = dlopen(CDR_PROVIDER_MODULE, RTLD_NOW | RTLD_GLOBAL);
    EXPECT_NE(nullptr, handle) << dlerror();
  }
  ~LoadedModuleTest() override {
    // The module stays loaded: its objects live until the process ends.
  }
  template <class T>
  T symbol(const char* name) {
    return reinterpret_cast<T>(dlsym(handle, name));
  }
  OW::CppProviderBaseIFC* create() {
    auto factory = symbol<OW::CppProviderBaseIFC* (*)()>("createProviderCDRProvider");
    return factory ? factory() : nullptr;
  }
  // A provider initialised as the CIM object manager initialises it.
  void start() {
    base = create();
    ASSERT_NE(nullptr, base);
    baseRef = OW::IntrusiveReference<OW::CppProviderBaseIFC>(base);
    base->initialize(env);
    instances = base->getInstanceProvider();
    methods = base->getMethodProvider();
    associators = base->getAssociatorProvider();
  }
  std::vector<OW::CIMObjectPath> names(const char* className) {
    cdrtest::PathCollector collector;
    instances->enumInstanceNames(env, "root/cimv2", className, collector, kNoClass);
    return collector.items;
  }

  zpotest::TempZpoRoot root;
  cdrtest::LogRecord log;
  OW::ProviderEnvironmentIFCRef env;
  void* handle = nullptr;
  OW::CppProviderBaseIFC* base = nullptr;
  OW::IntrusiveReference<OW::CppProviderBaseIFC> baseRef;
  OW::CppInstanceProviderIFC* instances = nullptr;
  OW::CppMethodProviderIFC* methods = nullptr;
  OW::CppAssociatorProviderIFC* associators = nullptr;
};

TEST_F(LoadedModuleTest, ExportsTheFactoryAndTheInterfaceVersion) {
  auto version = symbol<const char* (*)()>("getOWVersion");
  ASSERT_NE(nullptr, version);
  EXPECT_STREQ("3.0.3", version());
  for (const char* name : {"createProviderCDRProvider", "createCDROAMInstances",
                           "releaseCDROAMInstances", "C_RestoreCallBackHdlr", "myInstance",
                           "zpoHandle", "controlLogBuffer"}) {
    EXPECT_NE(nullptr, dlsym(handle, name)) << name;
  }
}

TEST_F(LoadedModuleTest, LeavesNoUndefinedSymbol) {
  std::string command = std::string(CDR_LDD_COMMAND) + " " + CDR_PROVIDER_MODULE + " 2>&1";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(nullptr, pipe);
  std::string output;
  char buffer[512];
  while (fgets(buffer, sizeof buffer, pipe)) output += buffer;
  EXPECT_EQ(0, pclose(pipe));
  EXPECT_EQ(std::string::npos, output.find("undefined symbol")) << output;
  EXPECT_EQ(std::string::npos, output.find("not found")) << output;
}

TEST_F(LoadedModuleTest, InitializationCreatesTheSeventeenObjects) {
  testing::internal::CaptureStdout();  // the progress traces
  start();
  testing::internal::GetCapturedStdout();
  EXPECT_NE(nullptr, *symbol<void**>("myInstance"));

  struct { const char* className; size_t count; const char* firstKey; } rows[] = {
      {"QTX_CDRPushSetting", 1, "CDRPushSetting"},
      {"QTX_CDRPushStatistics", 1, "CDRPushStatistic"},
      {"QTX_CDRPullStatistics", 1, "CDRPullStatistic"},
      {"QTX_CDRService", 1, "QTX_System"},
      {"QTX_CDRServicePrefixBin", 8, "CDRServicePrefixBin_0"},
      {"QTX_CDRServiceAccessBin", 5, "CDRServiceAccessBin_0"}};
  for (const auto& row : rows) {
    std::vector<OW::CIMObjectPath> paths = names(row.className);
    ASSERT_EQ(row.count, paths.size()) << row.className;
    EXPECT_STREQ(row.firstKey, paths[0].getKeys()[0].getValue().toString().c_str());
    cdrtest::InstanceCollector found;
    instances->enumInstances(env, "root/cimv2", row.className, found, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                             OW::WBEMFlags::E_DEEP, OW::WBEMFlags::E_INCLUDE_QUALIFIERS,
                             OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, kNoClass, kNoClass);
    ASSERT_EQ(row.count, found.items.size()) << row.className;
    EXPECT_STREQ(row.className, found.items[0].getClassName().c_str());
  }
  EXPECT_STREQ("CDRServicePrefixBin_7",
               names("QTX_CDRServicePrefixBin")[7].getKeys()[0].getValue().toString().c_str());
  // What it registered lives as long as the process: an idle unloader
  // must leave it loaded, whatever the persist flag says.
  EXPECT_FALSE(base->canUnload());
  EXPECT_FALSE(base->getPersist());
}

TEST_F(LoadedModuleTest, DispatchesEveryOperationToTheAddressedClass) {
  start();
  OW::CIMObjectPath pull = cdrtest::makePath("QTX_CDRPullStatistics", {{"Name", "CDRPullStatistic"}});
  OW::CIMParamValueArray in, out;
  EXPECT_EQ(1u, methods->invokeMethod(env, "root/cimv2", pull, "Refresh", in, out).toUInt32());
  OW::CIMInstance instance = instances->getInstance(
      env, "root/cimv2", pull, OW::WBEMFlags::E_NOT_LOCAL_ONLY, OW::WBEMFlags::E_INCLUDE_QUALIFIERS,
      OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, kNoClass);
  EXPECT_STREQ("QTX_CDRPullStatistics", instance.getClassName().c_str());

  // A class provider's own CIMException passes through unchanged.
  OW::CIMObjectPath unknown = cdrtest::makePath("QTX_CDRServicePrefixBin", {{"InstanceID", "nope"}});
  CIMError error = catchCIMError([&] {
    instances->getInstance(env, "root/cimv2", unknown, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                           OW::WBEMFlags::E_INCLUDE_QUALIFIERS, OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN,
                           0, kNoClass);
  });
  EXPECT_EQ(6, error.code);
  EXPECT_EQ("CDR/CDROAM/src/QTX_CDRServicePrefixBinProvider", error.file);

  // modifyInstance dispatches on the new instance's class.
  OW::CIMInstance modified("QTX_CDRServiceAccessBin");
  modified.setProperty("InstanceID", OW::CIMValue(OW::String("CDRServiceAccessBin_1")));
  modified.setProperty("SuppressBin", OW::CIMValue(OW::String("7")));
  instances->modifyInstance(env, "root/cimv2", modified, OW::CIMInstance("QTX_CDRService"),
                            OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, 0, kNoClass);
  std::vector<uint8_t> bins = root.binary("CDR", "CDRService", "ACCESS BIN");
  ASSERT_EQ(30u, bins.size());
  EXPECT_EQ(7, bins[11]);
}

// A module whose log could not be registered writes no diagnostic line, not
// even into the log of a module registered before it. The module registers
// once per process, so the test runs again in a process of its own.
TEST_F(LoadedModuleTest, UnregisteredLogWritesNowhere) {
  if (std::getenv("CDR_TEST_OWN_PROCESS") == nullptr) {
    std::string command = std::string("CDR_TEST_OWN_PROCESS=1 ") + CDR_PROVIDER_TEST_SELF +
                          " --gtest_filter=LoadedModuleTest.UnregisteredLogWritesNowhere >/dev/null 2>&1";
    EXPECT_EQ(0, std::system(command.c_str()));
    return;
  }
  uint32_t other = 0;
  ASSERT_EQ(0u, ZpoDiagRegisterModule("Other.so", "OTH", "OTHER", "Other.log", &other));
  std::filesystem::create_directory(root.path() + "/log/CdrOAM.log");  // cannot be opened
  start();
  EXPECT_EQ(std::vector<std::string>{"Other.so OTH OTHER Other.log"}, root.diagnosticModules());
  root.setFault("reg-read", "CDR", "CDRPush", "TransferType", 0x99);
  OW::CIMObjectPath push = cdrtest::makePath("QTX_CDRPushSetting", {{"InstanceID", "CDRPushSetting"}});
  EXPECT_EQ(1, catchCIMError([&] {
                 instances->getInstance(env, "root/cimv2", push, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                                        OW::WBEMFlags::E_INCLUDE_QUALIFIERS,
                                        OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, kNoClass);
               }).code);
  EXPECT_TRUE(root.logLines("Other.log").empty());
}

TEST_F(LoadedModuleTest, HolderFunctionsForHostsWithoutTheProviderInterface) {
  auto release = symbol<void (*)()>("releaseCDROAMInstances");
  auto createHolder = symbol<void* (*)()>("createCDROAMInstances");
  auto restore = symbol<void (*)(unsigned long)>("C_RestoreCallBackHdlr");
  ASSERT_TRUE(release && createHolder && restore);
  release();  // nothing was created: nothing happens
  testing::internal::CaptureStdout();
  EXPECT_NE(nullptr, createHolder());
  testing::internal::GetCapturedStdout();
  // The holder registers the module's diagnostic log and its restore
  // callback; it deregisters the log when released.
  EXPECT_EQ(std::vector<std::string>{"CDRProvider.so CDR CDROAM CdrOAM.log"}, root.diagnosticModules());
  EXPECT_EQ(std::vector<std::string>{"CDROAMProvider 2"}, root.restoreCallbacks());
  const uint32_t handle = *symbol<uint32_t*>("zpoHandle");
  EXPECT_EQ(0u, ZpoDiagAddLogEntry(handle, 2, 4, -1, "probe"));
  std::vector<std::string> lines = root.logLines("CdrOAM.log");
  ASSERT_EQ(1u, lines.size());
  EXPECT_NE(std::string::npos, lines[0].find(" CDROAM cat=2 level=4 id=-1 probe")) << lines[0];
  uint8_t daily = 0;
  ZpoSetRegEntryBinary("CDR", "CDRPush", "TransferType", &daily, 1);
  release();
  EXPECT_NE(0u, ZpoDiagAddLogEntry(handle, 2, 4, -1, "after release"));
  EXPECT_TRUE(root.diagnosticModules().empty());
  // Every released object has left its class.
  baseRef = OW::IntrusiveReference<OW::CppProviderBaseIFC>(create());
  instances = baseRef->getInstanceProvider();
  for (const char* className : {"QTX_CDRPushSetting", "QTX_CDRPushStatistics", "QTX_CDRPullStatistics",
                                "QTX_CDRService", "QTX_CDRServicePrefixBin", "QTX_CDRServiceAccessBin"}) {
    EXPECT_TRUE(names(className).empty()) << className;
  }
  restore(2);  // the push setting is gone: ignored, nothing scheduled
  EXPECT_TRUE(root.crontabLines().empty());
}

}  // namespace
