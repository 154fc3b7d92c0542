// The golden test of the device contract. It drives the module the way a CIM
// object manager does and writes down everything a device, its CDR service
// or a CIM client sees byte for byte: exported symbols, console traces, CIM
// errors (code, source path, line, message), diagnostic log lines with their
// levels, registry entries, queue messages and scheduled tasks. The result
// must equal CDR/CDROAM/contract.txt line for line.
#include <dlfcn.h>
#include <stdio.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "CDROAMWrap.h"
#include "CDRProvider.h"
#include "CDRTestSupport.hpp"
#include "OW_CIMDateTime.hpp"
#include "QTX_CDRPullStatisticsImpl.h"
#include "QTX_CDRPushSettingImpl.h"
#include "QTX_CDRPushStatisticsImpl.h"
#include "QTX_CDRServiceAccessBinImpl.h"
#include "QTX_CDRServiceImpl.h"
#include "QTX_CDRServicePrefixBinImpl.h"

extern "C" {
OW_NAMESPACE::CppProviderBaseIFC* createProviderCDRProvider();
const char* getOWVersion();
}

namespace {

namespace OW = OW_NAMESPACE;

const char* const kNamespace = "root/cimv2";
const OW::CIMClass kNoClass(OW::CIMNULL);

// A text as a C string literal, so that line ends and odd bytes show.
std::string literal(const std::string& text) {
  std::string out = "\"";
  for (unsigned char c : text) {
    if (c == '\n') out += "\\n";
    else if (c == '\t') out += "\\t";
    else if (c == '"' || c == '\\') out += std::string("\\") + static_cast<char>(c);
    else if (c < 0x20 || c >= 0x7f) {
      char hex[8];
      snprintf(hex, sizeof hex, "\\x%02x", c);
      out += hex;
    } else out += static_cast<char>(c);
  }
  return out + "\"";
}

std::vector<std::string> commandLines(const std::string& command) {
  std::vector<std::string> lines;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return lines;
  char buffer[1024];
  while (fgets(buffer, sizeof buffer, pipe)) {
    std::string line = buffer;
    if (!line.empty() && line.back() == '\n') line.pop_back();
    lines.push_back(line);
  }
  pclose(pipe);
  return lines;
}

// Lines of `after` that `before` lacks, in order.
std::vector<std::string> added(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  std::multiset<std::string> old(before.begin(), before.end());
  std::vector<std::string> fresh;
  for (const std::string& line : after) {
    auto at = old.find(line);
    if (at != old.end()) old.erase(at);
    else fresh.push_back(line);
  }
  return fresh;
}

// What a fault object or handler throws.
enum class Fault { kReadError, kWriteError, kStdException, kOther };
Fault gFault = Fault::kOther;
[[noreturn]] void throwFault() {
  switch (gFault) {
    case Fault::kReadError: throw CFG_ReadError();
    case Fault::kWriteError: throw CFG_WriteError();
    case Fault::kStdException: throw std::runtime_error("x");
    case Fault::kOther: break;
  }
  throw 42;
}

template <class T>
class ThrowingHandler : public OW::ResultHandlerIFC<T> {
 protected:
  void doHandle(const T&) override { throwFault(); }
};

// A push setting whose first property, its setter and its method throw, in a
// manager whose creation and deletion throw: failures the dispatcher
// translates that no registry fault produces.
class FaultyPushSetting : public QTX_CDRPushSetting {
 public:
  FaultyPushSetting() : QTX_CDRPushSetting("Faulty") {}
  int getTransferType(unsigned char&, OW::Array<OW::CIMQualifier>&) const override { throwFault(); }
  int setTransferType(unsigned char) override { throwFault(); }
  unsigned int PushFileNow() override { throwFault(); }
};
class FaultyPushManager : public QTX_CDRPushSettingImplInstanceManager {
 public:
  QTX_CDRPushSetting* createQTX_CDRPushSetting(const std::string&) override { throwFault(); }
  void destroyQTX_CDRPushSetting(QTX_CDRPushSetting*) override { throwFault(); }
};

// A managed object whose change bracket reports the statuses given and
// whose first key getter fails on demand. Every managed class's bracket
// returns 0 and its key getters never fail; this shows what a client would
// see if they did. (Only the key getter the class has overrides; the others
// are never instantiated.)
template <class Impl>
class RefusingObject : public Impl {
 public:
  template <class... Keys>
  explicit RefusingObject(Keys... keys) : Impl(keys...) {}
  int startChange() { return startStatus; }
  int endChange() { return endStatus; }
  int getInstanceID(std::string& value, OW::Array<OW::CIMQualifier>& qualifiers) const {
    return failKeys ? 100 : Impl::getInstanceID(value, qualifiers);
  }
  int getName(std::string& value, OW::Array<OW::CIMQualifier>& qualifiers) const {
    return failKeys ? 100 : Impl::getName(value, qualifiers);
  }
  int getSystemCreationClassName(std::string& value, OW::Array<OW::CIMQualifier>& qualifiers) const {
    return failKeys ? 100 : Impl::getSystemCreationClassName(value, qualifiers);
  }
  int startStatus = 0;
  int endStatus = 0;
  bool failKeys = false;
};

// One modification: the property, its value as text (converted to the type
// the instance shows for the property) and the fault injected for it.
struct Change {
  const char* property;
  const char* value;
  const char* faultOp;  // "" for none
};

struct ClassScript {
  const char* className;
  size_t target;  // index of the instance the script works on
  std::vector<Change> changes;
  std::vector<const char*> methods;
  // Entries a configured device holds before the changes ("zpo reg" arguments).
  std::vector<const char*> seed;
};

const std::vector<ClassScript>& scripts() {
  static const std::vector<ClassScript> all = {
      {"QTX_CDRPushSetting", 0,
       {{"TransferType", "0", ""},         {"IPAddress", "192.0.2.10", ""}, {"UserName", "cdr", ""},
        {"Password", "s3cret", ""},        {"DestFolder", "/cdr/in", ""},  {"NumRetry", "259", ""},
        {"DeleteFlag", "true", ""},        {"CompressFlag", "true", ""},   {"IncludeMetricsFlag", "true", ""},
        {"TransferTime", "10:30", ""},     {"TransferTime", "24:00", ""},  {"TransferTime", "x:30", ""},
        {"TransferDayOfWeek", "3", ""},    {"TransferDayOfWeek", "8", ""}, {"TransferType", "1", ""},
        {"TransferDayOfMonth", "15", ""},  {"TransferDayOfMonth", "32", ""}, {"TransferType", "2", ""},
        {"TransferType", "5", ""},         {"TransferType", "3", ""},      {"TransferType", "0", "sched-set"},
        {"TransferType", "0", ""},         {"TransferType", "3", "sched-delete"},
        {"UserName", "bob", "reg-write"},  {"TransferType", "1", "reg-write"}},
       {"PushFileNow", "pushfilenow"}, {}},
      {"QTX_CDRPushStatistics", 0, {{"LastTransferTime", "20261125101500.000000+000", ""}}, {"Refresh", "Nope"}, {}},
      {"QTX_CDRPullStatistics", 0,
       {{"IncludeMetricsFlag", "true", ""}, {"NumSuccesses", "7", ""}, {"IncludeMetricsFlag", "false", "reg-write"}},
       {"Refresh", "Nope"}, {}},
      {"QTX_CDRService", 0,
       {{"Format", "2", ""},           {"ReportType", "1", ""},         {"Language", "1", ""},
        {"ReportFilter", "1", ""},     {"FeatureCode", "#49", ""},      {"FeatureCode", "1234", ""},
        {"DateFormat", "1", ""},       {"HeaderFormat", "1", ""},       {"DNISInfo", "true", ""},
        {"ConnectChar", "1", ""},      {"DigitsSuppress", "2", ""},     {"DigitsLimit", "24", ""},
        {"DigitsLimit", "25", ""},     {"DigitsLimit", "2", ""},        {"ClipFileSchedule", "1", ""},
        {"ClipFileSize_100K", "300", ""}, {"CDRDiskSpaceLimit_MB", "200", ""}, {"CLIDWithName", "true", ""},
        {"LongCLIDSupport", "true", ""}, {"CLIDWithCallType", "true", ""}, {"SupportCallCharge", "true", ""},
        {"AnswerSupervision", "true", ""}, {"CallFilterDuration", "300", ""}, {"HospitalityRecords", "true", ""},
        {"DigitsLimit", "12", "queue-send"}, {"Language", "2", "reg-write"}},
       {"Refresh", "ClipFile", "Nope"},
       {"set-binary CDR CDRService FORMAT 01", "set-binary CDR CDRService TYPE 00",
        "set-binary CDR CDRService LANG 00", "set-binary CDR CDRService FILTER 00",
        "set-binary CDR CDRService 'FEATURE CODE' f912", "set-binary CDR CDRService DATE 00",
        "set-binary CDR CDRService HEADER 00", "set-binary CDR CDRService DNIS 00",
        "set-binary CDR CDRService CONNECT 00", "set-binary CDR CDRService DIGITSSUPP 00",
        "set-binary CDR CDRService DIGITSLIMIT 0010", "set-binary CDR CDRService SCHEDULE 00",
        "set-binary CDR CDRService FILESIZE 0a", "set-int CDR CDRService DISKLIMIT 100",
        "set-binary CDR CDRService NAME 00", "set-binary CDR CDRService LONGID 00",
        "set-binary CDR CDRService CALLTYPE 00", "set-binary CDR CDRService CHARGE 00",
        "set-binary CDR CDRService SUPERVISE 00", "set-binary CDR CDRService TIME 00",
        "set-binary CDR CDRService HOSPITAL 00"}},
      {"QTX_CDRServicePrefixBin", 1,
       {{"PrefixBin", "1234", ""}, {"PrefixBin", "123456789", ""}, {"PrefixBin", "12a", ""},
        {"PrefixBin", "", ""}, {"PrefixBin", "9", "reg-write"}},
       {"Nope"}, {}},
      {"QTX_CDRServiceAccessBin", 1,
       {{"AccessBin", "123", ""}, {"AccessBin", "123456", ""}, {"AccessBin", "12a45", ""},
        {"SuppressBin", "3", ""}, {"SuppressBin", "100", ""},   {"SuppressBin", "17", ""},
        {"SuppressBin", "2", "reg-write"}},
       {"Nope"}, {}},
  };
  return all;
}

class ContractRun {
 public:
  ContractRun() : cimomLog(std::make_shared<std::vector<std::string>>()), env(cdrtest::makeEnvironment(cimomLog)) {}

