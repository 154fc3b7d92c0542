// Conversions between the text of CIM-XML and the provider API's CIM
// objects. Values are typed by the request's TYPE or, where it has none, by
// the class definition.
#pragma once

#include <string>
#include <vector>

#include <OW_CIMClass.hpp>
#include <OW_CIMDataType.hpp>
#include <OW_CIMDateTime.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_CIMQualifier.hpp>
#include <OW_CIMValue.hpp>

#include "ClassDefinition.hpp"
#include "CimXmlRequest.hpp"

namespace cimhost {

namespace OW = OpenWBEM;

// The text of a date-time as the 3.0 series writes it.
std::string dateTimeText(const OW::CIMDateTime& dateTime);

// "uint8" ... "datetime", "reference"; "string" for embedded objects.
const char* cimTypeName(OW::CIMDataType::Type type);

// The OpenWBEM series whose reading of request values to follow where 3.0
// and 3.2 differ; one per process, 3.0 (the device's) unless set.
enum class Series { OpenWbem30, OpenWbem32 };
void readValuesAs(Series series);

// The value of `text` as CIM type `type` ("uint32", "reference" is not
// accepted here), read as owcimomd's XML factory reads it. A text that does
// not parse as that type is CIMException INVALID_PARAMETER (a date-time
// FAILED), except "NULL", which gives NULL; the empty text is a number's 0
// and NULL where the conversion refuses it. An unknown type name is
// INVALID_PARAMETER too.
OW::CIMValue valueFromText(const std::string& type, const TextValue& text);

// CIMValueCast::castValueToDataType as the object manager's own copy of
// OpenWBEM runs it: there an empty string read as a number is 0.
OW::CIMValue castValue(const OW::CIMValue& value, const OW::CIMDataType& type);

// Element texts of a non-null, non-reference value: one for a scalar.
std::vector<std::string> valueTexts(const OW::CIMValue& value);

// An object path from an INSTANCENAME: names as the client spelled them,
// key values typed by TYPE, else the class's key property, else VALUETYPE.
OW::CIMObjectPath objectPathFromText(const InstanceNameText& name, const std::string& nameSpace,
                                     const ClassDefinition* cls);

// An instance from an INSTANCE as the client sent it: properties in request
// order and spelling, typed by their TYPE (required, as the object manager
// requires it); fitting it to the class is ClassSync's work.
OW::CIMInstance instanceFromText(const InstanceText& text, const std::string& nameSpace);

// The class definition as the provider API's class, with qualifiers,
// properties and methods.
OW::CIMClass cimClassFromDefinition(const ClassDefinition& definition);

}  // namespace cimhost
