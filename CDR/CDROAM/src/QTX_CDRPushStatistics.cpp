#include "QTX_CDRPushStatistics.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRPushStatistics::QTX_CDRPushStatistics(const std::string& name) : m_Name(name) {
  theInstanceManager->add(this);
}

QTX_CDRPushStatistics::~QTX_CDRPushStatistics() { theInstanceManager->remove(this); }

int QTX_CDRPushStatistics::getName(std::string& value, Array<CIMQualifier>&) const {
  value = m_Name;
  return CDR_STATUS_OK;
}

int QTX_CDRPushStatistics::getLastTransferTime(std::string&, Array<CIMQualifier>&) const {
  return CDR_STATUS_READ_FAILED;
}

std::string QTX_CDRPushStatistics::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string name;
  getName(name, scratch);
  return cdrComposeKey(name);
}
