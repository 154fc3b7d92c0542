// Pull transfer statistics: the managed object and its instance manager.
#ifndef QTX_CDRPULLSTATISTICS_H
#define QTX_CDRPULLSTATISTICS_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

// The statistics in slot order: X(property, value type). Only the metrics
// flag is writable; it comes last.
#define QTX_CDRPULLSTATISTICS_READONLY(X)          \
  X(MostRecentSuccessfulTransfer, std::string)     \
  X(NumberOfSuccessfulTransfers, unsigned int)     \
  X(MostRecentFailedTransfer, std::string)         \
  X(ReasonForFailure, std::string)                 \
  X(NumberOfFailedTransfers, unsigned int)         \
  X(LargestFileTransferred, unsigned int)          \
  X(SmallestFileTransferred, unsigned int)         \
  X(TotalNumberOfBytesTransferred, unsigned int)   \
  X(TotalNumberOfFileTransferred, unsigned int)

class QTX_CDRPullStatisticsInstanceManager;

class QTX_CDRPullStatistics
    : public CDRManagedObject<QTX_CDRPullStatistics, QTX_CDRPullStatisticsInstanceManager> {
 public:
  // Stores the key and registers with the current instance manager.
  explicit QTX_CDRPullStatistics(const std::string& name);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRPullStatistics();

  // Key getter: copies the name into `value`, adds no qualifier, returns 0.
  virtual int getName(std::string& value,
                      OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // Statistics getters. Here they return 0 and leave their arguments alone;
  // only the implementation reads the registry.
#define QTX_CDRPULLSTATISTICS_DECLARE_GETTER(N, T) \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  QTX_CDRPULLSTATISTICS_READONLY(QTX_CDRPULLSTATISTICS_DECLARE_GETTER)
#undef QTX_CDRPULLSTATISTICS_DECLARE_GETTER
  virtual int getIncludeMetricsFlag(bool& value,
                                    OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  // Returns 101 here.
  virtual int setIncludeMetricsFlag(bool value);

  // Clears the statistics; returns the running count of refreshes.
  virtual unsigned int Refresh() = 0;

  // The name; the only key.
  std::string instanceKey() const;

 private:
  std::string m_Name;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRPullStatistics, (const std::string& name), (name))

#endif
