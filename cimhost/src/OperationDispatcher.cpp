#include "OperationDispatcher.hpp"

#include <OW_Array.hpp>
#include <OW_CIMDataType.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_CIMMethod.hpp>
#include <OW_CIMParamValue.hpp>
#include <OW_CIMParameter.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMValue.hpp>
#include <OW_CIMValueCast.hpp>
#include <OW_ResultHandlerIFC.hpp>
#include <OW_String.hpp>
#include <OW_WBEMFlags.hpp>

#include "ClassSync.hpp"
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

[[noreturn]] void missingParameter(const std::string& name) {
    throwCim(CIMException::INVALID_PARAMETER, "Non-optional parameter " + name + " was not given");
}

// "/root/cimv2:QTX_X", as the object manager names a class in its errors.
std::string classPathText(const std::string& nameSpace, const std::string& className) {
    return text(OW::CIMObjectPath(OW::CIMName(String(className.c_str())), String(nameSpace.c_str())).toString());
}

bool hasTrueQualifier(const ClassDefinition& cls, const char* name) {
    const Qualifier* q = findQualifier(cls.qualifiers, name);
    return q && !q->value.isNull && !q->value.isArray && !q->value.elements.empty() &&
           namesEqual(q->value.elements.front(), "true");
}

Flags::ELocalOnlyFlag localOnlyFlag(bool on) { return on ? Flags::E_LOCAL_ONLY : Flags::E_NOT_LOCAL_ONLY; }
Flags::EIncludeQualifiersFlag qualifiersFlag(bool on) {
    return on ? Flags::E_INCLUDE_QUALIFIERS : Flags::E_EXCLUDE_QUALIFIERS;
}
Flags::EIncludeClassOriginFlag classOriginFlag(bool on) {
    return on ? Flags::E_INCLUDE_CLASS_ORIGIN : Flags::E_EXCLUDE_CLASS_ORIGIN;
}

}  // namespace

struct OperationDispatcher::Context {
    OW::ProviderEnvironmentIFCRef env;
    std::string nameSpace;
    std::shared_ptr<LoadedProvider> provider;  // once the request needs it
    String ns() const { return String(nameSpace.c_str()); }
};

OperationDispatcher::OperationDispatcher(const ClassRepository& classes, ProviderModule* module, HostLog& log,
                                         std::string nameSpace, std::string hostName)
    : classes_(classes), module_(module), log_(log), nameSpace_(trimSlashes(nameSpace)),
      hostName_(std::move(hostName)) {}

void OperationDispatcher::followSeries32() {
    series32_ = true;
    readValuesAs(Series::OpenWbem32);
}

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

const ClassDefinition& OperationDispatcher::requireClass(const std::string& nameSpace, const std::string& className,
                                                         CIMException::ErrNoType code, MissingClassText named) const {
    const ClassDefinition* cls = classesIn(nameSpace).findClass(className);
    if (!cls) {
        // owcimomd's repository finds a class in a namespace spelled in
        // another case, but a class it does not find there makes it look the
        // namespace up as spelled.
        requireExactNameSpace(nameSpace);
        throwCim(code, named == MissingClassText::Path ? classPathText(nameSpace, className) : className);
    }
    return *cls;
}

const ClassDefinition& OperationDispatcher::requireInstanceClass(const std::string& className,
                                                                 const Context& context) const {
    return requireClass(context.nameSpace, className, CIMException::INVALID_CLASS, MissingClassText::Path);
}

LoadedProvider& OperationDispatcher::providerFor(Context& context) const {
    // Held to the end of the request: an unload meanwhile waits for it.
    if (!context.provider) context.provider = module_->acquire(context.env);
    return *context.provider;
}

OW::CppInstanceProviderIFC& OperationDispatcher::instanceProviderFor(const ClassDefinition& cls,
                                                                     Context& context) const {
    OW::CppInstanceProviderIFC* provider = isBound(cls.qualifiers) ? providerFor(context).instanceProvider() : nullptr;
    if (provider) return *provider;
    // As the object manager answers when its provider manager has no such
    // instance provider.
    std::optional<ProviderBinding> binding = parseProviderQualifier(cls.qualifiers);
    if (binding) throwCim(CIMException::FAILED, "Invalid provider: " + binding->providerId);
    throwCim(CIMException::FAILED, "no instance provider serves class " + cls.name);
}

const OperationDispatcher::ApiClass& OperationDispatcher::apiClassEntry(const ClassDefinition& cls) {
    std::lock_guard<std::mutex> lock(apiClassesMutex_);
    auto it = apiClasses_.find(&cls);
    if (it == apiClasses_.end()) {
        OW::CIMClass made = cimClassFromDefinition(cls);
        OW::CIMPropertyArray keys = made.getKeys();
        it = apiClasses_.emplace(&cls, ApiClass{made, keys}).first;
    }
    return it->second;
}

