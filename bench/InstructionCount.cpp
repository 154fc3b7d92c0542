// Instructions per operation, as callgrind counts them: the module's
// operations through CDRProvider.so called as an object manager calls them,
// and cimhost's handling of a request in process (reading it, running it on
// the module, writing the answer), without the network.
//
// Run it under `valgrind --tool=callgrind --collect-atstart=no` (bench/
// instructions does): each operation runs once to warm up, then kRuns times
// with collection on, and its counts are dumped under its name. Outside
// valgrind it runs the same operations. Their names go to standard error,
// the module's progress traces to standard output.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "BenchModule.hpp"
#include "OW_CIMProperty.hpp"
#include "OW_CIMValue.hpp"
#include "CimXmlRequest.hpp"
#include "HostLog.hpp"
#include "MofParser.hpp"
#include "OperationDispatcher.hpp"
#include "ProviderModule.hpp"
#include "ZpoTestRoot.hpp"

namespace {

using namespace cdrbench;

const int kRuns = 20;  // bench/instructions divides by the same number

void count(const std::string& name, const std::function<void()>& operation) {
  operation();
  CALLGRIND_TOGGLE_COLLECT;
  for (int i = 0; i < kRuns; ++i) operation();
  CALLGRIND_TOGGLE_COLLECT;
  CALLGRIND_DUMP_STATS_AT(name.c_str());
  std::fprintf(stderr, "%s\n", name.c_str());
}

template <class T>
class Discarding : public OW::ResultHandlerIFC<T> {
 protected:
  void doHandle(const T&) override {}
};

void countModule(LoadedModule& module) {
  for (const char* className : kClasses) {
    const std::string name = className;
    count("module enumInstances " + name, [&] {
      Discarding<OW::CIMInstance> handler;
      module.instances->enumInstances(module.env, kNamespace, className, handler, OW::WBEMFlags::E_NOT_LOCAL_ONLY,
                                      OW::WBEMFlags::E_DEEP, OW::WBEMFlags::E_EXCLUDE_QUALIFIERS,
                                      OW::WBEMFlags::E_INCLUDE_CLASS_ORIGIN, nullptr, kNoClass, kNoClass);
    });
    count("module enumInstanceNames " + name, [&] {
      Discarding<OW::CIMObjectPath> handler;
      module.instances->enumInstanceNames(module.env, kNamespace, className, handler, kNoClass);
    });
    const OW::CIMObjectPath first = module.names(className).at(0);
    count("module getInstance " + name, [&] { module.get(first); });
  }
  // A client changing one setting; the value alternates so that every run
  // writes.
  const OW::CIMObjectPath service = module.names("QTX_CDRService").at(0);
  OW::CIMInstance modified("QTX_CDRService");
  for (const OW::CIMProperty& key : service.getKeys()) modified.setProperty(key);
  unsigned limit = 16;
  count("module modifyInstance QTX_CDRService", [&] {
    limit = limit == 16 ? 20 : 16;
    modified.setProperty("DigitsLimit", OW::CIMValue(OW::UInt16(limit)));
    module.instances->modifyInstance(module.env, kNamespace, modified, modified, OW::WBEMFlags::E_EXCLUDE_QUALIFIERS,
                                     nullptr, kNoClass);
  });
}

std::string call(const std::string& method, const std::string& params) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\">\n<MESSAGE "
         "ID=\"4711\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ><IMETHODCALL NAME=\"" + method +
         "\"><LOCALNAMESPACEPATH><NAMESPACE NAME=\"root\"></NAMESPACE><NAMESPACE NAME=\"cimv2\"></NAMESPACE>"
         "</LOCALNAMESPACEPATH>\n" + params + "</IMETHODCALL></SIMPLEREQ>\n</MESSAGE></CIM>";
}

std::string param(const std::string& name, const std::string& content) {
  return "<IPARAMVALUE NAME=\"" + name + "\">" + content + "</IPARAMVALUE>\n";
}

