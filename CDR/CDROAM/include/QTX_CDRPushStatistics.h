// Push transfer statistics: the managed object and its instance manager.
#ifndef QTX_CDRPUSHSTATISTICS_H
#define QTX_CDRPUSHSTATISTICS_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

class QTX_CDRPushStatisticsInstanceManager;

class QTX_CDRPushStatistics
    : public CDRManagedObject<QTX_CDRPushStatistics, QTX_CDRPushStatisticsInstanceManager> {
 public:
  // Stores the key and registers with the current instance manager.
  explicit QTX_CDRPushStatistics(const std::string& name);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRPushStatistics();

  // Key getter: copies the name into `value`, adds no qualifier, returns 0.
  virtual int getName(std::string& value,
                      OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Time of the last push transfer as a CIM date-time text. Here it returns
  // 100 without touching its arguments: only the implementation reads it.
  virtual int getLastTransferTime(std::string& value,
                                  OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // Re-reads the last transfer time; returns the running count of refreshes.
  virtual unsigned int Refresh() = 0;

  // The name; the only key.
  std::string instanceKey() const;

 private:
  std::string m_Name;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRPushStatistics, (const std::string& name), (name))

#endif
