#include "QTX_CDRServiceAccessBin.h"

#include "CDRRegistryAccess.hpp"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

QTX_CDRServiceAccessBin::QTX_CDRServiceAccessBin(const std::string& instanceID)
    : m_InstanceID(instanceID) {
  theInstanceManager->add(this);
}

QTX_CDRServiceAccessBin::~QTX_CDRServiceAccessBin() { theInstanceManager->remove(this); }

int QTX_CDRServiceAccessBin::getAccessBin(std::string&, Array<CIMQualifier>&) const {
  return CDR_STATUS_READ_FAILED;
}

int QTX_CDRServiceAccessBin::setAccessBin(std::string) { return CDR_STATUS_WRITE_FAILED; }

int QTX_CDRServiceAccessBin::getSuppressBin(std::string&, Array<CIMQualifier>&) const {
  return CDR_STATUS_READ_FAILED;
}

int QTX_CDRServiceAccessBin::setSuppressBin(std::string) { return CDR_STATUS_WRITE_FAILED; }

int QTX_CDRServiceAccessBin::getInstanceID(std::string& value, Array<CIMQualifier>&) const {
  value = m_InstanceID;
  return CDR_STATUS_OK;
}

std::string QTX_CDRServiceAccessBin::instanceKey() const {
  Array<CIMQualifier> scratch;
  std::string instanceID;
  getInstanceID(instanceID, scratch);
  return cdrComposeKey(instanceID);
}
