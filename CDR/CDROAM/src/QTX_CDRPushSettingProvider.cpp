#include "QTX_CDRPushSettingProvider.h"

typedef QTX_CDRPushSetting P;

const char* const QTX_CDRPushSettingProviderTraits::className = "QTX_CDRPushSetting";
const char* const QTX_CDRPushSettingProviderTraits::sourcePath =
    "CDR/CDROAM/src/QTX_CDRPushSettingProvider";
const CDRProviderLines& QTX_CDRPushSettingProviderTraits::lines = QTX_CDRPushSettingProviderLines;

const CDRKeyProperty<P> QTX_CDRPushSettingProviderTraits::keys[] = {
    {"InstanceID", &P::getInstanceID},
};

// uint8, string, uint32 and boolean as the getters' value types give them.
#define QTX_CDRPUSHSETTING_READER(N, T) {#N, &cdrReadProperty<P, T, &P::get##N>},
const CDRPropertyReader<P> kProperties[] = {
    QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_READER)
    {"InstanceID", &cdrReadProperty<P, std::string, &P::getInstanceID>},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPushSetting, properties, propertyCount, CDRPropertyReader, kProperties)
#undef QTX_CDRPUSHSETTING_READER

// No checks here: the setters refuse a bad time or day themselves (301).
#define QTX_CDRPUSHSETTING_WRITER(N, T) {#N, &cdrWriteProperty<P, T, &P::set##N>},
const CDRPropertyWriter<P> kWritable[] = {
    QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_WRITER)
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPushSetting, writable, writableCount, CDRPropertyWriter, kWritable)
#undef QTX_CDRPUSHSETTING_WRITER

const CDRMethod<P> kMethods[] = {
    {"PushFileNow", &P::PushFileNow},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRPushSetting, methods, methodCount, CDRMethod, kMethods)

CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(QTX_CDRPushSetting)