void OperationDispatcher::syncPath(OW::CIMObjectPath& path, const ClassDefinition& cls) {
    const ApiClass& entry = apiClassEntry(cls);
    syncPathWithClass(path, entry.cls, entry.keys);
}

std::string OperationDispatcher::handle(const CimRequest& request, const std::string& userName) {
    const char* element = request.intrinsic ? "IMETHODRESPONSE" : "METHODRESPONSE";
    XmlWriter content;
    startResponse(content, request.messageId);
    content.start(element, {{"NAME", request.methodName}});
    const size_t resultStart = content.size();
    // A CIM error's description is its long message: the code's text, then
    // the message in parentheses. Other exceptions give CIM_ERR_FAILED with
    // their own text. It replaces what the operation wrote.
    auto fail = [&](int code, const std::string& description, const std::string& logLine) {
        log_.error(logLine);
        content.truncate(resultStart);
        writeError(content, code, description);
    };
    try {
        try {
            if (!request.nameSpaceFault.empty()) throwCim(CIMException::INVALID_PARAMETER, request.nameSpaceFault);
            if (!request.fault.empty()) throwCim(static_cast<CIMException::ErrNoType>(request.faultCode), request.fault);
            Context context{OW::ProviderEnvironmentIFCRef(new HostProviderEnvironment(log_, userName)),
                            request.nameSpace, nullptr};
            if (request.intrinsic) {
                runIntrinsic(request, context, content);
            } else {
                checkNameSpace(request.nameSpace);
                runExtrinsic(request, context, content);
            }
        } catch (const InvalidRequest& e) {
            // A parameter of the wrong form is a CIM error, as the object
            // manager reports it, not an HTTP one.
            throwCim(CIMException::INVALID_PARAMETER, e.what());
        } catch (const RequestFault& e) {
            throwCim(static_cast<CIMException::ErrNoType>(e.code), e.what());
        }
    } catch (const CIMException& e) {
        fail(e.getErrNo(), e.getMessage(),
             "CIM error " + std::to_string(e.getErrNo()) + " for " + request.methodName + " from " + e.getFile() +
                 ":" + std::to_string(e.getLine()) + ": " + e.getMessage());
    } catch (const OW::Exception& e) {
        fail(CIMException::FAILED, e.getMessage(),
             std::string(e.type()) + " during " + request.methodName + " from " + e.getFile() + ":" +
                 std::to_string(e.getLine()) + ": " + e.getMessage());
    } catch (const std::exception& e) {
        fail(CIMException::FAILED, e.what(), std::string("exception during ") + request.methodName + ": " + e.what());
    } catch (...) {
        fail(CIMException::FAILED, "Unknown Exception", "unknown exception during " + request.methodName);
    }
    content.end(element);
    endResponse(content);
    return content.take();
}

