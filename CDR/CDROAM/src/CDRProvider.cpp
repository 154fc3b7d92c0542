#include "CDRProvider.h"

#include <stdio.h>
#include <exception>

#include "OW_CIMException.hpp"
#include "OW_CppProviderBaseIFC.hpp"
#include "OW_Logger.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"

#include "CDREntryLock.hpp"
#include "CDROAMWrap.h"
#include "CFG_Exception.h"
#include "QTX_CDRPullStatisticsProvider.h"
#include "QTX_CDRPushSettingProvider.h"
#include "QTX_CDRPushStatisticsProvider.h"
#include "QTX_CDRServiceAccessBinProvider.h"
#include "QTX_CDRServicePrefixBinProvider.h"
#include "QTX_CDRServiceProvider.h"

using OW_NAMESPACE::CIMException;
using OW_NAMESPACE::CppInstanceProviderIFC;
using OW_NAMESPACE::CppMethodProviderIFC;
using OW_NAMESPACE::String;

// The six class providers, constructed at load in this order and destroyed
// at unload in reverse.
QTX_CDRPushSettingProvider QTX_CDRPushSettingProv;
QTX_CDRPushStatisticsProvider QTX_CDRPushStatisticsProv;
QTX_CDRPullStatisticsProvider QTX_CDRPullStatisticsProv;
QTX_CDRServiceProvider QTX_CDRServiceProv;
QTX_CDRServicePrefixBinProvider QTX_CDRServicePrefixBinProv;
QTX_CDRServiceAccessBinProvider QTX_CDRServiceAccessBinProv;

const char* const QTX_CDRPushSettingName = "QTX_CDRPushSetting";
const char* const QTX_CDRPushStatisticsName = "QTX_CDRPushStatistics";
const char* const QTX_CDRPullStatisticsName = "QTX_CDRPullStatistics";
const char* const QTX_CDRServiceName = "QTX_CDRService";
const char* const QTX_CDRServicePrefixBinName = "QTX_CDRServicePrefixBin";
const char* const QTX_CDRServiceAccessBinName = "QTX_CDRServiceAccessBin";

CDROAMWrap* myInstance = 0;
const char* UnknownStdException = "Unknown std::exception caught in CDRProvider\n";
const char* UnknownException = "Unknown throw caught in CDRProvider\n";

// The two symbols an OpenWBEM C++ provider interface looks up.
extern "C" {
OW_NAMESPACE::CppProviderBaseIFC* createProviderCDRProvider() { return new CDRProvider; }
// The provider interface version the module is built for.
const char* getOWVersion() { return "3.0.3"; }
}

