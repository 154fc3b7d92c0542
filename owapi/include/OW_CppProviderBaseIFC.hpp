#ifndef OW_CPPPROVIDERBASEIFC_HPP_INCLUDE_GUARD_
#define OW_CPPPROVIDERBASEIFC_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_ProviderFwd.hpp"
#include "OW_ProviderEnvironmentIFC.hpp"
#include "OW_ProviderRegistrationEnvironmentIFC.hpp"
#include "OW_DateTime.hpp"
#include "OW_String.hpp"
#include "OW_WBEMFlags.hpp"

namespace OW_NAMESPACE
{

/// Base of every C++ provider. The interface getters replace dynamic_cast:
/// each interface returns itself from its own getter, the rest return 0.
class CppProviderBaseIFC : public virtual IntrusiveCountableBase
{
public:
	CppProviderBaseIFC();
	CppProviderBaseIFC(const CppProviderBaseIFC& arg);
	virtual ~CppProviderBaseIFC();

	/// Called once per provider object before any request; may throw.
	virtual void initialize(const ProviderEnvironmentIFCRef& env);
#ifndef OWAPI_SERIES_3_0
	/// Called before the object manager stops.
	virtual void shuttingDown(const ProviderEnvironmentIFCRef& env);
#endif

	virtual CppInstanceProviderIFC* getInstanceProvider();
	virtual CppSecondaryInstanceProviderIFC* getSecondaryInstanceProvider();
	virtual CppMethodProviderIFC* getMethodProvider();
	virtual CppAssociatorProviderIFC* getAssociatorProvider();
	virtual CppIndicationExportProviderIFC* getIndicationExportProvider();
	virtual CppPolledProviderIFC* getPolledProvider();
	virtual CppIndicationProviderIFC* getIndicationProvider();

	DateTime getLastAccessTime() const;
	void updateAccessTime();
	/// True: the provider may be unloaded when idle.
	virtual bool canUnload();
	bool getPersist() const;
	void setPersist(bool persist = true);

private:
	DateTime m_dt;
	bool m_persist;
};

} // end namespace OW_NAMESPACE

#if defined(OW_STATIC_SERVICES)
#define OW_PROVIDERFACTORY(prov, name) \
OW_NAMESPACE::CppProviderBaseIFC* createProvider##name() \
{ \
	return new prov; \
}
#else
/// Defines the two entry points the object manager looks up: getOWVersion
/// and createProvider<name>.
#define OW_PROVIDERFACTORY(prov, name) \
extern "C" OW_EXPORT const char* getOWVersion() \
{ \
	return OW_VERSION; \
} \
extern "C" OW_EXPORT OW_NAMESPACE::CppProviderBaseIFC* createProvider##name() \
{ \
	return new prov; \
}
#endif

#define OW_NOIDPROVIDERFACTORY(prov) OW_PROVIDERFACTORY(prov, NO_ID)
#define OW_PROVIDERFACTORY_NOID(prov, name) OW_PROVIDERFACTORY(prov, NO_ID)

#endif
