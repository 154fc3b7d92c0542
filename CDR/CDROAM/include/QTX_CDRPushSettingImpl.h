// Push transfer settings bound to the configuration registry, section
// "CDRPush", and the one scheduled run of the transfer program that they
// call for.
#ifndef QTX_CDRPUSHSETTINGIMPL_H
#define QTX_CDRPUSHSETTINGIMPL_H

#include <stdint.h>

#include "CDRRegistryAccess.hpp"
#include "QTX_CDRPushSetting.h"

class QTX_CDRPushSettingImpl : public QTX_CDRPushSetting {
 public:
  // Prints its trace, becomes gCDRPushInstance and registers
  // C_RestoreCallBackHdlr for registry restores ("CDROAMProvider", 2).
  explicit QTX_CDRPushSettingImpl(const std::string& instanceID);
  // Clears gCDRPushInstance (whichever object it pointed to); the restore
  // registration stays.
  virtual ~QTX_CDRPushSettingImpl();

  // Getters return 0; a missing entry is created with its default. Except
  // TransferType they apply only while the cached transfer type is not 3 or
  // 4 (the days: only while it is 2 or 1) and otherwise leave `value` alone;
  // each appends its "Applicable" qualifier. A text holding control
  // characters reads as the default. Throw CFG_ReadError on a failed read.
  // Setters return 0, 301 for a refused time or day, or the result of the
  // schedule change they trigger; throw CFG_WriteError on a failed write.
#define QTX_CDRPUSHSETTINGIMPL_DECLARE_ACCESSORS(N, T)                                             \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const; \
  virtual int set##N(T value);
  QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTINGIMPL_DECLARE_ACCESSORS)
#undef QTX_CDRPUSHSETTINGIMPL_DECLARE_ACCESSORS

  // Runs "/qv/bin/CDRTransfer" through the shell and waits (its exit status
  // is ignored); returns the number of immediate pushes so far.
  virtual unsigned int PushFileNow();

  // Arms the one scheduled run for the cached type, time and day, after
  // removing every older one. Returns 0; logs and throws CFG_WriteError when
  // the scheduler refuses (the old run is gone by then).
  virtual int setPushSchedule();
  // Deletes every scheduled run of the transfer program. Returns 0; logs and
  // throws CFG_WriteError when the last deletion failed.
  virtual int removePushSchedule();

  // Appends "Applicable" (true unless the cached type is 3 or 4); returns 1
  // when applicable, else 0.
  int setQulifier(OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // After a registry restore: re-reads TransferType (a failed read is
  // returned as it is) and re-arms or removes the schedule from the restored
  // settings; returns that result. The event is not examined.
  int RestoreCallBackHdlr(unsigned long event);

 private:
  // Re-reads the day (type 2 or 1) and the time that the schedule needs.
  void refreshScheduleTexts();

  mutable unsigned char m_TransferType;
  mutable char m_IPAddress[CDR_TEXT_SIZE];
  mutable char m_UserName[CDR_TEXT_SIZE];
  mutable char m_Password[CDR_TEXT_SIZE];
  mutable char m_DestFolder[CDR_TEXT_SIZE];
  mutable uint32_t m_NumRetry;
  mutable unsigned char m_DeleteFlag;
  mutable unsigned char m_CompressFlag;
  mutable unsigned char m_IncludeMetricsFlag;
  mutable char m_TransferTime[CDR_TEXT_SIZE];
  mutable char m_TransferDayOfMonth[CDR_TEXT_SIZE];
  mutable char m_TransferDayOfWeek[CDR_TEXT_SIZE];
};

// The live push setting that registry restores are forwarded to; null when
// there is none.
extern QTX_CDRPushSettingImpl* gCDRPushInstance;

CDR_DECLARE_IMPL_INSTANCE_MANAGER(QTX_CDRPushSetting)

#endif