  std::vector<std::string> out;

  void run() {
    queue.reset(new zpotest::TempZpoRoot::Queue(root.createQueue("CDRService")));
    module();
    restore();
    for (const ClassScript& script : scripts()) classSection(script);
    dispatcher();
    releaseCDROAMInstances();
  }

 private:
  void line(const std::string& text) { out.push_back(text); }

  // Everything the last step left: traces, CIMOM and diagnostic log lines,
  // registry entries written, queue messages, scheduled tasks.
  void mark() {
    fflush(stdout);
    testing::internal::CaptureStdout();
    seenCimomLog = cimomLog->size();
    seenLog = root.logLines("CdrOAM.log").size();
    seenRegistry = registry();
    seenCrontab = root.crontabLines();
  }
  void effects() {
    fflush(stdout);
    std::string traces = testing::internal::GetCapturedStdout();
    if (!traces.empty()) line("  stdout " + literal(traces));
    for (size_t i = seenCimomLog; i < cimomLog->size(); ++i) line("  cimom-log " + literal((*cimomLog)[i]));
    std::vector<std::string> log = root.logLines("CdrOAM.log");
    for (size_t i = seenLog; i < log.size(); ++i) {
      // Without the time stamp; the failed deletion's "rc" is an address.
      std::string entry = log[i].substr(log[i].find(' ') + 1);
      static const std::string kAddress = "delete push task failed, rc=";
      size_t at = entry.find(kAddress);
      if (at != std::string::npos) {
        size_t end = entry.find(',', at + kAddress.size());
        entry.replace(at + kAddress.size(), end - at - kAddress.size(), "<address>");
      }
      line("  log " + literal(entry));
    }
    for (const std::string& entry : added(seenRegistry, registry())) line("  registry " + entry);
    for (const std::string& message : queue->drain()) line("  queue CDRService " + literal(message));
    std::vector<std::string> crontab = root.crontabLines();
    if (crontab != seenCrontab) {
      line("  crontab" + std::string(crontab.empty() ? " (empty)" : ""));
      for (const std::string& task : crontab) line("    " + literal(task));
    }
  }
  std::vector<std::string> registry() {
    std::vector<std::string> entries = commandLines(root.zpoCommand() + " reg list CDR 2>&1");
    for (std::string& entry : entries) {
      for (char& c : entry) if (c == '\t') c = ' ';
    }
    return entries;
  }

