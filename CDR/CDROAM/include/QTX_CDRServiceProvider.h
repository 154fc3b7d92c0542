// CIM provider of the class "QTX_CDRService".
#ifndef QTX_CDRSERVICEPROVIDER_H
#define QTX_CDRSERVICEPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRServiceImpl.h"

CDR_DECLARE_CLASS_PROVIDER(QTX_CDRService, 4)

#endif
