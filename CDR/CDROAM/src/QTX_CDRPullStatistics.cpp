#include "QTX_CDRPullStatistics.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRPullStatistics::QTX_CDRPullStatistics(const std::string& name) : m_Name(name) {
  theInstanceManager->add(this);
}

QTX_CDRPullStatistics::~QTX_CDRPullStatistics() { theInstanceManager->remove(this); }

int QTX_CDRPullStatistics::getName(std::string& value, Array<CIMQualifier>&) const {
  value = m_Name;
  return CDR_STATUS_OK;
}

#define QTX_CDRPULLSTATISTICS_DEFINE_GETTER(N, T) \
  int QTX_CDRPullStatistics::get##N(T&, Array<CIMQualifier>&) const { return CDR_STATUS_OK; }
QTX_CDRPULLSTATISTICS_READONLY(QTX_CDRPULLSTATISTICS_DEFINE_GETTER)
#undef QTX_CDRPULLSTATISTICS_DEFINE_GETTER

int QTX_CDRPullStatistics::getIncludeMetricsFlag(bool&, Array<CIMQualifier>&) const {
  return CDR_STATUS_OK;
}

int QTX_CDRPullStatistics::setIncludeMetricsFlag(bool) { return CDR_STATUS_WRITE_FAILED; }

std::string QTX_CDRPullStatistics::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string name;
  getName(name, scratch);
  return cdrComposeKey(name);
}