namespace {

const char* const kSourcePath = "CDR/CDROAM/src/CDRProvider";
const char* const kLogComponent = "CDRProvider";

// What an operation says about a failure: its message fragment and the
// lines of its catch list (0 where the list has no such handler).
struct Operation {
  const char* fragment;
  int readErrorLine;
  int writeErrorLine;
  int stdExceptionLine;
  int otherThrowLine;
  int unknownClassLine;
};

const Operation kEnumInstanceNames = {" while performing enumInstanceNames operation on ", 142, 0, 157, 165, 170};
const Operation kEnumInstances = {" while performing enumInstances operation on ", 245, 0, 260, 268, 273};
const Operation kGetInstance = {" while performing getInstance operation on ", 342, 0, 357, 365, 369};
const Operation kCreateInstance = {" while performing createInstance operation on ", 0, 429, 444, 452, 457};
const Operation kDeleteInstance = {" while performing deleteInstance operation on ", 0, 514, 529, 537, 542};
const Operation kModifyInstance = {" while performing modifyInstance operation on ", 0, 607, 622, 630, 635};
const Operation kInvokeMethod = {" while performing invokeMethod operation on ", 692, 696, 711, 719, 722};

const int kAssociatorsLine = 787;
const int kAssociatorNamesLine = 845;
const int kReferencesLine = 905;
const int kReferenceNamesLine = 959;

const size_t kClassCount = 6;
// The fixed order of comparison.
const char* const* const kClassNames[kClassCount] = {
    &QTX_CDRPushSettingName, &QTX_CDRPushStatisticsName, &QTX_CDRPullStatisticsName,
    &QTX_CDRServiceName,     &QTX_CDRServicePrefixBinName, &QTX_CDRServiceAccessBinName};
CppInstanceProviderIFC* const kInstanceProviders[kClassCount] = {
    &QTX_CDRPushSettingProv, &QTX_CDRPushStatisticsProv, &QTX_CDRPullStatisticsProv,
    &QTX_CDRServiceProv,     &QTX_CDRServicePrefixBinProv, &QTX_CDRServiceAccessBinProv};
CppMethodProviderIFC* const kMethodProviders[kClassCount] = {
    &QTX_CDRPushSettingProv, &QTX_CDRPushStatisticsProv, &QTX_CDRPullStatisticsProv,
    &QTX_CDRServiceProv,     &QTX_CDRServicePrefixBinProv, &QTX_CDRServiceAccessBinProv};

// Where a request's class name comes from; fetched afresh for each comparison.
struct NameArgument {
  explicit NameArgument(const String& name) : m_name(name) {}
  String operator()() const { return m_name; }
  const String& m_name;
};
template <class Holder>
struct ClassNameOf {
  explicit ClassNameOf(const Holder& holder) : m_holder(holder) {}
  String operator()() const { return m_holder.getClassName(); }
  const Holder& m_holder;
};

// Index of the class provider for the request, compared exactly and
// case-sensitively; an unknown class is CIM error 5 without a message.
template <class NameSource>
size_t classIndex(const NameSource& name, const Operation& operation) {
  for (size_t i = 0; i < kClassCount; ++i) {
    if (name().equals(*kClassNames[i])) return i;
  }
  throw CIMException(kSourcePath, operation.unknownClassLine, CIMException::INVALID_CLASS);
}

// Loggers per component and the OW_LOG_* macros came together with OpenWBEM
// 3.1; 3.0 has only the object manager's logger, which is deprecated later.
void logError(const OW_NAMESPACE::ProviderEnvironmentIFCRef& env, const String& text) {
  if (!env) return;
#ifdef OW_LOG_ERROR
  env->getLogger(kLogComponent)->logError(text);
#else
  env->getLogger()->logError(text);
#endif
}

// Translates the exception being handled. Called only from a catch block.
[[noreturn]] void translate(const OW_NAMESPACE::ProviderEnvironmentIFCRef& env,
                            const Operation& operation, const String& className) {
  String text;
  int line = 0;
  try {
    throw;
  } catch (CIMException&) {
    throw;
  } catch (CFG_ReadError& e) {
    if (operation.readErrorLine != 0) {
      throw CIMException(kSourcePath, operation.readErrorLine, CIMException::FAILED, "");
    }
    text = String(UnknownStdException) + operation.fragment + className + "\n" + e.what() + "\n";
    line = operation.stdExceptionLine;
  } catch (CFG_WriteError& e) {
    if (operation.writeErrorLine != 0) {
      throw CIMException(kSourcePath, operation.writeErrorLine, CIMException::FAILED, "");
    }
    text = String(UnknownStdException) + operation.fragment + className + "\n" + e.what() + "\n";
    line = operation.stdExceptionLine;
  } catch (std::exception& e) {
    text = String(UnknownStdException) + operation.fragment + className + "\n" + e.what() + "\n";
    line = operation.stdExceptionLine;
  } catch (...) {
    text = String(UnknownException) + operation.fragment + className + "\n";
    line = operation.otherThrowLine;
  }
  logError(env, text);
  throw CIMException(kSourcePath, line, CIMException::FAILED, text.c_str());
}

// Not recursive: nothing the module calls while holding it enters the module
// again on the same thread (the restore notification has a thread of its own).
std::mutex gEntryMutex;

}  // namespace

CDREntryLock::CDREntryLock() : m_hold(gEntryMutex) {}
CDREntryLock::~CDREntryLock() {}

CDRProvider::~CDRProvider() {}

CDRProvider::CIMValue CDRProvider::invokeMethod(const ProviderEnvironmentIFCRef& env,
                                                const String& ns, const CIMObjectPath& path,
                                                const String& methodName,
                                                const OW_NAMESPACE::CIMParamValueArray& in,
                                                OW_NAMESPACE::CIMParamValueArray& out) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(ClassNameOf<CIMObjectPath>(path), kInvokeMethod);
    return kMethodProviders[i]->invokeMethod(env, ns, path, methodName, in, out);
  } catch (...) {
    translate(env, kInvokeMethod, path.getClassName());
  }
}

void CDRProvider::initialize(const ProviderEnvironmentIFCRef& env) {
  CDREntryLock hold;
  QTX_CDRPushSettingProv.initialize(env);
  QTX_CDRPushStatisticsProv.initialize(env);
  QTX_CDRPullStatisticsProv.initialize(env);
  QTX_CDRServiceProv.initialize(env);
  QTX_CDRServicePrefixBinProv.initialize(env);
  QTX_CDRServiceAccessBinProv.initialize(env);
  printf("begin to create instance in initialize() ");
  myInstance = new CDROAMWrap();
  printf("finish to create instance in initialize() ");
}

void CDRProvider::enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
                                    const String& className,
                                    OW_NAMESPACE::CIMObjectPathResultHandlerIFC& result,
                                    const CIMClass& cimClass) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(NameArgument(className), kEnumInstanceNames);
    kInstanceProviders[i]->enumInstanceNames(env, ns, className, result, cimClass);
  } catch (...) {
    translate(env, kEnumInstanceNames, className);
  }
}