namespace {

enum class ParamKind { ClassName, Boolean, String, StringArray, ObjectName, InstanceName, Instance, NamedInstance, Value };

struct ParamSpec {
    const char* name;
    ParamKind kind;
    bool required;
};

struct OperationSpec {
    const char* name;
    std::vector<ParamSpec> params;
};

// The intrinsic operations the host runs and the parameters each takes, as
// owcimomd's XMLExecute declares them.
const std::vector<OperationSpec>& operationSpecs() {
    using K = ParamKind;
    const ParamSpec localOnly{"LocalOnly", K::Boolean, false};
    const ParamSpec deep{"DeepInheritance", K::Boolean, false};
    const ParamSpec qualifiers{"IncludeQualifiers", K::Boolean, false};
    const ParamSpec origin{"IncludeClassOrigin", K::Boolean, false};
    const ParamSpec list{"PropertyList", K::StringArray, false};
    const ParamSpec objectName{"ObjectName", K::ObjectName, true};
    const ParamSpec resultClass{"ResultClass", K::ClassName, false};
    const ParamSpec role{"Role", K::String, false};
    static const std::vector<OperationSpec> specs{
        {"EnumerateClassNames", {{"ClassName", K::ClassName, false}, deep}},
        {"EnumerateClasses", {{"ClassName", K::ClassName, false}, deep, localOnly, qualifiers, origin}},
        {"GetClass", {{"ClassName", K::ClassName, true}, localOnly, qualifiers, origin, list}},
        {"DeleteClass", {{"ClassName", K::ClassName, true}}},
        {"EnumerateInstanceNames", {{"ClassName", K::ClassName, true}}},
        {"EnumerateInstances", {{"ClassName", K::ClassName, true}, localOnly, deep, qualifiers, origin, list}},
        {"GetInstance", {{"InstanceName", K::InstanceName, true}, localOnly, qualifiers, origin, list}},
        {"ModifyInstance", {{"ModifiedInstance", K::NamedInstance, true}, qualifiers, list}},
        {"CreateInstance", {{"NewInstance", K::Instance, true}}},
        {"DeleteInstance", {{"InstanceName", K::InstanceName, true}}},
        {"GetProperty", {{"InstanceName", K::InstanceName, true}, {"PropertyName", K::String, true}}},
        {"SetProperty",
         {{"InstanceName", K::InstanceName, true}, {"PropertyName", K::String, true}, {"NewValue", K::Value, false}}},
        {"ExecQuery", {{"QueryLanguage", K::String, true}, {"Query", K::String, true}}},
        {"Associators",
         {objectName, {"AssocClass", K::ClassName, false}, resultClass, role, {"ResultRole", K::String, false},
          qualifiers, origin, list}},
        {"AssociatorNames",
         {objectName, {"AssocClass", K::ClassName, false}, resultClass, role, {"ResultRole", K::String, false}}},
        {"References", {objectName, resultClass, role, qualifiers, origin, list}},
        {"ReferenceNames", {objectName, resultClass, role}},
    };
    return specs;
}

// Reads every parameter in request order, as the object manager does before
// it runs the operation: an unknown one, one of the wrong form and a missing
// required one are CIM_ERR_INVALID_PARAMETER.
void checkParameters(const CimRequest& request, const OperationSpec& signature) {
    for (const auto& [name, node] : request.intrinsicParams) {
        const ParamSpec* param = nullptr;
        for (const ParamSpec& candidate : signature.params) {
            if (namesEqual(candidate.name, name)) param = &candidate;
        }
        if (!param) throwCim(CIMException::INVALID_PARAMETER, "Parameter " + name + " is not a valid parameter");
        switch (param->kind) {
            case ParamKind::ClassName: request.classNameParam(name); break;
            case ParamKind::Boolean: request.booleanParam(name); break;
            case ParamKind::String: request.stringParam(name); break;
            case ParamKind::StringArray: request.stringArrayParam(name); break;
            case ParamKind::ObjectName: request.objectNameParam(name); break;
            case ParamKind::InstanceName:
                if (std::optional<InstanceNameText> path = request.objectNameParam(name); path && path->isClassPath) {
                    throw InvalidRequest("Parameter " + name + " is the wrong type.  Expected <INSTANCENAME> tag.");
                }
                break;
            case ParamKind::Instance: request.instanceParam(name); break;
            case ParamKind::NamedInstance: request.namedInstanceParam(name); break;
            case ParamKind::Value: request.valueParam(name); break;
        }
    }
    for (const ParamSpec& param : signature.params) {
        if (param.required && !request.hasParam(param.name)) missingParameter(param.name);
    }
}

}  // namespace

// owcimomd's repository holds the served namespace and those above it
// ("root" above "root/cimv2"), which have no classes; names are compared
// ignoring case, except where the repository lists a namespace's classes
// (requireExactNameSpace).
void OperationDispatcher::checkNameSpace(const std::string& nameSpace) const {
    std::string name = series32_ ? trimSlashes(nameSpace) : lowerCase(trimSlashes(nameSpace));
    std::string served = series32_ ? nameSpace_ : lowerCase(nameSpace_);
    if (name == served || (!name.empty() && served.compare(0, name.size() + 1, name + "/") == 0)) return;
    throwCim(CIMException::INVALID_NAMESPACE, nameSpace);
}

// The repository finds the classes at the top of a namespace under the
// namespace's name as it was created: in "ROOT/CIMV2" owcimomd lists none
// and answers that the namespace does not exist.
void OperationDispatcher::requireExactNameSpace(const std::string& nameSpace) const {
    std::string name = trimSlashes(nameSpace);
    if (name != nameSpace_ && nameSpace_.compare(0, name.size() + 1, name + "/") != 0) {
        throwCim(CIMException::INVALID_NAMESPACE, nameSpace);
    }
}

const ClassRepository& OperationDispatcher::classesIn(const std::string& nameSpace) const {
    static const ClassRepository none;
    std::string name = trimSlashes(nameSpace);
    bool served = series32_ ? name == nameSpace_ : namesEqual(name, nameSpace_);
    return served ? classes_ : none;
}