  // Runs `call` and writes down its CIM error, if any, and its effects.
  void step(const std::string& title, const std::function<void()>& call) {
    line(title);
    mark();
    cdrtest::CIMError error = cdrtest::catchCIMError(call);
    if (error.thrown) {
      line("  error " + std::to_string(error.code) + " " + error.file + ":" + std::to_string(error.line) +
           (error.hasMessage ? " " + literal(error.message) : " (no message)"));
    }
    effects();
  }

  void module() {
    line("== module CDRProvider.so");
    line("interface version " + literal(getOWVersion()));
    std::vector<std::string> symbols =
        commandLines(std::string(CDR_NM) + " -D --defined-only " + CDR_PROVIDER_MODULE + " 2>&1");
    for (const char* name : {"createProviderCDRProvider", "getOWVersion", "createCDROAMInstances",
                             "releaseCDROAMInstances", "C_RestoreCallBackHdlr", "myInstance", "zpoHandle",
                             "controlLogBuffer"}) {
      bool exported = false;
      for (const std::string& symbol : symbols) {
        const std::string suffix = std::string(" ") + name;
        exported = exported || (symbol.size() > suffix.size() &&
                                symbol.compare(symbol.size() - suffix.size(), std::string::npos, suffix) == 0);
      }
      line("symbol " + std::string(name) + (exported ? "" : " MISSING"));
    }
    step("initialize", [&] {
      provider = createProviderCDRProvider();
      providerRef = OW::IntrusiveReference<OW::CppProviderBaseIFC>(provider);
      provider->initialize(env);
      instances = provider->getInstanceProvider();
      methods = provider->getMethodProvider();
      associators = provider->getAssociatorProvider();
    });
    for (const std::string& entry : root.diagnosticModules()) line("  diagnostic module " + literal(entry));
    for (const std::string& entry : root.restoreCallbacks()) line("  restore callback " + literal(entry));
  }

