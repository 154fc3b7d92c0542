#include "QTX_CDRServicePrefixBinProvider.h"

using OW_NAMESPACE::CIMValue;
typedef QTX_CDRServicePrefixBin P;

namespace {

// Length is checked here, digits by the setter.
int writePrefixBin(P& object, const CIMValue& value, const char*& invalidMessage) {
  std::string text(value.toString().c_str());
  if (text.length() > 8) {
    invalidMessage = "PrefixBin length must be must be <= 8";
    return 0;
  }
  return object.setPrefixBin(text);
}

}  // namespace

const char* const QTX_CDRServicePrefixBinProviderTraits::className = "QTX_CDRServicePrefixBin";
const char* const QTX_CDRServicePrefixBinProviderTraits::sourcePath =
    "CDR/CDROAM/src/QTX_CDRServicePrefixBinProvider";
const CDRProviderLines& QTX_CDRServicePrefixBinProviderTraits::lines =
    QTX_CDRServicePrefixBinProviderLines;

const CDRKeyProperty<P> QTX_CDRServicePrefixBinProviderTraits::keys[] = {
    {"InstanceID", &P::getInstanceID},
};

const CDRPropertyReader<P> QTX_CDRServicePrefixBinProviderTraits::properties[] = {
    {"PrefixBin", &cdrReadProperty<P, std::string, &P::getPrefixBin>},
    {"InstanceID", &cdrReadProperty<P, std::string, &P::getInstanceID>},
};

const CDRPropertyWriter<P> QTX_CDRServicePrefixBinProviderTraits::writable[] = {
    {"PrefixBin", &writePrefixBin},
};

const CDRMethod<P>* const QTX_CDRServicePrefixBinProviderTraits::methods = 0;

P* QTX_CDRServicePrefixBinProviderTraits::lookup(const std::string* k) {
  return P::getInstanceManager()->get(k[0]);
}

P* QTX_CDRServicePrefixBinProviderTraits::create(const std::string* k) {
  return P::getInstanceManager()->createQTX_CDRServicePrefixBin(k[0]);
}

void QTX_CDRServicePrefixBinProviderTraits::destroy(P* object) {
  P::getInstanceManager()->destroyQTX_CDRServicePrefixBin(object);
}