void OperationDispatcher::runIntrinsic(const CimRequest& request, Context& context, XmlWriter& xml) {
    // Operation names are matched ignoring case; the parameters are read
    // before the namespace is looked at.
    const OperationSpec* signature = nullptr;
    for (const OperationSpec& candidate : operationSpecs()) {
        if (namesEqual(candidate.name, request.methodName)) signature = &candidate;
    }
    if (!signature) throwCim(CIMException::NOT_SUPPORTED, "");
    // owcimomd converts an instance's values by the types the request gives
    // as it reads the request, before anything else is looked at.
    if (namesEqual(signature->name, "ModifyInstance")) {
        if (auto named = request.namedInstanceParam("ModifiedInstance")) instanceFromText(named->second, request.nameSpace);
    } else if (namesEqual(signature->name, "CreateInstance")) {
        if (auto created = request.instanceParam("NewInstance")) instanceFromText(*created, request.nameSpace);
    }
    checkParameters(request, *signature);
    checkNameSpace(request.nameSpace);
    const std::string op = signature->name;
    if (op == "EnumerateClassNames") enumerateClassNames(request, xml);
    else if (op == "EnumerateClasses") enumerateClasses(request, xml);
    else if (op == "GetClass") getClass(request, context, xml);
    else if (op == "DeleteClass") deleteClass(request, context);
    else if (op == "EnumerateInstanceNames") enumerateInstanceNames(request, context, xml);
    else if (op == "EnumerateInstances") enumerateInstances(request, context, xml);
    else if (op == "GetInstance") getInstance(request, context, xml);
    else if (op == "ModifyInstance") modifyInstance(request, context);
    else if (op == "CreateInstance") createInstance(request, context, xml);
    else if (op == "DeleteInstance") deleteInstance(request, context);
    else if (op == "GetProperty") getProperty(request, context, xml);
    else if (op == "SetProperty") setProperty(request, context);
    else if (op == "ExecQuery") execQuery(request);
    else associations(request, context, xml);
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
    if (root && root->empty()) root.reset();  // the repository's top, as no ClassName
    if (root) requireClass(request.nameSpace, *root, CIMException::INVALID_CLASS, MissingClassText::Name);
    else requireExactNameSpace(request.nameSpace);
    bool deep = request.booleanParam("DeepInheritance").value_or(false);
    xml.start("IRETURNVALUE");
    for (const ClassDefinition* cls : selectClasses(classesIn(request.nameSpace), root, deep)) {
        xml.selfClosed("CLASSNAME", {{"NAME", cls->name}});
    }
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::enumerateClasses(const CimRequest& request, XmlWriter& xml) {
    std::optional<std::string> root = request.classNameParam("ClassName");
    if (root && root->empty()) root.reset();  // the repository's top, as no ClassName
    if (root) requireClass(request.nameSpace, *root, CIMException::INVALID_CLASS, MissingClassText::Name);
    else requireExactNameSpace(request.nameSpace);
    bool deep = request.booleanParam("DeepInheritance").value_or(false);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    xml.start("IRETURNVALUE");
    for (const ClassDefinition* cls : selectClasses(classesIn(request.nameSpace), root, deep)) writeClass(xml, *cls, filter);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::getClass(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<std::string> name = request.classNameParam("ClassName");
    if (!name) missingParameter("ClassName");
    const ClassDefinition& cls =
        requireClass(context.nameSpace, *name, CIMException::NOT_FOUND, MissingClassText::Path);
    OutputFilter filter;
    filter.localOnly = request.booleanParam("LocalOnly").value_or(true);
    filter.includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    filter.includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    filter.propertyList = request.stringArrayParam("PropertyList");
    xml.start("IRETURNVALUE");
    writeClass(xml, cls, filter);
    xml.end("IRETURNVALUE");
}

// The object manager deletes classes from its repository; this host's classes
// are fixed, so only the answer for an unknown class matches.
void OperationDispatcher::deleteClass(const CimRequest& request, Context& context) {
    std::optional<std::string> name = request.classNameParam("ClassName");
    if (!name) missingParameter("ClassName");
    const ClassDefinition& cls =
        requireClass(context.nameSpace, *name, CIMException::NOT_FOUND, MissingClassText::Path);
    throwCim(CIMException::NOT_SUPPORTED, "the classes of this host cannot be deleted: " + cls.name);
}

// Enumerations cover the class and its subclasses, each under its own name
// as the repository spells it; a subclass no provider serves has no instances.
void OperationDispatcher::enumerateInstanceNames(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<std::string> className = request.classNameParam("ClassName");
    if (!className) missingParameter("ClassName");
    const ClassDefinition& top = requireInstanceClass(*className, context);
    CollectingHandler<OW::CIMObjectPath> handler;
    std::vector<const ClassDefinition*> covered{&top};
    for (const ClassDefinition* sub : selectClasses(classes_, top.name, true)) covered.push_back(sub);
    for (const ClassDefinition* cls : covered) {
        if (cls != &top && !isBound(cls->qualifiers)) continue;
        instanceProviderFor(*cls, context).enumInstanceNames(context.env, context.ns(), String(cls->name.c_str()), handler,
                                                    apiClass(*cls));
    }
    xml.start("IRETURNVALUE");
    for (const OW::CIMObjectPath& path : handler.items) writeInstanceName(xml, path);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::enumerateInstances(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<std::string> className = request.classNameParam("ClassName");
    if (!className) missingParameter("ClassName");
    const ClassDefinition& top = requireInstanceClass(*className, context);
    bool localOnly = request.booleanParam("LocalOnly").value_or(true);
    bool deep = request.booleanParam("DeepInheritance").value_or(true);
    bool includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(false);
    bool includeClassOrigin = request.booleanParam("IncludeClassOrigin").value_or(false);
    std::optional<std::vector<std::string>> list = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = list ? toStringArray(*list) : OW::StringArray();
    CollectingHandler<OW::CIMInstance> handler;
    std::vector<const ClassDefinition*> covered{&top};
    for (const ClassDefinition* sub : selectClasses(classes_, top.name, true)) covered.push_back(sub);
    for (const ClassDefinition* cls : covered) {
        if (cls != &top && !isBound(cls->qualifiers)) continue;
        instanceProviderFor(*cls, context).enumInstances(
            context.env, context.ns(), String(cls->name.c_str()), handler, localOnlyFlag(localOnly),
            deep ? Flags::E_DEEP : Flags::E_SHALLOW, qualifiersFlag(includeQualifiers),
            classOriginFlag(includeClassOrigin), list ? &propertyList : nullptr, apiClass(top), apiClass(*cls));
    }
    // Each instance is named by its own key properties: those carrying a Key
    // qualifier.
    xml.start("IRETURNVALUE");
    for (const OW::CIMInstance& instance : handler.items) {
        xml.start("VALUE.NAMEDINSTANCE");
        writeInstanceName(xml, OW::CIMObjectPath(context.ns(), instance));
        writeInstance(xml, instance);
        xml.end("VALUE.NAMEDINSTANCE");
    }
    xml.end("IRETURNVALUE");
}

OW::CIMInstance OperationDispatcher::providerGetInstance(Context& context, const ClassDefinition& cls,
                                                         OW::CIMObjectPath path, bool localOnly,
                                                         bool includeQualifiers, bool includeClassOrigin,
                                                         const OW::StringArray* propertyList) {
    const OW::CIMClass& apiCls = apiClass(cls);
    syncPath(path, cls);
    OW::CIMInstance instance = instanceProviderFor(cls, context).getInstance(
        context.env, context.ns(), path, localOnlyFlag(localOnly), qualifiersFlag(includeQualifiers),
        classOriginFlag(includeClassOrigin), propertyList, apiCls);
    if (!instance) throwCim(CIMException::FAILED, "Provider erroneously returned a NULL CIMInstance");
    return instance;
}

void OperationDispatcher::getInstance(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name) missingParameter("InstanceName");
    const ClassDefinition& cls = requireInstanceClass(name->className, context);
    std::optional<std::vector<std::string>> list = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = list ? toStringArray(*list) : OW::StringArray();
    OW::CIMInstance instance = providerGetInstance(
        context, cls, objectPathFromText(*name, context.nameSpace, &cls),
        request.booleanParam("LocalOnly").value_or(true), request.booleanParam("IncludeQualifiers").value_or(false),
        request.booleanParam("IncludeClassOrigin").value_or(false), list ? &propertyList : nullptr);
    xml.start("IRETURNVALUE");
    writeInstance(xml, instance);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::applyModification(Context& context, const ClassDefinition& cls, OW::CIMInstance modified,
                                            bool includeQualifiers, const OW::StringArray* propertyList) {
    const OW::CIMClass& apiCls = apiClass(cls);
    OW::CppInstanceProviderIFC& provider = instanceProviderFor(cls, context);
    syncInstanceWithClass(modified, apiCls);
    OW::CIMObjectPath path(context.ns(), modified);
    if (series32_ && propertyList) {
        // 3.2 cuts the instance to the listed properties (each must exist)
        // and keeps the keys.
        OW::CIMPropertyArray listed;
        for (const String& name : *propertyList) {
            OW::CIMProperty property = modified.getProperty(OW::CIMName(name));
            if (!property) throwCim(CIMException::FAILED, "NoSuchProperty " + text(name));
            listed.push_back(property);
        }
        OW::CIMPropertyArray keys = modified.getKeyValuePairs();
        modified.setProperties(listed);
        modified.setKeys(keys);
    }
    OW::CIMInstance previous = providerGetInstance(context, cls, path, false, true, true, nullptr);
    provider.modifyInstance(context.env, context.ns(), modified, previous, qualifiersFlag(includeQualifiers),
                            propertyList, apiCls);
}

// The instance reaches the provider fitted to the class (ClassSync), with
// the PropertyList as given: the 3.0 object manager narrows nothing itself.
void OperationDispatcher::modifyInstance(const CimRequest& request, Context& context) {
    auto named = request.namedInstanceParam("ModifiedInstance");
    if (!named) missingParameter("ModifiedInstance");
    bool includeQualifiers = request.booleanParam("IncludeQualifiers").value_or(true);
    std::optional<std::vector<std::string>> list = request.stringArrayParam("PropertyList");
    OW::StringArray propertyList = list ? toStringArray(*list) : OW::StringArray();
    const ClassDefinition& cls = requireInstanceClass(named->second.className, context);
    applyModification(context, cls, instanceFromText(named->second, context.nameSpace), includeQualifiers,
                      list ? &propertyList : nullptr);
}

void OperationDispatcher::createInstance(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceText> text = request.instanceParam("NewInstance");
    if (!text) missingParameter("NewInstance");
    const ClassDefinition& cls = requireInstanceClass(text->className, context);
    if (hasTrueQualifier(cls, "Abstract")) {
        throwCim(CIMException::INVALID_PARAMETER,
                 "Unable to create instance because class (" + cls.name + ") is abstract");
    }
    OW::CIMInstance instance = instanceFromText(*text, context.nameSpace);
    syncInstanceWithClass(instance, apiClass(cls));
    OW::CIMObjectPath created = instanceProviderFor(cls, context).createInstance(context.env, context.ns(), instance);
    if (!created) created = OW::CIMObjectPath(context.ns(), instance);
    xml.start("IRETURNVALUE");
    writeInstanceName(xml, created);
    xml.end("IRETURNVALUE");
}

void OperationDispatcher::deleteInstance(const CimRequest& request, Context& context) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name) missingParameter("InstanceName");
    const ClassDefinition& cls = requireInstanceClass(name->className, context);
    OW::CIMObjectPath path = objectPathFromText(*name, context.nameSpace, &cls);
    // The object must exist before it can go.
    providerGetInstance(context, cls, path, false, true, true, nullptr);
    syncPath(path, cls);
    instanceProviderFor(cls, context).deleteInstance(context.env, context.ns(), path);
}

void OperationDispatcher::getProperty(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name) missingParameter("InstanceName");
    std::optional<std::string> propertyName = request.stringParam("PropertyName");
    if (!propertyName) missingParameter("PropertyName");
    const ClassDefinition& cls = requireInstanceClass(name->className, context);
    OW::CIMName property(String(propertyName->c_str()));
    if (!apiClass(cls).getProperty(property)) throwCim(CIMException::NO_SUCH_PROPERTY, *propertyName);
    OW::CIMInstance instance =
        providerGetInstance(context, cls, objectPathFromText(*name, context.nameSpace, &cls), false, true, true, nullptr);
    OW::CIMProperty found = instance.getProperty(property);
    if (!found) throwCim(CIMException::NO_SUCH_PROPERTY, *propertyName);
    xml.start("IRETURNVALUE");
    writeValue(xml, found.getValue());
    xml.end("IRETURNVALUE");
}