void CDRProvider::enumInstances(const ProviderEnvironmentIFCRef& env, const String& ns,
                                const String& className,
                                OW_NAMESPACE::CIMInstanceResultHandlerIFC& result,
                                OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag localOnly,
                                OW_NAMESPACE::WBEMFlags::EDeepFlag deep,
                                OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                const StringArray* propertyList, const CIMClass& requestedClass,
                                const CIMClass& cimClass) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(NameArgument(className), kEnumInstances);
    kInstanceProviders[i]->enumInstances(env, ns, className, result, localOnly, deep,
                                         includeQualifiers, includeClassOrigin, propertyList,
                                         requestedClass, cimClass);
  } catch (...) {
    translate(env, kEnumInstances, className);
  }
}

CDRProvider::CIMInstance CDRProvider::getInstance(
    const ProviderEnvironmentIFCRef& env, const String& ns, const CIMObjectPath& instanceName,
    OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag localOnly,
    OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
    OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
    const StringArray* propertyList, const CIMClass& cimClass) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(ClassNameOf<CIMObjectPath>(instanceName), kGetInstance);
    return kInstanceProviders[i]->getInstance(env, ns, instanceName, localOnly, includeQualifiers,
                                              includeClassOrigin, propertyList, cimClass);
  } catch (...) {
    translate(env, kGetInstance, instanceName.getClassName());
  }
}

CDRProvider::CIMObjectPath CDRProvider::createInstance(const ProviderEnvironmentIFCRef& env,
                                                       const String& ns,
                                                       const CIMInstance& cimInstance) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(ClassNameOf<CIMInstance>(cimInstance), kCreateInstance);
    return kInstanceProviders[i]->createInstance(env, ns, cimInstance);
  } catch (...) {
    translate(env, kCreateInstance, cimInstance.getClassName());
  }
}

void CDRProvider::deleteInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                 const CIMObjectPath& cop) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(ClassNameOf<CIMObjectPath>(cop), kDeleteInstance);
    kInstanceProviders[i]->deleteInstance(env, ns, cop);
  } catch (...) {
    translate(env, kDeleteInstance, cop.getClassName());
  }
}

void CDRProvider::modifyInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                 const CIMInstance& modifiedInstance,
                                 const CIMInstance& previousInstance,
                                 OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                 const StringArray* propertyList, const CIMClass& theClass) {
  CDREntryLock hold;
  try {
    size_t i = classIndex(ClassNameOf<CIMInstance>(modifiedInstance), kModifyInstance);
    kInstanceProviders[i]->modifyInstance(env, ns, modifiedInstance, previousInstance,
                                          includeQualifiers, propertyList, theClass);
  } catch (...) {
    translate(env, kModifyInstance, modifiedInstance.getClassName());
  }
}

void CDRProvider::associators(const ProviderEnvironmentIFCRef&,
                              OW_NAMESPACE::CIMInstanceResultHandlerIFC&, const String&,
                              const CIMObjectPath&, const String&, const String&, const String&,
                              const String&, OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag,
                              OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag,
                              const StringArray*) {
  CDREntryLock hold;
  throw CIMException(kSourcePath, kAssociatorsLine, CIMException::INVALID_CLASS);
}

void CDRProvider::associatorNames(const ProviderEnvironmentIFCRef&,
                                  OW_NAMESPACE::CIMObjectPathResultHandlerIFC&, const String&,
                                  const CIMObjectPath&, const String&, const String&,
                                  const String&, const String&) {
  CDREntryLock hold;
  throw CIMException(kSourcePath, kAssociatorNamesLine, CIMException::INVALID_CLASS);
}

void CDRProvider::references(const ProviderEnvironmentIFCRef&,
                             OW_NAMESPACE::CIMInstanceResultHandlerIFC&, const String&,
                             const CIMObjectPath&, const String&, const String&,
                             OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag,
                             OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag,
                             const StringArray*) {
  CDREntryLock hold;
  throw CIMException(kSourcePath, kReferencesLine, CIMException::INVALID_CLASS);
}

void CDRProvider::referenceNames(const ProviderEnvironmentIFCRef&,
                                 OW_NAMESPACE::CIMObjectPathResultHandlerIFC&, const String&,
                                 const CIMObjectPath&, const String&, const String&) {
  CDREntryLock hold;
  throw CIMException(kSourcePath, kReferenceNamesLine, CIMException::INVALID_CLASS);
}

bool CDRProvider::canUnload() { return false; }

void CDRProvider::cleanup() {
  CDREntryLock hold;
  QTX_CDRPushSettingProv.cleanup();
  QTX_CDRPushStatisticsProv.cleanup();
  QTX_CDRPullStatisticsProv.cleanup();
  QTX_CDRServiceProv.cleanup();
  QTX_CDRServicePrefixBinProv.cleanup();
  QTX_CDRServiceAccessBinProv.cleanup();
}
