// A provider written from the published interface signatures, built the
// way a module builds one, and driven the way an object manager does.
#include "OW_CppMethodProviderIFC.hpp"
#include "OW_CppAssociatorProviderIFC.hpp"
#include "OW_CIMInstance.hpp"
#include "OW_CIMObjectPath.hpp"
#include "OW_CIMValue.hpp"
#include "OW_CIMClass.hpp"
#include "OW_CIMException.hpp"
#include "OW_CIMParamValue.hpp"
#include "OW_Logger.hpp"
#include "OW_LogMessage.hpp"
#include "OW_RepositoryIFC.hpp"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{
using namespace OpenWBEM;

class SampleProvider : public CppMethodProviderIFC, public CppAssociatorProviderIFC
{
public:
	virtual CIMValue invokeMethod(const ProviderEnvironmentIFCRef& env, const String& ns,
		const CIMObjectPath& path, const String& methodName,
		const CIMParamValueArray& in, CIMParamValueArray& out)
	{
		(void)ns;
		(void)path;
		(void)in;
		if (!methodName.equals("Refresh"))
		{
			OW_THROWCIM(CIMException::METHOD_NOT_FOUND);
		}
		if (out.size() > 0)
		{
			out[0].setValue(CIMValue(String("done")));
		}
		env->getLogger(COMPONENT)->logError("refreshed");
		return CIMValue(UInt32(0));
	}
	virtual void enumInstanceNames(const ProviderEnvironmentIFCRef& env, const String& ns,
		const String& className, CIMObjectPathResultHandlerIFC& result, const CIMClass& cimClass)
	{
		(void)env;
		(void)cimClass;
		for (int i = 0; i < 3; ++i)
		{
			CIMObjectPath op(className, ns);
			op.setKeyValue("InstanceID", CIMValue(String(Int32(i))));
			result.handle(op);
		}
	}
	virtual CIMInstance getInstance(const ProviderEnvironmentIFCRef& env, const String& ns,
		const CIMObjectPath& instanceName, WBEMFlags::ELocalOnlyFlag localOnly,
		WBEMFlags::EIncludeQualifiersFlag includeQualifiers,
		WBEMFlags::EIncludeClassOriginFlag includeClassOrigin,
		const StringArray* propertyList, const CIMClass& cimClass)
	{
		(void)env;
		(void)ns;
		(void)localOnly;
		(void)includeQualifiers;
		(void)includeClassOrigin;
		(void)propertyList;
		(void)cimClass;
		CIMInstance inst(instanceName.getClassName());
		inst.setProperty("InstanceID", instanceName.getKeyValue("InstanceID"));
		return inst;
	}
	virtual CIMObjectPath createInstance(const ProviderEnvironmentIFCRef&, const String&,
		const CIMInstance&)
	{
		OW_THROWCIM(CIMException::NOT_SUPPORTED);
	}
	virtual void modifyInstance(const ProviderEnvironmentIFCRef&, const String&,
		const CIMInstance&, const CIMInstance&, WBEMFlags::EIncludeQualifiersFlag,
		const StringArray*, const CIMClass&)
	{
	}
	virtual void deleteInstance(const ProviderEnvironmentIFCRef&, const String&, const CIMObjectPath&)
	{
		OW_THROWCIM(CIMException::NOT_SUPPORTED);
	}
	virtual void associators(const ProviderEnvironmentIFCRef&, CIMInstanceResultHandlerIFC&,
		const String&, const CIMObjectPath&, const String&, const String&, const String&,
		const String&, WBEMFlags::EIncludeQualifiersFlag, WBEMFlags::EIncludeClassOriginFlag,
		const StringArray*)
	{
		OW_THROWCIM(CIMException::INVALID_CLASS);
	}
	virtual void associatorNames(const ProviderEnvironmentIFCRef&, CIMObjectPathResultHandlerIFC&,
		const String&, const CIMObjectPath&, const String&, const String&, const String&, const String&)
	{
		OW_THROWCIM(CIMException::INVALID_CLASS);
	}
	virtual void references(const ProviderEnvironmentIFCRef&, CIMInstanceResultHandlerIFC&,
		const String&, const CIMObjectPath&, const String&, const String&,
		WBEMFlags::EIncludeQualifiersFlag, WBEMFlags::EIncludeClassOriginFlag, const StringArray*)
	{
		OW_THROWCIM(CIMException::INVALID_CLASS);
	}
	virtual void referenceNames(const ProviderEnvironmentIFCRef&, CIMObjectPathResultHandlerIFC&,
		const String&, const CIMObjectPath&, const String&, const String&)
	{
		OW_THROWCIM(CIMException::INVALID_CLASS);
	}

