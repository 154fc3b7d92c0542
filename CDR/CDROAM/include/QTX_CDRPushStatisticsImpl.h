// Push transfer statistics read from the configuration registry, section
// "CDRPush". The transfer program writes "LastTransferTime"; the object only
// reads it.
#ifndef QTX_CDRPUSHSTATISTICSIMPL_H
#define QTX_CDRPUSHSTATISTICSIMPL_H

#include "CDRRegistryAccess.hpp"
#include "QTX_CDRPushStatistics.h"

class QTX_CDRPushStatisticsImpl : public QTX_CDRPushStatistics {
 public:
  explicit QTX_CDRPushStatisticsImpl(const std::string& name);
  virtual ~QTX_CDRPushStatisticsImpl();

  // Appends "Applicable" first. When not applicable: 0, `value` untouched.
  // A missing entry gives a one-NUL string and 0 (the entry is not created);
  // a failed read logs, gives the one-NUL string and 100; a text with
  // control characters logs a warning and gives the empty text.
  virtual int getLastTransferTime(std::string& value,
                                  OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // Re-reads the entry into the cache (unchecked) and returns the count of
  // refreshes since the module was loaded, 1 for the first.
  virtual unsigned int Refresh();

  // Appends "Applicable": false when "TransferType" reads as 3 or 4 (pull
  // only, or no transfer), else true, an unreadable type included. Returns
  // 1 when applicable, 0 when not.
  int setQulifier(OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

 private:
  mutable char m_LastTransferTime[CDR_TEXT_SIZE];
};

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRPushStatistics)

#endif
