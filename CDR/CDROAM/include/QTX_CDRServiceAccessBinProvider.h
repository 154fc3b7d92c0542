// CIM provider of the class "QTX_CDRServiceAccessBin": the 5 access rows with
// their suppress counts, keyed by InstanceID. Rows cannot be created or
// deleted; no methods.
#ifndef QTX_CDRSERVICEACCESSBINPROVIDER_H
#define QTX_CDRSERVICEACCESSBINPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServiceAccessBinImpl.h"

struct QTX_CDRServiceAccessBinProviderTraits {
  typedef QTX_CDRServiceAccessBin Object;
  typedef QTX_CDRServiceAccessBinImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 1;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 3;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 2;
  static const CDRPropertyWriter<Object> writable[writableCount];
  static const size_t methodCount = 0;
  static const CDRMethod<Object>* const methods;
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

class QTX_CDRServiceAccessBinProvider
    : public CDRClassProvider<QTX_CDRServiceAccessBinProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRServiceAccessBin)
};

extern QTX_CDRServiceAccessBinProvider QTX_CDRServiceAccessBinProv;
extern const char* const QTX_CDRServiceAccessBinName;

#endif
