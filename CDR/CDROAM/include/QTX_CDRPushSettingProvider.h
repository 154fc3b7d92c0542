// CIM provider of the class "QTX_CDRPushSetting".
#ifndef QTX_CDRPUSHSETTINGPROVIDER_H
#define QTX_CDRPUSHSETTINGPROVIDER_H

#include "CDRClassProvider.hpp"
#include "QTX_CDRPushSettingImpl.h"

CDR_DECLARE_CLASS_PROVIDER(QTX_CDRPushSetting, 1)

#endif
