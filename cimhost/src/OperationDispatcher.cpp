#include "OperationDispatcher.hpp"

#include <OW_Array.hpp>
#include <OW_CIMDataType.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_CIMParamValue.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMValue.hpp>
#include <OW_CIMValueCast.hpp>
#include <OW_ResultHandlerIFC.hpp>
#include <OW_String.hpp>
#include <OW_WBEMFlags.hpp>

#include "CimValues.hpp"
#include "CimXmlResponse.hpp"

namespace cimhost {
namespace {

using OW::CIMException;
using OW::String;
namespace Flags = OW::WBEMFlags;

[[noreturn]] void throwCim(CIMException::ErrNoType code, const std::string& message) {
    throw CIMException(__FILE__, __LINE__, code, message.empty() ? nullptr : message.c_str());
}

template <class T>
class CollectingHandler : public OW::ResultHandlerIFC<T> {
public:
    std::vector<T> items;

protected:
    void doHandle(const T& x) override { items.push_back(x); }
};

std::string trimSlashes(const std::string& ns) {
    size_t begin = ns.find_first_not_of('/');
    size_t end = ns.find_last_not_of('/');
    return begin == std::string::npos ? std::string() : ns.substr(begin, end - begin + 1);
}

OW::StringArray toStringArray(const std::vector<std::string>& items) {
    OW::StringArray out;
    for (const std::string& item : items) out.push_back(String(item.c_str()));
    return out;
}

std::string text(const String& s) { return s.c_str(); }

}  // namespace

struct OperationDispatcher::Context {
    OW::ProviderEnvironmentIFCRef env;
    std::string nameSpace;
};

OperationDispatcher::OperationDispatcher(const ClassRepository& classes, ProviderModule* module, HostLog& log,
                                         std::string nameSpace, std::string hostName)
    : classes_(classes), module_(module), log_(log), nameSpace_(trimSlashes(nameSpace)),
      hostName_(std::move(hostName)) {}

std::vector<std::string> OperationDispatcher::boundClasses() const {
    std::vector<std::string> bound;
    for (const ClassDefinition& cls : classes_.classes()) {
        if (isBound(cls.qualifiers)) bound.push_back(cls.name);
    }
    return bound;
}

bool OperationDispatcher::isBound(const std::vector<Qualifier>& qualifiers) const {
    if (!module_) return false;
    std::optional<ProviderBinding> binding = parseProviderQualifier(qualifiers);
    return binding && namesEqual(binding->interfaceName, "c++") && binding->providerId == module_->id();
}

const ClassDefinition& OperationDispatcher::requireClass(const std::string& className) const {
    const ClassDefinition* cls = classes_.findClass(className);
    if (!cls) throwCim(CIMException::INVALID_CLASS, className);
    return *cls;
}

OW::CppInstanceProviderIFC& OperationDispatcher::instanceProviderFor(const ClassDefinition& cls) const {
    OW::CppInstanceProviderIFC* provider = isBound(cls.qualifiers) ? module_->instanceProvider() : nullptr;
    if (!provider) throwCim(CIMException::FAILED, "no instance provider serves class " + cls.name);
    return *provider;
}

const OW::CIMClass& OperationDispatcher::apiClass(const ClassDefinition& cls) {
    std::string key = lowerCase(cls.name);
    std::lock_guard<std::mutex> lock(apiClassesMutex_);
    auto it = apiClasses_.find(key);
    if (it == apiClasses_.end()) it = apiClasses_.emplace(key, cimClassFromDefinition(cls)).first;
    return it->second;
}

std::string OperationDispatcher::handle(const CimRequest& request, const std::string& userName) {
    const char* element = request.intrinsic ? "IMETHODRESPONSE" : "METHODRESPONSE";
    XmlWriter content;
    try {
        if (!namesEqual(trimSlashes(request.nameSpace), nameSpace_)) {
            throwCim(CIMException::INVALID_NAMESPACE, request.nameSpace);
        }
        Context context{OW::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log_, userName)),
                        request.nameSpace};
        if (request.intrinsic) runIntrinsic(request, context, content);
        else runExtrinsic(request, context, content);
    } catch (const InvalidRequest&) {
        throw;  // a parameter of the wrong form: HTTP 400, not a CIM error
    } catch (const CIMException& e) {
        const char* description = e.getDescription();
        log_.error("CIM error " + std::to_string(e.getErrNo()) + " for " + request.methodName + " from " +
                   e.getFile() + ":" + std::to_string(e.getLine()) + ": " + (description ? description : ""));
        content = XmlWriter();
        writeError(content, e.getErrNo(), description ? description : "");
    } catch (const OW::Exception& e) {
        log_.error(std::string(e.type()) + " during " + request.methodName + " from " + e.getFile() + ":" +
                   std::to_string(e.getLine()) + ": " + e.getMessage());
        content = XmlWriter();
        writeError(content, CIMException::FAILED, e.getMessage());
    } catch (const std::exception& e) {
        log_.error(std::string("exception during ") + request.methodName + ": " + e.what());
        content = XmlWriter();
        writeError(content, CIMException::FAILED, e.what());
    } catch (...) {
        log_.error("unknown exception during " + request.methodName);
        content = XmlWriter();
        writeError(content, CIMException::FAILED, "unknown exception");
    }
    XmlWriter xml;
    startResponse(xml, request.messageId);
    xml.start(element, {{"NAME", request.methodName}}).raw(content.str()).end(element);
    endResponse(xml);
    return xml.str();
}