// A ModifyInstance of the one property, as the object manager runs it: the
// value converted to the class's type, the current instance read, a key
// left as it is.
void OperationDispatcher::setProperty(const CimRequest& request, Context& context) {
    std::optional<InstanceNameText> name = request.objectNameParam("InstanceName");
    if (!name) missingParameter("InstanceName");
    std::optional<std::string> propertyName = request.stringParam("PropertyName");
    if (!propertyName) missingParameter("PropertyName");
    std::optional<TextValue> newValue = request.valueParam("NewValue");
    const ClassDefinition& cls = requireInstanceClass(name->className, context);
    OW::CIMProperty classProperty = apiClass(cls).getProperty(OW::CIMName(String(propertyName->c_str())));
    if (!classProperty) throwCim(CIMException::NO_SUCH_PROPERTY, *propertyName);
    OW::CIMValue value = newValue ? valueFromText("string", *newValue) : OW::CIMValue(OW::CIMNULL);
    if (value && value.getType() != classProperty.getDataType().getType()) {
        try {
            value = castValue(value, classProperty.getDataType());
        } catch (const CIMException& e) {
            if (e.getErrNo() != CIMException::FAILED) throw;
            throwCim(CIMException::TYPE_MISMATCH, e.getDescription() ? e.getDescription() : "");
        }
    }
    OW::CIMInstance instance =
        providerGetInstance(context, cls, objectPathFromText(*name, context.nameSpace, &cls), false, true, true, nullptr);
    OW::CIMProperty current = instance.getProperty(OW::CIMName(String(propertyName->c_str())));
    if (classProperty.isKey() && current && current.getValue() && !current.getValue().equal(value)) {
        throwCim(CIMException::FAILED, "Cannot modify key property: " + text(classProperty.getName()));
    }
    OW::CIMProperty replacement = classProperty.clone();
    replacement.setValue(value);
    instance.setProperty(replacement);
    OW::StringArray propertyList;
    propertyList.push_back(String(propertyName->c_str()));
    applyModification(context, cls, instance, true, &propertyList);
}

