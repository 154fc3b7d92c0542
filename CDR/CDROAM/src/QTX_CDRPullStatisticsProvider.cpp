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
const CDRPropertyReader<S> kProperties[] = {
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
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPullStatistics, properties, propertyCount, CDRPropertyReader, kProperties)

const CDRPropertyWriter<S> kWritable[] = {
    {"IncludeMetricsFlag", &cdrWriteProperty<S, bool, &S::setIncludeMetricsFlag>},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPullStatistics, writable, writableCount, CDRPropertyWriter, kWritable)

const CDRMethod<S> kMethods[] = {
    {"Refresh", &S::Refresh},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPullStatistics, methods, methodCount, CDRMethod, kMethods)

CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(QTX_CDRPullStatistics)
