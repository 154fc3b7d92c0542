#include "QTX_CDRPullStatisticsProvider.h"

typedef QTX_CDRPullStatistics S;

const char* const QTX_CDRPullStatisticsProviderTraits::className = "QTX_CDRPullStatistics";
const char* const QTX_CDRPullStatisticsProviderTraits::sourcePath =
    "CDR/CDROAM/src/QTX_CDRPullStatisticsProvider";
const CDRProviderLines& QTX_CDRPullStatisticsProviderTraits::lines =
    QTX_CDRPullStatisticsProviderLines;

const CDRKeyProperty<S> QTX_CDRPullStatisticsProviderTraits::keys[] = {
    {"Name", &S::getName},
};

// The order in which an instance is filled: the metrics flag comes third.
const CDRPropertyReader<S> QTX_CDRPullStatisticsProviderTraits::properties[] = {
    {"Name", &cdrReadProperty<S, std::string, &S::getName>},
    {"MostRecentSuccessfulTransfer",
     &cdrReadProperty<S, std::string, &S::getMostRecentSuccessfulTransfer>},
    {"IncludeMetricsFlag", &cdrReadProperty<S, bool, &S::getIncludeMetricsFlag>},
    {"NumberOfSuccessfulTransfers",
     &cdrReadProperty<S, unsigned int, &S::getNumberOfSuccessfulTransfers>},
    {"MostRecentFailedTransfer", &cdrReadProperty<S, std::string, &S::getMostRecentFailedTransfer>},
    {"ReasonForFailure", &cdrReadProperty<S, std::string, &S::getReasonForFailure>},
    {"NumberOfFailedTransfers", &cdrReadProperty<S, unsigned int, &S::getNumberOfFailedTransfers>},
    {"LargestFileTransferred", &cdrReadProperty<S, unsigned int, &S::getLargestFileTransferred>},
    {"SmallestFileTransferred", &cdrReadProperty<S, unsigned int, &S::getSmallestFileTransferred>},
    {"TotalNumberOfBytesTransferred",
     &cdrReadProperty<S, unsigned int, &S::getTotalNumberOfBytesTransferred>},
    {"TotalNumberOfFileTransferred",
     &cdrReadProperty<S, unsigned int, &S::getTotalNumberOfFileTransferred>},
};

const CDRPropertyWriter<S> QTX_CDRPullStatisticsProviderTraits::writable[] = {
    {"IncludeMetricsFlag", &cdrWriteProperty<S, bool, &S::setIncludeMetricsFlag>},
};

const CDRMethod<S> QTX_CDRPullStatisticsProviderTraits::methods[] = {
    {"Refresh", &S::Refresh},
};

S* QTX_CDRPullStatisticsProviderTraits::lookup(const std::string* k) {
  return S::getInstanceManager()->get(k[0]);
}

S* QTX_CDRPullStatisticsProviderTraits::create(const std::string* k) {
  return S::getInstanceManager()->createQTX_CDRPullStatistics(k[0]);
}

void QTX_CDRPullStatisticsProviderTraits::destroy(S* object) {
  S::getInstanceManager()->destroyQTX_CDRPullStatistics(object);
}
