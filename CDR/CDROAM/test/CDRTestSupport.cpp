#include "CDRTestSupport.hpp"

#include "OW_LogMessage.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_RepositoryIFC.hpp"

#include <stdexcept>

namespace cdrtest {

namespace {

class RecordingLogger : public OW::Logger {
 public:
  RecordingLogger(LogRecord record, const OW::String& component)
      : OW::Logger(component, OW::E_ALL_LEVEL), m_record(record) {}

 protected:
  void doProcessLogMessage(const OW::LogMessage& message) const override {
    if (m_record) {
      m_record->push_back(std::string(message.component.c_str()) + " " + message.category.c_str() + ": " +
                          message.message.c_str());
    }
  }
  OW::LoggerRef doClone() const override {
    return OW::LoggerRef(new RecordingLogger(m_record, getDefaultComponent()));
  }

 private:
  LogRecord m_record;
};

class TestEnvironment : public OW::ProviderEnvironmentIFC {
 public:
  explicit TestEnvironment(LogRecord record) : m_record(record) {}
  OW::CIMOMHandleIFCRef getCIMOMHandle() const override { return OW::CIMOMHandleIFCRef(); }
  OW::CIMOMHandleIFCRef getRepositoryCIMOMHandle() const override { return OW::CIMOMHandleIFCRef(); }
  OW::RepositoryIFCRef getRepository() const override { return OW::RepositoryIFCRef(); }
  OW::LoggerRef getLogger() const override { return OW::LoggerRef(new RecordingLogger(m_record, "owcimomd")); }
  OW::LoggerRef getLogger(const OW::String& component) const override {
    return OW::LoggerRef(new RecordingLogger(m_record, component));
  }
  OW::String getConfigItem(const OW::String&, const OW::String& defRetVal) const override {
    return defRetVal;
  }
  OW::StringArray getMultiConfigItem(const OW::String&, const OW::StringArray& defRetVal,
                                     const char*) const override {
    return defRetVal;
  }
  OW::String getUserName() const override { return "test"; }
  OW::OperationContext& getOperationContext() override { throw std::logic_error("no context"); }
  OW::ProviderEnvironmentIFCRef clone() const override {
    return OW::ProviderEnvironmentIFCRef(new TestEnvironment(m_record));
  }

 private:
  LogRecord m_record;
};

}  // namespace

OW::ProviderEnvironmentIFCRef makeEnvironment(LogRecord record) {
  return OW::ProviderEnvironmentIFCRef(new TestEnvironment(record));
}

std::string propertyText(const OW::CIMInstance& instance, const char* name) {
  OW::CIMProperty property = instance.getProperty(name);
  if (!property) return "<absent>";
  return property.getValue().toString().c_str();
}

std::string qualifierText(const OW::CIMInstance& instance, const char* property,
                          const char* qualifier) {
  OW::CIMProperty p = instance.getProperty(property);
  if (!p) return "<absent>";
  OW::CIMQualifier q = p.getQualifier(qualifier);
  if (!q) return "<absent>";
  return q.getValue().toString().c_str();
}

OW::CIMInstance makeInstance(const char* className,
                             const std::vector<std::pair<const char*, OW::CIMValue>>& properties) {
  OW::CIMInstance instance(className);
  for (const auto& p : properties) instance.setProperty(p.first, p.second);
  return instance;
}

OW::CIMObjectPath makePath(const char* className,
                           const std::vector<std::pair<const char*, const char*>>& keys) {
  OW::CIMObjectPath path(className, "root/cimv2");
  OW::CIMPropertyArray properties;
  for (const auto& k : keys) {
    properties.push_back(OW::CIMProperty(k.first, OW::CIMValue(OW::String(k.second))));
  }
  path.setKeys(properties);
  return path;
}

}  // namespace cdrtest