  std::vector<OW::CIMObjectPath> names(const char* className) {
    cdrtest::PathCollector collector;
    instances->enumInstanceNames(env, kNamespace, className, collector, kNoClass);
    return collector.items;
  }
  OW::CIMInstance getInstance(const OW::CIMObjectPath& path) {
    return instances->getInstance(env, kNamespace, path, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                                  OW::WBEMFlags::E_INCLUDE_QUALIFIERS, OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0,
                                  kNoClass);
  }
  void modify(const OW::CIMInstance& instance) {
    instances->modifyInstance(env, kNamespace, instance, instance, OW::WBEMFlags::E_EXCLUDE_QUALIFIERS, 0,
                              kNoClass);
  }
  void enumInstances(const char* className, OW::CIMInstanceResultHandlerIFC& handler) {
    instances->enumInstances(env, kNamespace, className, handler, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                             OW::WBEMFlags::E_DEEP, OW::WBEMFlags::E_INCLUDE_QUALIFIERS,
                             OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, kNoClass, kNoClass);
  }
  static std::string keysOf(const OW::CIMObjectPath& path) {
    std::string text;
    OW::CIMPropertyArray keys = path.getKeys();
    for (size_t i = 0; i < keys.size(); ++i) {
      text += (i ? "," : "") + std::string(keys[i].getName().c_str()) + "=" +
              literal(keys[i].getValue().toString().c_str());
    }
    return text;
  }
  // The instance with the keys of `path` and nothing else.
  static OW::CIMInstance keyInstance(const char* className, const OW::CIMObjectPath& path) {
    OW::CIMInstance instance(className);
    OW::CIMPropertyArray keys = path.getKeys();
    for (size_t i = 0; i < keys.size(); ++i) instance.setProperty(keys[i]);
    return instance;
  }
  void showInstance(const OW::CIMInstance& instance) {
    OW::CIMPropertyArray properties = instance.getProperties();
    for (size_t i = 0; i < properties.size(); ++i) {
      std::string mof = properties[i].toMOF().c_str();
      for (char& c : mof) if (c == '\n') c = ' ';
      while (!mof.empty() && mof.front() == ' ') mof.erase(0, 1);
      while (!mof.empty() && mof.back() == ' ') mof.pop_back();
      line("  property " + mof);
    }
  }
  void showGetInstance(const std::string& title, const OW::CIMObjectPath& path) {
    OW::CIMInstance found(OW::CIMNULL);
    step(title, [&] { found = getInstance(path); });
    if (found) showInstance(found);
  }

