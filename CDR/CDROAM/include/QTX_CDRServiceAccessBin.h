// Access and suppress digit bins: the managed object of one row, its
// instance manager.
#ifndef QTX_CDRSERVICEACCESSBIN_H
#define QTX_CDRSERVICEACCESSBIN_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

class QTX_CDRServiceAccessBinInstanceManager;

class QTX_CDRServiceAccessBin
    : public CDRManagedObject<QTX_CDRServiceAccessBin, QTX_CDRServiceAccessBinInstanceManager> {
 public:
  // Stores the key and registers with the current instance manager.
  explicit QTX_CDRServiceAccessBin(const std::string& instanceID);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRServiceAccessBin();

  // Here every getter returns 100 and every setter 101: only the
  // implementation reaches the registry.
  virtual int getAccessBin(std::string& value,
                           OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int setAccessBin(std::string value);
  virtual int getSuppressBin(std::string& value,
                             OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int setSuppressBin(std::string value);
  // Copies the key into `value` and returns 0.
  virtual int getInstanceID(std::string& value,
                            OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // The key value.
  std::string instanceKey() const;

 private:
  std::string m_InstanceID;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRServiceAccessBin, (const std::string& instanceID),
                             (instanceID))

#endif
