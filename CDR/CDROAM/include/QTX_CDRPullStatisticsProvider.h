// CIM provider of the class "QTX_CDRPullStatistics".
#ifndef QTX_CDRPULLSTATISTICSPROVIDER_H
#define QTX_CDRPULLSTATISTICSPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPullStatisticsImpl.h"

// IncludeMetricsFlag is the one writable property; every other property of
// a modify request, the key included, is skipped.
CDR_DECLARE_CLASS_PROVIDER(QTX_CDRPullStatistics, 1)

#endif
