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
const CDRPropertyReader<P> QTX_CDRPushSettingProviderTraits::properties[] = {
    QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_READER)
    {"InstanceID", &cdrReadProperty<P, std::string, &P::getInstanceID>},
};
#undef QTX_CDRPUSHSETTING_READER

// No checks here: the setters refuse a bad time or day themselves (301).
#define QTX_CDRPUSHSETTING_WRITER(N, T) {#N, &cdrWriteProperty<P, T, &P::set##N>},
const CDRPropertyWriter<P> QTX_CDRPushSettingProviderTraits::writable[] = {
    QTX_CDRPUSHSETTING_PROPERTIES(QTX_CDRPUSHSETTING_WRITER)
};
#undef QTX_CDRPUSHSETTING_WRITER

const CDRMethod<P> QTX_CDRPushSettingProviderTraits::methods[] = {
    {"PushFileNow", &P::PushFileNow},
};

P* QTX_CDRPushSettingProviderTraits::lookup(const std::string* k) {
  return P::getInstanceManager()->get(k[0]);
}

P* QTX_CDRPushSettingProviderTraits::create(const std::string* k) {
  return P::getInstanceManager()->createQTX_CDRPushSetting(k[0]);
}

void QTX_CDRPushSettingProviderTraits::destroy(P* object) {
  P::getInstanceManager()->destroyQTX_CDRPushSetting(object);
}
