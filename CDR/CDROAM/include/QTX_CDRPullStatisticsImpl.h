// Pull transfer statistics bound to the configuration registry, section
// "CDRPull". The transfer side writes the counters and texts; a manager may
// only set the metrics flag and clear the rest.
#ifndef QTX_CDRPULLSTATISTICSIMPL_H
#define QTX_CDRPULLSTATISTICSIMPL_H

#include <stdint.h>

#include "CDRRegistryAccess.hpp"
#include "QTX_CDRPullStatistics.h"

class QTX_CDRPullStatisticsImpl : public QTX_CDRPullStatistics {
 public:
  explicit QTX_CDRPullStatisticsImpl(const std::string& name);
  virtual ~QTX_CDRPullStatisticsImpl();

  // Every getter appends "Applicable" first and, when not applicable,
  // returns 0 with `value` untouched. A missing entry reads as 0 or "" and
  // is not created; a failed read logs, gives 0 or "" and returns 100. A
  // text with control characters (or an empty one) is warned about and
  // given as "".
#define QTX_CDRPULLSTATISTICSIMPL_DECLARE_GETTER(N, T) \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  QTX_CDRPULLSTATISTICS_READONLY(QTX_CDRPULLSTATISTICSIMPL_DECLARE_GETTER)
#undef QTX_CDRPULLSTATISTICSIMPL_DECLARE_GETTER
  // As the counters, except that a missing flag is created holding 0.
  virtual int getIncludeMetricsFlag(bool& value,
                                    OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Writes 1 or 0 whatever the transfer type; 101 when the write fails.
  virtual int setIncludeMetricsFlag(bool value);

  // Empties the three texts and zeroes the five counters in the registry
  // (results ignored; the metrics flag is kept) and returns the count of
  // refreshes since the module was loaded, 1 for the first.
  virtual unsigned int Refresh();

  // Appends "Applicable": true when "TransferType" reads as 3 (pull) or
  // cannot be read, else false. Returns 1 when applicable, 0 when not.
  int setQulifier(OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

 private:
  int getCounter(const char* key, const char* operation, uint32_t& cache, unsigned int& value,
                 OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  int getText(const char* key, const char* operation, char* cache, std::string& value,
              OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  mutable uint32_t m_NumberOfSuccessfulTransfers;
  mutable char m_MostRecentSuccessfulTransfer[CDR_TEXT_SIZE];
  mutable char m_MostRecentFailedTransfer[CDR_TEXT_SIZE];
  mutable char m_ReasonForFailure[CDR_TEXT_SIZE];
  mutable uint32_t m_NumberOfFailedTransfers;
  mutable uint32_t m_LargestFileTransferred;
  mutable uint32_t m_SmallestFileTransferred;
  mutable uint32_t m_TotalNumberOfBytesTransferred;
  mutable uint32_t m_TotalNumberOfFileTransferred;
  mutable unsigned char m_IncludeMetricsFlag;
};

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRPullStatistics)

#endif
