// CIM provider of the class "QTX_CDRServicePrefixBin": the 8 prefix rows,
// keyed by InstanceID. Rows cannot be created or deleted; no methods.
#ifndef QTX_CDRSERVICEPREFIXBINPROVIDER_H
#define QTX_CDRSERVICEPREFIXBINPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServicePrefixBinImpl.h"

struct QTX_CDRServicePrefixBinProviderTraits {
  typedef QTX_CDRServicePrefixBin Object;
  typedef QTX_CDRServicePrefixBinImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 1;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 2;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 1;
  static const CDRPropertyWriter<Object> writable[writableCount];
  static const size_t methodCount = 0;
  static const CDRMethod<Object>* const methods;
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

class QTX_CDRServicePrefixBinProvider
    : public CDRClassProvider<QTX_CDRServicePrefixBinProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRServicePrefixBin)
};

extern QTX_CDRServicePrefixBinProvider QTX_CDRServicePrefixBinProv;
extern const char* const QTX_CDRServicePrefixBinName;

#endif
