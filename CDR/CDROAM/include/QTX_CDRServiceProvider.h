// CIM provider of the class "QTX_CDRService".
#ifndef QTX_CDRSERVICEPROVIDER_H
#define QTX_CDRSERVICEPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServiceImpl.h"

struct QTX_CDRServiceProviderTraits {
  typedef QTX_CDRService Object;
  typedef QTX_CDRServiceImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 4;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 25;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 21;
  static const CDRPropertyWriter<Object> writable[writableCount];
  static const size_t methodCount = 2;
  static const CDRMethod<Object> methods[methodCount];
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

class QTX_CDRServiceProvider : public CDRClassProvider<QTX_CDRServiceProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRService)
};

extern QTX_CDRServiceProvider QTX_CDRServiceProv;
extern const char* const QTX_CDRServiceName;

#endif
