// Prefix digit bins: the managed object of one row, its instance manager.
#ifndef QTX_CDRSERVICEPREFIXBIN_H
#define QTX_CDRSERVICEPREFIXBIN_H

#include <string>

#include "CDROWConfig.hpp"
#include "OW_Array.hpp"
#include "OW_CIMQualifier.hpp"

#include "CDRManagedObject.hpp"

class QTX_CDRServicePrefixBinInstanceManager;

class QTX_CDRServicePrefixBin
    : public CDRManagedObject<QTX_CDRServicePrefixBin, QTX_CDRServicePrefixBinInstanceManager> {
 public:
  // Stores the key and registers with the current instance manager.
  explicit QTX_CDRServicePrefixBin(const std::string& instanceID);
  // Removes the object from the instance manager current at that moment.
  virtual ~QTX_CDRServicePrefixBin();

  // Here the getter returns 100 and the setter 101: only the implementation
  // reaches the registry.
  virtual int getPrefixBin(std::string& value,
                           OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;
  virtual int setPrefixBin(std::string value);
  // Copies the key into `value` and returns 0.
  virtual int getInstanceID(std::string& value,
                            OW_NAMESPACE::Array<OW_NAMESPACE::CIMQualifier>& qualifiers) const;

  // The key value.
  std::string instanceKey() const;

 private:
  std::string m_InstanceID;
};

CDR_DECLARE_INSTANCE_MANAGER(QTX_CDRServicePrefixBin, (const std::string& instanceID),
                             (instanceID))

#endif
