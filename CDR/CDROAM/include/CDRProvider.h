// The one provider object of the module: receives every request for the six
// classes, hands it to the provider of the addressed class and translates
// what that provider throws into CIM errors.
#ifndef CDRPROVIDER_H
#define CDRPROVIDER_H

#include "CDROWConfig.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_ResultHandlerIFC.hpp"
#include "OW_String.hpp"

class CDROAMWrap;

class CDRProvider : public OW_NAMESPACE::CppMethodProviderIFC,
                    public OW_NAMESPACE::CppAssociatorProviderIFC {
 public:
  typedef OW_NAMESPACE::String String;
  typedef OW_NAMESPACE::CIMInstance CIMInstance;
  typedef OW_NAMESPACE::CIMObjectPath CIMObjectPath;
  typedef OW_NAMESPACE::CIMValue CIMValue;
  typedef OW_NAMESPACE::CIMClass CIMClass;
  typedef OW_NAMESPACE::StringArray StringArray;
  typedef OW_NAMESPACE::ProviderEnvironmentIFCRef ProviderEnvironmentIFCRef;

  virtual ~CDRProvider();

  virtual CIMValue invokeMethod(const ProviderEnvironmentIFCRef& env, const String& ns,
                                const CIMObjectPath& path, const String& methodName,
                                const OW_NAMESPACE::CIMParamValueArray& in,
                                OW_NAMESPACE::CIMParamValueArray& out);

  // Initialises the six class providers, then creates every managed
  // instance into myInstance. Not guarded against a second call.
  virtual void initialize(const ProviderEnvironmentIFCRef& env);

  virtual void enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
                                 const String& className,
                                 OW_NAMESPACE::CIMObjectPathResultHandlerIFC& result,
                                 const CIMClass& cimClass);
  virtual void enumInstances(const ProviderEnvironmentIFCRef& env, const String& ns,
                             const String& className,
                             OW_NAMESPACE::CIMInstanceResultHandlerIFC& result,
                             OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag localOnly,
                             OW_NAMESPACE::WBEMFlags::EDeepFlag deep,
                             OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                             OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                             const StringArray* propertyList, const CIMClass& requestedClass,
                             const CIMClass& cimClass);
  virtual CIMInstance getInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                  const CIMObjectPath& instanceName,
                                  OW_NAMESPACE::WBEMFlags::ELocalOnlyFlag localOnly,
                                  OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                                  OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                                  const StringArray* propertyList, const CIMClass& cimClass);
  virtual CIMObjectPath createInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                                       const CIMInstance& cimInstance);
  virtual void deleteInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                              const CIMObjectPath& cop);
  virtual void modifyInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
                              const CIMInstance& modifiedInstance,
                              const CIMInstance& previousInstance,
                              OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                              const StringArray* propertyList, const CIMClass& theClass);

  // Associations are refused: CIM error 5 whatever the arguments.
  virtual void associators(const ProviderEnvironmentIFCRef& env,
                           OW_NAMESPACE::CIMInstanceResultHandlerIFC& result, const String& ns,
                           const CIMObjectPath& objectName, const String& assocClass,
                           const String& resultClass, const String& role,
                           const String& resultRole,
                           OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                           OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                           const StringArray* propertyList);
  virtual void associatorNames(const ProviderEnvironmentIFCRef& env,
                               OW_NAMESPACE::CIMObjectPathResultHandlerIFC& result,
                               const String& ns, const CIMObjectPath& objectName,
                               const String& assocClass, const String& resultClass,
                               const String& role, const String& resultRole);
  virtual void references(const ProviderEnvironmentIFCRef& env,
                          OW_NAMESPACE::CIMInstanceResultHandlerIFC& result, const String& ns,
                          const CIMObjectPath& objectName, const String& resultClass,
                          const String& role,
                          OW_NAMESPACE::WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
                          OW_NAMESPACE::WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
                          const StringArray* propertyList);
  virtual void referenceNames(const ProviderEnvironmentIFCRef& env,
                              OW_NAMESPACE::CIMObjectPathResultHandlerIFC& result,
                              const String& ns, const CIMObjectPath& objectName,
                              const String& resultClass, const String& role);

  // Always false: the module must not be unloaded while the process runs.
  // initialize registers state for the life of the process (the platform's
  // backup/restore callback into this library, the diagnostic log, the 17
  // managed objects in myInstance); an unload would leave the platform
  // calling into unmapped code, and a reload would register everything a
  // second time. OpenWBEM 3.0's idle unloader also crashes the object
  // manager when it removes a provider, five minutes (cppprovifc.prov_TTL)
  // after the last request.
  virtual bool canUnload();

  // Calls cleanup of the six class providers; the managed instances live on.
  void cleanup();
};

// The instance holder made by initialize; null until then.
extern CDROAMWrap* myInstance;
extern const char* UnknownStdException;
extern const char* UnknownException;

#endif
