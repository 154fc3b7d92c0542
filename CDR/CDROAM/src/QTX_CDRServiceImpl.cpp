#include "QTX_CDRServiceImpl.h"

#include <stdio.h>

#include "OW_CIMQualifier.hpp"
#include "CDRRegistryAccess.hpp"
#include "osa.h"

using OW_NAMESPACE::Array;
using OW_NAMESPACE::CIMQualifier;
using OW_NAMESPACE::UInt32;

namespace {

unsigned int RefreshReturn = 0;
unsigned int ClipFileReturn = 0;

const uint32_t kNoQueue = 0xFFFFFFFF;
const char* const kQueueName = "CDRService";
const char* const kSettingsChanged = "0";
const char* const kClipFileNow = "1";

// One entry per cache width: 1 byte, 2 bytes most significant first, int.
uint32_t readEntry(const char* key, unsigned char& cache) {
  return ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, &cache, 1);
}
uint32_t readEntry(const char* key, unsigned short& cache) {
  unsigned char bytes[2];
  uint32_t status = ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, bytes, 2);
  if (status == 0) cache = static_cast<unsigned short>((bytes[0] << 8) | bytes[1]);
  return status;
}
uint32_t readEntry(const char* key, uint32_t& cache) {
  return ZpoGetRegEntryInt(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, &cache);
}
uint32_t writeEntry(const char* key, const unsigned char& cache) {
  return ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, &cache, 1);
}
uint32_t writeEntry(const char* key, const unsigned short& cache) {
  unsigned char bytes[2] = {static_cast<unsigned char>(cache >> 8), static_cast<unsigned char>(cache)};
  return ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, bytes, 2);
}
uint32_t writeEntry(const char* key, const uint32_t& cache) {
  return ZpoSetRegEntryInt(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, key, cache);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

QTX_CDRServiceImpl::QTX_CDRServiceImpl(const std::string& systemCreationClassName,
                                       const std::string& systemName,
                                       const std::string& creationClassName,
                                       const std::string& name)
    : QTX_CDRService(systemCreationClassName, systemName, creationClassName, name),
      m_Format(0), m_ReportType(0), m_Language(0), m_ReportFilter(0), m_DateFormat(0),
      m_HeaderFormat(0), m_DNISInfo(0), m_ConnectChar(0), m_DigitsSuppress(0), m_DigitsLimit(0),
      m_ClipFileSchedule(0), m_ClipFileSize_100K(0), m_CDRDiskSpaceLimit_MB(0), m_CLIDWithName(0),
      m_LongCLIDSupport(0), m_CLIDWithCallType(0), m_SupportCallCharge(0),
      m_AnswerSupervision(0), m_CallFilterDuration(0), m_HospitalityRecords(0),
      queueId(kNoQueue) {
  m_FeatureCode[0] = m_FeatureCode[1] = 0;
  if (osQueueGetId(kQueueName, &queueId) != 0) queueId = kNoQueue;
}

QTX_CDRServiceImpl::~QTX_CDRServiceImpl() {}

// Reads the entry into the cache; on failure logs, zeroes the output, 100.
template <class Cache, class Value>
int QTX_CDRServiceImpl::getSetting(const char* key, const char* operation, Cache& cache,
                                   Value& value, uint32_t* registryStatus) const {
  uint32_t status = readEntry(key, cache);
  if (registryStatus != 0) *registryStatus = status;
  if (status != 0) {
    writeError(operation, status);
    value = Value();
    return CDR_STATUS_READ_FAILED;
  }
  value = static_cast<Value>(cache);
  return CDR_STATUS_OK;
}

// Caches the value first (narrowed to the entry's width; true is 1), writes
// it, and announces the change.
template <class Cache, class Value>
int QTX_CDRServiceImpl::setSetting(const char* key, const char* operation, Cache& cache,
                                   Value value) {
  cache = static_cast<Cache>(value);
  uint32_t status = writeEntry(key, cache);
  if (status != 0) {
    writeError(operation, status);
    return CDR_STATUS_WRITE_FAILED;
  }
  notifyCDRService(kSettingsChanged);
  return CDR_STATUS_OK;
}

#define QTX_CDRSERVICEIMPL_GETTER(N, T, KEY)                                          \
  int QTX_CDRServiceImpl::get##N(T& value, Array<CIMQualifier>&) const {              \
    return getSetting(KEY, "get" #N, m_##N, value);                                   \
  }
#define QTX_CDRSERVICEIMPL_SETTER(N, T, KEY)                                          \
  int QTX_CDRServiceImpl::set##N(T value) { return setSetting(KEY, "set" #N, m_##N, value); }
#define QTX_CDRSERVICEIMPL_ACCESSORS(N, T, KEY) \
  QTX_CDRSERVICEIMPL_GETTER(N, T, KEY) QTX_CDRSERVICEIMPL_SETTER(N, T, KEY)

QTX_CDRSERVICEIMPL_ACCESSORS(Format, unsigned char, "FORMAT")
QTX_CDRSERVICEIMPL_SETTER(ReportType, unsigned char, "TYPE")
QTX_CDRSERVICEIMPL_ACCESSORS(Language, unsigned char, "LANG")
QTX_CDRSERVICEIMPL_ACCESSORS(ReportFilter, unsigned char, "FILTER")
QTX_CDRSERVICEIMPL_ACCESSORS(DateFormat, unsigned char, "DATE")
QTX_CDRSERVICEIMPL_ACCESSORS(HeaderFormat, unsigned char, "HEADER")
QTX_CDRSERVICEIMPL_ACCESSORS(DNISInfo, bool, "DNIS")
QTX_CDRSERVICEIMPL_ACCESSORS(ConnectChar, unsigned char, "CONNECT")
QTX_CDRSERVICEIMPL_ACCESSORS(DigitsSuppress, unsigned char, "DIGITSSUPP")
QTX_CDRSERVICEIMPL_ACCESSORS(DigitsLimit, unsigned short, "DIGITSLIMIT")
QTX_CDRSERVICEIMPL_ACCESSORS(ClipFileSchedule, unsigned char, "SCHEDULE")
QTX_CDRSERVICEIMPL_ACCESSORS(ClipFileSize_100K, unsigned int, "FILESIZE")
QTX_CDRSERVICEIMPL_ACCESSORS(CDRDiskSpaceLimit_MB, unsigned int, "DISKLIMIT")
QTX_CDRSERVICEIMPL_ACCESSORS(CLIDWithName, bool, "NAME")
QTX_CDRSERVICEIMPL_ACCESSORS(LongCLIDSupport, bool, "LONGID")
QTX_CDRSERVICEIMPL_ACCESSORS(CLIDWithCallType, bool, "CALLTYPE")
QTX_CDRSERVICEIMPL_ACCESSORS(SupportCallCharge, bool, "CHARGE")
QTX_CDRSERVICEIMPL_SETTER(AnswerSupervision, bool, "SUPERVISE")
QTX_CDRSERVICEIMPL_ACCESSORS(CallFilterDuration, unsigned int, "TIME")
QTX_CDRSERVICEIMPL_ACCESSORS(HospitalityRecords, bool, "HOSPITAL")

// The valid report types depend on the cached Format: {0, 1} for format 0,
// else {0, 1, 2, 3}. The provider reads Format first, so the cache is fresh.
int QTX_CDRServiceImpl::getReportType(unsigned char& value, Array<CIMQualifier>& qualifiers) const {
  Array<UInt32> valid;
  valid.push_back(0);
  valid.push_back(1);
  if (m_Format != 0) {
    valid.push_back(2);
    valid.push_back(3);
  }
  qualifiers.push_back(cdrValidValueMapQualifier(valid));
  return getSetting("TYPE", "getReportType", m_ReportType, value);
}

// Two decimal digits packed into byte 1 of a 2-byte entry; byte 0 is 0xF9.
int QTX_CDRServiceImpl::getFeatureCode(std::string& value, Array<CIMQualifier>&) const {
  uint32_t status = ZpoGetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, "FEATURE CODE",
                                         m_FeatureCode, 2);
  if (status != 0) {
    writeError("getFeatureCode", status);
    value = "00";
    return CDR_STATUS_READ_FAILED;
  }
  char digits[3] = {static_cast<char>('0' + (m_FeatureCode[1] >> 4)),
                    static_cast<char>('0' + (m_FeatureCode[1] & 0x0F)), '\0'};
  value = digits;
  return CDR_STATUS_OK;
}

