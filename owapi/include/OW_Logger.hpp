#ifndef OW_LOGGER_HPP_INCLUDE_GUARD_
#define OW_LOGGER_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_CommonFwd.hpp"
#include "OW_String.hpp"
#include "OW_LogLevel.hpp"
#include "OW_IntrusiveCountableBase.hpp"
#include "OW_IntrusiveReference.hpp"
#include "OW_Exception.hpp"

namespace OW_NAMESPACE
{

OW_DECLARE_APIEXCEPTION(Logger, OW_COMMON_API)

/// Logging front end. logError/logInfo/... filter by the logger's level;
/// logMessage goes to the sink unfiltered. A sink implements
/// doProcessLogMessage and doClone.
class Logger : public IntrusiveCountableBase
{
public:
	static const String STR_NONE_CATEGORY;
	static const String STR_FATAL_CATEGORY;
	static const String STR_ERROR_CATEGORY;
	static const String STR_INFO_CATEGORY;
	static const String STR_DEBUG_CATEGORY;
	static const String STR_ALL_CATEGORY;
	static const String STR_DEFAULT_COMPONENT;

	enum ELoggerErrorCodes
	{
		E_UNKNOWN_LOG_APPENDER_TYPE,
		E_INVALID_MAX_FILE_SIZE,
		E_INVALID_MAX_BACKUP_INDEX
	};

	virtual ~Logger();

#ifdef OWAPI_SERIES_3_0
	void logFatalError(const String& message) const;
	void logError(const String& message) const;
	void logInfo(const String& message) const;
	void logDebug(const String& message) const;
#else
	void logFatalError(const String& message, const char* filename = 0, int fileline = -1, const char* methodname = 0) const;
	void logError(const String& message, const char* filename = 0, int fileline = -1, const char* methodname = 0) const;
	void logInfo(const String& message, const char* filename = 0, int fileline = -1, const char* methodname = 0) const;
	void logDebug(const String& message, const char* filename = 0, int fileline = -1, const char* methodname = 0) const;
#endif

	void logMessage(const String& component, const String& category, const String& message) const;
	void logMessage(const String& component, const String& category, const String& message,
		const char* filename, int fileline, const char* methodname) const;
	void logMessage(const String& category, const String& message) const;
	void logMessage(const String& category, const String& message,
		const char* filename, int fileline, const char* methodname) const;
	void logMessage(const LogMessage& message) const;

	void setDefaultComponent(const String& component);
	String getDefaultComponent() const;
	ELogLevel getLogLevel() const { return m_logLevel; }
	void setLogLevel(ELogLevel logLevel);
	/// "INFO", "DEBUG", "ERROR", "ALL" or "NONE", case ignored; anything else is FATAL.
	void setLogLevel(const String& logLevel);
	virtual bool categoryIsEnabled(const String& category) const;
	bool levelIsEnabled(const ELogLevel level);
	virtual bool componentAndCategoryAreEnabled(const String& component, const String& category) const;
	LoggerRef clone() const;

	static LoggerRef getCurrentLogger();
	static LoggerRef getDefaultLogger();
	static bool setDefaultLogger(const LoggerRef& ref);
	static bool setThreadLogger(const LoggerRef& ref);

protected:
	Logger(const String& defaultComponent = STR_DEFAULT_COMPONENT, const ELogLevel logLevel = E_ERROR_LEVEL);
	Logger(const Logger&);
	Logger& operator=(const Logger&);
	void swap(Logger& x);

	virtual void doProcessLogMessage(const LogMessage& message) const = 0;
	virtual LoggerRef doClone() const = 0;

private:
	void processLogMessage(const LogMessage& message) const;

	ELogLevel m_logLevel;
	String m_defaultComponent;
};

} // end namespace OW_NAMESPACE

#ifndef OWAPI_SERIES_3_0
#if defined(__GNUC__)
#define OW_LOGGER_PRETTY_FUNCTION __PRETTY_FUNCTION__
#else
#define OW_LOGGER_PRETTY_FUNCTION ""
#endif

#define OW_LOG_DEBUG(logger, message) \
do \
{ \
	if ((logger)->getLogLevel() >= ::OW_NAMESPACE::E_DEBUG_LEVEL) \
	{ \
		(logger)->logMessage(::OW_NAMESPACE::Logger::STR_DEBUG_CATEGORY, (message), __FILE__, __LINE__, OW_LOGGER_PRETTY_FUNCTION); \
	} \
} while (0)

#define OW_LOG_INFO(logger, message) \
do \
{ \
	if ((logger)->getLogLevel() >= ::OW_NAMESPACE::E_INFO_LEVEL) \
	{ \
		(logger)->logMessage(::OW_NAMESPACE::Logger::STR_INFO_CATEGORY, (message), __FILE__, __LINE__, OW_LOGGER_PRETTY_FUNCTION); \
	} \
} while (0)

#define OW_LOG_ERROR(logger, message) \
do \
{ \
	if ((logger)->getLogLevel() >= ::OW_NAMESPACE::E_ERROR_LEVEL) \
	{ \
		(logger)->logMessage(::OW_NAMESPACE::Logger::STR_ERROR_CATEGORY, (message), __FILE__, __LINE__, OW_LOGGER_PRETTY_FUNCTION); \
	} \
} while (0)

#define OW_LOG_FATAL_ERROR(logger, message) \
do \
{ \
	if ((logger)->getLogLevel() >= ::OW_NAMESPACE::E_FATAL_ERROR_LEVEL) \
	{ \
		(logger)->logMessage(::OW_NAMESPACE::Logger::STR_FATAL_CATEGORY, (message), __FILE__, __LINE__, OW_LOGGER_PRETTY_FUNCTION); \
	} \
} while (0)

#define OW_LOG(logger, category, message) \
do \
{ \
	if ((logger)->categoryIsEnabled((category))) \
	{ \
		(logger)->logMessage((category), (message), __FILE__, __LINE__, OW_LOGGER_PRETTY_FUNCTION); \
	} \
} while (0)

#endif

#endif
