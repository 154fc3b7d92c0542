#include "QTX_CDRPushSetting.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRPushSetting::QTX_CDRPushSetting(const std::string& instanceID) : m_InstanceID(instanceID) {
  theInstanceManager->add(this);
}

QTX_CDRPushSetting::~QTX_CDRPushSetting() { theInstanceManager->remove(this); }

#define QTX_CDRPUSHSETTING_DEFINE_ACCESSORS(N, T)                                                \
  int QTX_CDRPushSetting::get##N(T&, Array<CIMQualifier>&) const { return CDR_STATUS_READ_FAILED; } \
  int QTX_CDRPushSetting::set##N(T) { return CDR_STATUS_WRITE_FAILED; }
QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_DEFINE_ACCESSORS)
#undef QTX_CDRPUSHSETTING_DEFINE_ACCESSORS

int QTX_CDRPushSetting::getInstanceID(std::string& value, Array<CIMQualifier>&) const {
  value = m_InstanceID;
  return CDR_STATUS_OK;
}

std::string QTX_CDRPushSetting::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string id;
  getInstanceID(id, scratch);
  return cdrComposeKey(id);
}
