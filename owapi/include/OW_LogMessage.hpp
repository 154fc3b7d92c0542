#ifndef OW_LOGMESSAGE_HPP_INCLUDE_GUARD_
#define OW_LOGMESSAGE_HPP_INCLUDE_GUARD_
#include "OW_config.h"
#include "OW_String.hpp"

namespace OW_NAMESPACE
{

/// One log record as handed to a logger's sink.
struct LogMessage
{
	LogMessage(const String& component_, const String& category_, const String& message_,
		const char* filename_, int fileline_, const char* methodname_)
		: component(component_)
		, category(category_)
		, message(message_)
		, filename(filename_)
		, fileline(fileline_)
		, methodname(methodname_)
	{
	}

	String component;
	String category;
	String message;
	const char* filename;
	int fileline;
	const char* methodname;
};

} // end namespace OW_NAMESPACE

#endif