// The object manager hands queries to its WQL library; the host has none and
// answers as owcimomd does without one.
void OperationDispatcher::execQuery(const CimRequest& request) {
    std::optional<std::string> language = request.stringParam("QueryLanguage");
    if (!language) missingParameter("QueryLanguage");
    if (!request.stringParam("Query")) missingParameter("Query");
    throwCim(CIMException::QUERY_LANGUAGE_NOT_SUPPORTED, *language);
}

// The object manager looks for association classes that reference the
// object's class; the MOF defines none, so every answer is empty and no
// associator provider is asked. The classes named in the request are still
// checked as owcimomd checks them.
void OperationDispatcher::associations(const CimRequest& request, Context& context, XmlWriter& xml) {
    std::string op = lowerCase(request.methodName);
    std::optional<InstanceNameText> objectName = request.objectNameParam("ObjectName");
    if (!objectName) missingParameter("ObjectName");
    auto lookUp = [&](const std::string& name) -> const ClassDefinition& {
        return requireClass(context.nameSpace, name, CIMException::NOT_FOUND, MissingClassText::Path);
    };
    auto requireAssociation = [&](const std::optional<std::string>& name) {
        if (!name || name->empty()) return;
        const ClassDefinition& cls = lookUp(*name);
        if (!hasTrueQualifier(cls, "Association")) {
            throwCim(CIMException::INVALID_PARAMETER, "class " + cls.name + " is not an association");
        }
    };
    lookUp(objectName->className);
    bool associators = op == "associators" || op == "associatornames";
    std::optional<std::string> resultClass = request.classNameParam("ResultClass");
    if (associators) {
        requireAssociation(request.classNameParam("AssocClass"));
        if (resultClass && !resultClass->empty()) requireClass(request.nameSpace, *resultClass, CIMException::INVALID_CLASS, MissingClassText::Name);
    } else {
        requireAssociation(resultClass);
    }
    xml.start("IRETURNVALUE").end("IRETURNVALUE");
}

