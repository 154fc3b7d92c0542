// CIM provider of the class "QTX_CDRPushStatistics".
#ifndef QTX_CDRPUSHSTATISTICSPROVIDER_H
#define QTX_CDRPUSHSTATISTICSPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPushStatisticsImpl.h"

// LastTransferTime is shown as a CIM datetime parsed from the stored text; a
// text that does not parse leaves as OpenWBEM's CIMDateTimeException. The
// class has no writable property, so a modify request changes nothing.
struct QTX_CDRPushStatisticsProviderTraits {
  typedef QTX_CDRPushStatistics Object;
  typedef QTX_CDRPushStatisticsImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 1;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 2;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 0;
  static const CDRPropertyWriter<Object>* const writable;
  static const size_t methodCount = 1;
  static const CDRMethod<Object> methods[methodCount];
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

class QTX_CDRPushStatisticsProvider : public CDRClassProvider<QTX_CDRPushStatisticsProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRPushStatistics)
};

extern QTX_CDRPushStatisticsProvider QTX_CDRPushStatisticsProv;
extern const char* const QTX_CDRPushStatisticsName;

#endif
