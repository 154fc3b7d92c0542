#include "QTX_CDRPushStatisticsImpl.h"

#include <string.h>

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

namespace {

unsigned int RefreshReturn = 0;

const char* const kLastTransferTimeKey = "LastTransferTime";

// Transfer types for which no push runs: pull only, and no transfer.
const unsigned char kTransferPull = 3;
const unsigned char kTransferNone = 4;

}  // namespace

QTX_CDRPushStatisticsImpl::QTX_CDRPushStatisticsImpl(const std::string& name)
    : QTX_CDRPushStatistics(name) {
  memset(m_LastTransferTime, 0, sizeof m_LastTransferTime);
}

QTX_CDRPushStatisticsImpl::~QTX_CDRPushStatisticsImpl() {}

// Reads the type afresh rather than trusting the push setting's cache.
int QTX_CDRPushStatisticsImpl::setQulifier(Array<CIMQualifier>& qualifiers) const {
  unsigned char type = 0;
  uint32_t status = cdrReadTransferType(type);
  bool noPush = status == 0 && (type == kTransferPull || type == kTransferNone);
  return cdrAppendApplicable(qualifiers, !noPush);
}

// A missing entry reads as a one-character string holding NUL, which the
// provider takes as an empty date-time text; the entry is not created.
int QTX_CDRPushStatisticsImpl::getLastTransferTime(std::string& value,
                                                   Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  return cdrReadStatisticsText(CDR_REG_SECTION_PUSH, kLastTransferTimeKey, "getLastTransferTime",
                               "Push-LastTransferTime", m_LastTransferTime,
                               std::string(1, '\0'), value);
}

unsigned int QTX_CDRPushStatisticsImpl::Refresh() {
  ZpoGetRegEntryString(CDR_REG_COMPONENT, CDR_REG_SECTION_PUSH, kLastTransferTimeKey,
                       m_LastTransferTime, sizeof m_LastTransferTime);
  return ++RefreshReturn;
}
