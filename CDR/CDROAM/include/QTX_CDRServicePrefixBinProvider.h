// CIM provider of the class "QTX_CDRServicePrefixBin": the 8 prefix rows,
// keyed by InstanceID. Rows cannot be created or deleted; no methods.
#ifndef QTX_CDRSERVICEPREFIXBINPROVIDER_H
#define QTX_CDRSERVICEPREFIXBINPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServicePrefixBinImpl.h"

CDR_DECLARE_CLASS_PROVIDER(QTX_CDRServicePrefixBin, 1)

#endif
