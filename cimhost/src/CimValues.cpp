#include "CimValues.hpp"

#include <OW_Array.hpp>
#include <OW_Bool.hpp>
#include <OW_CIMDateTime.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMMethod.hpp>
#include <OW_CIMParameter.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMQualifierType.hpp>
#include <OW_CIMValueCast.hpp>
#include <OW_Char16.hpp>
#include <OW_String.hpp>

namespace cimhost {
namespace {

using OW::CIMDataType;
using OW::CIMException;
using OW::CIMValue;
using OW::String;

[[noreturn]] void throwCim(CIMException::ErrNoType code, const std::string& message) {
    throw CIMException(__FILE__, __LINE__, code, message.c_str());
}

Series readingSeries = Series::OpenWbem30;

bool isNumeric(const std::string& type) {
    return CIMDataType::isNumericType(CIMDataType::strToSimpleType(String(type.c_str())));
}

// As the object manager reads a VALUE: a text that does not parse as its
// type is CIM_ERR_INVALID_PARAMETER with the conversion's message, except
// "NULL" (any case), which reads as NULL. The empty text is a number's 0
// (strtol reads nothing and stops at the end) and NULL for the types whose
// conversion refuses it (boolean, char16).
CIMValue scalarFromText(const std::string& type, const std::string& text) {
    if (CIMDataType::strToSimpleType(String(type.c_str())) == CIMDataType::INVALID) {
        throwCim(CIMException::INVALID_PARAMETER, "unknown CIM type " + type);
    }
    const std::string& read = text.empty() && isNumeric(type) ? std::string("0") : text;
    // 3.2 makes a scalar CHAR16 of any text (its first character); 3.0 wants one.
    if (readingSeries == Series::OpenWbem32 && type == "char16" && !text.empty()) {
        return CIMValue(OW::Char16(String(text.c_str())));
    }
    try {
        return CIMValue::createSimpleValue(String(type.c_str()), String(read.c_str()));
    } catch (const CIMException&) {
        throw;
    } catch (const OW::Exception& e) {
        if (text.empty() || String(text.c_str()).equalsIgnoreCase("NULL")) return CIMValue(OW::CIMNULL);
        // owcimomd reports a date-time it cannot read as a general error.
        throwCim(type == "datetime" ? CIMException::FAILED : CIMException::INVALID_PARAMETER, e.getMessage());
    }
}

// A VALUE.ARRAY, element by element as the object manager reads it: one
// element that reads as NULL makes the whole value NULL.
template <class T>
CIMValue arrayFromTexts(const std::string& type, const std::vector<std::string>& texts) {
    OW::Array<T> items;
    for (const std::string& text : texts) {
        T item;
        CIMValue value = scalarFromText(type, text);
        if (!value) return CIMValue(OW::CIMNULL);
        value.get(item);
        items.push_back(item);
    }
    return CIMValue(items);
}

// A boolean array element is true when it says "true" in any case and false
// otherwise: owcimomd reads these without conversion errors.
CIMValue booleanArrayFromTexts(const std::vector<std::string>& texts) {
    OW::Array<OW::Bool> items;
    for (const std::string& text : texts) items.push_back(OW::Bool(namesEqual(text, "true")));
    return CIMValue(items);
}

template <class T>
void appendArrayTexts(const CIMValue& value, std::vector<std::string>& texts) {
    OW::Array<T> items;
    value.get(items);
    for (const T& item : items) texts.push_back(CIMValue(item).toString().c_str());
}

CIMDataType dataTypeOf(const std::string& type, bool isArray, const std::string& referenceClass) {
    if (type == "reference") return CIMDataType(OW::CIMName(String(referenceClass.c_str())));
    CIMDataType::Type simple = CIMDataType::strToSimpleType(String(type.c_str()));
    if (isArray) return CIMDataType(simple, 0);
    return CIMDataType(simple);
}

// The CIM type name that key text gets when nothing else types it.
std::string typeForKeyValueType(const KeyBindingText& key) {
    if (key.valueType == "boolean") return "boolean";
    if (key.valueType == "numeric") {
        if (key.text.find_first_of(".eE") != std::string::npos) return "real64";
        return (!key.text.empty() && key.text[0] == '-') ? "sint64" : "uint64";
    }
    return "string";
}

OW::CIMQualifier qualifierFromDefinition(const Qualifier& q) {
    OW::CIMQualifierType qualifierType{OW::CIMName(String(q.name.c_str()))};
    qualifierType.setDataType(dataTypeOf(q.type, q.isArray, ""));
    OW::CIMQualifier qualifier(qualifierType);
    qualifier.setValue(q.value.isNull ? CIMValue(OW::CIMNULL) : valueFromText(q.type, q.value));
    return qualifier;
}

OW::CIMQualifierArray qualifiersFromDefinition(const std::vector<Qualifier>& qualifiers) {
    OW::CIMQualifierArray out;
    for (const Qualifier& q : qualifiers) out.push_back(qualifierFromDefinition(q));
    return out;
}

}  // namespace

void readValuesAs(Series series) { readingSeries = series; }

std::string dateTimeText(const OW::CIMDateTime& dateTime) {
    // The empty date-time (from an empty text) is a zero date in the 3.0
    // series, a zero interval in 3.2; the device runs 3.0.
    bool empty = dateTime.isInterval() && dateTime.getDays() == 0 && dateTime.getHours() == 0 &&
                 dateTime.getMinutes() == 0 && dateTime.getSeconds() == 0 && dateTime.getMicroSeconds() == 0;
    return empty ? "00000000000000.000000+000" : dateTime.toString().c_str();
}

const char* cimTypeName(CIMDataType::Type type) {
    switch (type) {
        case CIMDataType::UINT8: return "uint8";
        case CIMDataType::SINT8: return "sint8";
        case CIMDataType::UINT16: return "uint16";
        case CIMDataType::SINT16: return "sint16";
        case CIMDataType::UINT32: return "uint32";
        case CIMDataType::SINT32: return "sint32";
        case CIMDataType::UINT64: return "uint64";
        case CIMDataType::SINT64: return "sint64";
        case CIMDataType::BOOLEAN: return "boolean";
        case CIMDataType::REAL32: return "real32";
        case CIMDataType::REAL64: return "real64";
        case CIMDataType::DATETIME: return "datetime";
        case CIMDataType::CHAR16: return "char16";
        case CIMDataType::REFERENCE: return "reference";
        default: return "string";
    }
}

CIMValue valueFromText(const std::string& type, const TextValue& text) {
    if (text.isNull) return CIMValue(OW::CIMNULL);
    if (!text.isArray) return scalarFromText(type, text.elements.empty() ? "" : text.elements.front());
    switch (CIMDataType::strToSimpleType(String(type.c_str()))) {
        case CIMDataType::UINT8: return arrayFromTexts<OW::UInt8>(type, text.elements);
        case CIMDataType::SINT8: return arrayFromTexts<OW::Int8>(type, text.elements);
        case CIMDataType::UINT16: return arrayFromTexts<OW::UInt16>(type, text.elements);
        case CIMDataType::SINT16: return arrayFromTexts<OW::Int16>(type, text.elements);
        case CIMDataType::UINT32: return arrayFromTexts<OW::UInt32>(type, text.elements);
        case CIMDataType::SINT32: return arrayFromTexts<OW::Int32>(type, text.elements);
        case CIMDataType::UINT64: return arrayFromTexts<OW::UInt64>(type, text.elements);
        case CIMDataType::SINT64: return arrayFromTexts<OW::Int64>(type, text.elements);
        case CIMDataType::REAL32: return arrayFromTexts<OW::Real32>(type, text.elements);
        case CIMDataType::REAL64: return arrayFromTexts<OW::Real64>(type, text.elements);
        case CIMDataType::BOOLEAN: return booleanArrayFromTexts(text.elements);
        case CIMDataType::CHAR16: return arrayFromTexts<OW::Char16>(type, text.elements);
        case CIMDataType::DATETIME: return arrayFromTexts<OW::CIMDateTime>(type, text.elements);
        case CIMDataType::STRING: return arrayFromTexts<String>(type, text.elements);
        default: throwCim(CIMException::INVALID_PARAMETER, "unknown CIM type " + type + " for an array");
    }
}

CIMValue castValue(const CIMValue& value, const CIMDataType& type) {
    if (value && type && value.getType() == CIMDataType::STRING && !value.isArray() && type.isNumericType() &&
        value.toString().empty()) {
        return OW::CIMValueCast::castValueToDataType(CIMValue(String("0")), type);
    }
    return OW::CIMValueCast::castValueToDataType(value, type);
}

std::vector<std::string> valueTexts(const CIMValue& value) {
    std::vector<std::string> texts;
    if (value.getType() == CIMDataType::DATETIME && !value.isArray()) {
        OW::CIMDateTime dateTime(OW::CIMNULL);
        value.get(dateTime);
        texts.push_back(dateTimeText(dateTime));
        return texts;
    }
    if (!value.isArray()) {
        texts.push_back(value.toString().c_str());
        return texts;
    }
    switch (value.getType()) {
        case CIMDataType::UINT8: appendArrayTexts<OW::UInt8>(value, texts); break;
        case CIMDataType::SINT8: appendArrayTexts<OW::Int8>(value, texts); break;
        case CIMDataType::UINT16: appendArrayTexts<OW::UInt16>(value, texts); break;
        case CIMDataType::SINT16: appendArrayTexts<OW::Int16>(value, texts); break;
        case CIMDataType::UINT32: appendArrayTexts<OW::UInt32>(value, texts); break;
        case CIMDataType::SINT32: appendArrayTexts<OW::Int32>(value, texts); break;
        case CIMDataType::UINT64: appendArrayTexts<OW::UInt64>(value, texts); break;
        case CIMDataType::SINT64: appendArrayTexts<OW::Int64>(value, texts); break;
        case CIMDataType::REAL32: appendArrayTexts<OW::Real32>(value, texts); break;
        case CIMDataType::REAL64: appendArrayTexts<OW::Real64>(value, texts); break;
        case CIMDataType::BOOLEAN: appendArrayTexts<OW::Bool>(value, texts); break;
        case CIMDataType::CHAR16: appendArrayTexts<OW::Char16>(value, texts); break;
        case CIMDataType::DATETIME: {
            OW::Array<OW::CIMDateTime> items;
            value.get(items);
            for (const OW::CIMDateTime& item : items) texts.push_back(dateTimeText(item));
            break;
        }
        case CIMDataType::STRING: appendArrayTexts<String>(value, texts); break;
        default: texts.push_back(value.toString().c_str()); break;
    }
    return texts;
}

OW::CIMObjectPath objectPathFromText(const InstanceNameText& name, const std::string& nameSpace,
                                     const ClassDefinition* cls) {
    OW::CIMObjectPath path(OW::CIMName(String(name.className.c_str())), String(nameSpace.c_str()));
    OW::CIMPropertyArray keys;
    for (const KeyBindingText& key : name.keys) {
        std::string keyName = key.name;
        const PropertyDefinition* definition = cls ? cls->findProperty(keyName) : nullptr;
        if (keyName.empty() && cls && cls->keyProperties().size() == 1) {
            definition = cls->keyProperties().front();
            keyName = definition->name;
        }
        std::string type = !key.type.empty()                           ? key.type
                           : (definition && definition->type != "reference") ? definition->type
                                                                         : typeForKeyValueType(key);
        OW::CIMProperty property(OW::CIMName(String(keyName.c_str())),
                                 scalarFromText(type, key.text));
        keys.push_back(property);
    }
    path.setKeys(keys);
    return path;
}

OW::CIMInstance instanceFromText(const InstanceText& text, const std::string& nameSpace) {
    OW::CIMInstance instance(OW::CIMName(String(text.className.c_str())));
    instance.setNameSpace(String(nameSpace.c_str()));
    // Every PROPERTY as given, a name given twice included: the object
    // manager fits the first to the class and hands on both.
    OW::CIMPropertyArray properties;
    for (const PropertyText& p : text.properties) {
        OW::CIMName name(String(p.name.c_str()));
        CIMValue value(OW::CIMNULL);
        CIMDataType dataType(OW::CIMNULL);
        if (p.isReference) {
            dataType = dataTypeOf("reference", false, p.referenceClass);
            if (p.referenceValue) value = CIMValue(objectPathFromText(*p.referenceValue, nameSpace, nullptr));
        } else {
            if (p.type.empty()) throwCim(CIMException::INVALID_PARAMETER, "property has null data type");
            dataType = dataTypeOf(p.type, p.isArray, "");
            value = valueFromText(p.type, p.value);
        }
        OW::CIMProperty property(name, dataType);
        property.setValue(value);
        properties.push_back(property);
    }
    instance.setProperties(properties);
    return instance;
}

OW::CIMClass cimClassFromDefinition(const ClassDefinition& definition) {
    OW::CIMClass cls(OW::CIMName(String(definition.name.c_str())));
    if (!definition.superClass.empty()) cls.setSuperClass(OW::CIMName(String(definition.superClass.c_str())));
    cls.setQualifiers(qualifiersFromDefinition(definition.qualifiers));
    for (const PropertyDefinition& p : definition.properties) {
        OW::CIMProperty property(OW::CIMName(String(p.name.c_str())),
                                 dataTypeOf(p.type, p.isArray, p.referenceClass));
        property.setQualifiers(qualifiersFromDefinition(p.qualifiers));
        property.setOriginClass(OW::CIMName(String(p.classOrigin.c_str())));
        if (!p.defaultValue.isNull && p.type != "reference") property.setValue(valueFromText(p.type, p.defaultValue));
        cls.addProperty(property);
    }
    for (const MethodDefinition& m : definition.methods) {
        OW::CIMMethod method(OW::CIMName(String(m.name.c_str())));
        method.setReturnType(dataTypeOf(m.returnType, false, ""));
        method.setQualifiers(qualifiersFromDefinition(m.qualifiers));
        method.setOriginClass(OW::CIMName(String(m.classOrigin.c_str())));
        for (const ParameterDefinition& p : m.parameters) {
            OW::CIMParameter parameter(OW::CIMName(String(p.name.c_str())));
            parameter.setDataType(dataTypeOf(p.type, p.isArray, p.referenceClass));
            parameter.setQualifiers(qualifiersFromDefinition(p.qualifiers));
            method.addParameter(parameter);
        }
        cls.addMethod(method);
    }
    return cls;
}

}  // namespace cimhost
