// CDR report settings: the managed object, its instance manager.
#ifndef QTX_CDRSERVICE_H
#define QTX_CDRSERVICE_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

// The 21 report settings in slot order: X(property, value type).
#define QTX_CDRSERVICE_PROPERTIES(X)   \
  X(Format, unsigned char)             \
  X(ReportType, unsigned char)         \
  X(Language, unsigned char)           \
  X(ReportFilter, unsigned char)       \
  X(FeatureCode, std::string)          \
  X(DateFormat, unsigned char)         \
  X(HeaderFormat, unsigned char)       \
  X(DNISInfo, bool)                    \
  X(ConnectChar, unsigned char)        \
  X(DigitsSuppress, unsigned char)     \
  X(DigitsLimit, unsigned short)       \
  X(ClipFileSchedule, unsigned char)   \
  X(ClipFileSize_100K, unsigned int)   \
  X(CDRDiskSpaceLimit_MB, unsigned int) \
  X(CLIDWithName, bool)                \
  X(LongCLIDSupport, bool)             \
  X(CLIDWithCallType, bool)            \
  X(SupportCallCharge, bool)           \
  X(AnswerSupervision, bool)           \
  X(CallFilterDuration, unsigned int)  \
  X(HospitalityRecords, bool)

class QTX_CDRServiceInstanceManager;

class QTX_CDRService : public CDRManagedObject<QTX_CDRService, QTX_CDRServiceInstanceManager> {
 public:
  // Stores the four keys and registers with the current instance manager.
  QTX_CDRService(const std::string& systemCreationClassName, const std::string& systemName,
                 const std::string& creationClassName, const std::string& name);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRService();

  // Property accessors. Here every getter returns 100 and every setter 101:
  // only the implementation reaches the registry.
#define QTX_CDRSERVICE_DECLARE_ACCESSORS(N, T)                                           \
  virtual int get##N(T& value, OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const; \
  virtual int set##N(T value);
  QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICE_DECLARE_ACCESSORS)
#undef QTX_CDRSERVICE_DECLARE_ACCESSORS

  // Key getters: copy the key into `value` and return 0.
  virtual int getSystemCreationClassName(std::string& value,
                                         OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int getSystemName(std::string& value,
                            OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int getCreationClassName(std::string& value,
                                   OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int getName(std::string& value,
                      OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // Methods: each returns its running counter.
  virtual unsigned int Refresh() = 0;
  virtual unsigned int ClipFile() = 0;

  // The four key values concatenated in key order.
  std::string instanceKey() const;

 private:
  std::string m_SystemCreationClassName;
  std::string m_SystemName;
  std::string m_CreationClassName;
  std::string m_Name;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRService,
                             (const std::string& systemCreationClassName,
                              const std::string& systemName, const std::string& creationClassName,
                              const std::string& name),
                             (systemCreationClassName, systemName, creationClassName, name))

#endif
