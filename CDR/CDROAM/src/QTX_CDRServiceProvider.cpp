#include "QTX_CDRServiceProvider.h"

using OW_NAMESPACE::CIMValue;
typedef QTX_CDRService S;

namespace {

// Request values applied as the setter's type, without checks.
template <class T, int (S::*Setter)(T)>
int writeSetting(S& object, const CIMValue& value, const char*& invalidMessage) {
  return cdrWriteProperty<S, T, Setter>(object, value, invalidMessage);
}

// A 3-character code passes; only its first two characters are stored.
template <>
int writeSetting<std::string, &S::setFeatureCode>(S& object, const CIMValue& value,
                                                  const char*& invalidMessage) {
  std::string text(value.toString().c_str());
  if (text.length() > 3) {
    invalidMessage = "FeatureCode length must be must be <= 3";
    return 0;
  }
  return object.setFeatureCode(text);
}

// The upper bound is tested first.
template <>
int writeSetting<unsigned short, &S::setDigitsLimit>(S& object, const CIMValue& value,
                                                     const char*& invalidMessage) {
  unsigned short limit = value.toUInt16();
  if (limit > 24) {
    invalidMessage = "DigitsLimit must be <= 24";
    return 0;
  }
  if (limit < 3) {
    invalidMessage = "DigitsLimit must be >= 3";
    return 0;
  }
  return object.setDigitsLimit(limit);
}

}  // namespace

const char* const QTX_CDRServiceProviderTraits::className = "QTX_CDRService";
const char* const QTX_CDRServiceProviderTraits::sourcePath = "CDR/CDROAM/src/QTX_CDRServiceProvider";
const CDRProviderLines& QTX_CDRServiceProviderTraits::lines = QTX_CDRServiceProviderLines;

const CDRKeyProperty<S> QTX_CDRServiceProviderTraits::keys[] = {
    {"SystemCreationClassName", &S::getSystemCreationClassName},
    {"SystemName", &S::getSystemName},
    {"CreationClassName", &S::getCreationClassName},
    {"Name", &S::getName},
};

#define QTX_CDRSERVICE_READER(N, T) {#N, &cdrReadProperty<S, T, &S::get##N>},
const CDRPropertyReader<S> kProperties[] = {
    QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICE_READER)
    {"SystemCreationClassName", &cdrReadProperty<S, std::string, &S::getSystemCreationClassName>},
    {"SystemName", &cdrReadProperty<S, std::string, &S::getSystemName>},
    {"CreationClassName", &cdrReadProperty<S, std::string, &S::getCreationClassName>},
    {"Name", &cdrReadProperty<S, std::string, &S::getName>},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRService, properties, propertyCount, CDRPropertyReader, kProperties)

#define QTX_CDRSERVICE_WRITER(N, T) {#N, &writeSetting<T, &S::set##N>},
const CDRPropertyWriter<S> kWritable[] = {
    QTX_CDRSERVICE_PROPERTIES(QTX_CDRSERVICE_WRITER)
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRService, writable, writableCount, CDRPropertyWriter, kWritable)

const CDRMethod<S> kMethods[] = {
    {"Refresh", &S::Refresh},
    {"ClipFile", &S::ClipFile},
};
CDR_DEFINE_PROVIDER_TABLE(QTX_CDRService, methods, methodCount, CDRMethod, kMethods)

S* QTX_CDRServiceProviderTraits::lookup(const std::string* k) {
  return S::getInstanceManager()->get(k[0], k[1], k[2], k[3]);
}

S* QTX_CDRServiceProviderTraits::create(const std::string* k) {
  return S::getInstanceManager()->createQTX_CDRService(k[0], k[1], k[2], k[3]);
}

void QTX_CDRServiceProviderTraits::destroy(S* object) {
  S::getInstanceManager()->destroyQTX_CDRService(object);
}
