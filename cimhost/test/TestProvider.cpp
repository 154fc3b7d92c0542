// A provider for the host's tests. It serves Test_Widget with two fixed
// instances, A1 and B2, answers "Ping", and logs every call it receives
// through the provider environment's logger so that tests can read exactly
// what the host passed. Special key values make it fail on purpose:
// "missing" (not found), "cim" (CIMException 4 with a message), "std"
// (std::runtime_error) and "int" (a thrown int). It lets the host unload
// it when idle (OpenWBEM's default canUnload()).
#include <atomic>
#include <stdexcept>
#include <string>

#include <OW_CIMClass.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_CIMParamValue.hpp>
#include <OW_CIMProperty.hpp>
#include <OW_CIMQualifier.hpp>
#include <OW_CIMQualifierType.hpp>
#include <OW_CIMValue.hpp>
#include <OW_CppAssociatorProviderIFC.hpp>
#include <OW_CppMethodProviderIFC.hpp>
#include <OW_ResultHandlerIFC.hpp>

using namespace OpenWBEM;

namespace {

void record(const ProviderEnvironmentIFCRef& env, const String& line) {
    env->getLogger("testprovider")->logError(line);
}

String propertyNames(const CIMInstance& instance) {
    String names;
    CIMPropertyArray properties = instance.getProperties();
    for (size_t i = 0; i < properties.size(); ++i) {
        if (i) names += ",";
        CIMValue v = properties[i].getValue();
        names += properties[i].getName();
        names += "=";
        names += v ? String(CIMDataType(v.getType()).toString()) + ":" + v.toString() : String("null");
    }
    return names;
}

String listText(const StringArray* list) {
    if (!list) return "all";
    String text = "[";
    for (size_t i = 0; i < list->size(); ++i) {
        if (i) text += ",";
        text += (*list)[i];
    }
    return text + "]";
}

CIMObjectPath widgetPath(const String& ns, const String& id) {
    CIMObjectPath path("Test_Widget", ns);
    CIMPropertyArray keys;
    keys.push_back(CIMProperty("Id", CIMValue(id)));
    path.setKeys(keys);
    return path;
}

// A1's key property carries the Key qualifier; B2's does not, as the
// module's instances do not.
CIMInstance widget(const String& id) {
    CIMInstance instance("Test_Widget");
    CIMProperty key("Id", CIMValue(id));
    if (id.equals("A1")) key.setQualifier(CIMQualifier::createKeyQualifier());
    instance.setProperty(key);
    CIMProperty count("Count", CIMValue(UInt32(id.equals("A1") ? 42 : 0)));
    CIMQualifierType booleanType("boolean");
    booleanType.setDataType(CIMDataType::BOOLEAN);
    CIMQualifier applicable(booleanType);
    applicable.setName("Applicable");
    applicable.setValue(CIMValue(false));
    count.setQualifier(applicable);
    instance.setProperty(count);
    instance.setProperty(CIMProperty("Label", CIMDataType(CIMDataType::STRING)));
    UInt32Array codes;
    codes.push_back(1);
    codes.push_back(2);
    instance.setProperty("Codes", CIMValue(codes));
    instance.setProperty("Enabled", CIMValue(true));
    return instance;
}

String keyOf(const CIMObjectPath& path) {
    CIMValue v = path.getKeyValue("Id");
    return v ? v.toString() : String("");
}

void failOnPurpose(const String& id) {
    if (id.equals("missing")) OW_THROWCIM(CIMException::NOT_FOUND);
    if (id.equals("cim")) OW_THROWCIMMSG(CIMException::INVALID_PARAMETER, "Count must be <= 10");
    if (id.equals("std")) throw std::runtime_error("widget store is broken");
    if (id.equals("int")) throw 42;
}

// State of one load of the library: it starts again at 0 when the host has
// unloaded the library and loads it anew. Id "pings" reads it as Count.
std::atomic<unsigned> pingsSinceLoad(0);

class TestProvider : public CppMethodProviderIFC, public CppAssociatorProviderIFC {
public:
    void initialize(const ProviderEnvironmentIFCRef& env) override { record(env, "initialize"); }

    void enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns, const String& className,
                           CIMObjectPathResultHandlerIFC& result, const CIMClass& cimClass) override {
        record(env, "enumInstanceNames ns=" + ns + " class=" + className + " cimClass=" + cimClass.getName());
        if (!className.equals("Test_Widget")) OW_THROWCIM(CIMException::INVALID_CLASS);
        result.handle(widgetPath(ns, "A1"));
        result.handle(widgetPath(ns, "B2"));
    }