int QTX_CDRServiceImpl::setFeatureCode(std::string value) {
  char first = value.length() > 0 && isDigit(value[0]) ? value[0] : 0;
  char second = value.length() > 1 && isDigit(value[1]) ? value[1] : 0;
  m_FeatureCode[0] = 0xF9;
  m_FeatureCode[1] = static_cast<unsigned char>(((first & 0x0F) << 4) | (second & 0x0F));
  uint32_t status = ZpoSetRegEntryBinary(CDR_REG_COMPONENT, CDR_REG_SECTION_SERVICE, "FEATURE CODE",
                                         m_FeatureCode, 2);
  if (status != 0) {
    writeError("setFeatureCode", status);
    return CDR_STATUS_WRITE_FAILED;
  }
  notifyCDRService(kSettingsChanged);
  return CDR_STATUS_OK;
}

// The one property with console traces of its own.
int QTX_CDRServiceImpl::getAnswerSupervision(bool& value, Array<CIMQualifier>& qualifiers) const {
  uint32_t registryStatus = 0;
  int status =
      getSetting("SUPERVISE", "getAnswerSupervision", m_AnswerSupervision, value, &registryStatus);
  if (status != CDR_STATUS_OK) {
    printf(" get AnswerSupervision error = %i\n", static_cast<int>(registryStatus));
  } else {
    printf("theAnswerSupervision = %i\n", value ? 1 : 0);
  }
  (void)qualifiers;
  return status;
}

unsigned int QTX_CDRServiceImpl::Refresh() { return ++RefreshReturn; }

unsigned int QTX_CDRServiceImpl::ClipFile() {
  notifyCDRService(kClipFileNow);
  return ++ClipFileReturn;
}

int QTX_CDRServiceImpl::notifyCDRService(const char* message) {
  uint32_t id = kNoQueue;
  if (osQueueGetId(kQueueName, &id) == 0 && id != queueId) queueId = id;
  if (queueId == kNoQueue) return 0;
  uint32_t status = osQueueSend(queueId, message, 1);
  if (status != 0) {
    char text[64];
    snprintf(text, sizeof text, "Notifying CDRService QueueSend failed rc =%x", status);
    cdrLog(CDR_LOG_NOTICE, text);
    return -1;
  }
  printf("After notifyCDRService()############################## \n");
  return 0;
}