  // `text` as the type the property has in `shown`, a string when absent.
  static OW::CIMValue valueAs(const OW::CIMInstance& shown, const char* property, const std::string& text) {
    OW::CIMProperty p = shown ? shown.getProperty(property) : OW::CIMProperty(OW::CIMNULL);
    OW::CIMDataType::Type type = p && p.getValue() ? p.getValue().getType() : OW::CIMDataType::STRING;
    unsigned long number = strtoul(text.c_str(), 0, 10);
    switch (type) {
      case OW::CIMDataType::UINT8: return OW::CIMValue(OW::UInt8(number));
      case OW::CIMDataType::UINT16: return OW::CIMValue(OW::UInt16(number));
      case OW::CIMDataType::UINT32: return OW::CIMValue(OW::UInt32(number));
      case OW::CIMDataType::BOOLEAN: return OW::CIMValue(text == "true");
      case OW::CIMDataType::DATETIME: return OW::CIMValue(OW::CIMDateTime(OW::String(text.c_str())));
      default: return OW::CIMValue(OW::String(text.c_str()));
    }
  }

  void classSection(const ClassScript& script) {
    const char* className = script.className;
    line("");
    line("== class " + std::string(className));
    std::vector<OW::CIMObjectPath> paths;
    step("enumInstanceNames", [&] { paths = names(className); });
    for (const OW::CIMObjectPath& path : paths) line("  instance " + keysOf(path));
    ASSERT_GT(paths.size(), script.target);
    const OW::CIMObjectPath target = paths[script.target];

    showGetInstance("getInstance " + keysOf(target), target);
    if (!script.seed.empty()) {
      for (const char* entry : script.seed) commandLines(root.zpoCommand() + " reg " + entry);
      line("seed " + std::to_string(script.seed.size()) + " entries of a configured device");
      showGetInstance("getInstance", target);
    }
    OW::CIMInstance shown(OW::CIMNULL);
    cdrtest::catchCIMError([&] { shown = getInstance(target); });
    for (const Change& change : script.changes) {
      std::string title = "modify " + std::string(change.property) + " = " + literal(change.value);
      if (*change.faultOp) title += " with " + std::string(change.faultOp) + " fault 0x98";
      if (*change.faultOp) root.setFault(change.faultOp, "", "", "", 0x98);
      OW::CIMInstance request = keyInstance(className, target);
      request.setProperty(change.property, valueAs(shown, change.property, change.value));
      step(title, [&] { modify(request); });
      root.clearFaults();
    }
    showGetInstance("getInstance after the changes", target);
    root.setFault("reg-read", "", "", "", 0x99);
    showGetInstance("getInstance with reg-read fault 0x99", target);
    root.clearFaults();

    for (const char* method : script.methods) {
      OW::CIMValue result(OW::CIMNULL);
      step("invokeMethod " + std::string(method), [&] {
        OW::CIMParamValueArray in, outParams;
        result = methods->invokeMethod(env, kNamespace, target, method, in, outParams);
      });
      if (result) line("  returns " + std::string(result.toMOF().c_str()));
    }

    OW::CIMObjectPath noKeys(className, kNamespace);
    OW::CIMObjectPath unknown(className, kNamespace);
    OW::CIMPropertyArray keys = target.getKeys();
    for (size_t i = 0; i < keys.size(); ++i) keys[i].setValue(OW::CIMValue(OW::String("nope")));
    unknown.setKeys(keys);
    step("getInstance without keys", [&] { getInstance(noKeys); });
    step("getInstance of an unknown key", [&] { getInstance(unknown); });
    step("modifyInstance without keys", [&] { modify(OW::CIMInstance(className)); });
    step("modifyInstance of an unknown key", [&] { modify(keyInstance(className, unknown)); });
    step("createInstance", [&] { instances->createInstance(env, kNamespace, keyInstance(className, target)); });
    step("deleteInstance", [&] { instances->deleteInstance(env, kNamespace, target); });
    refusals(className);
  }

