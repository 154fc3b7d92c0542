// CDR report settings bound to the configuration registry, section
// "CDRService". Every successful change is announced to the CDR service
// process through its message queue "CDRService".
#ifndef QTX_CDRSERVICEIMPL_H
#define QTX_CDRSERVICEIMPL_H

#include <stdint.h>

#include "QTX_CDRService.h"

class QTX_CDRServiceImpl : public QTX_CDRService {
 public:
  // Looks the CDR service queue up; a missing queue is not an error.
  QTX_CDRServiceImpl(const std::string& systemCreationClassName, const std::string& systemName,
                     const std::string& creationClassName, const std::string& name);
  virtual ~QTX_CDRServiceImpl();

  // Getters return 0, or 100 with a zero output after a failed read;
  // setters return 0, or 101 after a failed write (nothing is announced).
#define QTX_CDRSERVICEIMPL_DECLARE_ACCESSORS(N, T)                                        \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const; \
  virtual int set##N(T value);
  QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICEIMPL_DECLARE_ACCESSORS)
#undef QTX_CDRSERVICEIMPL_DECLARE_ACCESSORS

  // Counts refreshes; reads and sends nothing.
  virtual unsigned int Refresh();
  // Tells the CDR service to clip its record file ("1") and counts.
  virtual unsigned int ClipFile();

  // Sends a one-character message to the CDR service queue, looking the
  // queue up again first. 0 when sent or when there is no queue, -1 when
  // the send failed (logged).
  int notifyCDRService(const char* message);

 private:
  template <class Cache, class Value>
  int getSetting(const char* key, const char* operation, Cache& cache, Value& value,
                 uint32_t* registryStatus = 0) const;
  template <class Cache, class Value>
  int setSetting(const char* key, const char* operation, Cache& cache, Value value);

  mutable unsigned char m_Format;
  mutable unsigned char m_ReportType;
  mutable unsigned char m_Language;
  mutable unsigned char m_ReportFilter;
  mutable unsigned char m_FeatureCode[2];
  mutable unsigned char m_DateFormat;
  mutable unsigned char m_HeaderFormat;
  mutable unsigned char m_DNISInfo;
  mutable unsigned char m_ConnectChar;
  mutable unsigned char m_DigitsSuppress;
  mutable unsigned short m_DigitsLimit;
  mutable unsigned char m_ClipFileSchedule;
  mutable unsigned char m_ClipFileSize_100K;
  mutable uint32_t m_CDRDiskSpaceLimit_MB;
  mutable unsigned char m_CLIDWithName;
  mutable unsigned char m_LongCLIDSupport;
  mutable unsigned char m_CLIDWithCallType;
  mutable unsigned char m_SupportCallCharge;
  mutable unsigned char m_AnswerSupervision;
  mutable unsigned char m_CallFilterDuration;
  mutable unsigned char m_HospitalityRecords;

  // Identifier of the CDR service queue; all ones when there is none.
  uint32_t queueId;
};

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRService)

#endif