namespace {

// The parameters as sent: typed by PARAMTYPE, else string.
OW::CIMParamValueArray givenParameters(const CimRequest& request, const std::string& nameSpace,
                                       const ClassRepository& classes) {
    OW::CIMParamValueArray given;
    for (const ParamValueText& p : request.parameters) {
        OW::CIMValue value =
            p.referenceValue
                ? OW::CIMValue(objectPathFromText(*p.referenceValue, nameSpace, classes.findClass(p.referenceValue->className)))
                : valueFromText(p.paramType.empty() ? "string" : p.paramType, p.value);
        given.push_back(OW::CIMParamValue(OW::CIMName(String(p.name.c_str())), value));
    }
    return given;
}

// The given parameter for a declared input, taken out of `given`; a missing
// optional one is NULL. Converted to the declared type.
OW::CIMParamValue takeInput(const OW::CIMParameter& parameter, OW::CIMParamValueArray& given) {
    size_t index = 0;
    while (index < given.size() && !given[index].getName().equalsIgnoreCase(parameter.getName())) ++index;
    OW::CIMParamValue value(OW::CIMName(parameter.getName()));
    if (index < given.size()) {
        value = given[index];
        given.erase(given.begin() + index);
    } else if (parameter.hasTrueQualifier(OW::CIMName("Required"))) {
        throwCim(CIMException::INVALID_PARAMETER, "Parameter " + text(parameter.getName()) + " was not specified.");
    }
    OW::CIMValue v = value.getValue();
    if (v && v.getType() != parameter.getType().getType()) {
        try {
            value.setValue(castValue(v, parameter.getType()));
        } catch (const CIMException& e) {
            throwCim(CIMException::INVALID_PARAMETER, e.getDescription() ? e.getDescription() : "");
        }
    }
    return value;
}

// Inputs in declaration order; outputs named by their declaration, an
// input that is also an output giving the output its value.
void matchParameters(const OW::CIMMethod& declared, OW::CIMParamValueArray given, OW::CIMParamValueArray& in,
                     OW::CIMParamValueArray& out) {
    for (const OW::CIMParameter& parameter : declared.getOUTParameters()) {
        out.push_back(OW::CIMParamValue(OW::CIMName(parameter.getName())));
    }
    for (const OW::CIMParameter& parameter : declared.getINParameters()) {
        OW::CIMParamValue value = takeInput(parameter, given);
        if (parameter.hasTrueQualifier(OW::CIMName("Out"))) {
            for (OW::CIMParamValue& o : out) {
                if (o.getName() == parameter.getName()) o.setValue(value.getValue());
            }
        }
        in.push_back(value);
    }
    if (!given.empty()) {
        throwCim(CIMException::INVALID_PARAMETER, "Unknown or duplicate parameter: " + text(given.front().getName()));
    }
}

// The return value goes out as the provider typed it, without PARAMTYPE;
// every output parameter goes out in its declared type, a NULL one without
// a value.
void writeMethodResult(XmlWriter& xml, const OW::CIMValue& result, const OW::CIMParameterArray& outputs,
                       OW::CIMParamValueArray& out) {
    for (size_t i = 0; i < outputs.size(); ++i) {
        OW::CIMValue v = out[i].getValue();
        if (v && v.getType() != outputs[i].getType().getType()) {
            out[i].setValue(OW::CIMValueCast::castValueToDataType(v, outputs[i].getType()));
        }
    }
    if (result) {
        xml.start("RETURNVALUE");
        writeValue(xml, result);
        xml.end("RETURNVALUE");
    }
    for (const OW::CIMParamValue& parameter : out) {
        OW::CIMValue value = parameter.getValue();
        if (value) {
            xml.start("PARAMVALUE", {{"NAME", text(parameter.getName())}, {"PARAMTYPE", cimTypeName(value.getType())}});
            writeValue(xml, value);
        } else {
            xml.start("PARAMVALUE", {{"NAME", text(parameter.getName())}});
        }
        xml.end("PARAMVALUE");
    }
}

}  // namespace

