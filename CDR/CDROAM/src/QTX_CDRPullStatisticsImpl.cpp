#include "QTX_CDRPullStatisticsImpl.h"

#include <string.h>

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;

namespace {

unsigned int RefreshReturn = 0;

// The pull statistics mean something only while the device is pulled from.
const unsigned char kTransferPull = 3;

const char* const kMostRecentSuccessKey = "Pull-MostRecentSuccess";
const char* const kNumSuccessesKey = "Pull-NumSuccesses";
const char* const kMostRecentFailureKey = "Pull-MostRecentFailure";
const char* const kFailureReasonKey = "Pull-MostRecentFailureReason";
const char* const kNumFailuresKey = "Pull-NumFailures";
const char* const kLargestFileKey = "Pull-LargestFile";
const char* const kSmallestFileKey = "Pull-SmallestFile";
const char* const kNumberOfBytesKey = "Pull-NumberOfBytes";
const char* const kNumberOfFilesKey = "Pull-NumberOfFiles";
const char* const kIncludeMetricsFlagKey = "Pull-IncludeMetricsFlag";

// Counters are 4-byte binary entries holding the value in native order.
uint32_t readCounter(const char* key, uint32_t& cache) {
  return ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PULL, key, &cache, sizeof cache);
}
uint32_t writeCounter(const char* key, const uint32_t& cache) {
  return ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PULL, key, &cache, sizeof cache);
}
uint32_t writeFlag(const unsigned char& cache) {
  return ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PULL, kIncludeMetricsFlagKey,
                              &cache, 1);
}
uint32_t clearText(const char* key, char* cache) {
  memset(cache, 0, CDR_TEXT_SIZE);
  return ZpoSetRegEntryString(CDR_REG_COMPONENT, CDR_REG_SECTION_PULL, key, cache);
}

}  // namespace

QTX_CDRPullStatisticsImpl::QTX_CDRPullStatisticsImpl(const std::string& name)
    : QTX_CDRPullStatistics(name),
      m_NumberOfSuccessfulTransfers(0),
      m_NumberOfFailedTransfers(0),
      m_LargestFileTransferred(0),
      m_SmallestFileTransferred(0),
      m_TotalNumberOfBytesTransferred(0),
      m_TotalNumberOfFileTransferred(0),
      m_IncludeMetricsFlag(0) {
  memset(m_MostRecentSuccessfulTransfer, 0, sizeof m_MostRecentSuccessfulTransfer);
  memset(m_MostRecentFailedTransfer, 0, sizeof m_MostRecentFailedTransfer);
  memset(m_ReasonForFailure, 0, sizeof m_ReasonForFailure);
}

QTX_CDRPullStatisticsImpl::~QTX_CDRPullStatisticsImpl() {}

int QTX_CDRPullStatisticsImpl::setQulifier(Array<CIMQualifier>& qualifiers) const {
  unsigned char type = 0;
  uint32_t status = cdrReadTransferType(type);
  return cdrAppendApplicable(qualifiers, status != 0 || type == kTransferPull);
}

int QTX_CDRPullStatisticsImpl::getCounter(const char* key, const char* operation, uint32_t& cache,
                                          unsigned int& value,
                                          Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  uint32_t status = readCounter(key, cache);
  if (status == 0) {
    value = cache;
    return CDR_STATUS_OK;
  }
  value = 0;
  if (status == CDR_REG_ENTRY_ABSENT) return CDR_STATUS_OK;
  writeError(operation, status);
  return CDR_STATUS_READ_FAILED;
}

int QTX_CDRPullStatisticsImpl::getText(const char* key, const char* operation, char* cache,
                                       std::string& value,
                                       Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  return cdrReadStatisticsText(CDR_REG_SECTION_PULL, key, operation, key, cache, std::string(),
                               value);
}