  template <class Impl, class... Keys>
  void showRefusals(const char* className, Keys... keys) {
    RefusingObject<Impl> object(keys...);
    std::vector<OW::CIMObjectPath> paths = names(className);
    OW::CIMObjectPath path(OW::CIMNULL);
    for (const OW::CIMObjectPath& p : paths) {
      if (keysOf(p).find("Bracket") != std::string::npos) path = p;
    }
    object.startStatus = 7;
    step("modifyInstance refused by startChange (status 7)", [&] { modify(keyInstance(className, path)); });
    object.startStatus = 0;
    object.endStatus = 8;
    step("modifyInstance refused by endChange (status 8)", [&] { modify(keyInstance(className, path)); });
    object.failKeys = true;
    step("enumInstanceNames with a key getter failing (status 100)", [&] { names(className); });
    object.failKeys = false;
  }
  void refusals(const std::string& className) {
    if (className == "QTX_CDRPushSetting") showRefusals<QTX_CDRPushSettingImpl>(className.c_str(), "Bracket");
    if (className == "QTX_CDRPushStatistics") {
      showRefusals<QTX_CDRPushStatisticsImpl>(className.c_str(), "Bracket");
    }
    if (className == "QTX_CDRPullStatistics") {
      showRefusals<QTX_CDRPullStatisticsImpl>(className.c_str(), "Bracket");
    }
    if (className == "QTX_CDRService") {
      showRefusals<QTX_CDRServiceImpl>(className.c_str(), "QTX_System", "QTX", "QTX_CDRService", "Bracket");
    }
    if (className == "QTX_CDRServicePrefixBin") {
      showRefusals<QTX_CDRServicePrefixBinImpl>(className.c_str(), "Bracket", 0);
    }
    if (className == "QTX_CDRServiceAccessBin") {
      showRefusals<QTX_CDRServiceAccessBinImpl>(className.c_str(), "Bracket", 0);
    }
  }