OW::CIMObjectPath OperationDispatcher::methodTarget(const CimRequest& request, Context& context,
                                                    const ClassDefinition& cls) {
    OW::CIMObjectPath path = request.target.isClassPath
                                 ? OW::CIMObjectPath(OW::CIMName(String(request.target.className.c_str())),
                                                     context.ns())
                                 : objectPathFromText(request.target, context.nameSpace, &cls);
    syncPath(path, cls);
    // A method on an instance needs the instance: any CIM error of the
    // provider's getInstance means it is not there.
    if (!path.getKeys().empty()) {
        try {
            providerGetInstance(context, cls, path, false, true, true, nullptr);
        } catch (const CIMException&) {
            throwCim(CIMException::NOT_FOUND, "Instance not found: " + text(path.toString()));
        }
    }
    return path;
}

void OperationDispatcher::runExtrinsic(const CimRequest& request, Context& context, XmlWriter& xml) {
    const ClassDefinition& cls = requireClass(context.nameSpace, request.target.className, CIMException::NOT_FOUND,
                                              MissingClassText::Path);
    OW::CIMObjectPath path = methodTarget(request, context, cls);
    const MethodDefinition* method = cls.findMethod(request.methodName);
    if (!method) throwCim(CIMException::METHOD_NOT_FOUND, request.methodName);
    OW::CppMethodProviderIFC* provider = isBound(method->qualifiers) || isBound(cls.qualifiers)
                                             ? providerFor(context).methodProvider()
                                             : nullptr;
    if (!provider) throwCim(CIMException::NOT_FOUND, "No provider for method " + request.methodName);
    OW::CIMMethod declared = apiClass(cls).getMethod(OW::CIMName(String(method->name.c_str())));
    OW::CIMParamValueArray in;
    OW::CIMParamValueArray out;
    matchParameters(declared, givenParameters(request, context.nameSpace, classes_), in, out);
    OW::CIMValue result =
        provider->invokeMethod(context.env, context.ns(), path, String(request.methodName.c_str()), in, out);
    writeMethodResult(xml, result, declared.getOUTParameters(), out);
}

}  // namespace cimhost