void OperationDispatcher::runIntrinsic(const CimRequest& request, Context& context, XmlWriter& xml) {
    const std::string& op = request.methodName;
    if (op == "EnumerateClassNames") enumerateClassNames(request, xml);
    else if (op == "EnumerateClasses") enumerateClasses(request, xml);
    else if (op == "GetClass") getClass(request, xml);
    else if (op == "EnumerateInstanceNames") enumerateInstanceNames(request, context, xml);
    else if (op == "EnumerateInstances") enumerateInstances(request, context, xml);
    else if (op == "GetInstance") getInstance(request, context, xml);
    else if (op == "ModifyInstance") modifyInstance(request, context);
    else if (op == "CreateInstance") createInstance(request, context, xml);
    else if (op == "DeleteInstance") deleteInstance(request, context);
    else if (op == "GetProperty") getProperty(request, context, xml);
    else if (op == "Associators" || op == "AssociatorNames" || op == "References" || op == "ReferenceNames") {
        associations(request, context, xml);
    } else {
        throwCim(CIMException::NOT_SUPPORTED, op + " is not supported by this host");
    }
}

namespace {

// The classes an enumeration of `root` covers, in MOF order.
std::vector<const ClassDefinition*> selectClasses(const ClassRepository& classes,
                                                  const std::optional<std::string>& root, bool deep) {
    std::vector<const ClassDefinition*> selected;
    for (const ClassDefinition& cls : classes.classes()) {
        if (!root) {
            if (deep || cls.superClass.empty()) selected.push_back(&cls);
            continue;
        }
        if (!deep) {
            if (namesEqual(cls.superClass, *root)) selected.push_back(&cls);
            continue;
        }
        for (const ClassDefinition* parent = classes.findClass(cls.superClass); parent;
             parent = classes.findClass(parent->superClass)) {
            if (namesEqual(parent->name, *root)) {
                selected.push_back(&cls);
                break;
            }
        }
    }
    return selected;
}

}  // namespace