    void enumInstances(const ProviderEnvironmentIFCRef& env, const String& ns, const String& className,
                       CIMInstanceResultHandlerIFC& result, WBEMFlags::ELocalOnlyFlag localOnly,
                       WBEMFlags::EDeepFlag deep, WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                       WBEMFlags::EIncludeClassOriginFlag includeClassOrigin, const StringArray* propertyList,
                       const CIMClass&, const CIMClass&) override {
        record(env, "enumInstances ns=" + ns + " class=" + className + " localOnly=" + String(Int32(localOnly)) +
                        " deep=" + String(Int32(deep)) + " qualifiers=" + String(Int32(includeQualifiers)) +
                        " origin=" + String(Int32(includeClassOrigin)) + " list=" + listText(propertyList));
        result.handle(widget("A1"));
        result.handle(widget("B2"));
    }

    CIMInstance getInstance(const ProviderEnvironmentIFCRef& env, const String& ns, const CIMObjectPath& name,
                            WBEMFlags::ELocalOnlyFlag, WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                            WBEMFlags::EIncludeClassOriginFlag, const StringArray* propertyList,
                            const CIMClass&) override {
        String id = keyOf(name);
        record(env, "getInstance ns=" + ns + " class=" + name.getClassName() + " Id=" + id +
                        " qualifiers=" + String(Int32(includeQualifiers)) + " list=" + listText(propertyList));
        failOnPurpose(id);
        CIMInstance instance = widget(id);
        if (id.equals("pings")) instance.setProperty("Count", CIMValue(UInt32(pingsSinceLoad.load())));
        return instance;
    }

    CIMObjectPath createInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                 const CIMInstance& instance) override {
        record(env, "createInstance " + propertyNames(instance));
        return widgetPath(ns, instance.getPropertyValue("Id") ? instance.getPropertyValue("Id").toString() : "");
    }

    void modifyInstance(const ProviderEnvironmentIFCRef& env, const String& ns, const CIMInstance& modified,
                        const CIMInstance& previous, WBEMFlags::EIncludeQualifiersFlag,
                        const StringArray* propertyList, const CIMClass&) override {
        record(env, "modifyInstance ns=" + ns + " class=" + modified.getClassName() + " " + propertyNames(modified) +
                        " previous=" + (previous ? keyOf(CIMObjectPath(ns, previous)) : String("none")) +
                        " list=" + listText(propertyList));
    }

    void deleteInstance(const ProviderEnvironmentIFCRef& env, const String&, const CIMObjectPath& path) override {
        record(env, "deleteInstance Id=" + keyOf(path));
        OW_THROWCIM(CIMException::NOT_SUPPORTED);
    }

    CIMValue invokeMethod(const ProviderEnvironmentIFCRef& env, const String&, const CIMObjectPath& path,
                          const String& methodName, const CIMParamValueArray& in, CIMParamValueArray& out) override {
        String line = "invokeMethod " + methodName + " on " + path.getClassName() + " Id=" + keyOf(path) + " in=";
        for (size_t i = 0; i < in.size(); ++i) {
            CIMValue v = in[i].getValue();
            line += in[i].getName() + "=" + (v ? String(CIMDataType(v.getType()).toString()) + ":" + v.toString() : String("null")) + ";";
        }
        line += " out=";
        for (size_t i = 0; i < out.size(); ++i) line += out[i].getName() + ";";
        record(env, line);
        if (!methodName.equals("Ping")) OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
        ++pingsSinceLoad;
        for (size_t i = 0; i < out.size(); ++i) {
            if (out[i].getName().equalsIgnoreCase("Echo")) out[i].setValue(CIMValue(String("pong")));
        }
        return CIMValue(Int32(7));  // the host converts it to the declared uint32
    }

    void associators(const ProviderEnvironmentIFCRef& env, CIMInstanceResultHandlerIFC& result, const String&,
                     const CIMObjectPath& objectName, const String& assocClass, const String& resultClass,
                     const String& role, const String& resultRole, WBEMFlags::EIncludeQualifiersFlag,
                     WBEMFlags::EIncludeClassOriginFlag, const StringArray*) override {
        record(env, "associators Id=" + keyOf(objectName) + " assoc=" + assocClass + " result=" + resultClass +
                        " role=" + role + " resultRole=" + resultRole);
        result.handle(widget("B2"));
    }
    void associatorNames(const ProviderEnvironmentIFCRef& env, CIMObjectPathResultHandlerIFC& result,
                         const String& ns, const CIMObjectPath& objectName, const String&, const String&,
                         const String&, const String&) override {
        record(env, "associatorNames Id=" + keyOf(objectName));
        result.handle(widgetPath(ns, "B2"));
    }
    void references(const ProviderEnvironmentIFCRef& env, CIMInstanceResultHandlerIFC&, const String&,
                    const CIMObjectPath&, const String&, const String&, WBEMFlags::EIncludeQualifiersFlag,
                    WBEMFlags::EIncludeClassOriginFlag, const StringArray*) override {
        record(env, "references");
        OW_THROWCIM(CIMException::INVALID_CLASS);
    }
    void referenceNames(const ProviderEnvironmentIFCRef& env, CIMObjectPathResultHandlerIFC&, const String&,
                        const CIMObjectPath&, const String&, const String&) override {
        record(env, "referenceNames");
    }
};

}  // namespace

OW_PROVIDERFACTORY(TestProvider, TestProvider)