// What wbemcli sends for ei, ein, gi and mi.
void countHost(const std::string& mofPath, const std::string& logPath) {
  cimhost::HostLog log(logPath);
  cimhost::ClassRepository classes;
  cimhost::loadMofFile(mofPath, classes);
  cimhost::ProviderModule provider(CDR_PROVIDER_MODULE, log);
  provider.initialize(OW::ProviderEnvironmentIFCRef(new cimhost::HostProviderEnvironment(log, "")));
  cimhost::OperationDispatcher dispatcher(classes, &provider, log, "root/cimv2", "127.0.0.1");
  const std::string flags = param("LocalOnly", "<VALUE>FALSE</VALUE>") +
                            param("IncludeQualifiers", "<VALUE>FALSE</VALUE>") +
                            param("IncludeClassOrigin", "<VALUE>TRUE</VALUE>");
  auto key = [](const char* name, const char* value) {
    return std::string("<KEYBINDING NAME=\"") + name + "\"><KEYVALUE VALUETYPE=\"string\">" + value +
           "</KEYVALUE></KEYBINDING>";
  };
  const std::string service = std::string("<INSTANCENAME CLASSNAME=\"QTX_CDRService\">") +
                              key("SystemCreationClassName", "QTX_System") + key("SystemName", "QTX") +
                              key("CreationClassName", "QTX_CDRService") + key("Name", "CDRService") +
                              "</INSTANCENAME>";
  auto className = [](const char* name) { return param("ClassName", std::string("<CLASSNAME NAME=\"") + name + "\"/>"); };
  const std::vector<std::pair<std::string, std::string>> requests = {
      {"host GetInstance QTX_CDRService", call("GetInstance", flags + param("InstanceName", service))},
      {"host EnumerateInstances QTX_CDRService",
       call("EnumerateInstances", className("QTX_CDRService") + param("DeepInheritance", "<VALUE>TRUE</VALUE>") + flags)},
      {"host EnumerateInstances QTX_CDRServicePrefixBin",
       call("EnumerateInstances",
            className("QTX_CDRServicePrefixBin") + param("DeepInheritance", "<VALUE>TRUE</VALUE>") + flags)},
      {"host EnumerateInstanceNames QTX_CDRServicePrefixBin",
       call("EnumerateInstanceNames", className("QTX_CDRServicePrefixBin"))},
  };
  for (const auto& request : requests) {
    count(request.first, [&] {
      std::string answer = dispatcher.handle(cimhost::parseCimRequest(request.second), "");
      if (answer.find("<ERROR") != std::string::npos) throw std::runtime_error(request.first + ": " + answer);
    });
  }
  // ModifyInstance of one setting, the value alternating; the instance
  // carries its keys, which name it.
  std::string keyProperties;
  for (const auto& k : std::vector<std::pair<const char*, const char*>>{{"SystemCreationClassName", "QTX_System"},
                                                                        {"SystemName", "QTX"},
                                                                        {"CreationClassName", "QTX_CDRService"},
                                                                        {"Name", "CDRService"}}) {
    keyProperties += std::string("<PROPERTY NAME=\"") + k.first + "\" TYPE=\"string\"><VALUE>" + k.second +
                     "</VALUE></PROPERTY>";
  }
  std::string modify[2];
  for (int i = 0; i < 2; ++i) {
    modify[i] = call("ModifyInstance",
                     param("ModifiedInstance", "<VALUE.NAMEDINSTANCE>" + service +
                                                   "<INSTANCE CLASSNAME=\"QTX_CDRService\">" + keyProperties +
                                                   "<PROPERTY NAME=\"DigitsLimit\" TYPE=\"uint16\"><VALUE>" +
                                                   (i ? "20" : "16") +
                                                   "</VALUE></PROPERTY></INSTANCE></VALUE.NAMEDINSTANCE>") +
                         param("PropertyList", "<VALUE.ARRAY><VALUE>DigitsLimit</VALUE></VALUE.ARRAY>"));
  }
  int next = 0;
  count("host ModifyInstance QTX_CDRService", [&] {
    std::string answer = dispatcher.handle(cimhost::parseCimRequest(modify[next ^= 1]), "");
    if (answer.find("<ERROR") != std::string::npos) throw std::runtime_error("ModifyInstance: " + answer);
  });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: cdr_instruction_count <the classes' MOF>\n");
    return 2;
  }
  try {
    zpotest::TempZpoRoot root;
    seedConfiguredDevice();
    LoadedModule module(CDR_PROVIDER_MODULE);
    countModule(module);
    countHost(argv[1], root.path() + "/cimhost.log");
  } catch (const OW::Exception& e) {
    std::fprintf(stderr, "cdr_instruction_count: %s\n", e.getMessage());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "cdr_instruction_count: %s\n", e.what());
    return 1;
  }
  return 0;
}