  // The platform's notification after a registry restore re-arms the push.
  void restore() {
    line("");
    line("== backup and restore");
    step("restore notification without TransferType", [&] { C_RestoreCallBackHdlr(0); });
    unsigned char weekly = 1;
    ZpoSetRegEntryBinary("CDR", "CDRPush", "TransferType", &weekly, 1);
    step("restore notification with TransferType 1", [&] { C_RestoreCallBackHdlr(0); });
  }

  // Every operation's failures as the umbrella provider reports them.
  void dispatcher() {
    line("");
    line("== dispatcher CDRProvider");
    QTX_CDRPushSettingInstanceManager* previous = QTX_CDRPushSetting::getInstanceManager();
    QTX_CDRPushSetting::SetInstanceManager(new FaultyPushManager);
    {
      FaultyPushSetting faulty;
      OW::CIMObjectPath path = cdrtest::makePath("QTX_CDRPushSetting", {{"InstanceID", "Faulty"}});
      OW::CIMInstance change("QTX_CDRPushSetting");
      change.setProperty("InstanceID", OW::CIMValue(OW::String("Faulty")));
      change.setProperty("TransferType", OW::CIMValue(OW::UInt8(1)));
      OW::CIMInstance created("QTX_CDRPushSetting");
      created.setProperty("InstanceID", OW::CIMValue(OW::String("New")));
      ThrowingHandler<OW::CIMObjectPath> throwingNames;
      ThrowingHandler<OW::CIMInstance> throwingInstances;
      OW::CIMParamValueArray in, outParams;
      struct Operation {
        const char* name;
        std::function<void(const char* className)> call;
      };
      const Operation operations[] = {
          {"enumInstanceNames",
           [&](const char* c) { instances->enumInstanceNames(env, kNamespace, c, throwingNames, kNoClass); }},
          {"enumInstances", [&](const char* c) { enumInstances(c, throwingInstances); }},
          {"getInstance", [&](const char* c) { getInstance(renamed(path, c)); }},
          {"createInstance",
           [&](const char* c) { instances->createInstance(env, kNamespace, renamed(created, c)); }},
          {"deleteInstance", [&](const char* c) { instances->deleteInstance(env, kNamespace, renamed(path, c)); }},
          {"modifyInstance", [&](const char* c) { modify(renamed(change, c)); }},
          {"invokeMethod",
           [&](const char* c) { methods->invokeMethod(env, kNamespace, renamed(path, c), "PushFileNow", in, outParams); }},
      };
      const struct {
        const char* name;
        Fault fault;
      } faults[] = {{"CFG_ReadError", Fault::kReadError},
                    {"CFG_WriteError", Fault::kWriteError},
                    {"std::runtime_error(\"x\")", Fault::kStdException},
                    {"int", Fault::kOther}};
      for (const Operation& operation : operations) {
        step(std::string(operation.name) + " of class QTX_Nope", [&] { operation.call("QTX_Nope"); });
        step(std::string(operation.name) + " of class qtx_cdrpushsetting",
             [&] { operation.call("qtx_cdrpushsetting"); });
        for (const auto& fault : faults) {
          gFault = fault.fault;
          step(std::string(operation.name) + " of QTX_CDRPushSetting throwing " + fault.name,
               [&] { operation.call("QTX_CDRPushSetting"); });
        }
      }
    }
    delete QTX_CDRPushSetting::getInstanceManager();
    QTX_CDRPushSetting::SetInstanceManager(previous);

    OW::CIMObjectPath service = cdrtest::makePath("QTX_CDRService", {{"Name", "CDRService"}});
    cdrtest::InstanceCollector found;
    cdrtest::PathCollector foundNames;
    step("associators", [&] {
      associators->associators(env, found, kNamespace, service, "", "", "", "", OW::WBEMFlags::E_EXCLUDE_QUALIFIERS,
                               OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0);
    });
    step("associatorNames",
         [&] { associators->associatorNames(env, foundNames, kNamespace, service, "", "", "", ""); });
    step("references", [&] {
      associators->references(env, found, kNamespace, service, "", "", OW::WBEMFlags::E_EXCLUDE_QUALIFIERS,
                              OW::WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0);
    });
    step("referenceNames", [&] { associators->referenceNames(env, foundNames, kNamespace, service, "", ""); });

  }

