#include "QTX_CDRPushStatisticsProvider.h"

#include "OW_CIMDateTime.hpp"

using OW_NAMESPACE::CIMDateTime;
using OW_NAMESPACE::CIMValue;
using OW_NAMESPACE::String;
typedef QTX_CDRPushStatistics S;

namespace {

// The stored text is taken as a C string, so the one-NUL text of a missing
// entry parses as the empty date-time. A text that does not parse throws.
int readLastTransferTime(const S& object, CDRQualifiers& qualifiers, CIMValue& value) {
  std::string text;
  int status = object.getLastTransferTime(text, qualifiers);
  if (status == 0) value = CIMValue(CIMDateTime(String(text.c_str())));
  return status;
}

}  // namespace

const char* const QTX_CDRPushStatisticsProviderTraits::className = "QTX_CDRPushStatistics";
const char* const QTX_CDRPushStatisticsProviderTraits::sourcePath =
    "CDR/CDROAM/src/QTX_CDRPushStatisticsProvider";
const CDRProviderLines& QTX_CDRPushStatisticsProviderTraits::lines =
    QTX_CDRPushStatisticsProviderLines;

const CDRKeyProperty<S> QTX_CDRPushStatisticsProviderTraits::keys[] = {
    {"Name", &S::getName},
};

const CDRPropertyReader<S> QTX_CDRPushStatisticsProviderTraits::properties[] = {
    {"Name", &cdrReadProperty<S, std::string, &S::getName>},
    {"LastTransferTime", &readLastTransferTime},
};

const CDRPropertyWriter<S>* const QTX_CDRPushStatisticsProviderTraits::writable = 0;

const CDRMethod<S> QTX_CDRPushStatisticsProviderTraits::methods[] = {
    {"Refresh", &S::Refresh},
};

S* QTX_CDRPushStatisticsProviderTraits::lookup(const std::string* k) {
  return S::getInstanceManager()->get(k[0]);
}

S* QTX_CDRPushStatisticsProviderTraits::create(const std::string* k) {
  return S::getInstanceManager()->createQTX_CDRPushStatistics(k[0]);
}

void QTX_CDRPushStatisticsProviderTraits::destroy(S* object) {
  S::getInstanceManager()->destroyQTX_CDRPushStatistics(object);
}
