#include "QTX_CDRService.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRService::QTX_CDRService(const std::string& systemCreationClassName,
                               const std::string& systemName,
                               const std::string& creationClassName, const std::string& name)
    : m_SystemCreationClassName(systemCreationClassName),
      m_SystemName(systemName),
      m_CreationClassName(creationClassName),
      m_Name(name) {
  theInstanceManager->add(this);
}

QTX_CDRService::~QTX_CDRService() { theInstanceManager->remove(this); }

#define QTX_CDRSERVICE_DEFINE_ACCESSORS(N, T)                                        \
  int QTX_CDRService::get##N(T&, Array<CIMQualifier>&) const { return CDR_STATUS_READ_FAILED; } \
  int QTX_CDRService::set##N(T) { return CDR_STATUS_WRITE_FAILED; }
QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICE_DEFINE_ACCESSORS)
#undef QTX_CDRSERVICE_DEFINE_ACCESSORS

int QTX_CDRService::getSystemCreationClassName(std::string& value, Array<CIMQualifier>&) const {
  value = m_SystemCreationClassName;
  return CDR_STATUS_OK;
}

int QTX_CDRService::getSystemName(std::string& value, Array<CIMQualifier>&) const {
  value = m_SystemName;
  return CDR_STATUS_OK;
}

int QTX_CDRService::getCreationClassName(std::string& value, Array<CIMQualifier>&) const {
  value = m_CreationClassName;
  return CDR_STATUS_OK;
}

int QTX_CDRService::getName(std::string& value, Array<CIMQualifier>&) const {
  value = m_Name;
  return CDR_STATUS_OK;
}

std::string QTX_CDRService::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string a, b, c, d;
  getSystemCreationClassName(a, scratch);
  getSystemName(b, scratch);
  getCreationClassName(c, scratch);
  getName(d, scratch);
  return cdrComposeKey(a, b, c, d);
}
