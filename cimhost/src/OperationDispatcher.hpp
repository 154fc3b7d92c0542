// Maps CIM operations onto the class definitions and the provider the way
// OpenWBEM 3.0's object manager does: class operations are answered from the
// MOF, instance and method operations go to the provider with the arguments
// and checks of owcimomd, association operations find no association class
// and answer empty. Requests reach the provider concurrently from the server's
// threads, as in OpenWBEM; a module serialises itself where it needs to.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include <OW_CIMClass.hpp>
#include <OW_CIMException.hpp>
#include <OW_CIMInstance.hpp>
#include <OW_CIMObjectPath.hpp>
#include <OW_ProviderEnvironmentIFC.hpp>

#include "ClassDefinition.hpp"
#include "HostLog.hpp"
#include "HttpServer.hpp"
#include "ProviderModule.hpp"
#include "XmlWriter.hpp"

namespace cimhost {

class OperationDispatcher : public RequestHandler {
public:
    // `module` may be null: then only class operations succeed.
    OperationDispatcher(const ClassRepository& classes, ProviderModule* module, HostLog& log,
                        std::string nameSpace, std::string hostName);

    std::string handle(const CimRequest& request, const std::string& userName) override;

    // Where OpenWBEM 3.2 differs from 3.0 (the device's series), as 3.2: a
    // namespace is found only as spelled, a modification's instance is cut
    // to its keys and the PropertyList before the provider sees it, and a
    // scalar CHAR16 is read from any text.
    void followSeries32();

    // Classes whose Provider qualifier names the loaded module.
    std::vector<std::string> boundClasses() const;

private:
    struct Context;

    // Each writes the content of the response element (IRETURNVALUE or
    // RETURNVALUE/PARAMVALUE) and throws CIMException for CIM errors.
    void runIntrinsic(const CimRequest& request, Context& context, XmlWriter& xml);
    void runExtrinsic(const CimRequest& request, Context& context, XmlWriter& xml);
    // The object a method is invoked on; CIM_ERR_NOT_FOUND when it names an
    // instance the provider does not have.
    OpenWBEM::CIMObjectPath methodTarget(const CimRequest& request, Context& context, const ClassDefinition& cls);

    void enumerateClassNames(const CimRequest& request, XmlWriter& xml);
    void enumerateClasses(const CimRequest& request, XmlWriter& xml);
    void getClass(const CimRequest& request, Context& context, XmlWriter& xml);
    void deleteClass(const CimRequest& request, Context& context);
    void enumerateInstanceNames(const CimRequest& request, Context& context, XmlWriter& xml);
    void enumerateInstances(const CimRequest& request, Context& context, XmlWriter& xml);
    void getInstance(const CimRequest& request, Context& context, XmlWriter& xml);
    void modifyInstance(const CimRequest& request, Context& context);
    void createInstance(const CimRequest& request, Context& context, XmlWriter& xml);
    void deleteInstance(const CimRequest& request, Context& context);
    void getProperty(const CimRequest& request, Context& context, XmlWriter& xml);
    void setProperty(const CimRequest& request, Context& context);
    void execQuery(const CimRequest& request);
    void associations(const CimRequest& request, Context& context, XmlWriter& xml);

    // CIM_ERR_INVALID_NAMESPACE unless `nameSpace` is the host's or one
    // above it.
    void checkNameSpace(const std::string& nameSpace) const;
    // CIM_ERR_INVALID_NAMESPACE unless `nameSpace` is spelled as the host's
    // (or one above it) is.
    void requireExactNameSpace(const std::string& nameSpace) const;
    // The classes of a namespace: the MOF's in the served one, none in those above it.
    const ClassRepository& classesIn(const std::string& nameSpace) const;
    // How a missing class is named in its CIM error: as given, or as the
    // object path of the class in the namespace.
    enum class MissingClassText { Name, Path };
    // The class of a name in a namespace, ignoring case; else CIM error
    // `code` naming the class as `named` says.
    const ClassDefinition& requireClass(const std::string& nameSpace, const std::string& className,
                                        OpenWBEM::CIMException::ErrNoType code, MissingClassText named) const;
    // As instance operations look a class up: CIM_ERR_INVALID_CLASS.
    const ClassDefinition& requireInstanceClass(const std::string& className, const Context& context) const;
    // The module's provider for this request, loaded again if it was
    // unloaded.
    LoadedProvider& providerFor(Context& context) const;
    OpenWBEM::CppInstanceProviderIFC& instanceProviderFor(const ClassDefinition& cls, Context& context) const;
    bool isBound(const std::vector<Qualifier>& qualifiers) const;
    // The class as the provider API holds it, and its key properties; made
    // once per class.
    struct ApiClass {
        OpenWBEM::CIMClass cls;
        OpenWBEM::CIMPropertyArray keys;
    };
    const ApiClass& apiClassEntry(const ClassDefinition& cls);
    const OpenWBEM::CIMClass& apiClass(const ClassDefinition& cls) { return apiClassEntry(cls).cls; }
    void syncPath(OpenWBEM::CIMObjectPath& path, const ClassDefinition& cls);
    // The provider's instance at `path` (its keys fitted to the class first);
    // a NULL answer is CIM_ERR_FAILED.
    OpenWBEM::CIMInstance providerGetInstance(Context& context, const ClassDefinition& cls,
                                              OpenWBEM::CIMObjectPath path, bool localOnly, bool includeQualifiers,
                                              bool includeClassOrigin, const OpenWBEM::StringArray* propertyList);
    // Fits `modified` to the class, reads the previous instance and hands both
    // to the provider.
    void applyModification(Context& context, const ClassDefinition& cls, OpenWBEM::CIMInstance modified,
                           bool includeQualifiers, const OpenWBEM::StringArray* propertyList);

    const ClassRepository& classes_;
    ProviderModule* module_;
    HostLog& log_;
    std::string nameSpace_;
    bool series32_ = false;
    std::string hostName_;
    std::mutex apiClassesMutex_;
    std::map<const ClassDefinition*, ApiClass> apiClasses_;  // entries are never removed
};

}  // namespace cimhost
