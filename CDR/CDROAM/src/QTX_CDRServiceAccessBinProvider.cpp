#include "QTX_CDRServiceAccessBinProvider.h"

using OW_NAMESPACE::CIMValue;
typedef QTX_CDRServiceAccessBin A;

namespace {

// Lengths are checked here, digits and the count's range by the setters.
int writeAccessBin(A& object, const CIMValue& value, const char*& invalidMessage) {
  std::string text(value.toString().c_str());
  if (text.length() > 5) {
    invalidMessage = "AccessBin length must be must be <= 5";
    return 0;
  }
  return object.setAccessBin(text);
}

int writeSuppressBin(A& object, const CIMValue& value, const char*& invalidMessage) {
  std::string text(value.toString().c_str());
  if (text.length() > 2) {
    invalidMessage = "SuppressBin length must be must be <= 2";
    return 0;
  }
  return object.setSuppressBin(text);
}

}  // namespace

const char* const QTX_CDRServiceAccessBinProviderTraits::className = "QTX_CDRServiceAccessBin";
const char* const QTX_CDRServiceAccessBinProviderTraits::sourcePath =
    "CDR/CDROAM/src/QTX_CDRServiceAccessBinProvider";
const CDRProviderLines& QTX_CDRServiceAccessBinProviderTraits::lines =
    QTX_CDRServiceAccessBinProviderLines;

const CDRKeyProperty<A> QTX_CDRServiceAccessBinProviderTraits::keys[] = {
    {"InstanceID", &A::getInstanceID},
};

const CDRPropertyReader<A> kProperties[] = {
    {"AccessBin", &cdrReadProperty<A, std::string, &A::getAccessBin>},
    {"SuppressBin", &cdrReadProperty<A, std::string, &A::getSuppressBin>},
    {"InstanceID", &cdrReadProperty<A, std::string, &A::getInstanceID>},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRServiceAccessBin, properties, propertyCount, CDRPropertyReader, kProperties)

const CDRPropertyWriter<A> kWritable[] = {
    {"AccessBin", &writeAccessBin},
    {"SuppressBin", &writeSuppressBin},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRServiceAccessBin, writable, writableCount, CDRPropertyWriter, kWritable)

CDR_DEFINE_EMPTY_PROVIDER_TABLE(QTX_CDRServiceAccessBin, methods, methodCount, CDRMethod)

CDR_DEFINE_SINGLE_KEY_MANAGER_CALLS(QTX_CDRServiceAccessBin)