void OperationDispatcher::enumerateClassNames(const CimRequest& request, XmlWriter& xml) {
    std::optional<std::string> root = request.classNameParam("ClassName");
    if (root) requireClass(*root);
    bool deep = request.booleanParam("DeepInheritance").value_or(false);
    xml.start("IRETURNVALUE");
    for (const ClassDefinition* cls : selectClasses(classes_, root, deep)) {
        xml.selfClosed("CLASSNAME", {{"NAME", cls->name}});
    }
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::enumerateClasses(const CimRequest& request, XmlWriter& xml) {
    std::optional<std::string> root = request.classNameParam("ClassName");
    if (root) requireClass(*root);
    bool deep = request.booleanParam("DeepInheritance").value_or(false);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    xml.start("IRETURNVALUE");
    for (const ClassDefinition* cls : selectClasses(classes_, root, deep)) writeClass(xml, *cls, filter);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::getClass(const CimRequest& request, XmlWriter& xml) {
    std::optional<std::string> name = request.classNameParam("ClassName");
    if (!name) throwCim(CIMException::INVALID_PARAMETER, "GetClass needs ClassName");
    const ClassDefinition& cls = requireClass(*name);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    filter.propertyList = request.stringArrayParam("PropertyList");
    xml.start("IRETURNVALUE");
    writeClass(xml, cls, filter);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::enumerateInstanceNames(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<std::string> className = request.classNameParam("ClassName");
    if (!className) throwCim(CIMException::INVALID_PARAMETER, "EnumerateInstanceNames needs ClassName");
    const ClassDefinition& cls = requireClass(*className);
    CollectingHandler<OW::CIMObjectPath> handler;
    instanceProviderFor(cls).enumInstanceNames(context.env, String(context.nameSpace.c_str()),
                                                String(className->c_str()), handler, apiClass(cls));
    xml.start("IRETURNVALUE");
    for (const OW::CIMObjectPath& path : handler.items) writeInstanceName(xml, path);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::enumerateInstances(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<std::string> className = request.classNameParam("ClassName");
    if (!className) throwCim(CIMException::INVALID_PARAMETER, "EnumerateInstances needs ClassName");
    const ClassDefinition& cls = requireClass(*className);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    bool deep = request.booleanParam("DeepInheritance").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(false);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    filter.propertyList = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = filter.propertyList ? toStringArray(*filter.propertyList) : OW::StringArray();
    CollectingHandler<OW::CIMInstance> handler;
    const OW::CIMClass& apiCls = apiClass(cls);
    instanceProviderFor(cls).enumInstances(
        context.env, String(context.nameSpace.c_str()), String(className->c_str()), handler,
        filter.localOnly ? Flags::E_LOCAL_ONLY : Flags::E_NOT_LOCAL_ONLY, deep ? Flags::E_DEEP : Flags::E_SHALLOW,
        filter.includeQualifiers ? Flags::E_INCLUDE_QUALIFIERS : Flags::E_EXCLUDE_QUALIFIERS,
        filter.includeClassOrigin ? Flags::E_INCLUDE_CLASS_ORIGIN : Flags::E_EXCLUDE_CLASS_ORIGIN,
        filter.propertyList ? &propertyList : nullptr, apiCls, apiCls);
    xml.start("IRETURNVALUE");
    for (const OW::CIMInstance& instance : handler.items) {
        xml.start("VALUE.NAMEDINSTANCE");
        writeInstanceName(xml, pathOfInstance(instance, context.nameSpace, &cls));
        writeInstance(xml, instance, filter);
        xml.end("VALUE.NAMEDINSTANCE");
    }
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::getInstance(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name || name->isClassPath) throwCim(CIMException::INVALID_PARAMETER, "GetInstance needs InstanceName");
    const ClassDefinition& cls = requireClass(name->className);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(false);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    filter.propertyList = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = filter.propertyList ? toStringArray(*filter.propertyList) : OW::StringArray();
    OW::CIMInstance instance = instanceProviderFor(cls).getInstance(
        context.env, String(context.nameSpace.c_str()), objectPathFromText(*name, context.nameSpace, &cls),
        filter.localOnly ? Flags::E_LOCAL_ONLY : Flags::E_NOT_LOCAL_ONLY,
        filter.includeQualifiers ? Flags::E_INCLUDE_QUALIFIERS : Flags::E_EXCLUDE_QUALIFIERS,
        filter.includeClassOrigin ? Flags::E_INCLUDE_CLASS_ORIGIN : Flags::E_EXCLUDE_CLASS_ORIGIN,
        filter.propertyList ? &propertyList : nullptr, apiClass(cls));
    if (!instance) throwCim(CIMException::FAILED, "Provider erroneously returned a NULL CIMInstance");
    xml.start("IRETURNVALUE");
    writeInstance(xml, instance, filter);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::modifyInstance(const CimRequest& request, Context& context) {
    auto named = request.namedInstanceParam("ModifiedInstance");
    if (!named) throwCim(CIMException::INVALID_PARAMETER, "ModifyInstance needs ModifiedInstance");
    // The instance's own class and properties decide; the name beside it is
    // only the client's copy of the keys.
    const ClassDefinition& cls = requireClass(named->second.className);
    bool includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    std::optional<std::vector<std::string>> list = request.stringArrayParam("PropertyList");
    OW::CIMInstance modified = instanceFromText(named->second, context.nameSpace, &cls);
    OW::CIMObjectPath path(String(context.nameSpace.c_str()), modified);
    OW::StringArray propertyList;
    if (list) {
        // Only the listed properties reach the provider; the key list stays.
        OW::CIMPropertyArray keys = modified.getKeyValuePairs();
        OW::CIMPropertyArray listed;
        for (const std::string& name : *list) {
            OW::CIMProperty property = modified.getProperty(OW::CIMName(String(name.c_str())));
            if (!property) throwCim(CIMException::NO_SUCH_PROPERTY, name);
            listed.push_back(property);
        }
        modified.setProperties(listed);
        modified.setKeys(keys);
        propertyList = toStringArray(*list);
    }
    OW::CppInstanceProviderIFC& provider = instanceProviderFor(cls);
    const OW::CIMClass& apiCls = apiClass(cls);
    OW::CIMInstance previous =
        provider.getInstance(context.env, String(context.nameSpace.c_str()), path, Flags::E_NOT_LOCAL_ONLY,
                             Flags::E_INCLUDE_QUALIFIERS, Flags::E_INCLUDE_CLASS_ORIGIN, nullptr, apiCls);
    provider.modifyInstance(context.env, String(context.nameSpace.c_str()), modified, previous,
                            includeQualifiers ? Flags::E_INCLUDE_QUALIFIERS : Flags::E_EXCLUDE_QUALIFIERS,
                            list ? &propertyList : nullptr, apiCls);
}

void OperationDispatcher::createInstance(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceText> text = request.instanceParam("NewInstance");
    if (!text) throwCim(CIMException::INVALID_PARAMETER, "CreateInstance needs NewInstance");
    const ClassDefinition& cls = requireClass(text->className);
    OW::CIMInstance instance = instanceFromText(*text, context.nameSpace, &cls);
    OW::CIMObjectPath created =
        instanceProviderFor(cls).createInstance(context.env, String(context.nameSpace.c_str()), instance);
    if (!created) created = OW::CIMObjectPath(String(context.nameSpace.c_str()), instance);
    xml.start("IRETURNVALUE");
    writeInstanceName(xml, created);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::deleteInstance(const CimRequest& request, Context& context) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name || name->isClassPath) throwCim(CIMException::INVALID_PARAMETER, "DeleteInstance needs InstanceName");
    const ClassDefinition& cls = requireClass(name->className);
    OW::CIMObjectPath path = objectPathFromText(*name, context.nameSpace, &cls);
    OW::CppInstanceProviderIFC& provider = instanceProviderFor(cls);
    // The object must exist before it can go.
    provider.getInstance(context.env, String(context.nameSpace.c_str()), path, Flags::E_NOT_LOCAL_ONLY,
                         Flags::E_INCLUDE_QUALIFIERS, Flags::E_INCLUDE_CLASS_ORIGIN, nullptr, apiClass(cls));
    provider.deleteInstance(context.env, String(context.nameSpace.c_str()), path);
}

void OperationDispatcher::getProperty(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    std::optional<std::string> propertyName = request.stringParam("PropertyName");
    if (!name || name->isClassPath || !propertyName) {
        throwCim(CIMException::INVALID_PARAMETER, "GetProperty needs InstanceName and PropertyName");
    }
    const ClassDefinition& cls = requireClass(name->className);
    if (!cls.findProperty(*propertyName)) throwCim(CIMException::NO_SUCH_PROPERTY, *propertyName);
    OW::CIMInstance instance = instanceProviderFor(cls).getInstance(
        context.env, String(context.nameSpace.c_str()), objectPathFromText(*name, context.nameSpace, &cls),
        Flags::E_NOT_LOCAL_ONLY, Flags::E_INCLUDE_QUALIFIERS, Flags::E_INCLUDE_CLASS_ORIGIN, nullptr, apiClass(cls));
    OW::CIMProperty property =
        instance ? instance.getProperty(OW::CIMName(String(propertyName->c_str()))) : OW::CIMProperty(OW::CIMNULL);
    if (!property) throwCim(CIMException::NO_SUCH_PROPERTY, *propertyName);
    xml.start("IRETURNVALUE");
    writeValue(xml, property.getValue());
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::associations(const CimRequest& request, Context& context, XmlWriter& xml) {
    const std::string& op = request.methodName;
    std::optional<InstanceNameText> objectName = request.objectNameParam("ObjectName");
    if (!objectName) throwCim(CIMException::INVALID_PARAMETER, op + " needs ObjectName");
    const ClassDefinition& cls = requireClass(objectName->className);
    OW::CIMObjectPath path = objectName->isClassPath
                                 ? OW::CIMObjectPath(OW::CIMName(String(objectName->className.c_str())),
                                                     String(context.nameSpace.c_str()))
                                 : objectPathFromText(*objectName, context.nameSpace, &cls);
    String assocClass(request.classNameParam("AssocClass").value_or("").c_str());
    String resultClass(request.classNameParam("ResultClass").value_or("").c_str());
    String role(request.stringParam("Role").value_or("").c_str());
    String resultRole(request.stringParam("ResultRole").value_or("").c_str());
    OutputFilter filter;
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(false);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    filter.propertyList = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = filter.propertyList ? toStringArray(*filter.propertyList) : OW::StringArray();
    const OW::StringArray* list = filter.propertyList ? &propertyList : nullptr;
    auto qualifiers = filter.includeQualifiers ? Flags::E_INCLUDE_QUALIFIERS : Flags::E_EXCLUDE_QUALIFIERS;
    auto origin = filter.includeClassOrigin ? Flags::E_INCLUDE_CLASS_ORIGIN : Flags::E_EXCLUDE_CLASS_ORIGIN;
    String ns(context.nameSpace.c_str());

    // A class that no associator provider serves takes part in no
    // association: the answer is empty.
    OW::CppAssociatorProviderIFC* provider = isBound(cls.qualifiers) ? module_->associatorProvider() : nullptr;
    CollectingHandler<OW::CIMInstance> instances;
    CollectingHandler<OW::CIMObjectPath> paths;
    if (provider) {
        if (op == "Associators") {
            provider->associators(context.env, instances, ns, path, assocClass, resultClass, role, resultRole,
                                  qualifiers, origin, list);
        } else if (op == "AssociatorNames") {
            provider->associatorNames(context.env, paths, ns, path, assocClass, resultClass, role, resultRole);
        } else if (op == "References") {
            provider->references(context.env, instances, ns, path, resultClass, role, qualifiers, origin, list);
        } else {
            provider->referenceNames(context.env, paths, ns, path, resultClass, role);
        }
    }
    xml.start("IRETURNVALUE");
    for (const OW::CIMObjectPath& p : paths.items) {
        std::string pathNs = p.getNameSpace().empty() ? context.nameSpace : text(p.getNameSpace());
        xml.start("OBJECTPATH").start("INSTANCEPATH");
        writeInstancePath(xml, p, hostName_, pathNs);
        xml.end("INSTANCEPATH").end("OBJECTPATH");
    }
    for (const OW::CIMInstance& instance : instances.items) {
        const ClassDefinition* instanceClass = classes_.findClass(text(instance.getClassName()));
        xml.start("VALUE.OBJECTWITHPATH").start("INSTANCEPATH");
        writeInstancePath(xml, pathOfInstance(instance, context.nameSpace, instanceClass), hostName_,
                          context.nameSpace);
        xml.end("INSTANCEPATH");
        writeInstance(xml, instance, filter);
        xml.end("VALUE.OBJECTWITHPATH");
    }
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::runExtrinsic(const CimRequest& request, Context& context, XmlWriter& xml) {
    const ClassDefinition& cls = requireClass(request.target.className);
    const MethodDefinition* method = cls.findMethod(request.methodName);
    if (!method) throwCim(CIMException::METHOD_NOT_FOUND, request.methodName);
    OW::CIMObjectPath path = request.target.isClassPath
                                 ? OW::CIMObjectPath(OW::CIMName(String(request.target.className.c_str())),
                                                     String(context.nameSpace.c_str()))
                                 : objectPathFromText(request.target, context.nameSpace, &cls);

    // Inputs in declaration order, typed by their declaration; an input the
    // client left out arrives as NULL. Outputs arrive named, with NULL values.
    for (size_t i = 0; i < request.parameters.size(); ++i) {
        const ParamValueText& given = request.parameters[i];
        const ParameterDefinition* declared = method->findParameter(given.name);
        if (!declared || !declared->isInput()) {
            throwCim(CIMException::INVALID_PARAMETER, "method " + method->name + " has no input parameter " + given.name);
        }
        for (size_t j = 0; j < i; ++j) {
            if (namesEqual(request.parameters[j].name, given.name)) {
                throwCim(CIMException::INVALID_PARAMETER, "parameter " + given.name + " given twice");
            }
        }
    }
    OW::CIMParamValueArray in;
    OW::CIMParamValueArray out;
    for (const ParameterDefinition& declared : method->parameters) {
        OW::CIMValue value(OW::CIMNULL);
        for (const ParamValueText& given : request.parameters) {
            if (!namesEqual(given.name, declared.name)) continue;
            if (given.referenceValue) {
                value = OW::CIMValue(objectPathFromText(*given.referenceValue, context.nameSpace,
                                                        classes_.findClass(given.referenceValue->className)));
            } else {
                value = valueFromText(declared.type, given.value);
            }
        }
        OW::CIMName name(String(declared.name.c_str()));
        if (declared.isInput()) in.push_back(OW::CIMParamValue(name, value));
        if (declared.isOutput()) out.push_back(OW::CIMParamValue(name, declared.isInput() ? value : OW::CIMValue(OW::CIMNULL)));
    }

    OW::CppMethodProviderIFC* provider = isBound(method->qualifiers) || isBound(cls.qualifiers)
                                             ? module_->methodProvider()
                                             : nullptr;
    if (!provider) throwCim(CIMException::FAILED, "no method provider serves class " + cls.name);
    OW::CIMValue result = provider->invokeMethod(context.env, String(context.nameSpace.c_str()), path,
                                                 String(request.methodName.c_str()), in, out);
    OW::CIMDataType returnType = OW::CIMDataType::getDataType(String(method->returnType.c_str()));
    if (result) result = OW::CIMValueCast::castValueToDataType(result, returnType);
    xml.start("RETURNVALUE", {{"PARAMTYPE", method->returnType}});
    writeValue(xml, result);
    xml.end("RETURNVALUE");
    for (const OW::CIMParamValue& parameter : out) {
        OW::CIMValue value = parameter.getValue();
        if (!value) continue;  // the client cannot read a PARAMVALUE without VALUE
        const ParameterDefinition* declared = method->findParameter(text(parameter.getName()));
        std::string type = declared ? declared->type : cimTypeName(value.getType());
        if (declared && declared->type != "reference") {
            OW::CIMDataType dataType = OW::CIMDataType::getDataType(String(declared->type.c_str()));
            if (declared->isArray) dataType.setToArrayType(0);
            value = OW::CIMValueCast::castValueToDataType(value, dataType);
        }
        xml.start("PARAMVALUE", {{"NAME", text(parameter.getName())}, {"PARAMTYPE", type}});
        writeValue(xml, value);
        xml.end("PARAMVALUE");
    }
}

}  // namespace cimhost
