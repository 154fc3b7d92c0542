// Maps CIM operations onto the class definitions and the provider: class
// operations are answered from the MOF, instance, method and association
// operations go to the provider with the arguments OpenWBEM passes. Requests
// reach the provider concurrently from the server's worker threads, as in
// OpenWBEM; a module serialises itself where it needs to.
#pragma once

#include <map>
#include <mutex>
#include <string>

#include <OW_CIMClass.hpp>
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

    // Classes whose Provider qualifier names the loaded module.
    std::vector<std::string> boundClasses() const;

private:
    struct Context;

    // Each writes the content of the response element (IRETURNVALUE or
    // RETURNVALUE/PARAMVALUE) and throws CIMException for CIM errors.
    void runIntrinsic(const CimRequest& request, Context& context, XmlWriter& xml);
    void runExtrinsic(const CimRequest& request, Context& context, XmlWriter& xml);

    void enumerateClassNames(const CimRequest& request, XmlWriter& xml);
    void enumerateClasses(const CimRequest& request, XmlWriter& xml);
    void getClass(const CimRequest& request, XmlWriter& xml);
    void enumerateInstanceNames(const CimRequest& request, Context& context, XmlWriter& xml);
    void enumerateInstances(const CimRequest& request, Context& context, XmlWriter& xml);
    void getInstance(const CimRequest& request, Context& context, XmlWriter& xml);
    void modifyInstance(const CimRequest& request, Context& context);
    void createInstance(const CimRequest& request, Context& context, XmlWriter& xml);
    void deleteInstance(const CimRequest& request, Context& context);
    void getProperty(const CimRequest& request, Context& context, XmlWriter& xml);
    void associations(const CimRequest& request, Context& context, XmlWriter& xml);

    const ClassDefinition& requireClass(const std::string& className) const;
    OpenWBEM::CppInstanceProviderIFC& instanceProviderFor(const ClassDefinition& cls) const;
    bool isBound(const std::vector<Qualifier>& qualifiers) const;
    const OpenWBEM::CIMClass& apiClass(const ClassDefinition& cls);

    const ClassRepository& classes_;
    ProviderModule* module_;
    HostLog& log_;
    std::string nameSpace_;
    std::string hostName_;
    std::mutex apiClassesMutex_;
    std::map<std::string, OpenWBEM::CIMClass> apiClasses_;  // by lower-case name; entries are never removed
};

}  // namespace cimhost
