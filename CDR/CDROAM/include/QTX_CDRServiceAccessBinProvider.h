// CIM provider of the class "QTX_CDRServiceAccessBin": the 5 access rows with
// their suppress counts, keyed by InstanceID. Rows cannot be created or
// deleted; no methods.
#ifndef QTX_CDRSERVICEACCESSBINPROVIDER_H
#define QTX_CDRSERVICEACCESSBINPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServiceAccessBinImpl.h"

CDR_DECLARE_CLASS_PROVIDER(QTX_CDRServiceAccessBin, 1)

#endif
