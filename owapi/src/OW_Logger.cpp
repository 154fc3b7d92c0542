#include "OW_Logger.hpp"
#include "OW_LogMessage.hpp"
#include <mutex>

namespace OW_NAMESPACE
{

const String Logger::STR_NONE_CATEGORY("NONE");
const String Logger::STR_FATAL_CATEGORY("FATAL");
const String Logger::STR_ERROR_CATEGORY("ERROR");
const String Logger::STR_INFO_CATEGORY("INFO");
const String Logger::STR_DEBUG_CATEGORY("DEBUG");
const String Logger::STR_ALL_CATEGORY("ALL");
const String Logger::STR_DEFAULT_COMPONENT("none");

namespace
{
/// The logger used until one is installed: it drops everything.
class NullLogger : public Logger
{
public:
	NullLogger() : Logger(STR_DEFAULT_COMPONENT, E_NONE_LEVEL) {}
protected:
	virtual void doProcessLogMessage(const LogMessage&) const {}
	virtual LoggerRef doClone() const { return LoggerRef(new NullLogger(*this)); }
};

std::mutex defaultLoggerGuard;
LoggerRef& defaultLogger()
{
	static LoggerRef logger(new NullLogger);
	return logger;
}
thread_local LoggerRef* threadLogger = 0;
} // end unnamed namespace

Logger::Logger(const String& defaultComponent, const ELogLevel logLevel)
	: m_logLevel(logLevel)
	, m_defaultComponent(defaultComponent)
{
}

Logger::Logger(const Logger& x)
	: IntrusiveCountableBase(x)
	, m_logLevel(x.m_logLevel)
	, m_defaultComponent(x.m_defaultComponent)
{
}

Logger& Logger::operator=(const Logger& x)
{
	m_logLevel = x.m_logLevel;
	m_defaultComponent = x.m_defaultComponent;
	return *this;
}

void Logger::swap(Logger& x)
{
	ELogLevel l = m_logLevel;
	m_logLevel = x.m_logLevel;
	x.m_logLevel = l;
	m_defaultComponent.swap(x.m_defaultComponent);
}

Logger::~Logger() {}

void Logger::processLogMessage(const LogMessage& message) const
{
	doProcessLogMessage(message);
}

void Logger::logFatalError(const String& message, const char* filename, int fileline, const char* methodname) const
{
	if (m_logLevel >= E_FATAL_ERROR_LEVEL)
	{
		processLogMessage(LogMessage(m_defaultComponent, STR_FATAL_CATEGORY, message, filename, fileline, methodname));
	}
}

void Logger::logError(const String& message, const char* filename, int fileline, const char* methodname) const
{
	if (m_logLevel >= E_ERROR_LEVEL)
	{
		processLogMessage(LogMessage(m_defaultComponent, STR_ERROR_CATEGORY, message, filename, fileline, methodname));
	}
}

void Logger::logInfo(const String& message, const char* filename, int fileline, const char* methodname) const
{
	if (m_logLevel >= E_INFO_LEVEL)
	{
		processLogMessage(LogMessage(m_defaultComponent, STR_INFO_CATEGORY, message, filename, fileline, methodname));
	}
}

void Logger::logDebug(const String& message, const char* filename, int fileline, const char* methodname) const
{
	if (m_logLevel >= E_DEBUG_LEVEL)
	{
		processLogMessage(LogMessage(m_defaultComponent, STR_DEBUG_CATEGORY, message, filename, fileline, methodname));
	}
}

void Logger::logMessage(const String& component, const String& category, const String& message) const
{
	processLogMessage(LogMessage(component, category, message, 0, -1, 0));
}

void Logger::logMessage(const String& component, const String& category, const String& message,
	const char* filename, int fileline, const char* methodname) const
{
	processLogMessage(LogMessage(component, category, message, filename, fileline, methodname));
}

void Logger::logMessage(const String& category, const String& message) const
{
	processLogMessage(LogMessage(m_defaultComponent, category, message, 0, -1, 0));
}

void Logger::logMessage(const String& category, const String& message,
	const char* filename, int fileline, const char* methodname) const
{
	processLogMessage(LogMessage(m_defaultComponent, category, message, filename, fileline, methodname));
}

void Logger::logMessage(const LogMessage& message) const
{
	processLogMessage(message);
}

void Logger::setDefaultComponent(const String& component) { m_defaultComponent = component; }
String Logger::getDefaultComponent() const { return m_defaultComponent; }
void Logger::setLogLevel(ELogLevel logLevel) { m_logLevel = logLevel; }

void Logger::setLogLevel(const String& logLevel)
{
	if (logLevel.equalsIgnoreCase(STR_INFO_CATEGORY))
	{
		m_logLevel = E_INFO_LEVEL;
	}
	else if (logLevel.equalsIgnoreCase(STR_DEBUG_CATEGORY))
	{
		m_logLevel = E_DEBUG_LEVEL;
	}
	else if (logLevel.equalsIgnoreCase(STR_ERROR_CATEGORY))
	{
		m_logLevel = E_ERROR_LEVEL;
	}
	else if (logLevel.equalsIgnoreCase(STR_ALL_CATEGORY))
	{
		m_logLevel = E_ALL_LEVEL;
	}
	else if (logLevel.equalsIgnoreCase(STR_NONE_CATEGORY))
	{
		m_logLevel = E_NONE_LEVEL;
	}
	else
	{
		m_logLevel = E_FATAL_ERROR_LEVEL;
	}
}

bool Logger::categoryIsEnabled(const String&) const { return true; }
bool Logger::levelIsEnabled(const ELogLevel level) { return getLogLevel() >= level; }
bool Logger::componentAndCategoryAreEnabled(const String&, const String&) const { return true; }
LoggerRef Logger::clone() const { return doClone(); }

LoggerRef Logger::getCurrentLogger()
{
	if (threadLogger != 0 && *threadLogger)
	{
		return *threadLogger;
	}
	return getDefaultLogger();
}

LoggerRef Logger::getDefaultLogger()
{
	std::lock_guard<std::mutex> lock(defaultLoggerGuard);
	return defaultLogger();
}

bool Logger::setDefaultLogger(const LoggerRef& ref)
{
	if (!ref)
	{
		return false;
	}
	std::lock_guard<std::mutex> lock(defaultLoggerGuard);
	defaultLogger() = ref;
	return true;
}

bool Logger::setThreadLogger(const LoggerRef& ref)
{
	if (!ref)
	{
		return false;
	}
	static thread_local LoggerRef mine;
	mine = ref;
	threadLogger = &mine;
	return true;
}

} // end namespace OW_NAMESPACE