  static OW::CIMObjectPath renamed(OW::CIMObjectPath path, const char* className) {
    path.setClassName(className);
    return path;
  }
  static OW::CIMInstance renamed(OW::CIMInstance instance, const char* className) {
    instance.setClassName(className);
    return instance;
  }

  zpotest::TempZpoRoot root;
  std::unique_ptr<zpotest::TempZpoRoot::Queue> queue;
  cdrtest::LogRecord cimomLog;
  OW::ProviderEnvironmentIFCRef env;
  OW::CppProviderBaseIFC* provider = nullptr;
  OW::IntrusiveReference<OW::CppProviderBaseIFC> providerRef;
  OW::CppInstanceProviderIFC* instances = nullptr;
  OW::CppMethodProviderIFC* methods = nullptr;
  OW::CppAssociatorProviderIFC* associators = nullptr;
  size_t seenCimomLog = 0;
  size_t seenLog = 0;
  std::vector<std::string> seenRegistry;
  std::vector<std::string> seenCrontab;
};

std::vector<std::string> fileLines(const std::string& path) {
  std::vector<std::string> lines;
  std::ifstream in(path);
  std::string text;
  while (std::getline(in, text)) lines.push_back(text);
  return lines;
}

// Lines starting with "#" and empty lines of the golden file are comments.
std::vector<std::string> contractLines(const std::vector<std::string>& lines) {
  std::vector<std::string> kept;
  for (const std::string& line : lines) {
    if (!line.empty() && line[0] != '#') kept.push_back(line);
  }
  return kept;
}

// The run needs a process of its own, as a CIM object manager gives the
// module: the method counters and the instance managers are process-wide.
// The test starts its own program again for it, and the run writes its list
// to contract.actual.txt in the build tree, ready for `diff` with the golden
// file.
TEST(DeviceContract, TheModuleShowsExactlyTheListedTextsAndNumbers) {
  const char* const kActual = CDR_CONTRACT_BUILD_DIR "/contract.actual.txt";
  if (std::getenv("CDR_CONTRACT_RUN") != nullptr) {
    ContractRun run;
    run.run();
    std::ofstream written(kActual);
    for (const std::string& line : run.out) written << line << "\n";
    return;
  }
  std::remove(kActual);
  std::string command = std::string("CDR_CONTRACT_RUN=1 ") + CDR_TEST_SELF +
                        " --gtest_filter=DeviceContract.* >" CDR_CONTRACT_BUILD_DIR "/contract.run.log 2>&1";
  ASSERT_EQ(0, std::system(command.c_str())) << "see " CDR_CONTRACT_BUILD_DIR "/contract.run.log";
  std::vector<std::string> expected = contractLines(fileLines(CDR_CONTRACT_FILE));
  std::vector<std::string> actual = contractLines(fileLines(kActual));
  if (expected == actual) return;
  size_t i = 0;
  while (i < expected.size() && i < actual.size() && expected[i] == actual[i]) ++i;
  ADD_FAILURE() << "the module differs from " << CDR_CONTRACT_FILE << " at contract line " << i + 1
                << "\n  listed: " << (i < expected.size() ? expected[i] : "(end)")
                << "\n  module: " << (i < actual.size() ? actual[i] : "(end)")
                << "\nthe module's whole list is in " << kActual;
}

}  // namespace
