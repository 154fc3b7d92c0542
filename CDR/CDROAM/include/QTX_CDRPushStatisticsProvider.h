// CIM provider of the class "QTX_CDRPushStatistics".
#ifndef QTX_CDRPUSHSTATISTICSPROVIDER_H
#define QTX_CDRPUSHSTATISTICSPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPushStatisticsImpl.h"

// LastTransferTime is shown as a CIM datetime parsed from the stored text; a
// text that does not parse leaves as OpenWBEM's CIMDateTimeException. The
// class has no writable property, so a modify request changes nothing.
CDR_DECLARE_CLASS_PROVIDER(QTX_CDRPushStatistics, 1)

#endif
