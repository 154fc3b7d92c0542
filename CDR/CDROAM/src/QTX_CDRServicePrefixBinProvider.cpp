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

const CDRPropertyReader<P> kProperties[] = {
    {"PrefixBin", &cdrReadProperty<P, std::string, &P::getPrefixBin>},
    {"InstanceID", &cdrReadProperty<P, std::string, &P::getInstanceID>},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRServicePrefixBin, properties, propertyCount, CDRPropertyReader, kProperties)

const CDRPropertyWriter<P> kWritable[] = {
    {"PrefixBin", &writePrefixBin},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRServicePrefixBin, writable, writableCount, CDRPropertyWriter, kWritable)

CDR_DEFINE_EMPTY_PROVIDER_TABLE(QTX_CDRServicePrefixBin, methods, methodCount, CDRMethod)

CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(QTX_CDRServicePrefixBin)
