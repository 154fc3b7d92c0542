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

const CDRPropertyReader<S> kProperties[] = {
    {"Name", &cdrReadProperty<S, std::string, &S::getName>},
    {"LastTransferTime", &readLastTransferTime},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPushStatistics, properties, propertyCount, CDRPropertyReader, kProperties)

CDR_DEFINE_EMPTY_PROVIDER_TABLE(QTX_CDRPushStatistics, writable, writableCount, CDRPropertyWriter)

const CDRMethod<S> kMethods[] = {
    {"Refresh", &S::Refresh},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPushStatistics, methods, methodCount, CDRMethod, kMethods)

CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(QTX_CDRPushStatistics)