	static const char* const COMPONENT;
};

const char* const SampleProvider::COMPONENT = "sample";

} // end unnamed namespace

OW_PROVIDERFACTORY(SampleProvider, sample)

namespace
{
using namespace OpenWBEM;

class RecordingLogger : public Logger
{
public:
	explicit RecordingLogger(std::vector<LogMessage>* sink, ELogLevel level = E_ERROR_LEVEL)
		: Logger("recording", level)
		, m_sink(sink)
	{
	}
protected:
	virtual void doProcessLogMessage(const LogMessage& message) const { m_sink->push_back(message); }
	virtual LoggerRef doClone() const { return LoggerRef(new RecordingLogger(*this)); }
private:
	std::vector<LogMessage>* m_sink;
};

class TestEnvironment : public ProviderEnvironmentIFC
{
public:
	explicit TestEnvironment(std::vector<LogMessage>* sink) : m_sink(sink) {}
	virtual CIMOMHandleIFCRef getCIMOMHandle() const { return CIMOMHandleIFCRef(); }
	virtual CIMOMHandleIFCRef getRepositoryCIMOMHandle() const { return CIMOMHandleIFCRef(); }
	virtual RepositoryIFCRef getRepository() const { return RepositoryIFCRef(); }
	virtual LoggerRef getLogger() const { return getLogger("none"); }
	virtual LoggerRef getLogger(const String& componentName) const
	{
		LoggerRef logger(new RecordingLogger(m_sink));
		logger->setDefaultComponent(componentName);
		return logger;
	}
	virtual String getConfigItem(const String&, const String& defRetVal) const { return defRetVal; }
	virtual StringArray getMultiConfigItem(const String&, const StringArray& defRetVal, const char*) const
	{
		return defRetVal;
	}
	virtual String getUserName() const { return "tester"; }
	virtual OperationContext& getOperationContext() { throw std::logic_error("no context"); }
	virtual ProviderEnvironmentIFCRef clone() const { return ProviderEnvironmentIFCRef(new TestEnvironment(m_sink)); }
private:
	std::vector<LogMessage>* m_sink;
};

class InstanceCollector : public CIMInstanceResultHandlerIFC
{
public:
	std::vector<CIMInstance> received;
protected:
	virtual void doHandle(const CIMInstance& i) { received.push_back(i); }
};

class ProviderInterfaceTest : public ::testing::Test
{
protected:
	ProviderInterfaceTest()
		: provider(createProvidersample())
		, env(new TestEnvironment(&logged))
	{
	}
	std::vector<LogMessage> logged;
	IntrusiveReference<CppProviderBaseIFC> provider;
	ProviderEnvironmentIFCRef env;
};

TEST_F(ProviderInterfaceTest, FactoryReportsTheConfiguredVersion)
{
	EXPECT_STREQ("3.0.3", getOWVersion());
}

TEST_F(ProviderInterfaceTest, InterfaceGettersReturnTheSameObject)
{
	ASSERT_NE(nullptr, provider->getMethodProvider());
	ASSERT_NE(nullptr, provider->getInstanceProvider());
	ASSERT_NE(nullptr, provider->getAssociatorProvider());
	EXPECT_EQ(nullptr, provider->getPolledProvider());
	EXPECT_EQ(nullptr, provider->getIndicationProvider());
	EXPECT_TRUE(provider->canUnload());
	EXPECT_FALSE(provider->getPersist());
	CppInstanceProviderIFC* asInstance = provider->getAssociatorProvider();
	EXPECT_EQ(provider->getInstanceProvider(), asInstance);
}

TEST_F(ProviderInterfaceTest, DefaultEnumInstancesGetsEachEnumeratedName)
{
	InstanceCollector collector;
	provider->getInstanceProvider()->enumInstances(env, "root/cimv2", "Sample", collector,
		WBEMFlags::E_NOT_LOCAL_ONLY, WBEMFlags::E_DEEP, WBEMFlags::E_EXCLUDE_QUALIFIERS,
		WBEMFlags::E_EXCLUDE_CLASS_ORIGIN, 0, CIMClass("Sample"), CIMClass("Sample"));
	ASSERT_EQ(3u, collector.received.size());
	EXPECT_STREQ("2", collector.received[2].getPropertyValue("InstanceID").toString().c_str());
}

TEST_F(ProviderInterfaceTest, MethodFillsPresizedOutputAndLogsThroughTheEnvironment)
{
	CIMParamValueArray in;
	CIMParamValueArray out(1, CIMParamValue("Result"));
	CIMValue rc = provider->getMethodProvider()->invokeMethod(env, "root/cimv2",
		CIMObjectPath("Sample", "root/cimv2"), "Refresh", in, out);
	EXPECT_EQ(0u, rc.toUInt32());
	EXPECT_STREQ("CIMParamValue(Result): done", out[0].toString().c_str());
	EXPECT_STREQ("done", getParamValue("result", out).toString().c_str());
	ASSERT_EQ(1u, logged.size());
	EXPECT_STREQ("sample", logged[0].component.c_str());
	EXPECT_STREQ("ERROR", logged[0].category.c_str());
	EXPECT_STREQ("refreshed", logged[0].message.c_str());
}

TEST_F(ProviderInterfaceTest, UnknownMethodIsMethodNotFound)
{
	CIMParamValueArray in;
	CIMParamValueArray out;
	try
	{
		provider->getMethodProvider()->invokeMethod(env, "root/cimv2",
			CIMObjectPath("Sample", "root/cimv2"), "refresh", in, out);
		FAIL() << "no exception";
	}
	catch (const CIMException& e)
	{
		EXPECT_EQ(CIMException::METHOD_NOT_FOUND, e.getErrNo());
		EXPECT_EQ(nullptr, e.getDescription());
	}
}

TEST(LoggerLevels, LevelFunctionsFilterAndLogMessageDoesNot)
{
	std::vector<LogMessage> sink;
	RecordingLogger logger(&sink, E_ERROR_LEVEL);
	logger.logDebug("d");
	logger.logInfo("i");
	logger.logError("e");
	logger.logFatalError("f");
	logger.logMessage("DEBUG", "raw");
	OW_LOG_INFO(&logger, "macro info");
	OW_LOG_ERROR(&logger, "macro error");
	ASSERT_EQ(4u, sink.size());
	EXPECT_STREQ("e", sink[0].message.c_str());
	EXPECT_STREQ("FATAL", sink[1].category.c_str());
	EXPECT_STREQ("raw", sink[2].message.c_str());
	EXPECT_STREQ("macro error", sink[3].message.c_str());
	EXPECT_NE(nullptr, sink[3].filename);
}

TEST(LoggerLevels, LevelNamesIgnoreCaseAndUnknownMeansFatal)
{
	std::vector<LogMessage> sink;
	RecordingLogger logger(&sink);
	const struct
	{
		const char* name;
		ELogLevel level;
	} cases[] = {
		{ "debug", E_DEBUG_LEVEL }, { "INFO", E_INFO_LEVEL }, { "Error", E_ERROR_LEVEL },
		{ "all", E_ALL_LEVEL }, { "none", E_NONE_LEVEL }, { "verbose", E_FATAL_ERROR_LEVEL },
	};
	for (const auto& c : cases)
	{
		logger.setLogLevel(String(c.name));
		EXPECT_EQ(c.level, logger.getLogLevel()) << c.name;
	}
}

} // end unnamed namespace