int QTX_CDRPullStatisticsImpl::getMostRecentSuccessfulTransfer(
    std::string& value, Array<CIMQualifier>& qualifiers) const {
  return getText(kMostRecentSuccessKey, "getMostRecentSuccessfulTransfer",
                 m_MostRecentSuccessfulTransfer, value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getNumberOfSuccessfulTransfers(
    unsigned int& value, Array<CIMQualifier>& qualifiers) const {
  return getCounter(kNumSuccessesKey, "getNumberOfSuccessfulTransfers",
                    m_NumberOfSuccessfulTransfers, value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getMostRecentFailedTransfer(std::string& value,
                                                           Array<CIMQualifier>& qualifiers) const {
  return getText(kMostRecentFailureKey, "getMostRecentFailedTransfer", m_MostRecentFailedTransfer,
                 value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getReasonForFailure(std::string& value,
                                                   Array<CIMQualifier>& qualifiers) const {
  return getText(kFailureReasonKey, "getReasonForFailure", m_ReasonForFailure, value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getNumberOfFailedTransfers(unsigned int& value,
                                                          Array<CIMQualifier>& qualifiers) const {
  return getCounter(kNumFailuresKey, "getNumberOfFailedTransfers", m_NumberOfFailedTransfers,
                    value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getLargestFileTransferred(unsigned int& value,
                                                         Array<CIMQualifier>& qualifiers) const {
  return getCounter(kLargestFileKey, "getLargestFileTransferred", m_LargestFileTransferred, value,
                    qualifiers);
}

int QTX_CDRPullStatisticsImpl::getSmallestFileTransferred(unsigned int& value,
                                                          Array<CIMQualifier>& qualifiers) const {
  return getCounter(kSmallestFileKey, "getSmallestFileTransferred", m_SmallestFileTransferred,
                    value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getTotalNumberOfBytesTransferred(
    unsigned int& value, Array<CIMQualifier>& qualifiers) const {
  return getCounter(kNumberOfBytesKey, "getTotalNumberOfBytesTransferred",
                    m_TotalNumberOfBytesTransferred, value, qualifiers);
}

int QTX_CDRPullStatisticsImpl::getTotalNumberOfFileTransferred(
    unsigned int& value, Array<CIMQualifier>& qualifiers) const {
  return getCounter(kNumberOfFilesKey, "getTotalNumberOfFileTransferred",
                    m_TotalNumberOfFileTransferred, value, qualifiers);
}

// A missing flag is created holding 0 so that the transfer side finds it.
int QTX_CDRPullStatisticsImpl::getIncludeMetricsFlag(bool& value,
                                                     Array<CIMQualifier>& qualifiers) const {
  if (setQulifier(qualifiers) == 0) return CDR_STATUS_OK;
  uint32_t status = ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_PULL,
                                         kIncludeMetricsFlagKey, &m_IncludeMetricsFlag, 1);
  if (status == 0) {
    value = m_IncludeMetricsFlag != 0;
    return CDR_STATUS_OK;
  }
  value = false;
  if (status == CDR_REG_ENTRY_ABSENT) {
    m_IncludeMetricsFlag = 0;
    writeFlag(m_IncludeMetricsFlag);
    return CDR_STATUS_OK;
  }
  writeError("getIncludeMetricsFlag", status);
  return CDR_STATUS_READ_FAILED;
}

int QTX_CDRPullStatisticsImpl::setIncludeMetricsFlag(bool value) {
  m_IncludeMetricsFlag = value ? 1 : 0;
  uint32_t status = writeFlag(m_IncludeMetricsFlag);
  if (status != 0) {
    writeError("setIncludeMetricsFlag", status);
    return CDR_STATUS_WRITE_FAILED;
  }
  return CDR_STATUS_OK;
}

unsigned int QTX_CDRPullStatisticsImpl::Refresh() {
  clearText(kMostRecentSuccessKey, m_MostRecentSuccessfulTransfer);
  m_NumberOfSuccessfulTransfers = 0;
  writeCounter(kNumSuccessesKey, m_NumberOfSuccessfulTransfers);
  clearText(kMostRecentFailureKey, m_MostRecentFailedTransfer);
  clearText(kFailureReasonKey, m_ReasonForFailure);
  m_NumberOfFailedTransfers = 0;
  writeCounter(kNumFailuresKey, m_NumberOfFailedTransfers);
  m_LargestFileTransferred = 0;
  writeCounter(kLargestFileKey, m_LargestFileTransferred);
  m_SmallestFileTransferred = 0;
  writeCounter(kSmallestFileKey, m_SmallestFileTransferred);
  m_TotalNumberOfBytesTransferred = 0;
  writeCounter(kNumberOfBytesKey, m_TotalNumberOfBytesTransferred);
  m_TotalNumberOfFileTransferred = 0;
  writeCounter(kNumberOfFilesKey, m_TotalNumberOfFileTransferred);
  return ++RefreshReturn;
}
