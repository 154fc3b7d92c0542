#include "QTX_CDRServicePrefixBin.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRServicePrefixBin::QTX_CDRServicePrefixBin(const std::string& instanceID)
    : m_InstanceID(instanceID) {
  theInstanceManager->add(this);
}

QTX_CDRServicePrefixBin::~QTX_CDRServicePrefixBin() { theInstanceManager->remove(this); }

int QTX_CDRServicePrefixBin::getPrefixBin(std::string&, Array<CIMQualifier>&) const {
  return CDR_STATUS_READ_FAILED;
}

int QTX_CDRServicePrefixBin::setPrefixBin(std::string) { return CDR_STATUS_WRITE_FAILED; }

int QTX_CDRServicePrefixBin::getInstanceID(std::string& value, Array<CIMQualifier>&) const {
  value = m_InstanceID;
  return CDR_STATUS_OK;
}

std::string QTX_CDRServicePrefixBin::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string instanceID;
  getInstanceID(instanceID, scratch);
  return cdrComposeKey(instanceID);
}
