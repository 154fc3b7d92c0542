// CIM provider of the class "QTX_CDRPushSetting".
#ifndef QTX_CDRPUSHSETTINGPROVIDER_H
#define QTX_CDRPUSHSETTINGPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPushSettingImpl.h"

struct QTX_CDRPushSettingProviderTraits {
  typedef QTX_CDRPushSetting Object;
  typedef QTX_CDRPushSettingImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 1;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 13;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 12;
  static const CDRPropertyWriter<Object> writable[writableCount];
  static const size_t methodCount = 1;
  static const CDRMethod<Object> methods[methodCount];
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

// Properties are produced with TransferType first, so the other getters see
// the transfer type just read. Modify applies the request's properties in
// its own order; each of TransferType, TransferTime and the two days re-arms
// or removes the schedule, the last one winning. Registry failures
// (CFG_ReadError, CFG_WriteError) pass through to the umbrella provider.
class QTX_CDRPushSettingProvider : public CDRClassProvider<QTX_CDRPushSettingProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRPushSetting)
};

extern QTX_CDRPushSettingProvider QTX_CDRPushSettingProv;
extern const char* const QTX_CDRPushSettingName;

#endif
