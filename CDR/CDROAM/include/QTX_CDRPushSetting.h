// Push transfer settings: the managed object and its instance manager.
#ifndef QTX_CDRPUSHSETTING_H
#define QTX_CDRPUSHSETTING_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

// The twelve push settings in slot order: X(property, value type).
#define QTX_CDRPUSHSETTING_PROPERTIES(X) \
  X(TransferType, unsigned char)         \
  X(IPAddress, std::string)              \
  X(UserName, std::string)               \
  X(Password, std::string)               \
  X(DestFolder, std::string)             \
  X(NumRetry, unsigned int)              \
  X(DeleteFlag, bool)                    \
  X(CompressFlag, bool)                  \
  X(IncludeMetricsFlag, bool)            \
  X(TransferTime, std::string)           \
  X(TransferDayOfMonth, std::string)     \
  X(TransferDayOfWeek, std::string)

class QTX_CDRPushSettingInstanceManager;

class QTX_CDRPushSetting
    : public CDRManagedObject<QTX_CDRPushSetting, QTX_CDRPushSettingInstanceManager> {
 public:
  // Stores the key and registers with the current instance manager.
  explicit QTX_CDRPushSetting(const std::string& instanceID);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRPushSetting();

  // Property accessors. Here every getter returns 100 and every setter 101
  // without touching anything: only the implementation reaches the registry.
#define QTX_CDRPUSHSETTING_DECLARE_ACCESSORS(N, T)                                                 \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const; \
  virtual int set##N(T value);
  QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_DECLARE_ACCESSORS)
#undef QTX_CDRPUSHSETTING_DECLARE_ACCESSORS

  // Key getter: copies the key into `value`, returns 0, adds no qualifier.
  virtual int getInstanceID(std::string& value,
                            OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // Runs the transfer program at once; returns the running count of runs.
  virtual unsigned int PushFileNow() = 0;

  // The key value.
  std::string instanceKey() const;

 private:
  std::string m_InstanceID;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRPushSetting, (const std::string& instanceID), (instanceID))

#endif
