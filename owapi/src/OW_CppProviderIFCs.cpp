#include "OW_CppProviderBaseIFC.hpp"
#include "OW_CppInstanceProviderIFC.hpp"
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_ProviderRegistrationEnvironmentIFC.hpp"
#include "OW_CIMOMHandleIFC.hpp"
#include "OW_RepositoryIFC.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMClass.hpp"

namespace OW_NAMESPACE
{

CIMOMHandleIFC::~CIMOMHandleIFC() {}
RepositoryIFC::~RepositoryIFC() {}
ProviderEnvironmentIFC::~ProviderEnvironmentIFC() {}
ProviderRegistrationEnvironmentIFC::~ProviderRegistrationEnvironmentIFC() {}

// ---- CppProviderBaseIFC

CppProviderBaseIFC::CppProviderBaseIFC() : m_dt(0), m_persist(false) {}

CppProviderBaseIFC::CppProviderBaseIFC(const CppProviderBaseIFC& arg)
	: IntrusiveCountableBase(arg)
	, m_dt(arg.m_dt)
	, m_persist(arg.m_persist)
{
}

CppProviderBaseIFC::~CppProviderBaseIFC() {}
void CppProviderBaseIFC::initialize(const ProviderEnvironmentIFCRef&) {}
void CppProviderBaseIFC::shuttingDown(const ProviderEnvironmentIFCRef&) {}
CppInstanceProviderIFC* CppProviderBaseIFC::getInstanceProvider() { return 0; }
CppSecondaryInstanceProviderIFC* CppProviderBaseIFC::getSecondaryInstanceProvider() { return 0; }
CppMethodProviderIFC* CppProviderBaseIFC::getMethodProvider() { return 0; }
CppAssociatorProviderIFC* CppProviderBaseIFC::getAssociatorProvider() { return 0; }
CppIndicationExportProviderIFC* CppProviderBaseIFC::getIndicationExportProvider() { return 0; }
CppPolledProviderIFC* CppProviderBaseIFC::getPolledProvider() { return 0; }
CppIndicationProviderIFC* CppProviderBaseIFC::getIndicationProvider() { return 0; }
DateTime CppProviderBaseIFC::getLastAccessTime() const { return m_dt; }
void CppProviderBaseIFC::updateAccessTime() { m_dt.setToCurrent(); }
bool CppProviderBaseIFC::canUnload() { return true; }
bool CppProviderBaseIFC::getPersist() const { return m_persist; }
void CppProviderBaseIFC::setPersist(bool persist) { m_persist = persist; }

// ---- CppInstanceProviderIFC

namespace
{
/// Turns each delivered path into getInstance() of that path, handed on.
class InstanceByNameHandler : public CIMObjectPathResultHandlerIFC
{
public:
	InstanceByNameHandler(CppInstanceProviderIFC& provider,
		const ProviderEnvironmentIFCRef& env,
		const String& ns,
		CIMInstanceResultHandlerIFC& result,
		WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList,
		const CIMClass& cimClass)
		: m_provider(provider)
		, m_env(env)
		, m_ns(ns)
		, m_result(result)
		, m_localOnly(localOnly)
		, m_includeQualifiers(includeQualifiers)
		, m_includeClassOrigin(includeClassOrigin)
		, m_propertyList(propertyList)
		, m_cimClass(cimClass)
	{
	}
protected:
	virtual void doHandle(const CIMObjectPath& path)
	{
		m_result.handle(m_provider.getInstance(m_env, m_ns, path, m_localOnly,
			m_includeQualifiers, m_includeClassOrigin, m_propertyList, m_cimClass));
	}
private:
	CppInstanceProviderIFC& m_provider;
	const ProviderEnvironmentIFCRef& m_env;
	const String& m_ns;
	CIMInstanceResultHandlerIFC& m_result;
	WBEMFlags::ELocalOnlyFlag m_localOnly;
	WBEMFlags::EIncludeQualifiersFlag m_includeQualifiers;
	WBEMFlags::EIncludeClassOriginFlag m_includeClassOrigin;
	const StringArray* m_propertyList;
	const CIMClass& m_cimClass;
};
} // end unnamed namespace

CppInstanceProviderIFC::CppInstanceProviderIFC() {}
CppInstanceProviderIFC::~CppInstanceProviderIFC() {}

void CppInstanceProviderIFC::getInstanceProviderInfoWithEnv(
	const ProviderRegistrationEnvironmentIFCRef&, InstanceProviderInfo& info)
{
	getInstanceProviderInfo(info);
}

void CppInstanceProviderIFC::getInstanceProviderInfo(InstanceProviderInfo&) {}

void CppInstanceProviderIFC::enumInstances(
	const ProviderEnvironmentIFCRef& env,
	const String& ns,
	const String& className,
	CIMInstanceResultHandlerIFC& result,
	WBEMFlags::ELocalOnlyFlag localOnly,
	WBEMFlags::EDeepFlag,
	WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
	WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
	const StringArray* propertyList,
	const CIMClass&,
	const CIMClass& cimClass)
{
	InstanceByNameHandler handler(*this, env, ns, result, localOnly, includeQualifiers,
		includeClassOrigin, propertyList, cimClass);
	enumInstanceNames(env, ns, className, handler, cimClass);
}

CppInstanceProviderIFC* CppInstanceProviderIFC::getInstanceProvider() { return this; }

// ---- CppMethodProviderIFC

CppMethodProviderIFC::~CppMethodProviderIFC() {}

void CppMethodProviderIFC::getMethodProviderInfoWithEnv(
	const ProviderRegistrationEnvironmentIFCRef&, MethodProviderInfo& info)
{
	getMethodProviderInfo(info);
}

void CppMethodProviderIFC::getMethodProviderInfo(MethodProviderInfo&) {}
CppMethodProviderIFC* CppMethodProviderIFC::getMethodProvider() { return this; }

// ---- CppAssociatorProviderIFC

CppAssociatorProviderIFC::~CppAssociatorProviderIFC() {}

void CppAssociatorProviderIFC::getAssociatorProviderInfoWithEnv(
	const ProviderRegistrationEnvironmentIFCRef&, AssociatorProviderInfo& info)
{
	getAssociatorProviderInfo(info);
}

void CppAssociatorProviderIFC::getAssociatorProviderInfo(AssociatorProviderInfo&) {}
CppAssociatorProviderIFC* CppAssociatorProviderIFC::getAssociatorProvider() { return this; }

} // end namespace OW_NAMESPACE
