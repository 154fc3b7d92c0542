// CIM provider of the class "QTX_CDRPullStatistics".
#ifndef QTX_CDRPULLSTATISTICSPROVIDER_H
#define QTX_CDRPULLSTATISTICSPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPullStatisticsImpl.h"

// IncludeMetricsFlag is the one writable property; every other property of
// a modify request, the key included, is skipped.
struct QTX_CDRPullStatisticsProviderTraits {
  typedef QTX_CDRPullStatistics Object;
  typedef QTX_CDRPullStatisticsImplInstanceManager ImplManager;
  static const char* const className;
  static const char* const sourcePath;
  static const CDRProviderLines& lines;
  static const size_t keyCount = 1;
  static const CDRKeyProperty<Object> keys[keyCount];
  static const size_t propertyCount = 11;
  static const CDRPropertyReader<Object> properties[propertyCount];
  static const size_t writableCount = 1;
  static const CDRPropertyWriter<Object> writable[writableCount];
  static const size_t methodCount = 1;
  static const CDRMethod<Object> methods[methodCount];
  static Object* lookup(const std::string* keys);
  static Object* create(const std::string* keys);
  static void destroy(Object* object);
};

class QTX_CDRPullStatisticsProvider : public CDRClassProvider<QTX_CDRPullStatisticsProviderTraits> {
 public:
  CDR_PROVIDER_CONVERSIONS(QTX_CDRPullStatistics)
};

extern QTX_CDRPullStatisticsProvider QTX_CDRPullStatisticsProv;
extern const char* const QTX_CDRPullStatisticsName;

#endif
